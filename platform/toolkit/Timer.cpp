#include "platform/toolkit/Timer.h"

#include "platform/toolkit/EventLoop.h"

#include <juce_events/juce_events.h>

#include <algorithm>

namespace toolkit {

struct Timer::Impl final : juce::Timer
{
    ~Impl() override { stopTimer(); }

    void timerCallback() override
    {
        // The function may cancel this timer, restart it or delete it: it runs from a copy.
        const auto call = function;
        (*call)();
    }

    std::shared_ptr<std::function<void()>> function;
};

Timer::Timer() = default;

Timer::~Timer() = default;

void Timer::start(int periodMs, std::function<void()> function)
{
    if (!EventLoop::isThisThread() || !function)
        return;
    if (!mImpl)
        mImpl = std::make_unique<Impl>();
    mImpl->function = std::make_shared<std::function<void()>>(std::move(function));
    mImpl->startTimer(std::max(periodMs, 1));
}

void Timer::cancel()
{
    if (mImpl)
        mImpl->stopTimer();
}

bool Timer::isRunning() const
{
    return mImpl && mImpl->isTimerRunning();
}

} // namespace toolkit
