/// The process's message loop. Windows, timers and posted functions live on its thread, the user
/// interface thread: the one that called `start` first.
///
/// A program without a loop of its own starts one and calls `run` or `runUntil`. A plug-in whose
/// host calls it at intervals starts one and calls `turn` at each. Where the host's own loop
/// drives the toolkit already, `start` only counts the user.
#pragma once
#include "platform/toolkit/Status.h"

#include <functional>

namespace toolkit {

class EventLoop
{
public:
    /// Makes the calling thread the user-interface thread. Counted: every start needs its stop.
    /// @return noErr; paramErr when the loop already belongs to another thread
    static Status start();

    /// Takes one start back. The last one ends the loop: what was posted and has not run is
    /// dropped, timers fall silent, windows still open are closed. Thread: user interface.
    static void stop();

    /// Whether a loop has been started, so that a posted function will run. Thread: any.
    static bool isRunning();

    /// Whether the caller is on the user-interface thread of a running loop. Thread: any.
    static bool isThisThread();

    /// Hands events round until `done` answers true or `timeoutMs` milliseconds have gone by;
    /// below 0 waits for ever. `done` is asked again after every event and at least every 20 ms.
    /// May be nested.
    /// @return what `done` answered last; false when no loop runs. Thread: user interface.
    static bool runUntil(const std::function<bool()>& done, int timeoutMs);

    /// Hands events round until `quit`. Thread: user interface.
    static void run();

    /// Makes the innermost `run` return after the current event. Thread: any.
    static void quit();

    /// Hands round what waits now, and returns. Thread: user interface.
    static void turn();

    /// Runs `function` later on the user-interface thread, in the order of the calls.
    /// @return false, and the function is dropped, when no loop runs. Thread: any.
    static bool post(std::function<void()> function);

    EventLoop() = delete;
};

} // namespace toolkit
