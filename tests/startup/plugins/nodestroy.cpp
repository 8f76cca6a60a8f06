#include "startup/idllinstance.h"

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t* name)
{
    return new IDllInstance(QString::fromWCharArray(name));
}
