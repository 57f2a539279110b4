/// A thread for what the audio thread must not do, for hosts that have none to offer.
#pragma once
#include <atomic>
#include <functional>
#include <semaphore.h>
#include <thread>

class BackgroundWorker
{
public:
    /// @param work  called on the worker's thread at least once after each wake; throws nothing
    explicit BackgroundWorker(std::function<void()> work);
    ~BackgroundWorker(); ///< waits for work under way
    BackgroundWorker(const BackgroundWorker&) = delete;
    BackgroundWorker& operator=(const BackgroundWorker&) = delete;

    void wake() { ::sem_post(&mWoken); } ///< [audio thread]; does not wait

private:
    void run();

    std::function<void()> mWork;
    std::atomic<bool> mEnds{false};
    sem_t mWoken;
    std::thread mThread;
};
