// The panel's recorder row.
#include <QBoxLayout>
#include <QLabel>
#include <QMetaType>
#include <memory>

#include "ddcguiffm.h"
#include "ddctrace.h"
#include "floatlayout.h"
#include "receivercommon/rxdatarateconverter.h"
#include "recordertoolbar/vordatoolbarcontroller.h"
#include "valuetree/panelhelpers.h"
#include "valuetree/valuepaths.h"

using receiver::vorda::VordaToolbarController;

namespace {

const int namePrefixLength = 3;  // "DDC"; the channel's number follows
const unsigned short noRecorderTraceLine = 636;

// At load time, so that the controller's queued signals can carry these from the first one on.
struct MetaTypes
{
    MetaTypes()
    {
        qRegisterMetaType<VordaGlobal::ChannelAvailableState>("VordaGlobal::ChannelAvailableState");
        qRegisterMetaType<VordaGlobal::DevicesAvailableState>("VordaGlobal::DevicesAvailableState");
    }
};
const MetaTypes registeredMetaTypes;

}  // namespace

void DdcGuiFfm::CreateVordaControls()
{
    if (m_Name == QLatin1String("MAIN"))
        return;
    const QString numberText = m_Name.mid(namePrefixLength);
    const int number = numberText.toInt();  // 0 for what is not a number

    if (VordaToolbarController::IsVordaConnectionPossible(m_DevicePath, number)) {
        const RECEIVERTYPE receiverType = isWPU() ? RECEIVERTYPE_PULSE_ANALYSIS : RECEIVERTYPE_DDC;
        const std::shared_ptr<VordaCommon::IDataRateConverter> converter(
            new RxCommon::RxDataRateConverter(receiverType, RxCommon::RxDataRateConverter::INTERFACE_LAN));
        const QFlags<VordaToolbarController::enUserAction> actions(VordaToolbarController::ACTION_RECORD);
        m_pToolbarController = new VordaToolbarController(this, m_DevicePath, number, converter, actions);
        m_pToolbarController->setDDCBandwidthValuePath(ValuePaths::DdcPath(m_DevicePath, m_Name) +
                                                       ValuePaths::bandwidth);
        m_pToolbarController->m_DDCName = QLatin1String("DDC") + numberText;
    } else {
        if (m_Name.contains(QLatin1String("SCUP")))
            return;
        DdcTrace::Write(QLatin1String("vorda toolbar requested, but not available in value tree"),
                        "ddcguiffm", noRecorderTraceLine);
    }

    QHBoxLayout* row = new QHBoxLayout;
    row->setObjectName(QLatin1String("VordaRow"));
    AddColumn(m_pLayout, row);
    row->addWidget(new QLabel(this));
    if (m_pToolbarController) {
        QWidget* toolBar = m_pToolbarController->getToolbar();
        m_pToolbarController->enableVordaToolbar(true);
        row->addWidget(toolBar);
    }
}
