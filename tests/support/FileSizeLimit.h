/// A disk that fills up, for a test.
#pragma once
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

/// While it lives no file of this process grows beyond `bytes`: a write that would fails.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : mHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &mBefore), 0);
        const rlimit small{bytes, mBefore.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    ~FileSizeLimit()
    {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &mBefore), 0);
        std::signal(SIGXFSZ, mHandler);
    }

private:
    void (*mHandler)(int);
    rlimit mBefore{};
};
