/// The tasks behind a root pane's StartPeriodic, StopPeriodic and DeferTask.
#pragma once
#include "shared/Panes/kvDelegate.h"
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"

#include <cstdint>
#include <vector>

namespace korvanel::macosx::carbon {

/// Counts milliseconds down and calls what is due. Thread: any; what is due is called on the
/// thread that reports the time, with the lock open, so a task may add and remove tasks.
class TimerActionList
{
public:
    /// @param delegate  held until it is removed or, with a period of 0, called; null is ignored
    /// @param periodMs  read as signed: what is below 1 is due at the next report, once
    void add(Korvanel::Delegate* delegate, unsigned periodMs) KV_EXCLUDES(mLock);

    /// Takes out the first action whose delegate is `delegate` or equals it: one action a call.
    void remove(Korvanel::Delegate* delegate) KV_EXCLUDES(mLock);

    /// Reports time gone by. However long it was, an action is due at most once. The next period
    /// begins now: what a report came too late is not made up for.
    void elapsed(unsigned ms) KV_EXCLUDES(mLock);

private:
    using DelegateRef = Korvanel::Ref<Korvanel::Delegate>;

    struct Action
    {
        DelegateRef delegate;
        std::int32_t period;
        std::int32_t remaining;
    };

    std::vector<DelegateRef> takeDue(unsigned ms) KV_EXCLUDES(mLock);

    Korvanel::CriticalSection mLock;
    std::vector<Action> mActions KV_GUARDED_BY(mLock);
};

} // namespace korvanel::macosx::carbon
