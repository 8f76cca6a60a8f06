#ifndef HOST_XAXISWIDGET_H
#define HOST_XAXISWIDGET_H

#include <QtCore/QtGlobal>
#if QT_VERSION < 0x050000
#include <QtGui/QWidget>
#else
#include <QtWidgets/QWidget>
#endif

#include "spectrum/spectrum_global.h"

class AxisWidgetPrivate;

// An axis beside a scan: scale, ticks with SI labels, drag to move or stretch the range.
class SPECTRUM_EXPORT AxisWidget : public QWidget
{
    Q_OBJECT
public:
    ~AxisWidget();

protected:
    explicit AxisWidget(QWidget* parent);

private:
    Q_DISABLE_COPY(AxisWidget)
};

class XAxisWidgetPrivate;

// The frequency axis below a scan.
class SPECTRUM_EXPORT XAxisWidget : public AxisWidget
{
    Q_OBJECT
public:
    explicit XAxisWidget(QWidget* parent);
    ~XAxisWidget();

    // Whether buttons at both ends step the range to the left and right; shown until told otherwise.
    void ApplyLeftRightButtons(bool apply);

    QSize sizeHint() const;

protected:
    void paintEvent(QPaintEvent* event);
    void resizeEvent(QResizeEvent* event);
    void mousePressEvent(QMouseEvent* event);
    void mouseMoveEvent(QMouseEvent* event);
    void mouseReleaseEvent(QMouseEvent* event);
    void mouseDoubleClickEvent(QMouseEvent* event);
    void wheelEvent(QWheelEvent* event);

private:
    Q_DISABLE_COPY(XAxisWidget)
    friend class XAxisWidgetPrivate;
    XAxisWidgetPrivate* d;
};

#endif
