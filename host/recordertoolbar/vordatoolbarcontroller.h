#ifndef HOST_VORDATOOLBARCONTROLLER_H
#define HOST_VORDATOOLBARCONTROLLER_H

#include <QtCore/QFlags>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <memory>

#include "receivercommon/rxdatarateconverter.h"
#include "recordertoolbar/recordertoolbar_global.h"

class QWidget;

namespace VordaGlobal {

enum ChannelAvailableState
{
    CHANNEL_UNKNOWN,
    CHANNEL_FREE,
    CHANNEL_IN_USE
};

enum DevicesAvailableState
{
    DEVICES_UNKNOWN,
    DEVICES_NONE,
    DEVICES_READY
};

}  // namespace VordaGlobal

Q_DECLARE_METATYPE(VordaGlobal::ChannelAvailableState)
Q_DECLARE_METATYPE(VordaGlobal::DevicesAvailableState)

namespace receiver {
namespace vorda {

class VordaToolbarControllerPrivate;

// The recorder's tool bar for one channel: record, stop, status.
class RECORDERTOOLBAR_EXPORT VordaToolbarController : public QObject
{
    Q_OBJECT
public:
    enum enUserAction
    {
        ACTION_NONE = 0,
        ACTION_CONFIGURE = 1,  // offers the recorder's settings
        ACTION_RECORD = 2      // offers record and stop
    };
    Q_DECLARE_FLAGS(UserActions, enUserAction)

    // Whether the recorder can serve this channel of the device at present.
    static bool IsVordaConnectionPossible(const QString& devicePath, int channel);

    VordaToolbarController(QObject* parent, const QString& devicePath, int channel,
                           std::shared_ptr<VordaCommon::IDataRateConverter> converter,
                           const QFlags<enUserAction>& actions);
    ~VordaToolbarController();

    // The selection whose number is the channel's bandwidth, for the data rate shown.
    void setDDCBandwidthValuePath(const QString& path);

    QWidget* getToolbar();  // owned by this until it gets a parent
    void enableVordaToolbar(bool enable);
    void hideStatusIcon();
    void showStatusWarning(const QString& text);

    QString m_DDCName;  // the channel's name as the recorder knows it, "DDC" and its number

private:
    Q_DISABLE_COPY(VordaToolbarController)
    friend class VordaToolbarControllerPrivate;
    VordaToolbarControllerPrivate* d;
};

}  // namespace vorda
}  // namespace receiver

#endif
