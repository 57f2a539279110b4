/// A running loop on a display of the tests' own, a window to put controls into, and the verbs that
/// a user has.
#pragma once
#include "platform/toolkit/Control.h"
#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/InterfaceDescription.h"
#include "platform/toolkit/Look.h"
#include "platform/toolkit/Window.h"
#include "tests/platform/toolkit/MenuUser.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

class ToolkitFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        display = &VirtualDisplay::get();
        display->moveTo({1599, 1199}); // out of every window's way
        ASSERT_EQ(toolkit::EventLoop::start(), toolkit::noErr);
        toolkit::setAppearance(toolkit::Appearance::dark);
    }

    void TearDown() override
    {
        window.reset();
        toolkit::EventLoop::stop();
    }

    /// Opens a window whose controls are the elements of a description's list.
    void open(const std::string& controls, const toolkit::WindowParent& parent = {})
    {
        window = make(controls, parent);
        ASSERT_TRUE(window);
        ASSERT_EQ(window->show(), toolkit::noErr);
        ASSERT_TRUE(until([this] { return window->nativeId() != 0 && isPainted(); }));
    }

    static std::shared_ptr<toolkit::Window> make(const std::string& controls,
                                                 const toolkit::WindowParent& parent = {})
    {
        toolkit::InterfaceDescription description;
        std::string error;
        const auto text = R"({"format": 1, "windows": {"Test": {"size": [400, 300],
            "minimumSize": [200, 100], "resizable": true, "controls": [)" +
                          controls + "]}}}";
        EXPECT_EQ(description.parse(text, error), toolkit::noErr) << error;
        const auto* test = description.window("Test");
        std::shared_ptr<toolkit::Window> made;
        if (test && toolkit::Window::create(*test, parent, made) != toolkit::noErr)
            ADD_FAILURE() << "no window";
        return made;
    }

    /// Whether the window's corner has its own colour on the screen.
    bool isPainted()
    {
        const auto corner = window->toScreen({0, 0});
        return display->pixel(corner) == 0x1d2025;
    }

    /// Waits for a condition with the loop running; 20 seconds are for ever, even with a sanitizer.
    static bool until(const std::function<bool()>& condition)
    {
        return toolkit::EventLoop::runUntil(condition, 20000);
    }

    /// Clicks until it has worked: a menu that has just opened ignores clicks for a moment.
    bool untilClicked(toolkit::Point point, const std::function<bool()>& condition)
    {
        return until([&] {
            if (condition())
                return true;
            display->click(point);
            return false;
        });
    }

    std::unique_ptr<toolkit::Timer> inMenu(std::function<void()> user)
    {
        return ::inMenu(*display, std::move(user));
    }

    /// Lets everything happen that the last input causes, for tests of what must not happen: a
    /// later event that certainly arrives is waited for.
    void settle()
    {
        bool seen = false;
        toolkit::EventLoop::runUntil([] { return false; }, 100);
        toolkit::EventLoop::post([&seen] { seen = true; });
        EXPECT_TRUE(until([&seen] { return seen; }));
    }

    toolkit::Control& control(std::int32_t id)
    {
        auto* found = window->findControl({0, id});
        if (!found)
            throw std::runtime_error("the window has no control " + std::to_string(id));
        return *found;
    }

    toolkit::Point middle(std::int32_t id)
    {
        return window->toScreen(control(id).bounds().centre());
    }

    void click(std::int32_t id, unsigned button = 1) { display->click(middle(id), button); }

    std::string text(std::int32_t id)
    {
        std::string result;
        EXPECT_EQ(control(id).data(0, toolkit::fourCharCode("text"), result), toolkit::noErr);
        return result;
    }

    VirtualDisplay* display = nullptr;
    std::shared_ptr<toolkit::Window> window;
};
