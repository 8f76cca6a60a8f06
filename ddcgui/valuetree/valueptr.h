#ifndef DDCGUI_VALUEPTR_H
#define DDCGUI_VALUEPTR_H

#include <QString>
#include <type_traits>

#include "valueframework/arexception.h"
#include "valueframework/iobserver.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valueselection.h"

// Holds one typed value of the tree, found by its path, and lets go of it when the value announces
// that it is going away. A member of its owner, or a local of one function: a local keeps a value
// safe to use over a modal dialog. Read `value` and test it for null before each use.
template <class T>
class ValuePtr : public IObserver
{
public:
    ValuePtr() : value(nullptr) {}
    ~ValuePtr() override { Release(); }

    void Update(Observable*, TChangeCode code) override
    {
        if (code == CC_STATE && IsGoingAway())
            Release();
    }

    // Removes the value from the tree, for everybody.
    virtual void Delete()
    {
        if (!value)
            return;
        ValueBase* held = value;
        held->DeleteObserver(this);
        value = nullptr;
        if (Tree* tree = Tree::Instance())
            tree->DeleteValue(held->GetPathName());
    }

    // Null detaches.
    virtual void Set(T* newValue)
    {
        if (newValue == value)
            return;
        if (value)
            value->DeleteObserver(this);
        value = newValue;
        if (value)
            value->AddObserver(this);
    }

    // False, and detached, when the tree has no value of this type at the path.
    bool Attach(const QString& path)
    {
        Set(nullptr);
        Tree* tree = Tree::Instance();
        ValueBase* found = tree ? tree->FindValue(path) : nullptr;
        T* typed = found ? dynamic_cast<T*>(found) : nullptr;
        if (!typed)
            return false;
        Set(typed);
        return true;
    }

    // Of text values only. True when the value had to be made, false when it was there. Where the
    // tree refuses the new value, the pointer holds it all the same, free-standing and never deleted.
    template <class U = T>
    typename std::enable_if<std::is_same<U, TextValue>::value, bool>::type AttachOrCreate(const QString& path)
    {
        if (Attach(path))
            return false;
        const int nameStart = int(path.lastIndexOf(QLatin1Char('/'))) + 1;
        T* made = new T;
        made->SetName(path.mid(nameStart), nullptr);
        if (Tree* tree = Tree::Instance()) {
            try {
                tree->AddValue(path.left(nameStart), made);
            } catch (const ARException&) {
                // No such parent, or the name is taken by something else: the value serves
                // whoever holds it, and nobody else sees it.
            }
        }
        Set(made);
        return true;
    }

    T* value;  // null while detached

protected:
    // Asked through ValueBase: the announcement may come while the derived part is destroyed already.
    bool IsGoingAway() const
    {
        const ValueBase* held = value;
        return held && held->GetState() == VS_DELETING;
    }

    void Release()
    {
        if (ValueBase* held = value)
            held->DeleteObserver(this);
        value = nullptr;
    }

private:
    Q_DISABLE_COPY(ValuePtr)
};

// The same, and its owner hears everything that the value tells, before the pointer does.
template <class T>
class ValueObservingPtr : public ValuePtr<T>
{
public:
    explicit ValueObservingPtr(IObserver* observer) : owner(observer) {}
    ~ValueObservingPtr() override { ReleaseBoth(); }

    void Update(Observable*, TChangeCode code) override
    {
        if (code == CC_STATE && this->IsGoingAway())
            ReleaseBoth();
    }

    void Delete() override
    {
        if (this->value)
            this->value->DeleteObserver(owner);
        ValuePtr<T>::Delete();
    }

    void Set(T* newValue) override
    {
        if (newValue == this->value)
            return;
        if (this->value) {
            this->value->DeleteObserver(owner);
            this->value->DeleteObserver(this);
        }
        this->value = newValue;
        if (this->value) {
            this->value->AddObserver(owner);
            this->value->AddObserver(this);
        }
    }

    // Whether a notification comes from the held value.
    bool IsSubject(const Observable* subject) const
    {
        const ValueBase* held = this->value;
        return held && subject == static_cast<const Observable*>(held);
    }

    IObserver* const owner;

private:
    void ReleaseBoth()
    {
        if (ValueBase* held = this->value)
            held->DeleteObserver(owner);
        this->Release();
    }

    Q_DISABLE_COPY(ValueObservingPtr)
};

#endif
