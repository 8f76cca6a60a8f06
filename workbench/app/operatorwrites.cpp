#include "app/operatorwrites.h"

#include <QLoggingCategory>

#include "valuecontrols/operatorjournal.h"
#include "valueframework/tree.h"
#include "valueframework/valuehost.h"

namespace {

Q_LOGGING_CATEGORY(lcWrites, "rx.app.set")

constexpr int lookEveryMs = 50;

QString outcome(const ValueBase& value)
{
    const WriteStatus& status = ValueHost::Status(value);
    const QString stands = value.GetText();
    switch (status.answer) {
        case WriteStatus::Clamped:
            return QString("clamped to %1: %2").arg(stands, status.reason);
        case WriteStatus::Refused:
            return QString("refused: %1 (stays %2)").arg(status.reason, stands);
        case WriteStatus::Unanswered:
            return QString("not answered by the driver");
        case WriteStatus::None:
        case WriteStatus::Accepted:
            break;
    }
    return QString("accepted, stands at %1").arg(stands);
}

}  // namespace

OperatorWrites::OperatorWrites(const QVector<QPair<QString, QString>>& writes) : m_waiting(writes)
{
    m_timer.setInterval(lookEveryMs);
    connect(&m_timer, &QTimer::timeout, this, &OperatorWrites::step);
    if (!m_waiting.isEmpty()) {
        m_timer.start();
    }
}

void OperatorWrites::step()
{
    Tree* tree = Tree::Instance();
    if (tree == nullptr || m_waiting.isEmpty()) {
        m_timer.stop();
        return;
    }
    const auto [path, text] = m_waiting.first();
    ValueBase* value = tree->FindValue(path);
    if (value == nullptr || value->GetState() == VS_STALE) {
        return;
    }
    if (!m_written) {
        if (!OperatorJournal::WriteText(*value, text, nullptr)) {
            qCWarning(lcWrites).noquote()
                << QString("--set %1=%2: the text does not fit, or the value is only shown").arg(path, text);
            m_waiting.removeFirst();
            return;
        }
        m_written = true;
    }
    if (ValueHost::Status(*value).pending) {
        return;
    }
    qCInfo(lcWrites).noquote() << QString("--set %1=%2: %3").arg(path, text, outcome(*value));
    m_written = false;
    m_waiting.removeFirst();
}

void OperatorWrites::finish()
{
    m_timer.stop();
    for (const auto& write : std::as_const(m_waiting)) {
        qCWarning(lcWrites).noquote()
            << QString("--set %1=%2: %3")
                   .arg(write.first, write.second,
                        m_written ? "not answered before the end" : "no such value came; is the path right?");
        m_written = false;
    }
}
