#pragma once

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

// The command line of the workbench. What is empty or zero was not given; the configuration or a
// default decides then.
struct AppOptions
{
    QString configuration;                    // file; required
    QString driver;                           // "HOST:PORT"
    QStringList plugins;                      // folders searched before the product's own
    QString shots;                            // folder for pictures
    QString log;                              // file of log lines
    QString state;                            // folder for log, journal and window places
    QString theme;                            // "dark", "light"
    double scale = 0;                         // 1 is normal size
    double seconds = 0;                       // of life; 0: until the operator ends it
    QVector<QPair<QString, QString>> writes;  // value path and text, in the order given
    bool headless = false;
    bool help = false;
    bool version = false;
};

// `arguments` without the program's name. False with one line that says what is wrong and what to do.
bool parseAppOptions(const QStringList& arguments, AppOptions* options, QString* error);

// Splits "HOST:PORT" ("[::1]:4600" for IPv6). False when it is none.
bool splitAddress(const QString& address, QString* host, quint16* port);

QString appHelp();
