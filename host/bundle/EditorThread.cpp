#include "host/bundle/EditorThread.h"

#include "platform/toolkit/EventLoop.h"

#include <future>
#include <memory>

EditorThread& EditorThread::get()
{
    static EditorThread theThread;
    return theThread;
}

EditorThread::EditorThread()
    : mThread([this] { run(); })
{
}

EditorThread::~EditorThread()
{
    {
        const std::lock_guard hold(mLock);
        mEnding = true;
    }
    mChanged.notify_all();
    toolkit::EventLoop::post([] {}); // wakes a loop that still runs
    if (mThread.get_id() == std::this_thread::get_id())
        mThread.detach(); // a window's handler ends the process
    else
        mThread.join();
}

void EditorThread::run()
{
    std::unique_lock hold(mLock);
    for (;;) {
        mChanged.wait(hold, [this] { return mEditors > 0 || mEnding; });
        if (mEnding)
            return;
        toolkit::EventLoop::start(); // nobody else in this module does
        mLoop = Loop::Running;
        mChanged.notify_all();
        while (hasWork()) {
            hold.unlock();
            toolkit::EventLoop::runUntil([this] { return !hasWork(); }, -1);
            hold.lock();
        }
        mLoop = Loop::Ending;
        hold.unlock();
        toolkit::EventLoop::stop();
        hold.lock();
        mLoop = Loop::None;
        mChanged.notify_all();
    }
}

void EditorThread::enter()
{
    std::unique_lock hold(mLock);
    ++mEditors;
    mChanged.notify_all();
    mChanged.wait(hold, [this] { return mLoop == Loop::Running; });
}

void EditorThread::leave()
{
    std::unique_lock hold(mLock);
    --mEditors;
    toolkit::EventLoop::post([] {}); // the loop looks whether it is still wanted
    if (mThread.get_id() != std::this_thread::get_id())
        mChanged.wait(hold, [this] { return mLoop == Loop::None || mEditors > 0; });
}

void EditorThread::call(const std::function<void()>& function)
{
    if (toolkit::EventLoop::isThisThread())
        return function();
    const auto task = std::make_shared<std::packaged_task<void()>>(function);
    std::future<void> done = task->get_future();
    if (toolkit::EventLoop::post([task] { (*task)(); }))
        done.get();
}
