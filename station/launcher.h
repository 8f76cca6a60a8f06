#pragma once

#include <QObject>
#include <QVector>

#include "station/options.h"

class Child;
class DriverKeeper;
class RemoteDisplay;

// Starts what is missing in the order in which one stands on the other: the driver, the display,
// the windows. Ends everything when the last window has closed.
class Launcher : public QObject
{
    Q_OBJECT
public:
    // `programs` is the folder of the product's programs, `configurations` that of its
    // configuration files.
    Launcher(const StationOptions& options, const QString& programs, const QString& configurations);
    ~Launcher() override;

    // False when the arguments cannot be carried out; said why.
    bool start();

    // Closes the windows as their operator would; the rest follows.
    void end();

Q_SIGNALS:
    void finished(int exitCode);

private:
    void showWindows();
    void openWindow(const QString& configuration);
    void windowEnded(Child* window);
    void finish(int exitCode);

    StationOptions m_options;
    QString m_programs;
    QString m_configurations;
    QStringList m_files;  // of the windows' configurations
    DriverKeeper* m_driver = nullptr;
    RemoteDisplay* m_display = nullptr;
    QVector<Child*> m_windows;
    int m_exitCode = 0;
    bool m_finished = false;
    bool m_ending = false;
};
