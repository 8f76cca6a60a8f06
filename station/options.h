#pragma once

#include <QString>
#include <QStringList>

// What the launcher was asked for. Everything about the receiver goes to the driver, everything
// about the windows to each window.
struct StationOptions
{
    QStringList configurations;   // one window each; names or files, at least one after parsing
    QString driver;               // "HOST:PORT" of a running driver; empty: start one
    QStringList driverArguments;  // source of the driver that is started
    QStringList windowArguments;  // handed on as they are
    QString shots;                // folder for pictures; empty: none
    int vncPort = 0;              // 0: no remote view
    bool headless = false;
    bool help = false;
};

// False with one line in `error` that says what is wrong and what to do.
bool parseStationOptions(const QStringList& arguments, StationOptions* options, QString* error);

QString stationHelp();

// The file of a configuration: a file as it stands, or a bare name in the folder of the
// installation ("RxDDC2" is RxDDC2.toml there). Empty with a reason when there is none.
QString findConfiguration(const QString& nameOrFile, const QString& folder, QString* error);
