#ifndef HOST_CFGCENTER_H
#define HOST_CFGCENTER_H

#include <QtCore/QString>

#include "startup/icfg.h"
#include "startup/idllinstance.h"

class CfgCenterPrivate;

// The application's configuration and its plug-ins.
class STARTUP_EXPORT CfgCenter
{
public:
    // Which configuration: 2 is the merged one (the file over the built-in defaults), the only one used.
    typedef int View;

    static CfgCenter* Instance();

    // The application's name as its configuration gives it, for example RxDDC1.
    static QString GetAppName();

    // A node by its path: names with one backslash between them, the application's name first
    // (RxDDC1\AdditionalDlls\DDCGUI\Config). The caller deletes it. Null when there is no such node.
    ICfg* CreateCfg(const QString& name, View view, const QString& text);

    // The application's root node; owned by the centre. Null without a configuration.
    ICfg* GetAppCfg(View view);

    // Loads a plug-in library (file name without folder and extension, as in libddcgui) and makes an
    // instance with `argument`. Null when that fails; the reason is reported with the file's name.
    // Owned by the centre; destroyed by ARDestroy at the end of the process.
    IDllInstance* CreateDllInstanceByFileName(const QString& fileName, const QString& argument, bool, bool);

private:
    Q_DISABLE_COPY(CfgCenter)
    friend class CfgCenterPrivate;
    CfgCenter();
    ~CfgCenter();
    CfgCenterPrivate* d;
};

#endif
