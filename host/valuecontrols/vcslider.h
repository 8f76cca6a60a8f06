#ifndef HOST_VCSLIDER_H
#define HOST_VCSLIDER_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QSlider>
#else
#include <QtWidgets/QSlider>
#endif

#include "valuecontrols/valuecontrols_global.h"

class VCSliderPrivate;

// A slider over a number's limits. Dragging writes while it moves; a wheel over it does nothing
// unless it has the focus.
class VALUECONTROLS_EXPORT VCSlider : public QSlider
{
    Q_OBJECT
public:
    VCSlider(QWidget* parent, const char* name);
    ~VCSlider();

    // True when the tree has a numeric value at the path.
    bool SetNumeric_ValuePath(const QString& path);

protected:
    bool event(QEvent* event);
    void wheelEvent(QWheelEvent* event);
    void keyPressEvent(QKeyEvent* event);
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCSlider)
    friend class VCSliderPrivate;
    VCSliderPrivate* d;
};

#endif
