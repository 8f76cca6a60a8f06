#include "app/workbench.h"

#include <QDir>
#include <QEvent>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QStandardPaths>

#include "app/appearance.h"
#include "app/operatorwrites.h"
#include "app/shots.h"
#include "app/statusbanner.h"
#include "base/basehost.h"
#include "devicecontrol/devicecontrolhost.h"
#include "guibase/guibasehost.h"
#include "link/vtclient.h"
#include "receivercommon/receivercommonhost.h"
#include "spectrum/spectrumhost.h"
#include "startup/cfgcenter.h"
#include "startup/kestapplication.h"
#include "startup/startuphost.h"
#include "valuecontrols/operatorjournal.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

namespace {

Q_LOGGING_CATEGORY(lcApp, "rx.app")

constexpr int badInputCode = 2;
constexpr int shownCheckMs = 1500;
constexpr qint64 defaultLogBytes = 4 * 1024 * 1024;
constexpr qint64 defaultLogFiles = 4;
constexpr int configurationView = 2;
const char defaultDriver[] = "127.0.0.1:4600";
const char hookedPath[] = "/ADMINISTRATION/SERVERVALUESHOOKED";

// Values that belong to the windows, not to any driver.
struct OwnValue
{
    const char* path;
    double content;
    const char* unit;
};

const OwnValue ownValues[] = {
    {"/GUICOMMON/IF_LEVELMAXIMUM", 80, "dBµV"},
    {"/GUICOMMON/IF_LEVELMINIMUM", -20, "dBµV"},
};

int countPlugins(ICfg* root)
{
    ICfg* group = root->GetGroup("AdditionalDlls");
    int count = 0;
    for (int i = 0; group != nullptr && group->GetChild(i) != nullptr; ++i) {
        count += group->GetChild(i)->GetString("FileName").isEmpty() ? 0 : 1;
    }
    return count;
}

}  // namespace

Workbench::Workbench(KestApplication* application, const AppOptions& options)
    : m_application(application), m_options(options)
{
    // A question that is answered may have been the only window for the moment.
    QApplication::setQuitOnLastWindowClosed(false);
    m_shownCheck.setSingleShot(true);
    m_shownCheck.setInterval(shownCheckMs);
    connect(&m_shownCheck, &QTimer::timeout, this, &Workbench::checkShown);
}

Workbench::~Workbench() = default;

int Workbench::run()
{
    // Inside the event loop from the beginning, so that ending works from everywhere.
    QTimer::singleShot(0, this, &Workbench::begin);
    const int exitCode = QApplication::exec();
    tearDown();
    return exitCode;
}

void Workbench::begin()
{
    if (!readConfiguration() || !openRecords() || !openShots() || !findDriver()) {
        QCoreApplication::exit(badInputCode);
        return;
    }
    const QString complaint = Appearance::apply(m_application, m_options.theme);
    if (!complaint.isEmpty()) {
        qCWarning(lcApp).noquote() << complaint;
    }
    m_application->installEventFilter(this);
    GuiBaseHost::SetMainWidgetListener([this](QWidget* widget) { mainWidgetChanged(widget); });
    BaseHost::SetErrorListener([this](const QString& message) { banner()->showError(message); });

    createTree();
    m_client = std::make_unique<VtClient>();
    m_client->AddObserver(this);
    connect(m_client.get(), &VtClient::AttemptFailed, this, [this](const QString& reason) {
        ++m_attempts;
        qCDebug(lcApp).noquote() << QString("attempt %1: %2").arg(m_attempts).arg(reason);
        if (m_banner) {
            m_banner->setAttempt(m_attempts + 1);
        }
    });

    StartupHost::SetSplashText(tr("Waiting for the driver at %1:%2").arg(m_host).arg(m_port));
    if (!loadPlugins()) {
        QCoreApplication::exit(badInputCode);
        return;
    }
    // Every plug-in of the process is there now and will hear of the connection.
    qCInfo(lcApp).noquote() << QString("%1: looking for the driver at %2:%3").arg(m_name, m_host).arg(m_port);
    m_client->Start(m_host, m_port);
    m_writes = std::make_unique<OperatorWrites>(m_options.writes);
    if (m_options.seconds > 0) {
        QTimer::singleShot(static_cast<int>(m_options.seconds * 1000), this, &Workbench::end);
    }
}

