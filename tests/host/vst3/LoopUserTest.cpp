#include "host/vst3/LooperEditor.h"
#include "platform/toolkit/EventLoop.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

TEST(LoopUser, OnAnotherThreadThanTheLoopsItEndsNothing)
{
    std::promise<void> hasStarted;
    std::promise<void> mayStop;
    std::thread owner([&] {
        EXPECT_EQ(toolkit::EventLoop::start(), toolkit::noErr);
        hasStarted.set_value();
        mayStop.get_future().wait();
        toolkit::EventLoop::stop();
    });
    hasStarted.get_future().wait();

    {
        const LoopUser user;
    }
    EXPECT_TRUE(toolkit::EventLoop::isRunning());

    mayStop.set_value();
    owner.join();
}
