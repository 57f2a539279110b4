/// Who is to be told. Registrations replace the whole list, so that a broadcast from the processing
/// thread walks one that nobody changes: it takes no lock and allocates nothing.
#pragma once
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <pthread.h>
#include <thread>
#include <vector>

namespace Korvanel {

/// Listeners are not owned. add and remove: [ui thread]; the rest: [any thread].
template <typename Listener>
class ListenerList
{
public:
    using Members = std::vector<Listener*>;

    ListenerList() = default;
    ListenerList(const ListenerList&) = delete;
    ListenerList& operator=(const ListenerList&) = delete;

    ~ListenerList() { delete mMembers.load(); }

    /// Appends; the same listener may be added several times and is then told as often.
    void add(Listener* listener) KV_EXCLUDES(mChange)
    {
        change([listener](Members& members) { members.push_back(listener); });
    }

    /// Removes every occurrence. When this returns, no other thread is still telling the listener.
    /// From inside a broadcast on this thread it does not wait, and the broadcast passes the
    /// removed ones over.
    void remove(Listener* listener) KV_EXCLUDES(mChange)
    {
        change([listener](Members& members) { std::erase(members, listener); });
    }

    std::size_t size() const { return Walk(*this).members().size(); }

    /// Calls `tell` for each listener in the order of registration.
    template <typename Tell>
    void broadcast(Tell tell) const
    {
        const Walk walk(*this);
        for (Listener* listener : walk.members())
            if (walk.stillListed(listener))
                tell(*listener);
    }

    template <typename Tell>
    void tellFirst(Tell tell) const
    {
        const Walk walk(*this);
        if (!walk.members().empty())
            tell(*walk.members().front());
    }

private:
    static constexpr std::size_t kWalkers = 32; ///< broadcasts at one time, nested ones included

    /// A broadcast under way: while it lives, no list that it may look at is freed.
    class Walk
    {
    public:
        explicit Walk(const ListenerList& list)
            : mList(list)
            , mSlot(claim(list))
            , mWalked(list.mMembers.load())
        {
        }

        ~Walk() { mSlot.store(0); }

        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;

        const Members& members() const { return *mWalked; }

        bool stillListed(Listener* listener) const
        {
            const Members* now = mList.mMembers.load();
            return now == mWalked || std::find(now->begin(), now->end(), listener) != now->end();
        }

    private:
        static std::atomic<pthread_t>& claim(const ListenerList& list)
        {
            for (std::size_t i = 0;; i = (i + 1) % kWalkers) {
                pthread_t nobody = 0;
                if (list.mWalkers[i].compare_exchange_strong(nobody, ::pthread_self()))
                    return list.mWalkers[i];
            }
        }

        const ListenerList& mList;
        std::atomic<pthread_t>& mSlot;
        const Members* mWalked;
    };

    template <typename Edit>
    void change(Edit edit) KV_EXCLUDES(mChange)
    {
        const ScopedLock hold(mChange);
        auto next = std::make_unique<Members>(*mMembers.load());
        edit(*next);
        mRetired.emplace_back(mMembers.exchange(next.release()));
        if (walkedByThisThread())
            return; // it is looking at the old list; the next change frees it
        while (walkedByAnother())
            std::this_thread::yield();
        mRetired.clear();
    }

    bool walkedByThisThread() const
    {
        return std::any_of(mWalkers.begin(), mWalkers.end(),
                           [](const auto& walker) { return walker.load() == ::pthread_self(); });
    }

    bool walkedByAnother() const
    {
        return std::any_of(mWalkers.begin(), mWalkers.end(),
                           [](const auto& walker) { return walker.load() != 0; });
    }

    CriticalSection mChange;
    std::vector<std::unique_ptr<const Members>> mRetired KV_GUARDED_BY(mChange);
    std::atomic<const Members*> mMembers{new Members};
    mutable std::array<std::atomic<pthread_t>, kWalkers> mWalkers{};
};

} // namespace Korvanel
