#include <stdexcept>

#include "startup/idllinstance.h"

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t* name)
{
    if (QString::fromWCharArray(name) == QLatin1String("a number"))
        throw 42;
    throw std::runtime_error("no antenna");
}

extern "C" Q_DECL_EXPORT void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
