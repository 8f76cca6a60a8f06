#ifndef HOST_VCBAR_H
#define HOST_VCBAR_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QWidget>
#else
#include <QtWidgets/QWidget>
#endif

#include "valuecontrols/valuecontrols_global.h"

class VCBarPrivate;

// A level bar with the number in it. Read only. Repaints only when the picture changes.
class VALUECONTROLS_EXPORT VCBar : public QWidget
{
    Q_OBJECT
public:
    // `parts` is the number of scale divisions, `marks` how many of them carry a mark; `flag` is 1.
    VCBar(QWidget* parent, const char* name, unsigned parts, int marks, int flag = 1);
    ~VCBar();

    // True when the tree has a numeric value at the path.
    bool SetPeak_ValuePath(const QString& path);

    void SetStartValue(double value);        // left end of the scale, in the value's unit
    void SetStopValue(double value);         // right end
    void SetShowMinMaxInside(bool show);     // the lowest and highest of the last seconds as marks in the bar
    void SetShowTextValueInside(bool show);  // number and unit in the bar

    QSize sizeHint() const;
    QSize minimumSizeHint() const;

protected:
    bool event(QEvent* event);
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCBar)
    friend class VCBarPrivate;
    VCBarPrivate* d;
};

#endif
