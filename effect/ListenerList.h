/// Who is to be told. Registrations replace the whole list, so that a broadcast from the processing
/// thread walks one that nobody changes: it takes no lock and allocates nothing.
///
/// Whoever removes waits for the removed listener's own calls, outside of the list's lock: a
/// listener that is being called may itself add and remove.
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
    /// Broadcasts under way pass it over, those of this thread included, so that a listener may
    /// remove itself and others while it is told. Two listeners told on two threads must not remove
    /// each other: each would wait for the other.
    void remove(Listener* listener) KV_EXCLUDES(mChange)
    {
        change([listener](Members& members) { std::erase(members, listener); });
        while (listener != nullptr && toldByAnotherThread(listener))
            std::this_thread::yield();
    }

    std::size_t size() const { return Walk(*this).members().size(); }

    /// Calls `tell` for each listener in the order of registration.
    template <typename Tell>
    void broadcast(Tell tell) const
    {
        Walk walk(*this);
        for (Listener* listener : walk.members())
            walk.tellIfListed(listener, tell);
    }

    template <typename Tell>
    void tellFirst(Tell tell) const
    {
        for (;;) { // again only when the first one has just been removed
            Walk walk(*this);
            if (walk.members().empty() || walk.tellIfListed(walk.members().front(), tell))
                return;
        }
    }

private:
    static constexpr std::size_t kWalkers = 32; ///< broadcasts at one time, nested ones included

    struct Walker
    {
        std::atomic<pthread_t> thread{0}; ///< 0 while the slot is free
        std::atomic<const Listener*> telling{nullptr};
    };

    /// A broadcast under way: while it lives, no list that it may look at is freed.
    class Walk
    {
    public:
        explicit Walk(const ListenerList& list)
            : mList(list)
            , mWalker(claim(list))
            , mWalked(list.mMembers.load())
        {
        }

        ~Walk()
        {
            mWalker.telling.store(nullptr);
            mWalker.thread.store(0);
        }

        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;

        const Members& members() const { return *mWalked; }

        /// Announces the call before it looks whether the listener is still there: a remover takes
        /// it from the list before it looks for calls, so one of the two sees the other.
        template <typename Tell>
        bool tellIfListed(Listener* listener, Tell& tell)
        {
            mWalker.telling.store(listener);
            const bool listed = stillListed(listener);
            if (listed)
                tell(*listener);
            mWalker.telling.store(nullptr);
            return listed;
        }

    private:
        bool stillListed(Listener* listener) const
        {
            const Members* now = mList.mMembers.load();
            return now == mWalked || std::find(now->begin(), now->end(), listener) != now->end();
        }

        static Walker& claim(const ListenerList& list)
        {
            for (std::size_t i = 0;; i = (i + 1) % kWalkers) {
                pthread_t nobody = 0;
                if (list.mWalkers[i].thread.compare_exchange_strong(nobody, ::pthread_self()))
                    return list.mWalkers[i];
            }
        }

        const ListenerList& mList;
        Walker& mWalker;
        const Members* mWalked;
    };

    template <typename Edit>
    void change(Edit edit) KV_EXCLUDES(mChange)
    {
        const ScopedLock hold(mChange);
        auto next = std::make_unique<Members>(*mMembers.load());
        edit(*next);
        mRetired.emplace_back(mMembers.exchange(next.release()));
        if (!isWalked())
            mRetired.clear(); // otherwise a later change frees them
    }

    bool isWalked() const
    {
        return std::any_of(mWalkers.begin(), mWalkers.end(),
                           [](const Walker& walker) { return walker.thread.load() != 0; });
    }

    bool toldByAnotherThread(const Listener* listener) const
    {
        return std::any_of(mWalkers.begin(), mWalkers.end(), [listener](const Walker& walker) {
            return walker.thread.load() != ::pthread_self() && walker.telling.load() == listener;
        });
    }

    CriticalSection mChange;
    std::vector<std::unique_ptr<const Members>> mRetired KV_GUARDED_BY(mChange);
    std::atomic<const Members*> mMembers{new Members};
    mutable std::array<Walker, kWalkers> mWalkers{};
};

} // namespace Korvanel
