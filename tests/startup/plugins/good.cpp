// Notes what is done with it in a property of the application.
#include <QCoreApplication>
#include <QStringList>
#include <QVariant>

#include "startup/idllinstance.h"

namespace {

void Note(const QString& call)
{
    const QStringList calls = QCoreApplication::instance()->property("fixture.calls").toStringList();
    QCoreApplication::instance()->setProperty("fixture.calls", calls + QStringList(call));
}

class GoodInstance : public IDllInstance
{
public:
    explicit GoodInstance(const QString& argument) : IDllInstance(argument) { Note("create " + name); }
    ~GoodInstance() override { Note("destroy " + name); }
    void InstanceNotifyA() override { Note("A " + name); }
    void InstanceNotifyB() override { Note("B " + name); }
};

}  // namespace

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t* name)
{
    return new GoodInstance(QString::fromWCharArray(name));
}

extern "C" Q_DECL_EXPORT void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
