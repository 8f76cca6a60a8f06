#include "recordertoolbar/vordatoolbarcontroller.h"

#include <QPointer>
#include <utility>

#include "receivercommon/valuefollower.h"
#include "recordertoolbar/recordertoolbarwidget.h"
#include "valuecontrols/operatorjournal.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

namespace receiver {
namespace vorda {

namespace {

const int recordingOnKey = 0;  // of the selection ChannelRecording
const int recordingOffKey = 1;

QString ChannelPath(const QString& devicePath, int channel)
{
    return devicePath + QLatin1String("/DDC/DDC") + QString::number(channel);
}

}  // namespace

class VordaToolbarControllerPrivate
{
public:
    typedef RecorderToolBarWidget::Recording Recording;

    VordaToolbarControllerPrivate(VordaToolbarController* owner, const QString& channelPath,
                                  std::shared_ptr<VordaCommon::IDataRateConverter> converter,
                                  bool offerRecording)
        : m_Widget(new RecorderToolBarWidget(offerRecording)),
          m_Converter(std::move(converter)),
          m_Bandwidth([this] { ShowDataRate(); }),
          m_Recording([this] { ShowRecording(); })
    {
        QObject::connect(m_Widget, &RecorderToolBarWidget::RecordRequested, owner,
                         [this] { Write(recordingOnKey); });
        QObject::connect(m_Widget, &RecorderToolBarWidget::StopRequested, owner,
                         [this] { Write(recordingOffKey); });
        m_Recording.SetPath(channelPath + QLatin1String("/ChannelRecording"));
    }

    ~VordaToolbarControllerPrivate()
    {
        if (m_Widget && !m_Widget->parent())
            delete m_Widget;
    }

    void ShowDataRate()
    {
        if (!m_Widget)
            return;
        const ValueSelection* const bandwidth = dynamic_cast<ValueSelection*>(m_Bandwidth.Value());
        m_Widget->SetDataRate(
            bandwidth && m_Converter ? m_Converter->BytesPerSecond(bandwidth->GetCurrentNumber()) : 0);
    }

    void ShowRecording()
    {
        if (!m_Widget)
            return;
        const ValueSelection* const recording = dynamic_cast<ValueSelection*>(m_Recording.Value());
        if (!recording || recording->GetState() != VS_USABLE)
            m_Widget->SetRecording(Recording::Unavailable);
        else
            m_Widget->SetRecording(recording->GetCurrentKey() == recordingOnKey ? Recording::Running
                                                                                : Recording::Stopped);
        ShowAnswer(recording);
    }

    // Why the recorder did not do what was asked. Each answer is shown once, so that a later
    // message of the channel is not covered again.
    void ShowAnswer(const ValueSelection* recording)
    {
        if (!recording || !m_Written)
            return;
        const WriteStatus& status = ValueHost::Status(*recording);
        if (status.pending)
            m_Sent = true;  // what was answered before belongs to a former write
        if (status.pending || !m_Sent)
            return;
        m_Written = false;
        const bool failed = status.answer == WriteStatus::Refused || status.answer == WriteStatus::Unanswered;
        if (failed && !status.reason.isEmpty())
            m_Widget->ShowWarning(status.reason);
    }

    void Write(int key)
    {
        ValueSelection* const recording = dynamic_cast<ValueSelection*>(m_Recording.Value());
        if (!recording || recording->GetState() != VS_USABLE)
            return;
        m_Written = true;
        m_Sent = false;
        OperatorJournal::Write(*recording, key, nullptr);
    }

    QPointer<RecorderToolBarWidget> m_Widget;
    std::shared_ptr<VordaCommon::IDataRateConverter> m_Converter;
    ValueFollower m_Bandwidth;
    ValueFollower m_Recording;

private:
    bool m_Written = false;  // by the operator, and not answered yet
    bool m_Sent = false;     // that write was seen on its way
};

bool VordaToolbarController::IsVordaConnectionPossible(const QString& devicePath, int channel)
{
    Tree* const tree = Tree::Instance();
    ValueBase* const value =
        tree ? tree->FindValue(ChannelPath(devicePath, channel) + QLatin1String("/RecorderAvailable"))
             : nullptr;
    const BoolValue* const available = dynamic_cast<BoolValue*>(value);
    return available && available->GetState() == VS_USABLE && available->GetValue();
}

VordaToolbarController::VordaToolbarController(QObject* parent, const QString& devicePath, int channel,
                                               std::shared_ptr<VordaCommon::IDataRateConverter> converter,
                                               const QFlags<enUserAction>& actions)
    : QObject(parent),
      m_DDCName(QLatin1String("DDC") + QString::number(channel)),
      d(new VordaToolbarControllerPrivate(this, ChannelPath(devicePath, channel), std::move(converter),
                                          actions.testFlag(ACTION_RECORD)))
{
    qRegisterMetaType<VordaGlobal::ChannelAvailableState>("VordaGlobal::ChannelAvailableState");
    qRegisterMetaType<VordaGlobal::DevicesAvailableState>("VordaGlobal::DevicesAvailableState");
    d->m_Widget->SetChannel(m_DDCName);
}

VordaToolbarController::~VordaToolbarController()
{
    delete d;
}

void VordaToolbarController::setDDCBandwidthValuePath(const QString& path)
{
    d->m_Bandwidth.SetPath(path);
    d->ShowDataRate();
}

QWidget* VordaToolbarController::getToolbar()
{
    return d->m_Widget;
}

void VordaToolbarController::enableVordaToolbar(bool enable)
{
    if (!d->m_Widget)
        return;
    d->m_Widget->SetOffered(enable);
    d->m_Widget->SetChannel(m_DDCName);
}

void VordaToolbarController::hideStatusIcon()
{
    if (d->m_Widget)
        d->m_Widget->HideWarning();
}

void VordaToolbarController::showStatusWarning(const QString& text)
{
    if (d->m_Widget)
        d->m_Widget->ShowWarning(text);
}

}  // namespace vorda
}  // namespace receiver
