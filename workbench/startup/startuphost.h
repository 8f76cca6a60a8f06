#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "startup/idllinstance.h"

// The workbench's side of the start-up library.
namespace StartupHost {

// Reads the application's configuration (TOML). On a syntax error or an unreadable file returns
// false with "FILE:LINE:COLUMN: what; what to do", and the configuration stays empty.
bool LoadConfiguration(const QString& fileName, QString* error);

// From a text, for tests and for built-in defaults; `origin` stands in for the file's name.
bool LoadConfigurationText(const QString& toml, const QString& origin, QString* error);
void ClearConfiguration();

// Warnings found so far: unknown keys, wrong types, each "FILE:LINE:COLUMN: ...". Also logged. Keys
// that nobody knows and that nobody has read until now count as unknown: ask after the plug-ins are loaded.
QStringList ConfigurationWarnings();

// Numbers of the root node. A key that is missing, of another type or beyond its limits (reported)
// gives the default. Texts and booleans are read through CfgCenter::GetAppCfg.
qint64 ConfigurationInteger(const QString& key, qint64 defaultValue);
double ConfigurationNumber(const QString& key, double defaultValue);

// Folders in which plug-in libraries are searched, first hit wins.
void SetPluginFolders(const QStringList& folders);

// Loads every entry of AdditionalDlls that has a FileName, in the order of the file, with the
// entry's Config path (APP\AdditionalDlls\ENTRY\Config) as argument; then InstanceNotifyA on all.
// Returns what failed, "file: reason".
QStringList LoadPlugins();

// A plug-in loaded meanwhile, by file name; for the application's own use.
IDllInstance* FindInstance(const QString& fileName);

// Gives an instance to the centre as if `fileName` had been loaded: CreateDllInstanceByFileName
// calls `make` with the argument string. For tests and for plug-ins that are linked in.
void RegisterFactory(const QString& fileName, std::function<IDllInstance*(const QString& argument)> make);
void ClearFactories();

// InstanceNotifyB, then ARDestroy for every instance, the last loaded first.
void DestroyPlugins();

// The line of text on the splash screen that says what the application is about to do.
void SetSplashText(const QString& text);

// Where catalogues NAME_LANGUAGE.qm lie, and the language ("de"; empty: the system's).
void SetTranslations(const QString& folder, const QString& language);

}  // namespace StartupHost
