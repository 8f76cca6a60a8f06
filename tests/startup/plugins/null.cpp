#include "startup/idllinstance.h"

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t*)
{
    return nullptr;
}

extern "C" Q_DECL_EXPORT void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
