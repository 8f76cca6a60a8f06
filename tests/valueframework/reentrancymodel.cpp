#include "tests/valueframework/reentrancymodel.h"

#include <algorithm>

namespace {

constexpr int newcomerRounds = 4;

}  // namespace

void ReentrancyModel::AddSubject(int subject)
{
    m_alive.resize(std::size_t(subject) + 1);
    m_lists.resize(std::size_t(subject) + 1);
    m_alive[std::size_t(subject)] = true;
}

void ReentrancyModel::RemoveSubject(int subject)
{
    m_alive[std::size_t(subject)] = false;
    m_lists[std::size_t(subject)].clear();
}

void ReentrancyModel::RemoveObserver(int observer)
{
    for (std::size_t subject = 0; subject < m_lists.size(); ++subject) {
        Delete(int(subject), observer);
    }
}

int ReentrancyModel::Find(int subject, int observer) const
{
    const auto& list = m_lists[std::size_t(subject)];
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].observer == observer) {
            return int(i);
        }
    }
    return -1;
}

void ReentrancyModel::Add(int subject, int observer)
{
    if (Find(subject, observer) < 0) {
        m_lists[std::size_t(subject)].push_back(Registration{observer, m_nextNumber++});
    }
}

void ReentrancyModel::Delete(int subject, int observer)
{
    const int position = Find(subject, observer);
    if (position >= 0) {
        m_lists[std::size_t(subject)].erase(m_lists[std::size_t(subject)].begin() + position);
    }
}

void ReentrancyModel::DeleteAll(int subject)
{
    m_lists[std::size_t(subject)].clear();
}

void ReentrancyModel::MakeFirst(int subject, int observer)
{
    Add(subject, observer);
    auto& list = m_lists[std::size_t(subject)];
    const Registration moved = list[std::size_t(Find(subject, observer))];
    list.erase(list.begin() + Find(subject, observer));
    list.insert(list.begin(), moved);
}

int ReentrancyModel::Count(int subject) const
{
    return int(m_lists[std::size_t(subject)].size());
}

void ReentrancyModel::Begin(int subject, TChangeCode code, int except, bool withNewcomers)
{
    m_running.push_back(
        Notification{subject, code, except, withNewcomers, 0, m_nextNumber, m_lists[std::size_t(subject)]});
}

bool ReentrancyModel::StillThere(int subject, const Registration& registration) const
{
    const auto& list = m_lists[std::size_t(subject)];
    return std::any_of(list.begin(), list.end(),
                       [&](const Registration& one) { return one.number == registration.number; });
}

bool ReentrancyModel::DropThoseWhoLeft(Notification* notification)
{
    if (!IsAlive(notification->subject)) {
        return false;
    }
    for (;;) {
        auto& copy = notification->copy;
        while (!copy.empty() && (!StillThere(notification->subject, copy.front()) ||
                                 copy.front().observer == notification->except)) {
            copy.erase(copy.begin());
        }
        if (!copy.empty() || !notification->withNewcomers || notification->round == newcomerRounds) {
            return !copy.empty();
        }
        ++notification->round;
        for (const Registration& one : m_lists[std::size_t(notification->subject)]) {
            if (one.number >= notification->seen) {
                copy.push_back(one);
            }
        }
        notification->seen = m_nextNumber;
        if (copy.empty()) {
            return false;
        }
    }
}

QString ReentrancyModel::Called(int subject, int observer, TChangeCode code)
{
    const QString call =
        QString("observer %1 called for subject %2 with code %3").arg(observer).arg(subject).arg(code);
    if (m_running.empty()) {
        return call + " while nothing is notified";
    }
    Notification& innermost = m_running.back();
    if (!DropThoseWhoLeft(&innermost)) {
        return call + " though nobody is left to call";
    }
    const Registration next = innermost.copy.front();
    innermost.copy.erase(innermost.copy.begin());
    if (subject != innermost.subject || code != innermost.code || observer != next.observer) {
        return call + QString(" instead of observer %1 for subject %2 with code %3")
                          .arg(next.observer)
                          .arg(innermost.subject)
                          .arg(innermost.code);
    }
    return QString();
}

QString ReentrancyModel::End()
{
    Notification innermost = m_running.back();
    m_running.pop_back();
    if (DropThoseWhoLeft(&innermost)) {
        return QString("observer %1 was not called for subject %2")
            .arg(innermost.copy.front().observer)
            .arg(innermost.subject);
    }
    return QString();
}
