#ifndef DDCGUI_DDCSELECTIONDLG_H
#define DDCGUI_DDCSELECTIONDLG_H

#include <QDialog>
#include <QString>
#include <vector>

class QAbstractButton;
class QButtonGroup;
class QHBoxLayout;
class QLabel;
class QVBoxLayout;

// Lets the operator pick one of a receiver's channels. Lists every channel with the client that
// holds it, and accepts only a free one. Delivers exactly one result, also when it is closed or
// destroyed undecided; Escape only hides it.
class DdcSelectionDlg : public QDialog
{
    Q_OBJECT
public:
    // `valuePath` is the receiver's path without a trailing "/". Deletes itself when closed.
    DdcSelectionDlg(QWidget* parent, const QString& title, const QString& valuePath);
    ~DdcSelectionDlg() override;

Q_SIGNALS:
    void SignalDDCSelected(QString& ddc);  // empty: nothing was chosen
    void SignalDDCSelectCancelled();       // offered; an empty name of the other signal tells a cancel

public Q_SLOTS:
    virtual void Reject();
    virtual void OnOKClick();

private:
    Q_DISABLE_COPY(DdcSelectionDlg)

    void CreateHeaderRow();
    void CreateDdcRows();
    void CreateDdcRow(const QString& name, int id);
    void CreateButtonRow();
    bool TakeSelection();
    QString ClientPath(const QString& name) const;

    QVBoxLayout* m_pMainLayout;
    QButtonGroup* m_pButtonGroup;  // null where the receiver has no channels' node
    std::vector<QAbstractButton*> m_RadioButtons;
    std::vector<QLabel*> m_StatusLabels;  // of the rows, in their order
    QString m_ValuePath;
    QString m_Selection;
    bool m_bDecided;
};

#endif
