/// Calls a function again and again on the user-interface thread.
#pragma once
#include <functional>
#include <memory>

namespace toolkit {

class Timer
{
public:
    Timer();
    /// Cancels; may happen inside the timer's own function.
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// Calls `function` every `periodMs` milliseconds (at least 1) from now on, in place of what it
    /// called before. A busy thread loses calls rather than getting them all at once.
    /// Does nothing without a running loop. Thread: user interface.
    void start(int periodMs, std::function<void()> function);

    /// No call comes after this returns, also when called by the function itself.
    /// Thread: user interface.
    void cancel();

    bool isRunning() const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

} // namespace toolkit
