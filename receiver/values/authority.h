#pragma once

#include <QHash>
#include <QString>
#include <functional>
#include <memory>

#include "receiver/values/catalogue.h"
#include "receiver/values/claims.h"
#include "receiver/values/paths.h"
#include "receiver/values/valuestore.h"

namespace Receiver {

// Defines the catalogue in a store and decides what may be set in it: what needs hardware that is
// not there is refused with the reason, a coupled channel follows the main receiver's and refuses
// settings of its own, a channel is used by one client at a time, and the band that channels reach
// moves with the centre. What depends on another value follows it at once.
//
// The store must live longer than the authority.
class Authority : public StoreListener
{
public:
    Authority(ValueStore& store, const ReceiverSetup& setup);
    ~Authority() override;

    const Paths& paths() const { return m_paths; }
    const QStringList& channels() const { return m_channels; }  // MAIN last

    void valueChanged(ValueId id) override;
    void descriptionChanged(ValueId) override {}
    void valueRemoved(ValueId) override {}

private:
    using Rule = std::function<WriteResult(const QString& channel, ClientId client, Link::Content& content)>;

    void addDeviceRules();
    void addCouplingRules();
    void addRecordingRules();
    ValueStore::Authority authorityOf(const QString& channel, const QString& suffix) const;
    void connectReactions();

    ValueId device(const QString& suffix) const;
    ValueId channelValue(const QString& channel, const QString& suffix) const;
    bool hasRecorder() const;

    WriteResult claim(const QString& channel, ClientId client, const QString& text);
    void moveBand();
    void follow(const QString& channel, const QString& coupling, const QStringList& suffixes);
    void followMain(const QString& coupling, const QStringList& suffixes);
    void updateRecording(const QString& channel);
    void clientGone(ClientId client);

    ValueStore& m_store;
    ReceiverSetup m_setup;
    Paths m_paths;
    QStringList m_channels;
    Claims m_claims;
    QHash<QString, Rule> m_rules;  // by suffix
    QHash<ValueId, std::function<void()>> m_reactions;
    std::shared_ptr<bool> m_alive;  // watched by what the store keeps of this object
};

}  // namespace Receiver
