#ifndef DDCGUI_GLOBAL_H
#define DDCGUI_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what other libraries may use of this one: the two entry points and the channel panels.
#if defined(DDCGUI_BUILD)
#define DDCGUI_EXPORT Q_DECL_EXPORT
#else
#define DDCGUI_EXPORT Q_DECL_IMPORT
#endif

#endif
