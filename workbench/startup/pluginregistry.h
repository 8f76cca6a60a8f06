#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "startup/idllinstance.h"
#include "startup/libraryfile.h"

// The plug-in instances of the process. GUI thread only. Libraries stay loaded; instances are
// destroyed by DestroyAll, or by whoever deletes one before.
class PluginRegistry
{
public:
    typedef std::function<IDllInstance*(const QString& argument)> Factory;

    static PluginRegistry& Instance();

    void SetFolders(const QStringList& folders) { m_Folders = folders; }
    void SetFactory(const QString& fileName, Factory make);
    void ClearFactories() { m_Factories.clear(); }

    // Asked for by a plug-in. A library that is not installed is an installation without it: logged
    // once for each name. Everything else that fails is an error, reported to the operator.
    IDllInstance* CreateByFileName(const QString& fileName, const QString& argument);

    // Asked for by the configuration: every failure is an error. Null with the reason, "file: reason".
    IDllInstance* CreateConfigured(const QString& fileName, const QString& argument, QString* failure);

    IDllInstance* Find(const QString& fileName) const;
    void NotifyLoaded(IDllInstance* instance);  // InstanceNotifyA
    void DestroyAll();
    void Forget(IDllInstance* instance);

private:
    struct Record
    {
        QString fileName;
        IDllInstance* instance;
        ARDestroyFunction destroy;  // null: made by a factory, plainly deleted
        bool configured;
        bool notifiedOfEnd;
    };
    struct Failure
    {
        QString reason;
        bool missing = false;  // no such file in any folder
    };

    IDllInstance* Create(const QString& fileName, const QString& argument, bool configured, Failure* failure);
    IDllInstance* CreateFromLibrary(const QString& fileName, const QString& argument,
                                    ARDestroyFunction* destroy, Failure* failure);
    void NotifyEnd();
    void DestroyLast(bool configured);
    bool Has(bool configured) const;

    QStringList m_Folders;
    QHash<QString, Factory> m_Factories;
    std::vector<Record> m_Records;  // in the order of their making
    QSet<QString> m_MissingTold;
};
