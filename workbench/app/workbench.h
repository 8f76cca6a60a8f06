#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>

#include "app/appoptions.h"
#include "valueframework/iobserver.h"

class KestApplication;
class OperatorWrites;
class Shots;
class StatusBanner;
class VtClient;

// One run of the application: sets everything up in the order in which one part stands on the
// other, tells the operator what he has to know meanwhile, and takes it down again in reverse.
class Workbench : public QObject, public IObserver
{
    Q_OBJECT
public:
    Workbench(KestApplication* application, const AppOptions& options);
    ~Workbench() override;

    // The event loop with everything in it. Returns the exit code.
    int run();

    // Ends the run as its operator would, by closing the window; from a timer or a signal.
    void end();

    void Update(Observable* subject, TChangeCode code) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Each says why, when it cannot go on, and then gives false.
    bool readConfiguration();
    bool openRecords();
    bool openShots();
    bool loadPlugins();
    void createTree();
    bool findDriver();

    void begin();
    void tearDown();
    void fail(const QString& what);  // in words, to the operator and the log
    void checkShown();
    void mainWidgetChanged(QWidget* widget);
    StatusBanner* banner();
    QString stateFile(const char* key, const QString& fallback) const;

    KestApplication* m_application;
    AppOptions m_options;
    QString m_name;  // the application's, as its configuration gives it
    QString m_host;
    quint16 m_port = 0;
    std::unique_ptr<VtClient> m_client;
    std::unique_ptr<Shots> m_shots;
    std::unique_ptr<OperatorWrites> m_writes;
    QPointer<StatusBanner> m_banner;  // belongs to the main widget while it lies over it
    QTimer m_shownCheck;
    int m_attempts = 0;    // that failed since the driver was lost
    bool m_shown = false;  // the main widget has been seen
    bool m_ending = false;
    bool m_everConnected = false;
};
