#pragma once

#include <QToolBar>

class QAction;
class QLabel;
class QToolButton;

// What the operator sees of the recorder: record, stop, the data rate, and a place for a warning
// that keeps its room while there is none. Knows no values; the controller tells it what to show.
class RecorderToolBarWidget : public QToolBar
{
    Q_OBJECT
public:
    // How the channel's recording stands.
    enum class Recording
    {
        Unavailable,  // the recorder or the channel cannot be had at present
        Stopped,
        Running
    };

    explicit RecorderToolBarWidget(bool offerRecording);

    void SetChannel(const QString& name);
    void SetRecording(Recording recording);
    void SetDataRate(double bytesPerSecond);  // 0: unknown
    void SetOffered(bool offered);            // false greys everything
    void ShowWarning(const QString& text);
    void HideWarning();

Q_SIGNALS:
    void RecordRequested();
    void StopRequested();

private:
    void AddActions();
    void AddStatus();
    void UpdateActions();

    QAction* m_Record = nullptr;  // null where recording is not offered
    QAction* m_Stop = nullptr;
    QLabel* m_Rate = nullptr;
    QToolButton* m_Status = nullptr;
    Recording m_Recording = Recording::Unavailable;
    bool m_Offered = false;
};
