#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>

class QApplication;
class QWidget;

// Size and place of the main widget between runs. The last geometry is remembered while the widget
// lives, since it is stored after the widget is gone.
class GeometryKeeper : public QObject
{
    Q_OBJECT
public:
    void SetFile(const QString& fileName) { m_FileName = fileName; }

    // Waits for the main widget to be shown first; null ends the waiting.
    void SetApplication(QApplication* application);

    // Writes the last geometry of a widget that was shown. Without a file or such a widget nothing is
    // written.
    void Store();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Geometry
    {
        QRect normal;  // place of the frame, size of the contents
        bool maximised = false;
    };

    void Follow(QWidget* widget);
    void Remember(QWidget* widget);
    void MakeRoom(QWidget* widget);
    bool Restore(QWidget* widget);
    bool IsUsable(const QWidget* widget, const QRect& normal) const;

    QString m_FileName;
    QPointer<QApplication> m_Application;  // while waiting
    QPointer<QWidget> m_Widget;            // being followed
    QString m_Group;                       // of the widget last followed
    Geometry m_Last;
    bool m_HasLast = false;
};
