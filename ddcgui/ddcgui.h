#ifndef DDCGUI_DDCGUI_H
#define DDCGUI_DDCGUI_H

#include <QObject>
#include <QString>

#include "ddcgui_global.h"
#include "receivercommon/connectionstate.h"
#include "startup/idllinstance.h"
#include "valuetree/valueptr.h"

class DdcGuiMain;
class IVtClient;
class Node;
class QMessageBox;
class QTimer;
class QWidget;

// The plug-in's instance. Waits until the receiver's driver is connected and has hooked its values
// into the tree, asks the operator when that takes long, and then starts the main window, which it
// owns and keeps hidden until then.
class DDCGui : public QObject, public IDllInstance, public IObserver
{
    Q_OBJECT
public:
    // `name` is the key of the configuration with "ValuePath", "DdcName" and "Caption"; entries that
    // are missing are empty.
    explicit DDCGui(const QString& name);
    ~DDCGui() override;

    void Update(Observable* subject, TChangeCode code) override;

public Q_SLOTS:
    void SlotConnectonTimedOut();
    void SlotConnectionStateChanged();

private:
    Q_DISABLE_COPY(DDCGui)

    void ReadConfiguration();
    void CreateMainWindow();
    void StartConnection();
    void AskOnConnectionFailed();
    void HandleConnected();
    void HandleDisconnected();
    void HandleHooksServed();
    void StartMainWindow();
    bool IsClient(Observable* subject) const;

    IVtClient* m_pVtClient;  // the host's; null until the connection starts
    Node* m_pNode;           // of m_ValuePath, the tree's; null until the connection starts
    ConnectionState m_ConnectionState;
    DdcGuiMain* m_pMainWindow;
    QTimer* m_pConnectTimer;
    QMessageBox* m_pWaitBox;
    QWidget* m_pFailedBox;  // closed on connection; nothing sets it at present
    ValueObservingPtr<BoolValue> m_ServerValuesHooked;
    QString m_ConfigKey;
    QString m_ValuePath;
    QString m_Caption;
    QString m_DdcName;
    bool m_bConnected;
    bool m_bHooksRequested;
    bool m_bReserved;
    bool m_bMainStarted;
};

// The library's entry points; the names and the linkage are what the host's loader looks for.
extern "C" {
DDCGUI_EXPORT IDllInstance* ARCreate(const wchar_t* name);
DDCGUI_EXPORT void ARDestroy(IDllInstance* instance);
}

#endif
