/// Hands for a menu, which has its own loop until it closes.
#pragma once
#include "platform/toolkit/Timer.h"
#include "tests/platform/toolkit/VirtualDisplay.h"

#include <functional>
#include <memory>
#include <utility>

/// Does what a user does once a menu is up and listens, and again a second later if it is still
/// there; then gives the menu up, so that a test fails and does not hang. Until the result is let
/// go.
inline std::unique_ptr<toolkit::Timer> inMenu(VirtualDisplay& display, std::function<void()> user)
{
    constexpr int deaf = 4; // ticks: a menu ignores everything for the first quarter of a second
    constexpr int again = 10;
    constexpr int patience = 30;
    auto timer = std::make_unique<toolkit::Timer>();
    timer->start(100, [&display, user = std::move(user), tick = 0]() mutable {
        tick = display.hasMenu() ? tick + 1 : 0;
        if (tick % again == deaf)
            tick < patience ? user() : display.key("Escape");
    });
    return timer;
}
