// A window in a component of a host that scales what is in it.
#include "tests/platform/toolkit/ToolkitFixture.h"

#include <juce_gui_basics/juce_gui_basics.h>

using namespace toolkit;

namespace {

class HostedWindowTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        make(""); // from the first window on, the display's errors end nothing
        host = std::make_unique<Host>();
        window = make(R"({"kind": "user pane", "id": 108, "bounds": [40, 30, 200, 100]})",
                      ParentComponent{static_cast<juce::Component*>(&host->scaled)});
        ASSERT_TRUE(window);
        ASSERT_EQ(window->show(), noErr);
    }

    void TearDown() override
    {
        window.reset();
        host.reset();
        ToolkitFixture::TearDown();
    }

    struct Host
    {
        Host()
        {
            outer.setSize(800, 600);
            outer.addAndMakeVisible(scaled);
            scaled.setSize(400, 300);
            outer.setVisible(true);
            outer.addToDesktop(0);
        }

        juce::Component outer;
        juce::Component scaled;
    };

    std::unique_ptr<Host> host;
};

} // namespace

TEST_F(HostedWindowTest, TheHostsScaleCounts)
{
    EXPECT_EQ(window->scaleFactor(), 1.0);

    host->scaled.setTransform(juce::AffineTransform::scale(1.5F));

    EXPECT_NEAR(window->scaleFactor(), 1.5, 1e-6);
    EXPECT_EQ(control(108).pixelBounds(), (Rect{60, 45, 300, 150}));
    window->setScale(2);
    EXPECT_NEAR(window->scaleFactor(), 3.0, 1e-6);
}
