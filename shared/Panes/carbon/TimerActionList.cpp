#include "shared/Panes/carbon/TimerActionList.h"

#include <algorithm>
#include <limits>

namespace korvanel::macosx::carbon {

using Korvanel::Delegate;
using Korvanel::ScopedLock;

void TimerActionList::add(Delegate* delegate, unsigned periodMs)
{
    if (delegate == nullptr)
        return;
    const auto period = static_cast<std::int32_t>(periodMs);
    ScopedLock hold(mLock);
    mActions.push_back({DelegateRef(delegate), period, period});
}

void TimerActionList::remove(Delegate* delegate)
{
    if (delegate == nullptr)
        return;
    DelegateRef
        removed; // the last reference goes with the lock open: a delegate may come back here
    ScopedLock hold(mLock);
    const auto found = std::find_if(mActions.begin(), mActions.end(), [delegate](const Action& a) {
        return a.delegate.get() == delegate || *a.delegate == *delegate;
    });
    if (found == mActions.end())
        return;
    removed = found->delegate;
    mActions.erase(found);
}

void TimerActionList::elapsed(unsigned ms)
{
    for (const DelegateRef& delegate : takeDue(ms))
        delegate->invoke();
}

std::vector<TimerActionList::DelegateRef> TimerActionList::takeDue(unsigned ms)
{
    std::vector<DelegateRef> due;
    ScopedLock hold(mLock);
    for (auto action = mActions.begin(); action != mActions.end();) {
        const std::int64_t left = std::int64_t{action->remaining} - ms;
        action->remaining = static_cast<std::int32_t>(
            std::max<std::int64_t>(left, std::numeric_limits<std::int32_t>::min()));
        if (action->remaining >= 1) {
            ++action;
            continue;
        }
        due.push_back(action->delegate);
        if (action->period < 1) {
            action = mActions.erase(action);
        } else {
            action->remaining = action->period;
            ++action;
        }
    }
    return due;
}

} // namespace korvanel::macosx::carbon
