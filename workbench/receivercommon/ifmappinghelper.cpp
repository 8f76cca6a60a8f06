#include "receivercommon/ifmappinghelper.h"

#include <cmath>

#include "receivercommon/valuefollower.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

namespace {

const char halfWidthPath[] = "/GUICOMMON/IFPANHALFWIDTH";
const char startPath[] = "/GUICOMMON/IFPANSTARTFREQ";
const char stopPath[] = "/GUICOMMON/IFPANSTOPFREQ";

// The axis value at a path, made when there is none (or something else that is no frequency).
FloatValue* AxisValue(const char* path)
{
    Tree* const tree = Tree::Instance();
    if (!tree)
        return nullptr;
    ValueBase* const present = tree->FindValue(QLatin1String(path));
    if (FloatValue* value = dynamic_cast<FloatValue*>(present))
        return value;
    ValueDescription description;
    description.type = ValueType::Float;
    description.unit = QStringLiteral("Hz");
    return dynamic_cast<FloatValue*>(ValueHost::Create(QLatin1String(path), description, 0.0));
}

void WriteAxis(const char* path, double frequency)
{
    if (FloatValue* value = AxisValue(path))
        value->SetValue(frequency, nullptr);
}

}  // namespace

class IFMappingHelperPrivate
{
public:
    explicit IFMappingHelperPrivate(const QString& valuePath)
        : m_ValuePath(valuePath), m_Frequency([this] { Map(); }), m_Span([this] { Map(); })
    {}

    void Init()
    {
        AxisValue(halfWidthPath);
        AxisValue(startPath);
        AxisValue(stopPath);
        m_Frequency.SetPath(m_ValuePath + QLatin1String("/FREQUENCY"));
        m_Span.SetPath(m_ValuePath + QLatin1String("/IFPANSPAN"));
    }

private:
    // The half width follows the span alone; the ends need the centre as well.
    void Map()
    {
        const ValueSelection* const span = dynamic_cast<ValueSelection*>(m_Span.Value());
        const double width = span ? span->GetCurrentNumber() : 0;
        if (!(width > 0) || !std::isfinite(width))
            return;
        // Taken before anything is written: observers of the axis may delete what is followed here.
        const FloatValue* const frequency = dynamic_cast<FloatValue*>(m_Frequency.Value());
        const double centre = frequency ? frequency->GetValue() : std::nan("");
        WriteAxis(halfWidthPath, width / 2);
        if (!std::isfinite(centre))
            return;
        WriteAxis(startPath, centre - width / 2);
        WriteAxis(stopPath, centre + width / 2);
    }

    const QString m_ValuePath;
    ValueFollower m_Frequency;
    ValueFollower m_Span;
};

IFMappingHelper::IFMappingHelper(const QString& valuePath) : d(new IFMappingHelperPrivate(valuePath)) {}

IFMappingHelper::~IFMappingHelper()
{
    delete d;
}

void IFMappingHelper::Init()
{
    d->Init();
}
