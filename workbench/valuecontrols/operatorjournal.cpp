#include "valuecontrols/operatorjournal.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "valuecontrols/journalfile.h"
#include "valuecontrols/numbertext.h"
#include "valueframework/iobserver.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

namespace {

const int answerWaitMs = 15000;  // beyond what the link itself allows the driver

QString Text(const char* text)
{
    return QCoreApplication::translate("ValueControls", text);
}

QByteArray Json(const QJsonValue& value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

// The content as the journal shows it: a selection by its item's text, which outlives its key.
QByteArray ContentJson(const ValueDescription& description, const QVariant& content)
{
    switch (description.type) {
        case ValueType::Bool:
            return Json(content.toBool());
        case ValueType::Float: {
            const double number = content.toDouble();
            return Json(std::isfinite(number) ? QJsonValue(number) : QJsonValue(content.toString()));
        }
        case ValueType::Integer:
            return Json(content.toInt());
        case ValueType::Selection:
            for (const SelectionItem& item : description.items) {
                if (item.GetKey() == content.toInt())
                    return Json(item.GetText());
            }
            return Json(content.toInt());
        default:
            return Json(content.toString());
    }
}

class Journal;

// One write on its way to an answer.
class Entry : public IObserver
{
public:
    Entry(Journal& journal, ValueBase& value, const QVariant& content);

    void Update(Observable* subject, TChangeCode code) override;
    void Finish(const char* answer, const QString& reason);

    bool IsFinished() const { return m_Finished; }
    bool IsAbout(const ValueBase& value) const { return m_Value == &value; }
    bool IsOverdue(qint64 now) const { return now - m_Started > answerWaitMs; }

private:
    Journal& m_Journal;
    ValueBase* m_Value;  // null once finished
    QByteArray m_Start;  // of the line, up to the answer
    qint64 m_Started;
    bool m_WasPending = false;
    bool m_Finished = false;
};

class Journal : public QObject
{
public:
    static Journal& Instance()
    {
        // A child of the application: what is outstanding is written before the application is gone.
        static QPointer<Journal> instance;
        if (!instance)
            instance = new Journal;
        return *instance;
    }

    ~Journal() override { CloseEntries(); }

    bool Open(const QString& fileName, QString* reason)
    {
        if (fileName.isEmpty())
            CloseEntries();
        return m_File.Open(fileName, reason);
    }

    std::shared_ptr<Entry> Begin(ValueBase& value, const QVariant& content)
    {
        const auto outstanding = m_Entries;
        for (const std::shared_ptr<Entry>& entry : outstanding) {
            if (entry->IsAbout(value))
                entry->Finish("superseded", QStringLiteral("written again before the answer"));
        }
        m_Entries.push_back(std::make_shared<Entry>(*this, value, content));
        m_Overdue.start();
        return m_Entries.back();
    }

    void Line(const QByteArray& line) { m_File.Append(line); }

    // The entry may be the one whose Update runs: it is let go of when the event is done.
    void Finished(const Entry* entry)
    {
        const auto found =
            std::find_if(m_Entries.begin(), m_Entries.end(),
                         [entry](const std::shared_ptr<Entry>& each) { return each.get() == entry; });
        if (found != m_Entries.end()) {
            m_Done.push_back(*found);
            m_Entries.erase(found);
            m_Sweep.start(0);
        }
        if (m_Entries.empty())
            m_Overdue.stop();
    }

private:
    Journal()
    {
        setParent(QCoreApplication::instance());
        m_Sweep.setSingleShot(true);
        connect(&m_Sweep, &QTimer::timeout, this, [this]() { m_Done.clear(); });
        m_Overdue.setInterval(1000);
        connect(&m_Overdue, &QTimer::timeout, this, [this]() { FinishOverdue(); });
    }

    void FinishOverdue()
    {
        const auto outstanding = m_Entries;
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        for (const std::shared_ptr<Entry>& entry : outstanding) {
            if (entry->IsOverdue(now))
                entry->Finish("unanswered", QStringLiteral("no answer within %1 s").arg(answerWaitMs / 1000));
        }
    }

    void CloseEntries()
    {
        const auto outstanding = m_Entries;
        for (const std::shared_ptr<Entry>& entry : outstanding)
            entry->Finish("unanswered", QStringLiteral("the journal was closed before the answer"));
    }

    JournalFile m_File;
    std::vector<std::shared_ptr<Entry>> m_Entries;
    std::vector<std::shared_ptr<Entry>> m_Done;
    QTimer m_Sweep;
    QTimer m_Overdue;
};

Entry::Entry(Journal& journal, ValueBase& value, const QVariant& content)
    : m_Journal(journal), m_Value(&value), m_Started(QDateTime::currentMSecsSinceEpoch())
{
    const ValueDescription& description = ValueHost::Description(value);
    m_Start =
        "{\"time\":" + Json(QDateTime::fromMSecsSinceEpoch(m_Started, Qt::UTC).toString(Qt::ISODateWithMs)) +
        ",\"path\":" + Json(value.GetPathName()) +
        ",\"old\":" + ContentJson(description, ValueHost::Content(value)) +
        ",\"new\":" + ContentJson(description, content);
    m_WasPending = ValueHost::Status(value).pending;
    value.AddObserver(this);
}

void Entry::Finish(const char* answer, const QString& reason)
{
    if (m_Finished)
        return;
    m_Finished = true;
    if (m_Value)
        m_Value->DeleteObserver(this);
    m_Value = nullptr;
    m_Journal.Line(m_Start + ",\"answer\":\"" + answer + "\",\"reason\":" + Json(reason) + '}');
    m_Journal.Finished(this);
}

void Entry::Update(Observable*, TChangeCode code)
{
    if (!m_Value)
        return;
    if (code == CC_STATE && m_Value->GetState() == VS_DELETING) {
        Finish("unanswered", QStringLiteral("the value was deleted before the answer"));
        return;
    }
    if (code != CC_DESCRIPTION)
        return;
    const WriteStatus status = ValueHost::Status(*m_Value);
    if (status.pending) {
        m_WasPending = true;
        return;
    }
    switch (status.answer) {
        case WriteStatus::Accepted:
            Finish("accepted", status.reason);
            break;
        case WriteStatus::Clamped:
            Finish("clamped", status.reason);
            break;
        case WriteStatus::Refused:
            Finish("refused", status.reason);
            break;
        case WriteStatus::Unanswered:
            Finish("unanswered", status.reason);
            break;
        case WriteStatus::None:
            if (m_WasPending)  // written there and back before it was sent: the driver is not asked
                Finish("accepted", QStringLiteral("nothing changed"));
            break;
    }
}

// Content of the value's own kind, or invalid.
QVariant Converted(ValueType type, const QVariant& content)
{
    bool fits = content.isValid();
    switch (type) {
        case ValueType::Bool:
            return fits && content.typeId() == QMetaType::Bool ? content : QVariant();
        case ValueType::Float: {
            const double number = content.toDouble(&fits);
            return fits && std::isfinite(number) ? QVariant(number) : QVariant();
        }
        case ValueType::Integer:
        case ValueType::Selection: {
            const int number = content.toInt(&fits);
            return fits ? QVariant(number) : QVariant();
        }
        case ValueType::Text:
            return content.typeId() == QMetaType::QString ? content : QVariant();
        default:
            return QVariant();
    }
}

// What the tree, as the authority for a local value, made of the write.
WriteStatus LocalAnswer(const ValueDescription& description, const QVariant& wanted)
{
    WriteStatus status;
    status.answer = WriteStatus::Accepted;
    if (!description.hasLimits ||
        (description.type != ValueType::Float && description.type != ValueType::Integer))
        return status;
    const double number = wanted.toDouble();
    const bool high = number > description.maximum;
    if (!high && number >= description.minimum)
        return status;
    status.answer = WriteStatus::Clamped;
    status.reason =
        (high ? Text("Limited to the highest value, %1.") : Text("Limited to the lowest value, %1."))
            .arg(NumberText::Show(high ? description.maximum : description.minimum, -1, description.unit));
    return status;
}

// Refuses without touching the value; the reason stands in its status for the control to show.
bool Refuse(ValueBase& value, const std::shared_ptr<Entry>& entry, const QString& reason)
{
    WriteStatus status;
    status.answer = WriteStatus::Refused;
    status.reason = reason;
    ValueHost::SetStatus(value, status);
    entry->Finish("refused", reason);
    return false;
}

bool FindItem(const ValueDescription& description, const QString& text, int* key)
{
    const QString wanted = text.trimmed();
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (const SelectionItem& item : description.items) {
            if (item.GetText().trimmed().compare(wanted, sensitivity) == 0) {
                *key = item.GetKey();
                return true;
            }
        }
    }
    const NumberText::Reading reading = NumberText::Read(wanted, QStringLiteral("Hz"));
    for (const SelectionItem& item : description.items) {
        if (reading.ok && item.GetNumber() != 0 && item.GetNumber() == reading.value) {
            *key = item.GetKey();
            return true;
        }
    }
    bool number = false;
    *key = wanted.toInt(&number);
    return number && std::any_of(description.items.begin(), description.items.end(),
                                 [key](const SelectionItem& item) { return item.GetKey() == *key; });
}

}  // namespace

