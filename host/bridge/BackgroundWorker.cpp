#include "host/bridge/BackgroundWorker.h"

#include <cerrno>

BackgroundWorker::BackgroundWorker(std::function<void()> work)
    : mWork(std::move(work))
{
    ::sem_init(&mWoken, 0, 0);
    mThread = std::thread([this] { run(); });
}

BackgroundWorker::~BackgroundWorker()
{
    mEnds = true;
    wake();
    mThread.join();
    ::sem_destroy(&mWoken);
}

void BackgroundWorker::run()
{
    for (;;) {
        while (::sem_wait(&mWoken) != 0 && errno == EINTR) {
        }
        if (mEnds)
            return;
        mWork();
    }
}
