#include "startup/pluginregistry.h"

#include <QLoggingCategory>
#include <algorithm>
#include <exception>
#include <utility>

#include "base/errorhandler.h"
#include "startup/cfgcenter.h"
#include "startup/configcenter.h"
#include "startup/startuphost.h"

namespace {

Q_LOGGING_CATEGORY(pluginLog, "rx.plugins", QtInfoMsg)

// Runs code of a plug-in; what it throws becomes a reason instead of the end of the process.
template <class Function>
bool Guarded(const char* what, QString* reason, Function function)
{
    try {
        function();
        return true;
    } catch (const std::exception& exception) {
        *reason =
            QStringLiteral("%1 threw: %2").arg(QLatin1String(what), QString::fromUtf8(exception.what()));
    } catch (...) {
        *reason = QStringLiteral("%1 threw something that is no exception").arg(QLatin1String(what));
    }
    return false;
}

void ReportFailure(const QString& fileName, const QString& reason)
{
    ErrorHandler::Instance()->ReportError(fileName + QLatin1String(": ") + reason);
}

void Destroy(IDllInstance* instance, ARDestroyFunction destroy)
{
    if (destroy)
        destroy(instance);
    else
        delete instance;
}

}  // namespace

// Never destroyed: instances may still be forgotten while static objects go.
PluginRegistry& PluginRegistry::Instance()
{
    static PluginRegistry* const instance = new PluginRegistry;
    return *instance;
}

void PluginRegistry::SetFactory(const QString& fileName, Factory make)
{
    m_Factories[fileName] = std::move(make);
}

IDllInstance* PluginRegistry::CreateFromLibrary(const QString& fileName, const QString& argument,
                                                ARDestroyFunction* destroy, Failure* failure)
{
    const QString path = LibraryFile::Find(fileName, m_Folders);
    if (path.isEmpty()) {
        failure->missing = true;
        failure->reason =
            QStringLiteral("not found; searched %1; install the plug-in there or correct its FileName")
                .arg(m_Folders.isEmpty() ? QStringLiteral("no folder") : m_Folders.join(QLatin1String(", ")));
        return nullptr;
    }
    LibraryFile::Entries entries;
    if (!LibraryFile::Load(path, &entries, &failure->reason)) {
        failure->reason.prepend(path + QLatin1String(": "));
        return nullptr;
    }
    *destroy = entries.destroy;
    IDllInstance* instance = nullptr;
    const std::wstring wideArgument = argument.toStdWString();
    if (Guarded("ARCreate", &failure->reason, [&] { instance = entries.create(wideArgument.c_str()); }) &&
        !instance)
        failure->reason = QStringLiteral("ARCreate returned no instance");
    if (!instance)
        failure->reason.prepend(path + QLatin1String(": "));
    return instance;
}

IDllInstance* PluginRegistry::Create(const QString& fileName, const QString& argument, bool configured,
                                     Failure* failure)
{
    IDllInstance* instance = nullptr;
    ARDestroyFunction destroy = nullptr;
    const Factory factory = m_Factories.value(fileName);
    if (!factory)
        instance = CreateFromLibrary(fileName, argument, &destroy, failure);
    else if (Guarded("its factory", &failure->reason, [&] { instance = factory(argument); }) && !instance)
        failure->reason = QStringLiteral("its factory made no instance");
    if (!instance)
        return nullptr;

    bool fit = false;
    const bool answered =
        Guarded("InstanceQuery", &failure->reason, [&] { fit = instance->InstanceQuery(); });
    if (!fit) {
        if (answered)
            failure->reason = QStringLiteral("InstanceQuery says that the instance is not fit for use");
        QString ignored;
        Guarded("ARDestroy", &ignored, [&] { Destroy(instance, destroy); });
        return nullptr;
    }
    m_Records.push_back({fileName, instance, destroy, configured, false});
    qCInfo(pluginLog).noquote() << fileName << "loaded for" << argument;
    return instance;
}

IDllInstance* PluginRegistry::CreateByFileName(const QString& fileName, const QString& argument)
{
    Failure failure;
    IDllInstance* const instance = Create(fileName, argument, false, &failure);
    if (instance)
        return instance;
    if (!failure.missing) {
        ReportFailure(fileName, failure.reason);
    } else if (!m_MissingTold.contains(fileName)) {
        m_MissingTold.insert(fileName);
        qCWarning(pluginLog).noquote().nospace() << fileName << ": " << failure.reason;
    }
    return nullptr;
}

