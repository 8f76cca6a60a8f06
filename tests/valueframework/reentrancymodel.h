#pragma once

#include <QString>
#include <vector>

#include "valueframework/changecode.h"

// What should happen when anything may happen inside Update, said as simply as possible: each
// registration has a number, a notification copies the registrations of the subject, and calls
// those of the copy that are still there. Observers and subjects are numbers here; a number is
// used for one object only.
class ReentrancyModel
{
public:
    void AddSubject(int subject);
    void RemoveSubject(int subject);  // destroyed
    void RemoveObserver(int observer);

    void Add(int subject, int observer);
    void Delete(int subject, int observer);
    void DeleteAll(int subject);
    void MakeFirst(int subject, int observer);
    int Count(int subject) const;
    bool IsRegistered(int subject, int observer) const { return Find(subject, observer) >= 0; }

    // A notification begins, as the innermost. `withNewcomers`: those who join meanwhile are told
    // as well, as when the subject goes away.
    void Begin(int subject, TChangeCode code, int except, bool withNewcomers = false);

    // What is wrong with this call being the next one; empty: nothing.
    QString Called(int subject, int observer, TChangeCode code);

    // What is wrong with the innermost notification being over.
    QString End();

private:
    struct Registration
    {
        int observer;
        int number;
    };
    struct Notification
    {
        int subject;
        TChangeCode code;
        int except;
        bool withNewcomers;
        int round = 0;
        int seen;  // registrations up to this number are in the copy or were told
        std::vector<Registration> copy;
    };

    int Find(int subject, int observer) const;
    bool IsAlive(int subject) const { return m_alive.at(std::size_t(subject)); }
    bool StillThere(int subject, const Registration& registration) const;
    bool DropThoseWhoLeft(Notification* notification);  // false: nobody is left to call

    std::vector<bool> m_alive;
    std::vector<std::vector<Registration>> m_lists;  // by subject
    std::vector<Notification> m_running;             // innermost last
    int m_nextNumber = 0;
};
