#include "receivercommon/valuefollower.h"

#include <utility>

#include "valueframework/tree.h"
#include "valueframework/valuebase.h"

namespace {

const int searchIntervalMs = 250;

}  // namespace

ValueFollower::ValueFollower(Listener listener) : m_Listener(std::move(listener))
{
    m_SearchTimer.setInterval(searchIntervalMs);
    QObject::connect(&m_SearchTimer, &QTimer::timeout, [this] { Search(); });
}

ValueFollower::~ValueFollower()
{
    if (m_Value)
        m_Value->DeleteObserver(this);
}

void ValueFollower::SetPath(const QString& path)
{
    if (m_Value)
        m_Value->DeleteObserver(this);
    m_Value = nullptr;
    m_Path = path;
    m_SearchTimer.stop();
    if (!path.isEmpty())
        Search();
}

void ValueFollower::Search()
{
    Tree* const tree = Tree::Instance();
    ValueBase* const value = tree ? tree->FindValue(m_Path) : nullptr;
    if (!value || value->GetState() == VS_DELETING) {
        m_SearchTimer.start();
        return;
    }
    m_SearchTimer.stop();
    m_Value = value;
    value->AddObserver(this);
    Tell();
}

void ValueFollower::Update(Observable* subject, TChangeCode code)
{
    if (!m_Value || subject != static_cast<Observable*>(m_Value))
        return;
    if (code == CC_STATE && m_Value->GetState() == VS_DELETING) {
        m_Value->DeleteObserver(this);
        m_Value = nullptr;
        m_SearchTimer.start();
    }
    Tell();
}

// A copy, since the follower may be destroyed inside.
void ValueFollower::Tell()
{
    const Listener listener = m_Listener;
    listener();
}
