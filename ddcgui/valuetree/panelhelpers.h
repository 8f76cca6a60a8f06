#ifndef DDCGUI_PANELHELPERS_H
#define DDCGUI_PANELHELPERS_H

class QLayout;

// Puts `inner` into a fresh widget of bounded width and adds that to `outer`: a column of a panel.
// The bound is 10 pixels less than the minimum width that the outer layout's widget has at this
// moment, 140 while the layout has no widget. Null on either side: nothing happens.
void AddColumn(QLayout* outer, QLayout* inner);

#endif