IDllInstance* PluginRegistry::CreateConfigured(const QString& fileName, const QString& argument,
                                               QString* failure)
{
    Failure found;
    IDllInstance* const instance = Create(fileName, argument, true, &found);
    if (!instance) {
        *failure = fileName + QLatin1String(": ") + found.reason;
        ReportFailure(fileName, found.reason);
    }
    return instance;
}

IDllInstance* PluginRegistry::Find(const QString& fileName) const
{
    for (const Record& record : m_Records)
        if (record.fileName == fileName)
            return record.instance;
    return nullptr;
}

void PluginRegistry::NotifyLoaded(IDllInstance* instance)
{
    const auto record = std::find_if(m_Records.begin(), m_Records.end(),
                                     [&](const Record& r) { return r.instance == instance; });
    if (record == m_Records.end())
        return;  // destroyed meanwhile by another plug-in
    const QString fileName = record->fileName;
    QString reason;
    if (!Guarded("InstanceNotifyA", &reason, [&] { instance->InstanceNotifyA(); }))
        ReportFailure(fileName, reason);
}

void PluginRegistry::Forget(IDllInstance* instance)
{
    m_Records.erase(std::remove_if(m_Records.begin(), m_Records.end(),
                                   [&](const Record& record) { return record.instance == instance; }),
                    m_Records.end());
}

// Records may come and go inside every call, so that each step searches anew.
void PluginRegistry::NotifyEnd()
{
    for (;;) {
        const auto record = std::find_if(m_Records.rbegin(), m_Records.rend(),
                                         [](const Record& r) { return !r.notifiedOfEnd; });
        if (record == m_Records.rend())
            return;
        record->notifiedOfEnd = true;
        const QString fileName = record->fileName;
        IDllInstance* const instance = record->instance;
        QString reason;
        if (!Guarded("InstanceNotifyB", &reason, [&] { instance->InstanceNotifyB(); }))
            ReportFailure(fileName, reason);
    }
}

bool PluginRegistry::Has(bool configured) const
{
    return std::any_of(m_Records.begin(), m_Records.end(),
                       [&](const Record& record) { return record.configured == configured; });
}

void PluginRegistry::DestroyLast(bool configured)
{
    const auto position = std::find_if(m_Records.rbegin(), m_Records.rend(),
                                       [&](const Record& r) { return r.configured == configured; });
    const Record record = *position;
    Forget(record.instance);
    QString reason;
    if (!Guarded("ARDestroy", &reason, [&] { Destroy(record.instance, record.destroy); }))
        ReportFailure(record.fileName, reason);
}

// First the plug-ins of the configuration, then those that they had made: these are used until
// their users are gone.
void PluginRegistry::DestroyAll()
{
    NotifyEnd();
    while (Has(true))
        DestroyLast(true);
    while (Has(false))
        DestroyLast(false);
}

void StartupHost::SetPluginFolders(const QStringList& folders)
{
    PluginRegistry::Instance().SetFolders(folders);
}

QStringList StartupHost::LoadPlugins()
{
    QStringList failures;
    ConfigDocument* const document = ConfigCenter::Instance().Current();
    ConfigNode* const entries = document ? document->Root().Group(QStringLiteral("AdditionalDlls")) : nullptr;
    std::vector<IDllInstance*> loaded;
    for (ConfigNode* entry : entries ? entries->Children() : std::vector<ConfigNode*>()) {
        const QString fileName = entry->GetString(QStringLiteral("FileName"), QString(), nullptr);
        if (fileName.isEmpty())
            continue;  // settings that others read
        QString failure;
        const QString argument = entry->Path() + QLatin1String("\\Config");
        if (IDllInstance* instance =
                PluginRegistry::Instance().CreateConfigured(fileName, argument, &failure))
            loaded.push_back(instance);
        else
            failures.append(failure);
    }
    for (IDllInstance* instance : loaded)
        PluginRegistry::Instance().NotifyLoaded(instance);
    ConfigurationWarnings();  // now it is known which keys were read
    return failures;
}

IDllInstance* StartupHost::FindInstance(const QString& fileName)
{
    return PluginRegistry::Instance().Find(fileName);
}

void StartupHost::RegisterFactory(const QString& fileName, std::function<IDllInstance*(const QString&)> make)
{
    PluginRegistry::Instance().SetFactory(fileName, std::move(make));
}

void StartupHost::ClearFactories()
{
    PluginRegistry::Instance().ClearFactories();
}

void StartupHost::DestroyPlugins()
{
    PluginRegistry::Instance().DestroyAll();
}
