#ifndef DDCGUI_DDCGUIMAIN_H
#define DDCGUI_DDCGUIMAIN_H

#include <QMainWindow>
#include <QString>
#include <memory>

#include "valuetree/valueptr.h"

class DdcGuiFfm;
class DdcIfSpectrum;
class DdcSelectionDlg;
class IFMappingHelper;
class QBoxLayout;
class QFrame;
class QLabel;

// The plug-in's top-level window. Started once the driver's values are there: it takes the
// configured channel when that is free, else lets the operator choose one, and builds the channel's
// frame: a header row, the channel's panels, of which the driver's DF switch selects one, and the IF
// spectrum, which goes with the fixed-frequency panel. Closing it gives up the channel and ends the
// application.
class DdcGuiMain : public QMainWindow, public IObserver
{
    Q_OBJECT
public:
    // `configKey` is the plug-in's configuration key; the panels read their settings with it.
    explicit DdcGuiMain(const QString& configKey);
    ~DdcGuiMain() override;

    // Called once. `valuePath` is the receiver's path without a trailing "/", `caption` the title
    // where the receiver has none, `ddcName` the channel to take (empty: ask).
    void Start(const QString& valuePath, const QString& caption, const QString& ddcName);

    // The driver is back: claims the channel again.
    void ReconnectFfmClient();

    void Update(Observable* subject, TChangeCode code) override;

public Q_SLOTS:
    // An empty name closes the window. `ddc` is not changed.
    void SlotDDCSelected(QString& ddc);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    Q_DISABLE_COPY(DdcGuiMain)

    void SetTitle(const QString& text);
    bool IsDdcFree(const QString& ddcName) const;
    void RunSelectionDialog(const QString& title);
    void CreateDdcFrame();
    QBoxLayout* CreateHeaderRow(QFrame* frame);
    void UpdateRange();
    void SwitchPanel();

    DdcGuiFfm* m_pFfm;
    DdcIfSpectrum* m_pIfSpectrum;
    DdcSelectionDlg* m_pSelectionDlg;  // deletes itself when closed
    QLabel* m_pRangeLabel;
    ValueObservingPtr<ValueSelection> m_IfPanSpan;
    ValueObservingPtr<ValueSelection> m_DrvCommands;
    ValueObservingPtr<FloatValue> m_Frequency;  // Hz
    ValueObservingPtr<TextValue> m_DeviceCaption;
    ValueObservingPtr<ValueSelection> m_DfEnabled;
    QString m_ValuePath;
    QString m_ConfigKey;
    QString m_CurrentDdc;
    std::unique_ptr<IFMappingHelper> m_pMappingHelper;  // from the start on, for the window's life
};

#endif
