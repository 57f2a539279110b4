/// The editor of an effect, open on a display of the tests' own, with a library on the disk.
#pragma once
#include "editor/CLooperView.h"
#include "effect/CLooper.h"
#include "platform/toolkit/Control.h"
#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/Look.h"
#include "tests/platform/toolkit/VirtualDisplay.h"
#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

/// Counts how often the user closed the window.
class CountingNotifier : public EditorCloseNotifier
{
public:
    std::int32_t keepRef() override { return ++references; }

    std::int32_t releaseRef() override { return --references; }

    void editorClosed() override { ++closed; }

    int references = 1;
    int closed = 0;
};

class EditorFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        display = &VirtualDisplay::get();
        display->moveTo({1599, 1199}); // out of the window's way
        ASSERT_EQ(toolkit::EventLoop::start(), toolkit::noErr);
        toolkit::setAppearance(toolkit::Appearance::dark);
        library.put("Rock/a.mid");
        library.put("Rock/b.mid");
        library.put("Jazz/c.mid");
        effect = std::make_unique<CLooper>();
        effect->SetPatternsDir(library.path().c_str());
        effect->Initialize(nullptr);
    }

    void TearDown() override
    {
        view.reset();
        effect->Terminate();
        effect.reset();
        toolkit::EventLoop::stop();
    }

    void open()
    {
        view = std::make_unique<CLooperView>(effect.get());
        EditorHostInfo host{&notifier, nullptr};
        ASSERT_EQ(view->attach(&host, 0, 0), toolkit::noErr);
        ASSERT_TRUE(until([this] { return view->window()->nativeId() != 0; }));
        settle();
    }

    static bool until(const std::function<bool()>& condition)
    {
        return toolkit::EventLoop::runUntil(condition, 60000);
    }

    /// Lets everything happen that has been caused so far.
    static void settle()
    {
        bool seen = false;
        toolkit::EventLoop::runUntil([] { return false; }, 100);
        toolkit::EventLoop::post([&seen] { seen = true; });
        EXPECT_TRUE(until([&seen] { return seen; }));
    }

    toolkit::Control& control(int id) const
    {
        toolkit::Control* found = view->window()->findControl({0, id});
        if (found == nullptr)
            throw std::runtime_error("the window has no control " + std::to_string(id));
        return *found;
    }

    toolkit::Point onScreen(toolkit::Point inWindow) const
    {
        return view->window()->toScreen(inWindow);
    }

    void click(int id, unsigned button = 1)
    {
        display->click(onScreen(control(id).bounds().centre()), button);
    }

    /// The upper arrow is in the upper half.
    void clickUp(int id) { clickArrow(id, 1); }

    void clickDown(int id) { clickArrow(id, 3); }

    std::string text(int id) const
    {
        std::string shown;
        EXPECT_EQ(control(id).data(toolkit::entireControl, toolkit::fourCharCode("text"), shown),
                  toolkit::noErr);
        return shown;
    }

    LibraryFolder library;
    std::unique_ptr<CLooper> effect;
    CountingNotifier notifier;
    std::unique_ptr<CLooperView> view;
    VirtualDisplay* display = nullptr;

private:
    void clickArrow(int id, int quarter)
    {
        const toolkit::Rect place = control(id).bounds();
        display->click(onScreen({place.x + place.width / 2, place.y + place.height * quarter / 4}));
    }
};