bool Workbench::readConfiguration()
{
    QString error;
    if (!StartupHost::LoadConfiguration(m_options.configuration, &error)) {
        fail(error);
        return false;
    }
    m_name = CfgCenter::GetAppName();
    ICfg* root = CfgCenter::Instance()->GetAppCfg(configurationView);
    BaseHost::SetTraceMask(static_cast<unsigned>(StartupHost::ConfigurationInteger("TraceMask", 0)));
    const double timeout = StartupHost::ConfigurationNumber("ConnectionTimeout", 60.0);
    ReceiverCommonHost::SetConnectionTimeout(static_cast<int>(timeout * 1000));
    ReceiverCommonHost::SetBoxedVersion(root->GetBool("Boxed", false));
    const QDir programs(QCoreApplication::applicationDirPath());
    StartupHost::SetTranslations(root->GetString("Translations", programs.filePath("../translations")),
                                 root->GetString("Language"));
    StartupHost::SetPluginFolders(m_options.plugins + QStringList{programs.filePath("plugins")});
    return true;
}

QString Workbench::stateFile(const char* key, const QString& fallback) const
{
    const QString folder = m_options.state.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                               : m_options.state;
    const QString name = CfgCenter::Instance()->GetAppCfg(configurationView)->GetString(key, fallback);
    QDir().mkpath(folder);
    return QDir::isAbsolutePath(name) ? name : QDir(folder).absoluteFilePath(name);
}

bool Workbench::openRecords()
{
    const qint64 bytes = StartupHost::ConfigurationInteger("LogSize", defaultLogBytes);
    const qint64 files = StartupHost::ConfigurationInteger("LogFiles", defaultLogFiles);
    const QString log = m_options.log.isEmpty() ? stateFile("LogFile", m_name + ".log") : m_options.log;
    QString reason;
    if (!BaseHost::OpenLog(log, bytes, static_cast<int>(files), &reason)) {
        fail(tr("%1: the log cannot be written (%2); choose another place with --log or --state")
                 .arg(log, reason));
        return false;
    }
    const QString journal = stateFile("Journal", m_name + "-journal.jsonl");
    if (!OperatorJournal::Open(journal, &reason)) {
        fail(tr("%1: the journal of what operators write cannot be kept (%2); choose another place "
                "with --state")
                 .arg(journal, reason));
        return false;
    }
    const QString looks = stateFile("GeometryFile", m_name + "-windows.ini");
    DeviceControlHost::SetGeometryFile(looks);
    SpectrumHost::SetSettingsFile(looks);
    return true;
}

bool Workbench::openShots()
{
    if (m_options.shots.isEmpty()) {
        return true;
    }
    m_shots = std::make_unique<Shots>();
    QString error;
    if (!m_shots->open(m_options.shots, &error)) {
        fail(error);
        return false;
    }
    return true;
}

bool Workbench::findDriver()
{
    QString address = m_options.driver;
    if (address.isEmpty()) {
        address = CfgCenter::Instance()->GetAppCfg(configurationView)->GetString("Driver", defaultDriver);
    }
    if (!splitAddress(address, &m_host, &m_port)) {
        fail(tr("%1: Driver is \"%2\", which is no HOST:PORT; write for example \"%3\"")
                 .arg(m_options.configuration, address, defaultDriver));
        return false;
    }
    return true;
}

void Workbench::createTree()
{
    ValueHost::CreateTree();
    for (const OwnValue& own : ownValues) {
        ValueDescription description;
        description.type = ValueType::Float;
        description.unit = QString::fromUtf8(own.unit);
        ValueHost::Create(own.path, description, own.content);
    }
}

