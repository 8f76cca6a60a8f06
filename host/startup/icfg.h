#ifndef HOST_ICFG_H
#define HOST_ICFG_H

#include <QtCore/QString>

#include "startup/startup_global.h"

// One node of the configuration: entries (key = value) and groups (tables; the elements of an
// array of tables are children without a name). Reading never fails: an entry that is missing or
// has another type gives the default, and a wrong type is reported once by the library, with file,
// line and column.
class STARTUP_EXPORT ICfg
{
public:
    virtual ~ICfg();

    // `section` names a group below this node; null or "" is the node itself.
    virtual QString GetString(const QString& key, const QString& defaultValue = QString(),
                              const char* section = 0) = 0;
    virtual bool GetBool(const QString& key, bool defaultValue, const char* section = 0) = 0;

    virtual bool HasGroup(const QString& name) = 0;

    // Groups and children belong to the configuration centre and live as long as it does; they
    // outlive the node that they were asked of. Null when there is none.
    virtual ICfg* GetGroup(const QString& name) = 0;
    virtual ICfg* GetChild(int index) = 0;  // groups in the order of the file
};

#endif
