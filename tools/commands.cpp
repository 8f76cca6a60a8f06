#include "tools/commands.h"

#include <QJsonDocument>
#include <QSet>
#include <cerrno>
#include <cstdio>

#include "tools/valuetext.h"

namespace RxCtl {
namespace {

constexpr double defaultAnswerSeconds = 5;

bool covers(const QString& root, const QString& path)
{
    return path.startsWith(root) && (path.size() == root.size() || path.at(root.size()) == QLatin1Char('/'));
}

QString jsonLine(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// Line breaks inside a text would break the line it is printed on.
QString oneLine(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return text.replace(QLatin1Char('\t'), QLatin1String("\\t"));
}

}  // namespace

Link::SessionOptions Commands::sessionOptions() const
{
    Link::SessionOptions options;
    const double seconds = m_command.timeoutSeconds > 0 ? m_command.timeoutSeconds : defaultAnswerSeconds;
    options.reconnect = m_command.timeoutSeconds > 0;
    options.connectMs = int(seconds * 1000);
    options.welcomeMs = int(seconds * 1000);
    options.answerMs = int(seconds * 1000);
    return options;
}

Commands::Commands(const CommandLine& command) : m_command(command), m_session(sessionOptions())
{
    using Link::ClientSession;
    connect(&m_session, &ClientSession::disconnected, this, [this](const QString& reason) {
        fail(NoConnection, QStringLiteral("the connection to the driver was lost: %1").arg(reason));
    });
    connect(&m_session, &ClientSession::attemptFailed, this, [this](const QString& reason) {
        if (m_command.timeoutSeconds <= 0)
            fail(NoConnection, QStringLiteral("no connection to the driver at %1:%2: %3")
                                   .arg(m_command.host)
                                   .arg(m_command.port)
                                   .arg(reason));
    });
    connect(&m_session, &ClientSession::snapshotReceived, this, &Commands::snapshot);
    connect(&m_session, &ClientSession::describeReceived, this, &Commands::describe);
    connect(&m_session, &ClientSession::batchReceived, this, &Commands::batch);
    connect(&m_session, &ClientSession::answered, this, &Commands::answered);
    connect(&m_session, &ClientSession::unanswered, this,
            [this](quint32, const QString& reason) { fail(NoAnswer, reason); });
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, &Commands::timedOut);
}

void Commands::start()
{
    const double seconds = m_command.timeoutSeconds > 0 ? m_command.timeoutSeconds : defaultAnswerSeconds;
    m_timeout.start(int(seconds * 1000));
    QStringList roots = m_command.paths;
    if (roots.isEmpty())
        roots.append(QString());
    // One hook serves any number of single values; watch needs each of its parts.
    if (m_command.verb == Verb::Get && roots.size() > 1)
        roots = QStringList(QString());
    roots.removeDuplicates();
    m_unserved = int(roots.size());
    for (const QString& root : std::as_const(roots))
        m_hooks.insert(m_session.hook(root), root);
    m_session.start(m_command.host, m_command.port);
}

void Commands::timedOut()
{
    if (m_session.isConnected()) {
        fail(NoAnswer, QStringLiteral("the driver at %1:%2 did not answer in time")
                           .arg(m_command.host)
                           .arg(m_command.port));
        return;
    }
    const QString reason = m_session.lastFailure();
    fail(NoConnection, QStringLiteral("no connection to the driver at %1:%2: %3")
                           .arg(m_command.host)
                           .arg(m_command.port)
                           .arg(reason.isEmpty() ? QStringLiteral("it did not answer in time") : reason));
}

// --- what the driver says -------------------------------------------------------------------------

void Commands::snapshot(const Link::Snapshot& snapshot)
{
    for (const Link::Description& description : snapshot.descriptions) {
        if (!m_values.contains(description.id))
            m_order.append(description.id);
        m_values[description.id].description = description;
    }
    for (const Link::Update& update : snapshot.contents)
        m_values[update.id].update = update;
    if (snapshot.last && m_hooks.remove(snapshot.hook) > 0 && --m_unserved == 0)
        allServed();
}

void Commands::describe(const Link::Describe& describe)
{
    for (const quint32 id : describe.removed) {
        m_values.remove(id);
        m_order.removeOne(id);
    }
    for (const Link::Description& description : describe.descriptions) {
        if (!m_values.contains(description.id))
            m_order.append(description.id);
        m_values[description.id].description = description;
    }
}

void Commands::batch(const Link::Batch& batch)
{
    for (const Link::Update& update : batch.updates) {
        const auto known = m_values.find(update.id);
        if (known == m_values.end() || m_finished)
            continue;
        const Link::Content before = known->update.content;
        known->update = update;
        if (std::holds_alternative<std::monostate>(update.content))
            known->update.content = before;
        if (m_watching)
            printChange(*known);
    }
    std::fflush(stdout);
}

void Commands::answered(const Link::Answer& answer)
{
    const Known* known = find(m_command.paths.first());
    const QString now = known ? ValueText::text(known->description, answer.content) : QString();
    static const char* const words[] = {"accepted", "clamped", "refused"};
    QString line;
    if (m_command.json) {
        QJsonObject object;
        object.insert(QStringLiteral("path"), m_command.paths.first());
        object.insert(QStringLiteral("answer"), QLatin1String(words[int(answer.kind)]));
        object.insert(QStringLiteral("reason"), answer.reason);
        object.insert(QStringLiteral("value"), now);
        line = jsonLine(object);
    } else if (answer.kind == Link::AnswerKind::Accepted) {
        line = QStringLiteral("accepted");
    } else if (answer.kind == Link::AnswerKind::Clamped) {
        line = QStringLiteral("clamped to %1 (%2)").arg(now, answer.reason);
    } else {
        line = QStringLiteral("refused because: %1").arg(answer.reason);
    }
    print(line);
    finish(answer.kind == Link::AnswerKind::Refused ? NotDone : Done);
}

void Commands::allServed()
{
    switch (m_command.verb) {
        case Verb::List:
            list();
            break;
        case Verb::Get:
            get();
            break;
        case Verb::Set:
            set();
            break;
        case Verb::Watch:
            watch();
            break;
        case Verb::Info:
        case Verb::Help:
            info();
            break;
    }
}

// --- the commands ---------------------------------------------------------------------------------

void Commands::list()
{
    if (m_order.isEmpty()) {
        fail(NotDone, QStringLiteral("no value at or below %1")
                          .arg(m_command.paths.isEmpty() ? QStringLiteral("/") : m_command.paths.first()));
        return;
    }
    for (const quint32 id : std::as_const(m_order)) {
        const Known& known = m_values[id];
        print(m_command.json ? jsonLine(ValueText::json(known.description, known.update))
                             : known.description.path);
    }
    finish(Done);
}

void Commands::get()
{
    int exitCode = Done;
    for (const QString& path : std::as_const(m_command.paths)) {
        const Known* known = find(path);
        if (!known) {
            std::fprintf(stderr, "rxctl: no value at %s\n", qUtf8Printable(path));
            exitCode = NotDone;
            continue;
        }
        const QString text = ValueText::text(known->description, known->update.content);
        if (m_command.json)
            print(jsonLine(ValueText::json(known->description, known->update)));
        else if (m_command.paths.size() == 1)
            print(text);
        else
            print(path + QLatin1Char('\t') + oneLine(text));
    }
    finish(exitCode);
}

void Commands::set()
{
    const QString path = m_command.paths.first();
    const Known* known = find(path);
    if (!known) {
        fail(NotDone, QStringLiteral("no value at %1").arg(path));
        return;
    }
    Link::Content content;
    QString error;
    if (!ValueText::parse(known->description, m_command.value, &content, &error)) {
        fail(NotDone, QStringLiteral("%1 %2, not \"%3\"").arg(path, error, m_command.value));
        return;
    }
    m_timeout.stop();  // the session watches the answer
    m_session.write(known->description.id, content);
}

void Commands::info()
{
    const Known* known = find(m_command.paths.value(0));
    if (!known) {
        fail(NotDone, QStringLiteral("no value at %1").arg(m_command.paths.value(0)));
        return;
    }
    print(m_command.json ? jsonLine(ValueText::infoJson(known->description, known->update))
                         : ValueText::infoText(known->description, known->update));
    finish(Done);
}

void Commands::watch()
{
    m_timeout.stop();
    for (const QString& path : std::as_const(m_command.paths)) {
        const bool found = std::any_of(m_values.cbegin(), m_values.cend(), [&](const Known& known) {
            return covers(path, known.description.path);
        });
        if (!found) {
            fail(NotDone, QStringLiteral("no value at or below %1").arg(path));
            return;
        }
    }
    m_watching = true;
    if (m_command.seconds > 0)
        QTimer::singleShot(int(m_command.seconds * 1000), this, [this] { finish(Done); });
    const QVector<quint32> order = m_order;
    for (const quint32 id : order)
        printChange(m_values[id]);
    std::fflush(stdout);
}

const Commands::Known* Commands::find(const QString& path) const
{
    for (const Known& known : m_values) {
        if (known.description.path == path)
            return &known;
    }
    return nullptr;
}

// --- output ---------------------------------------------------------------------------------------

// The reader of a pipe may leave whenever it has seen enough.
void Commands::print(const QString& line)
{
    if (m_finished)
        return;
    const QByteArray bytes = line.toUtf8() + '\n';
    const bool failed =
        std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout) != std::size_t(bytes.size()) ||
        (m_watching && std::fflush(stdout) != 0);
    if (failed)
        finish(errno == EPIPE ? Done : NotDone);
}

void Commands::printChange(const Known& known)
{
    if (m_command.json) {
        print(jsonLine(ValueText::json(known.description, known.update)));
    } else {
        const bool usable = known.update.status == Link::ValueStatus::Usable;
        print(ValueText::time(known.update.time) + QLatin1Char('\t') + known.description.path +
              QLatin1Char('\t') + oneLine(ValueText::text(known.description, known.update.content)) +
              (usable ? QString() : QStringLiteral(" (not available)")));
    }
    if (++m_lines == m_command.count)
        finish(Done);
}

void Commands::fail(int exitCode, const QString& message)
{
    if (m_finished)
        return;
    std::fprintf(stderr, "rxctl: %s\n", qUtf8Printable(message));
    finish(exitCode);
}

void Commands::finish(int exitCode)
{
    if (m_finished)
        return;
    m_finished = true;
    m_timeout.stop();
    std::fflush(stdout);
    emit finished(exitCode);
}

}  // namespace RxCtl