bool Workbench::loadPlugins()
{
    const int wanted = countPlugins(CfgCenter::Instance()->GetAppCfg(configurationView));
    if (wanted == 0) {
        fail(tr("%1: there is nothing to show; name a plug-in, for example\n"
                "[AdditionalDlls.DDCGUI]\nFileName = \"libddcgui\"")
                 .arg(m_options.configuration));
        return false;
    }
    const QStringList failures = StartupHost::LoadPlugins();
    if (failures.isEmpty()) {
        return true;
    }
    const QString what = tr("These plug-ins could not be loaded:\n%1").arg(failures.join('\n'));
    if (failures.size() >= wanted) {
        fail(what);
        return false;
    }
    // The others go on, and so does the operator: the box waits for nobody.
    qCWarning(lcApp).noquote() << what;
    auto* box = new QMessageBox(QMessageBox::Warning, m_name, what, QMessageBox::Ok);
    box->setObjectName("PluginFailures");
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
    return true;
}

void Workbench::fail(const QString& what)
{
    m_application->HideSplash();
    qCCritical(lcApp).noquote() << what;
    if (!m_options.headless) {
        QMessageBox::critical(nullptr, QCoreApplication::applicationName(), what);
    }
}

StatusBanner* Workbench::banner()
{
    if (!m_banner) {
        m_banner = new StatusBanner;
        m_banner->setMainWidget(GuiBaseHost::MainWidget());
    }
    return m_banner;
}

void Workbench::mainWidgetChanged(QWidget* widget)
{
    if (m_banner || widget != nullptr) {
        banner()->setMainWidget(widget);
    }
}

void Workbench::Update(Observable*, TChangeCode code)
{
    if (m_ending) {
        return;
    }
    if (code == CC_CONNECTED) {
        qCInfo(lcApp).noquote() << QString("connected to the driver at %1:%2").arg(m_host).arg(m_port);
        m_everConnected = true;
        banner()->driverBack();
    } else if (code == CC_DISCONNECTED && m_everConnected) {
        qCWarning(lcApp).noquote()
            << QString("lost the driver at %1:%2, reconnecting").arg(m_host).arg(m_port);
        m_attempts = 0;
        banner()->driverLost(QString("%1:%2").arg(m_host).arg(m_port));
    }
}

bool Workbench::eventFilter(QObject* watched, QEvent* event)
{
    if (!watched->isWidgetType() || !static_cast<QWidget*>(watched)->isWindow()) {
        return false;
    }
    if (event->type() == QEvent::Hide) {
        m_shownCheck.start();
    } else if (event->type() == QEvent::Show && watched == GuiBaseHost::MainWidget()) {
        m_shown = true;
    }
    return false;
}

// A program without any window cannot be reached by its operator. Before the main widget has come
// up that means: back to the splash screen while the driver is waited for, or the end when the
// operator put the choice of the channel away.
void Workbench::checkShown()
{
    if (m_shown || m_ending) {
        return;
    }
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        if (window->isVisible()) {
            return;
        }
    }
    Tree* tree = Tree::Instance();
    const auto* hooked = tree == nullptr ? nullptr : dynamic_cast<BoolValue*>(tree->FindValue(hookedPath));
    if (m_client && m_client->IsConnected() && hooked != nullptr && hooked->GetValue()) {
        qCInfo(lcApp) << "no channel was chosen, nothing is shown: ending";
        end();
    } else {
        m_application->RaiseSplash();
    }
}

void Workbench::end()
{
    if (m_ending) {
        return;
    }
    if (m_shots) {
        m_shots->saveAll();
    }
    m_ending = true;
    if (QWidget* widget = GuiBaseHost::MainWidget()) {
        widget->close();
    }
    QCoreApplication::exit(0);
}

void Workbench::tearDown()
{
    m_ending = true;
    m_shownCheck.stop();
    if (m_writes) {
        m_writes->finish();
    }
    BaseHost::SetErrorListener(nullptr);
    GuiBaseHost::SetMainWidgetListener(nullptr);
    delete m_banner;
    // The plug-ins give up their channels and hooks through the client, which then sends what waits.
    StartupHost::DestroyPlugins();
    if (m_client) {
        m_client->DeleteObserver(this);
        m_client->Stop();
        m_client.reset();
    }
    ValueHost::DestroyTree();
    m_writes.reset();
    m_shots.reset();
    StartupHost::ClearConfiguration();
    QString ignored;
    OperatorJournal::Open(QString(), &ignored);
    BaseHost::OpenLog(QString(), 0, 0, &ignored);
}
