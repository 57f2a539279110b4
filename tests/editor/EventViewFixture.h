/// An event view in a window, with an effect whose position the tests move, and a temporary folder
/// for what is dragged out.
#pragma once
#include "editor/DragFolder.h"
#include "editor/EventView.h"
#include "effect/CLooper.h"
#include "tests/effect/Fakes.h"
#include "tests/platform/toolkit/ToolkitFixture.h"
#include "tests/support/Folders.h"

#include <filesystem>
#include <memory>
#include <string>

/// The pane stands at (40, 30) and is 200 x 100, so that the pattern has 198 x 98.
class EventViewFixture : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        environment.set("TMPDIR", temporary.path());
        effect = std::make_unique<CLooper>();
        effect->SetPatternsDir(library.path().c_str());
        effect->set_track(pattern(240, {noteAt(0, 240, 15), noteAt(480, 470, 16)}));
        effect->SetPatternName("Straight Eight.mid");
        effect->setRandomVelo(false); // a file is the same each time
        effect->connect(new Recorder(240));
        effect->Enable();
        view = std::make_unique<EventView>(effect.get());
        open(R"({"kind": "user pane", "id": 108, "bounds": [40, 30, 200, 100]})");
    }

    void TearDown() override
    {
        view->Destroy();
        view.reset();
        effect->Terminate();
        effect.reset();
        ToolkitFixture::TearDown();
    }

    void attach()
    {
        view->AttachTo(control(108), *window, {40, 30, 200, 100});
        ASSERT_TRUE(shows(0, 0, 0xC0C0C0)); // the frame
    }

    /// The host plays up to this tick, the pattern being 960 long.
    void playTo(std::int32_t tick)
    {
        ListQueue queue;
        effect->process(mPlayed, tick - 1, queue);
        mPlayed = tick;
    }

    unsigned pixel(int x, int y) { return display->pixel(screen(x, y)); }

    bool shows(int x, int y, unsigned color)
    {
        return until([=, this] { return pixel(x, y) == color; });
    }

    toolkit::Point screen(int x, int y) { return window->toScreen({40 + x, 30 + y}); }

    /// What dragged files lie in, made for files that are there before.
    std::string dragged(const std::string& name) const
    {
        return dragFolder(temporary.path()) + "/" + name;
    }

    bool wasDragged() const { return !std::filesystem::is_empty(dragged("")); }

    TemporaryFolder library;
    TemporaryFolder temporary;
    Environment environment;
    std::unique_ptr<CLooper> effect;
    std::unique_ptr<EventView> view;

private:
    std::int32_t mPlayed = 0;
};
