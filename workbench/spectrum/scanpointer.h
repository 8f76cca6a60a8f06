#pragma once

#include <QObject>
#include <QPointF>

#include "spectrum/scanscene.h"

class QMouseEvent;
class QWheelEvent;
class QWidget;
class VCScanWidgetPrivate;

// The pointer over the pictures of a scan. A click tunes; the passband, its edges, the threshold
// line and markers are dragged; free area moves the view; the wheel zooms around the pointer and
// writes nothing; a double click shows all, and takes the tuning of its first click back.
class ScanPointer : public QObject
{
public:
    explicit ScanPointer(VCScanWidgetPrivate& scan);

    bool isDragging() const { return m_held != Held::Nothing; }
    void cancel();  // gives back what the drag changed

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Held
    {
        Nothing,
        Button,  // pressed, not moved far enough yet
        View,
        Part,     // m_part
        Released  // given up while the button is still down
    };

    bool press(QWidget* canvas, QMouseEvent* event);
    void move(QWidget* canvas, QMouseEvent* event);
    void release(QWidget* canvas, QMouseEvent* event);
    void doubleClick(QMouseEvent* event);
    void wheel(QWidget* canvas, QWheelEvent* event);
    void leave();
    void hover(QWidget* canvas, const QPointF& position);
    void beginDrag();
    void drag(QWidget* canvas, const QPointF& position);
    void dragPart(double frequency, double y);
    void giveBack();
    ScanHandle partAt(QWidget* canvas, const QPointF& position) const;
    double frequencyAt(const QWidget* canvas, double x) const;
    bool isSpectrum(const QWidget* canvas) const;

    VCScanWidgetPrivate& m_scan;
    Held m_held = Held::Nothing;
    ScanHandle m_part = ScanHandle::None;
    QPointF m_pressed;
    ScanRange m_startView;
    double m_startFrequency = 0;  // of the channel
    double m_grabbed = 0;         // the frequency that was taken hold of
    double m_grabbedLevel = 0;    // of the pointer above the threshold's line, dB
    double m_startThreshold = 0;
    int m_startKey = -1;  // of the bandwidth
    int m_marker = -1;
    double m_startMarker = 0;
    double m_beforeClick = 0;  // the frequency that the last click tuned away from; NaN: none
};
