/// A process that has run out of descriptors, for a test.
#pragma once
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

/// While it lives no more than `more` descriptors can be opened.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t more)
    {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &mBefore), 0);
        const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        EXPECT_GE(next, 0);
        ::close(next);
        const rlimit few{static_cast<rlim_t>(next) + more, mBefore.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    }

    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

    ~DescriptorLimit() { EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &mBefore), 0); }

private:
    rlimit mBefore{};
};
