#include "program.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTest>

namespace RxTest {

namespace {

const char markerName[] = "RX_TEST_RUN";

const char* const sanitizerMarks[] = {"ERROR: AddressSanitizer", "ERROR: LeakSanitizer",
                                      "WARNING: ThreadSanitizer", "runtime error:"};

}  // namespace

const int patienceMs =
    qEnvironmentVariableIsSet("RX_PATIENCE_MS") ? qEnvironmentVariableIntValue("RX_PATIENCE_MS") : 60000;

bool until(const std::function<bool()>& condition, int milliseconds)
{
    return QTest::qWaitFor(condition, milliseconds);
}

Program::Program(const QString& marker, const QProcessEnvironment& environment)
{
    QProcessEnvironment own = environment;
    own.insert(markerName, marker);
    m_process.setProcessEnvironment(own);
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    connect(&m_process, &QProcess::readyReadStandardOutput, this, [this] {
        const QString text = QString::fromUtf8(m_process.readAllStandardOutput());
        m_standardOutput += text;
        m_output += text;
    });
    connect(&m_process, &QProcess::readyReadStandardError, this,
            [this] { m_output += QString::fromUtf8(m_process.readAllStandardError()); });
}

Program::~Program()
{
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

bool Program::start(const QString& name, const QStringList& arguments)
{
    m_name = name;
    m_process.start(QDir(RX_BIN_DIR).filePath(name), arguments);
    return m_process.waitForStarted();
}

bool Program::waitForEnd(int milliseconds)
{
    return until([this] { return !isRunning(); }, milliseconds);
}

void Program::kill()
{
    m_mayBeKilled = true;
    m_process.kill();
    waitForEnd();
}

QString Program::firstLine() const
{
    const int end = m_standardOutput.indexOf('\n');
    return end < 0 ? QString() : m_standardOutput.left(end);
}

QString Program::fault() const
{
    for (const char* mark : sanitizerMarks) {
        if (m_output.contains(QLatin1String(mark))) {
            return QString("%1: sanitizer output:\n%2").arg(m_name, m_output);
        }
    }
    if (isRunning()) {
        return QString("%1 still runs").arg(m_name);
    }
    if (m_process.exitStatus() == QProcess::CrashExit) {
        return m_mayBeKilled ? QString()
                             : QString("%1 was ended by signal %2:\n%3")
                                   .arg(m_name)
                                   .arg(m_process.exitCode())
                                   .arg(m_output);
    }
    if (m_process.exitCode() != m_expectedCode) {
        return QString("%1 ended with code %2 instead of %3:\n%4")
            .arg(m_name)
            .arg(m_process.exitCode())
            .arg(m_expectedCode)
            .arg(m_output);
    }
    return QString();
}

QStringList processesWith(const QString& marker)
{
    const QByteArray wanted = QByteArray(markerName) + '=' + marker.toUtf8();
    QStringList found;
    const QStringList entries = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool isNumber = false;
        const qint64 id = entry.toLongLong(&isNumber);
        if (!isNumber || id == getpid()) {
            continue;
        }
        QFile environment(QString("/proc/%1/environ").arg(entry));
        if (!environment.open(QIODevice::ReadOnly) || !environment.readAll().split('\0').contains(wanted)) {
            continue;
        }
        QFile commandLine(QString("/proc/%1/cmdline").arg(entry));
        commandLine.open(QIODevice::ReadOnly);
        found << entry + ' ' + QString::fromUtf8(commandLine.readAll().replace('\0', ' ')).trimmed();
    }
    return found;
}

}  // namespace RxTest
