#include "platform/toolkit/EventLoop.h"

#include "platform/toolkit/native/Graveyard.h"

#include <juce_events/juce_events.h>
#include <juce_events/native/juce_linux_EventLoopInternal.h>
#include <juce_gui_basics/juce_gui_basics.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <mutex>
#include <poll.h>
#include <thread>
#include <vector>

namespace toolkit {

namespace {

using Clock = std::chrono::steady_clock;
using Functions = std::deque<std::function<void()>>;

constexpr int askAgainMs = 20; // how long a condition that another thread made true may go unseen

struct State
{
    std::mutex lock; // guards `posted` and `owner`, and holds the loop in place while one posts
    Functions posted;
    std::thread::id owner;
    std::atomic<bool> running{false};
    std::atomic<bool> quitting{false};

    // The rest belongs to the user-interface thread.
    int users = 0;
    std::unique_ptr<juce::ScopedJuceInitialiser_GUI> juce;
    std::vector<std::shared_ptr<void>> graveyard;
    std::vector<void (*)()> lastCalls;
    int runs = 0;   // calls of runUntil on the stack
    int nested = 0; // loops that run inside an event
};

State& state()
{
    static State theState;
    return theState;
}

/// Runs what was posted before this turn; what those functions post waits for the next one, so that
/// a function that posts itself again cannot starve the windows.
void runPosted()
{
    Functions batch;
    {
        const std::lock_guard hold(state().lock);
        std::swap(batch, state().posted);
    }
    for (auto& function : batch) {
        if (!state().running)
            return;
        const auto call = std::move(function);
        call();
    }
}

/// Posts `runPosted` to the toolkit's own queue. The caller holds the lock, so the queue is there.
void wakeLocked()
{
    juce::MessageManager::callAsync([] { runPosted(); });
}

void waitForEvents(int timeoutMs)
{
    std::vector<pollfd> watched;
    for (const int fd : juce::LinuxEventLoopInternal::getRegisteredFds())
        watched.push_back({fd, POLLIN, 0});
    ::poll(watched.data(), static_cast<nfds_t>(watched.size()), timeoutMs);
}

int waitMs(Clock::time_point end, bool forEver)
{
    if (forEver)
        return askAgainMs;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, askAgainMs));
}

} // namespace

Status EventLoop::start()
{
    auto& loop = state();
    const std::lock_guard hold(loop.lock);
    if (loop.running && loop.owner != std::this_thread::get_id())
        return paramErr;
    if (loop.users++ > 0)
        return noErr;
    loop.juce = std::make_unique<juce::ScopedJuceInitialiser_GUI>();
    loop.owner = std::this_thread::get_id();
    loop.quitting = false;
    loop.running = true;
    return noErr;
}

void EventLoop::stop()
{
    auto& loop = state();
    if (loop.users == 0 || --loop.users > 0)
        return;
    for (const auto& last : std::exchange(loop.lastCalls, {}))
        last();
    loop.graveyard.clear();
    Functions dropped;
    {
        const std::lock_guard hold(loop.lock);
        loop.running = false;
        std::swap(dropped, loop.posted);
    }
    dropped.clear(); // outside the lock: what a function holds may post when it is let go
    loop.juce.reset();
}

bool EventLoop::isRunning()
{
    return state().running;
}

bool EventLoop::isThisThread()
{
    const std::lock_guard hold(state().lock);
    return state().running && state().owner == std::this_thread::get_id();
}

bool EventLoop::runUntil(const std::function<bool()>& done, int timeoutMs)
{
    if (!isThisThread())
        return false;
    auto& runs = state().runs;
    const auto nested = runs > 0 ? std::make_unique<native::NestedLoop>() : nullptr;
    ++runs;
    const auto end = Clock::now() + std::chrono::milliseconds(std::max(timeoutMs, 0));
    bool result = done();
    while (!result && (timeoutMs < 0 || Clock::now() < end)) {
        waitForEvents(waitMs(end, timeoutMs < 0));
        turn();
        result = done();
    }
    --runs;
    return result;
}

void EventLoop::run()
{
    state().quitting = false;
    runUntil([] { return state().quitting.load(); }, -1);
    state().quitting = false; // an outer `run` has not been asked to return
}

void EventLoop::quit()
{
    state().quitting = true;
    post([] {}); // wakes the loop
}

void EventLoop::turn()
{
    auto* manager = juce::MessageManager::getInstanceWithoutCreating();
    if (manager == nullptr || !isThisThread())
        return;
    manager->runDispatchLoopUntil(0);
    // Who waits for an answer of the window system's takes in the events before it: those lie in
    // its library's queue then, and no descriptor tells of them.
    for (const int fd : juce::LinuxEventLoopInternal::getRegisteredFds())
        juce::LinuxEventLoopInternal::invokeEventLoopCallbackForFd(fd);
}

bool EventLoop::post(std::function<void()> function)
{
    auto& loop = state();
    const std::lock_guard hold(loop.lock);
    if (!loop.running)
        return false;
    loop.posted.push_back(std::move(function));
    if (loop.posted.size() == 1)
        wakeLocked();
    return true;
}

namespace native {

namespace {

void postRelease()
{
    EventLoop::post([] {
        if (state().nested == 0)
            std::exchange(state().graveyard, {}).clear();
    });
}

} // namespace

void releaseLater(std::shared_ptr<void> object)
{
    state().graveyard.push_back(std::move(object));
    postRelease();
}

void whenLoopStops(void (*last)())
{
    auto& calls = state().lastCalls;
    if (std::find(calls.begin(), calls.end(), last) == calls.end())
        calls.push_back(last);
}

NestedLoop::NestedLoop()
{
    ++state().nested;
}

NestedLoop::~NestedLoop()
{
    if (--state().nested == 0)
        postRelease();
}

} // namespace native

} // namespace toolkit
