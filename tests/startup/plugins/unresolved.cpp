// Uses a function that no library has.
#include "startup/idllinstance.h"

IDllInstance* FunctionThatNoLibraryHas(const wchar_t* name);

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t* name)
{
    return FunctionThatNoLibraryHas(name);
}

extern "C" Q_DECL_EXPORT void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
