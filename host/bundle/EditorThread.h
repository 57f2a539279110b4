/// The thread on which all windows of this module live: a host that knows nothing but the module's
/// entry has no loop that could turn ours.
#pragma once
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// The message loop runs while there are editors; without any the thread only waits. Thread: any.
class EditorThread
{
public:
    /// Starts the thread at the first call; it ends with the process.
    static EditorThread& get();

    void enter(); ///< one editor more; returns when the loop runs
    /// One less. With the last one the loop ends, and the call returns when it has, except on the
    /// thread itself.
    void leave();

    /// Runs `function` on the thread and waits for it; what it throws passes through. Called on
    /// that thread itself, as by a host that is told of a closed window, it runs at once. Between
    /// the caller's enter and leave.
    void call(const std::function<void()>& function);

    EditorThread(const EditorThread&) = delete;
    EditorThread& operator=(const EditorThread&) = delete;

private:
    enum class Loop { None, Running, Ending };

    EditorThread();
    ~EditorThread();
    void run();

    bool hasWork() const { return mEditors > 0 && !mEnding; }

    std::mutex mLock;
    std::condition_variable mChanged;
    std::atomic<int> mEditors{0};
    std::atomic<bool> mEnding{false};
    Loop mLoop = Loop::None;
    std::thread mThread; // last: it uses the rest
};
