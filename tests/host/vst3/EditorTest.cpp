// The editor of the built bundle in a host's window.
#include "tests/host/vst3/JuceHost.h"
#include "tests/platform/toolkit/VirtualDisplay.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

class InVst3HostWithWindows : public testing::Test
{
protected:
    InVst3HostWithWindows()
    {
        hosted = bundles.load(Format::Vst3);
        Bundles::choose(Format::Vst3, *hosted, 0);
    }

    void open()
    {
        editor.reset(hosted->plugin->createEditor());
        ASSERT_NE(editor, nullptr);
        window.addAndMakeVisible(*editor);
        window.setSize(editor->getWidth(), editor->getHeight());
        window.setVisible(true);
        window.addToDesktop(0);
        turn();
    }

    void close()
    {
        editor.reset();
        window.removeFromDesktop();
        turn();
    }

    static void turn(int ms = 20) { juce::MessageManager::getInstance()->runDispatchLoopUntil(ms); }

    VirtualDisplay& display = VirtualDisplay::get(); ///< before everything that asks for one
    Bundles bundles{true};
    std::unique_ptr<HostedPlugin> hosted;
    juce::Component window;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
};

} // namespace

TEST_F(InVst3HostWithWindows, TheEditorHasTheSizeOfItsDescription)
{
    EXPECT_TRUE(hosted->plugin->hasEditor());
    open();
    EXPECT_EQ(editor->getWidth(), 720);
    EXPECT_EQ(editor->getHeight(), 540);
    close();
}

TEST_F(InVst3HostWithWindows, TheEditorOpensAndClosesFiftyTimesWhilePlaying)
{
    std::atomic<bool> ends{false};
    std::thread audio([&] {
        while (!ends)
            hosted->run(960);
    });
    for (int i = 0; i < 50; ++i) {
        open();
        close();
    }
    ends = true;
    audio.join();
    ASSERT_GT(hosted->sent.size(), 10u);
    for (std::size_t bar = 0; bar < hosted->sent.size() / 2; ++bar) {
        const auto start = static_cast<std::int64_t>(bar) * 96000;
        ASSERT_EQ(hosted->sent[2 * bar], on(start, 40));
        ASSERT_EQ(hosted->sent[2 * bar + 1], off(start + 24000, 40));
    }
}

TEST_F(InVst3HostWithWindows, AnInstanceMayGoBeforeItsWindowIsForgotten)
{
    open();
    editor.reset();
    hosted.reset();
    window.removeFromDesktop();
    turn();
}
