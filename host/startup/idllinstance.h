#ifndef HOST_IDLLINSTANCE_H
#define HOST_IDLLINSTANCE_H

#include <QtCore/QString>

#include "startup/startup_global.h"

// The instance that a plug-in library's ARCreate makes. A plug-in library exports, with C linkage,
//   IDllInstance* ARCreate(const wchar_t* name);      name: configuration key or argument string
//   void ARDestroy(IDllInstance* instance);           null is harmless
// The library is never unloaded; ARDestroy destroys the instance only.
class STARTUP_EXPORT IDllInstance
{
public:
    explicit IDllInstance(const QString& name);
    virtual ~IDllInstance();

    virtual bool InstanceQuery();    // whether the instance is fit for use; true unless overridden
    virtual void InstanceNotifyA();  // all plug-ins of the process are loaded
    virtual void InstanceNotifyB();  // the process is about to end

    QString name;  // as given to ARCreate
};

typedef IDllInstance* (*ARCreateFunction)(const wchar_t* name);
typedef void (*ARDestroyFunction)(IDllInstance* instance);

#endif
