// Blocks on one thread, everything else on another.
#include "library/PatternTree.h"
#include "tests/host/bridge/BridgeHost.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

/// Plays, loops and changes programs on a thread of its own while it lives.
class Playing
{
public:
    explicit Playing(PluginBridge& bridge)
        : mBridge(bridge)
    {
        mThread = std::thread([this] { play(); });
    }

    ~Playing()
    {
        mEnds = true;
        mThread.join();
    }

    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;

    int blocks() const { return mBlocks; }

private:
    void play()
    {
        const std::array<std::uint8_t, 2> program{0xC0, 0};
        ListSink sink;
        while (!mEnds) {
            mBridge.parameters().fromHost(0, static_cast<float>(mBlocks % 50));
            mBridge.parameters().fromHost(8, static_cast<float>(mBlocks % 3));
            mBridge.beginBlock(1000, sink);
            if (mBlocks % 40 == 0)
                mBridge.position(0, playingAt(0));
            if (mBlocks % 5 == 0)
                mBridge.message(500, program);
            mBridge.endBlock();
            sink.sent.clear();
            ++mBlocks;
        }
    }

    PluginBridge& mBridge;
    std::atomic<bool> mEnds{false};
    std::atomic<int> mBlocks{0};
    std::thread mThread;
};

} // namespace

TEST(PluginBridgeThreads, EverythingElseMayHappenDuringABlock)
{
    BridgeHost host;
    host.library.put("Rock/a.mid", midiFileWithNote(41));
    CLooper::patternTree()->update();
    host.bridge.effect().set_track(fourQuarters());
    const std::string state = host.bridge.saveState();
    const Playing playing(host.bridge);
    int reported = 0;
    for (int i = 0; i < 200 || playing.blocks() < 200; ++i) {
        host.bridge.work();
        const bool loaded = i % 3 != 0 || host.bridge.loadState(state);
        EXPECT_TRUE(loaded);
        EXPECT_FALSE(host.bridge.saveState().empty());
        host.bridge.parameters().reportChanges([&](std::size_t, int) { ++reported; });
        host.bridge.setBypassed(i % 7 == 0);
        std::this_thread::yield();
    }
    EXPECT_GT(reported, 0);
}
