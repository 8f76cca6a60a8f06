#include <QCoreApplication>
#include <QVariant>

#include "startup/idllinstance.h"

namespace {

class UnfitInstance : public IDllInstance
{
public:
    explicit UnfitInstance(const QString& argument) : IDllInstance(argument) {}
    ~UnfitInstance() override { QCoreApplication::instance()->setProperty("fixture.unfitDestroyed", true); }
    bool InstanceQuery() override { return false; }
};

}  // namespace

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t* name)
{
    return new UnfitInstance(QString::fromWCharArray(name));
}

extern "C" Q_DECL_EXPORT void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
