/// Callables that are shared, compared and kept in lists: what timers, events and listeners call.
#pragma once
#include "shared/System/kvObject.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace Korvanel {

/// A shared callable that takes `Arguments`. Thread: whoever calls it.
template <typename... Arguments>
class DelegateOf : public Object
{
public:
    virtual void invoke(Arguments... arguments) = 0;

    /// Whether both would call the same. A delegate equals itself, whatever it is.
    virtual bool equals(const DelegateOf& other) const { return this == &other; }

    friend bool operator==(const DelegateOf& a, const DelegateOf& b) { return a.equals(b); }
};

/// What timers and deferred tasks call.
using Delegate = DelegateOf<>;

/// What an event with one value calls.
template <typename Value>
using Delegate1 = DelegateOf<Value>;

/// Calls a member function of an object that it does not own. Two of them are equal when they call
/// the same member of the same object.
template <typename Target, typename... Arguments>
class MemberDelegateT : public DelegateOf<Arguments...>
{
public:
    using Member = void (Target::*)(Arguments...);

    MemberDelegateT(Target* target, Member member)
        : mTarget(target)
        , mMember(member)
    {
    }

    void invoke(Arguments... arguments) override
    {
        (mTarget->*mMember)(std::forward<Arguments>(arguments)...);
    }

    bool equals(const DelegateOf<Arguments...>& other) const override
    {
        const auto* same = dynamic_cast<const MemberDelegateT*>(&other);
        return same != nullptr && same->mTarget == mTarget && same->mMember == mMember;
    }

private:
    Target* mTarget;
    Member mMember;
};

/// Entries that are called one after the other, and that may come, go, or end the list's owner
/// meanwhile: who left is not called any more, who came is called from the next round on.
template <typename Entry>
class CallList
{
public:
    CallList() = default;
    CallList(const CallList&) = delete;
    CallList& operator=(const CallList&) = delete;

    ~CallList() { mEntries->clear(); } // a round that still runs finds nobody left to call

    void add(Entry entry) { mEntries->push_back(std::move(entry)); }

    /// Takes the first entry out for which `matches` holds; none is no error.
    template <typename Predicate>
    void removeFirst(Predicate matches)
    {
        const auto found = std::find_if(mEntries->begin(), mEntries->end(), matches);
        if (found == mEntries->end())
            return;
        [[maybe_unused]] const Entry kept =
            std::move(*found); // it may end with this, and call back
        mEntries->erase(found);
    }

    bool empty() const { return mEntries->empty(); }

    template <typename Call>
    void forEach(Call call)
    {
        const std::shared_ptr<Entries> entries = mEntries;
        const Entries round = *entries;
        for (const Entry& entry : round)
            if (std::find(entries->begin(), entries->end(), entry) != entries->end())
                call(entry);
    }

private:
    using Entries = std::vector<Entry>;

    std::shared_ptr<Entries> mEntries = std::make_shared<Entries>();
};

/// Delegates that take one value, called in the order in which they came. Thread: user interface.
template <typename Value>
class MulticastDelegate1
{
public:
    /// Holds a reference of its own; null is ignored.
    void add(Delegate1<Value>* delegate)
    {
        if (delegate != nullptr)
            mDelegates.add(Ref<Delegate1<Value>>(delegate));
    }

    /// Takes the first one out that is `delegate` or equals it.
    void remove(const Delegate1<Value>* delegate)
    {
        if (delegate != nullptr)
            mDelegates.removeFirst([delegate](const auto& held) { return *held == *delegate; });
    }

    bool empty() const { return mDelegates.empty(); }

    void invoke(Value value)
    {
        mDelegates.forEach([&value](const auto& delegate) { delegate->invoke(value); });
    }

private:
    CallList<Ref<Delegate1<Value>>> mDelegates;
};

/// An event that its owner raises and others join. Thread: user interface.
template <typename Value>
class Event1
{
public:
    void operator+=(Delegate1<Value>* delegate) { mDelegates.add(delegate); }

    void operator-=(const Delegate1<Value>* delegate) { mDelegates.remove(delegate); }

    void raise(Value value) { mDelegates.invoke(value); }

private:
    MulticastDelegate1<Value> mDelegates;
};

} // namespace Korvanel
