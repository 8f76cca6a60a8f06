#pragma once

#include <QDateTime>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

class QLabel;
class QToolButton;

// The strip that lies over the lower edge of the main widget while there is something that the operator
// has to know: the driver is away (since when, what is done about it), an error was reported. It
// takes no place in any layout, so nothing moves when it comes and goes.
class StatusBanner : public QWidget
{
    Q_OBJECT
public:
    StatusBanner();
    ~StatusBanner() override;

    // The widget to lie over; null takes the banner off.
    void setMainWidget(QWidget* widget);

    // The driver went away now. `address` is where it is looked for.
    void driverLost(const QString& address);
    void setAttempt(int attempt);  // the one that is under way, from 1
    void driverBack();

    // An error for the operator; stays until it is dismissed, has stood for some time, or, when it
    // came while the driver was away, until the driver is back.
    void showError(const QString& message);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void place();
    void dismissErrors();

    QPointer<QWidget> m_mainWidget;
    QLabel* m_driverLine;
    QLabel* m_errorLine;
    QToolButton* m_dismiss;
    QTimer m_tick;       // the time since the loss runs
    QTimer m_errorTime;  // until errors go by themselves
    QDateTime m_lostAt;  // invalid: the driver is there
    QString m_address;
    int m_attempt = 0;
    QStringList m_errors;      // while all is well, or from before the loss
    QStringList m_awayErrors;  // since the loss
};
