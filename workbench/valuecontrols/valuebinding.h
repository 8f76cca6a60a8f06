#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVariant>

#include "valuecontrols/controlnote.h"
#include "valuecontrols/refreshthrottle.h"
#include "valueframework/iobserver.h"
#include "valueframework/valuehost.h"

class QContextMenuEvent;
class QHelpEvent;
class QMenu;
class QPainter;
class QWidget;

// What all controls share: the path, the value behind it (found again after it was deleted and made
// anew), following it at a bearable rate, writing for the operator and telling how the write fared.
// The base of each control's private part; lives as long as the control. GUI thread only.
class ValueBinding : public QObject, public IObserver
{
public:
    enum class Presence
    {
        Plain,         // never got a path: an ordinary widget
        Missing,       // the tree has no such value, or one of a type that does not fit
        Stale,         // the driver is away
        NotAvailable,  // the driver does not serve the value at present
        Usable
    };

    explicit ValueBinding(QWidget* control);
    ~ValueBinding() override;

    // Lets go of the former value and follows the one at `path`; an empty path makes the control
    // plain again. True when there is a value of a fitting type now. Otherwise the control shows
    // that it misses its value, and takes it as soon as it is there.
    bool Bind(const QString& path);

    QString Path() const { return m_Path; }
    ValueBase* BoundValue() const { return m_Value; }  // null while there is none
    Presence GetPresence() const;
    bool IsShownUsable() const;  // not to be greyed: plain or usable
    bool CanWrite() const;       // usable and the authority lets it be written
    bool BlocksInput() const;    // has a path, but cannot be written now

    // Write for the operator. False when nothing was written; the note beside the control says why.
    bool Write(const QVariant& content);
    bool WriteText(const QString& text);

    // The same from what an operator typed. False when the entry cannot be read; the note beside the
    // control says why, and the entry is to be kept for correction.
    bool WriteEntry(const QString& entry);
    bool IsNumeric() const;  // a float or an integer is bound

    // The number `step` above (below, when negative) a number, within limits, without rounding dust.
    double Stepped(double from, double step, int decimals) const;

    // The note beside the control. An empty text takes it away.
    void Tell(ControlNote::Kind kind, const QString& text);
    bool HasNote() const { return !m_Note.isNull(); }
    void DropNote();

    // Brings the control to the newest state before it is operated.
    void CatchUp();

    void Update(Observable* subject, TChangeCode code) override;

    // First in the control's event(). True: the event was dealt with.
    bool HandleEvent(QEvent* event);

    // Last in the control's painting: what its state adds to the picture.
    void PaintState(QPainter& painter) const;
    bool IsPendingShown() const { return m_PendingShown; }

    // `menu` (may be null: a new one) gets the entries that every bound control has, is shown and
    // deletes itself. Without a path and a menu the event goes on to the parent.
    void ShowContextMenu(QContextMenuEvent* event, QMenu* menu);

    // What the control says about its value under the pointer; also what a screen reader is told.
    QString ComposeToolTip() const;

    void LookAgain();  // the value may be there now

    static QString Text(const char* text);

    // The value as its control shows it: numbers with unit, selections translated.
    static QString DisplayText(const ValueBase& value, bool translate);

protected:
    virtual bool Accepts(ValueType type) const = 0;

    // Bring the control to what BoundValue() holds (null: missing) and to its presence. Nothing may
    // be repainted that shows the same as before. Never writes.
    virtual void ShowContent() = 0;

    virtual void ContentChanged() {}     // on every change, ahead of the throttled ShowContent
    virtual void InputBlockChanged() {}  // BlocksInput() may have another answer
    virtual bool BlocksEvents() const { return BlocksInput(); }
    virtual bool HasEntry() const { return false; }        // typed, neither applied nor taken back
    virtual bool NeedsWholeText() const { return false; }  // the text shown is cut
    virtual QString WholeText() const { return QString(); }
    virtual bool RefreshesWhileHidden() const { return true; }

    QWidget* Control() const { return m_Control; }
    void RequestRefresh();

private:
    bool Find();
    void LetGo();
    void Refresh();
    void FollowStatus();
    void ShowAnswer(const WriteStatus& status);
    void ShowPending(bool pending);
    bool BlockEvent(QEvent* event) const;
    bool ShowToolTip(QHelpEvent* event);
    QStringList FactLines() const;
    QString AgeLine() const;

    QWidget* m_Control;
    QString m_Path;
    ValueBase* m_Value = nullptr;
    Observable* m_Subject = nullptr;  // the same object, as notifications name it
    bool m_AwaitsAnswer = false;      // the last write was made here and is not answered yet
    bool m_PendingShown = false;
    bool m_RefreshOnShow = false;
    bool m_BlockShown = false;
    Presence m_PresenceShown = Presence::Plain;
    QTimer m_PendingDelay;
    QPointer<ControlNote> m_Note;
    RefreshThrottle m_Throttle;
};
