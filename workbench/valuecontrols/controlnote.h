#pragma once

#include <QLabel>
#include <QPointer>
#include <QTimer>

// A short message beside a control: why a write was refused, which limit it met. Never takes the
// focus, never stands in the way of a dialog; goes with a click on it, or by itself once there was
// time to read it. Follows its control when that moves, and hides with it.
class ControlNote : public QLabel
{
public:
    enum Kind
    {
        Limited,  // taken, but not as entered
        Refused   // not taken
    };

    ControlNote(QWidget* control, Kind kind, const QString& text);
    ~ControlNote() override;

    Kind GetKind() const { return m_Kind; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Place();
    void GoWhenRead();

    QPointer<QWidget> m_Control;
    Kind m_Kind;
    QTimer m_ReadingTime;
};