namespace OperatorJournal {

bool Open(const QString& fileName, QString* reason)
{
    return Journal::Instance().Open(fileName, reason);
}

bool Write(ValueBase& value, const QVariant& content, IObserver* originator)
{
    const ValueDescription description = ValueHost::Description(value);
    const QVariant wanted = Converted(description.type, content);
    if (value.GetState() == VS_DELETING)
        return false;
    const std::shared_ptr<Entry> entry = Journal::Instance().Begin(value, content);
    if (!wanted.isValid())
        return Refuse(value, entry, Text("The content does not fit the value."));
    if (!description.writable)
        return Refuse(value, entry, Text("The value is shown only and cannot be set."));
    if (value.GetState() != VS_USABLE)
        return Refuse(value, entry, Text("The value is not available at present."));

    const bool changes = ValueHost::Content(value) != wanted || description.event;
    const bool mirrored = ValueHost::IsMirrored(value);
    if (!ValueHost::Status(value).pending)
        ValueHost::SetStatus(value, WriteStatus());  // an older answer must not pass for this one's
    if (entry->IsFinished())
        return false;  // the value left while that was told
    const bool taken = ValueHost::SetContent(value, wanted, originator);
    if (entry->IsFinished())
        return true;
    if (!taken)
        return Refuse(value, entry, Text("The content does not fit the value."));
    const WriteStatus status = ValueHost::Status(value);
    if (mirrored && (changes || status.pending))
        return true;  // the driver answers
    if (status.answer == WriteStatus::None)
        ValueHost::SetStatus(
            value, mirrored ? LocalAnswer(ValueDescription(), wanted) : LocalAnswer(description, wanted));
    entry->Finish("accepted", QString());  // unless the status told it already
    return true;
}

bool WriteText(ValueBase& value, const QString& text, IObserver* originator)
{
    const ValueDescription& description = ValueHost::Description(value);
    switch (description.type) {
        case ValueType::Bool: {
            bool on = false;
            return FormatBoolText::FromText(text.trimmed(), &on) && Write(value, on, originator);
        }
        case ValueType::Float: {
            const NumberText::Reading reading = NumberText::Read(text, description.unit);
            return reading.ok && Write(value, reading.value, originator);
        }
        case ValueType::Integer: {
            const NumberText::Reading reading = NumberText::Read(text, description.unit);
            const double limit = double(std::numeric_limits<int>::max());
            if (!reading.ok || reading.value != std::floor(reading.value) || std::fabs(reading.value) > limit)
                return false;
            return Write(value, int(reading.value), originator);
        }
        case ValueType::Selection: {
            int key = 0;
            return FindItem(description, text, &key) && Write(value, key, originator);
        }
        case ValueType::Text:
            return Write(value, text, originator);
        default:
            return false;
    }
}

}  // namespace OperatorJournal
