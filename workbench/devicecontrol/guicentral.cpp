#include "devicecontrol/guicentral.h"

#include "devicecontrol/devicecontrolhost.h"
#include "devicecontrol/geometrykeeper.h"
#include "valueframework/tree.h"
#include "valueframework/valuehost.h"

namespace {

const char privateRoot[] = "/GUICOMMON/PRIVATE/";

}  // namespace

class GuiCentralPrivate
{
public:
    static GuiCentral* Create() { return new GuiCentral; }
    static GuiCentralPrivate& Get() { return *GuiCentral::Instance()->d; }

    QString CreateUniqueValue(ValueDescription description, const QVariant& initial)
    {
        Tree* const tree = Tree::Instance();
        if (!tree)
            return QString();
        description.hasLimits = description.minimum <= description.maximum;
        QString path;
        do
            path = QLatin1String(privateRoot) + QString::number(++m_LastNumber);
        while (tree->FindValue(path) || tree->FindNode(path));
        return ValueHost::Create(path, description, initial) ? path : QString();
    }

    GeometryKeeper m_Keeper;

private:
    int m_LastNumber = 0;
};

GuiCentral::GuiCentral() : d(new GuiCentralPrivate) {}

GuiCentral::~GuiCentral()
{
    delete d;
}

// Never destroyed: plug-in instances store their geometry at the very end of the process.
GuiCentral* GuiCentral::Instance()
{
    static GuiCentral* const instance = GuiCentralPrivate::Create();
    return instance;
}

// Limits the wrong way round, or none at all (NaN), are no limits.
QString GuiCentral::CreateUniqueValueFloat(double initial, double minimum, double maximum, double step)
{
    ValueDescription description;
    description.type = ValueType::Float;
    description.minimum = minimum;
    description.maximum = maximum;
    description.step = step;
    const bool limited = minimum <= maximum;
    return d->CreateUniqueValue(description, limited ? qBound(minimum, initial, maximum) : initial);
}

QString GuiCentral::CreateUniqueValueInt(int initial, int minimum, int maximum, int step)
{
    ValueDescription description;
    description.type = ValueType::Integer;
    description.minimum = minimum;
    description.maximum = maximum;
    description.step = step;
    const bool limited = minimum <= maximum;
    return d->CreateUniqueValue(description, limited ? qBound(minimum, initial, maximum) : initial);
}

void GuiCentral::SetApplication(QApplication* application)
{
    d->m_Keeper.SetApplication(application);
}

void GuiCentral::StoreWidgetSize()
{
    d->m_Keeper.Store();
}

void DeviceControlHost::SetGeometryFile(const QString& fileName)
{
    GuiCentralPrivate::Get().m_Keeper.SetFile(fileName);
}
