// A host's calls, by the order of the virtual operations alone.
#include "effect/CLooper.h"
#include "shared/System/kvStream.h"
#include "tests/effect/Fakes.h"
#include "tests/effect/Mirrors.h"
#include "tests/effect/NotedEffect.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Korvanel;

namespace {

using Names = std::vector<std::string>;

class NotedEditor : public MidiEffectEditor
{
public:
    explicit NotedEditor(Names& reached)
        : mReached(reached)
    {
    }

    ~NotedEditor() override { mReached.emplace_back("destructor"); }

    void getEditorSize(int*, int*) override { mReached.emplace_back("getEditorSize"); }

    std::int32_t attach(void*, int, int) override
    {
        mReached.emplace_back("attach");
        return 0;
    }

    void remove() override { mReached.emplace_back("remove"); }

private:
    Names& mReached;
};

MirrorEffect* mirrorOf(CLooper& effect)
{
    return seenAs<MirrorEffect>(static_cast<MidiEffect*>(&effect));
}

} // namespace

TEST(Slots, TheHostsOperationsOfTheEffect)
{
    Names reached;
    MirrorEffect* const effect = mirrorOf(*new NotedEffect(reached));
    ListQueue queue;
    stringStream stream;
    effect->initialize(nullptr);
    effect->terminate();
    effect->enable();
    effect->disable();
    effect->start(0);
    effect->stop(0);
    effect->loop(0, 1);
    effect->slice(0, 1, &queue);
    effect->input(&queue);
    effect->hasEditor();
    effect->editor();
    effect->save(static_cast<OutputStream*>(&stream));
    effect->load(static_cast<InputStream*>(&stream));
    effect->loadBytes(nullptr, 0);
    effect->find("");
    delete effect;
    EXPECT_EQ(reached, (Names{"Initialize", "Terminate", "Enable", "Disable", "processStart",
                              "processStop", "processLoop", "process", "processInput", "hasEditor",
                              "createEditor", "SaveTo", "LoadFrom stream", "LoadFrom bytes",
                              "get_interface", "destructor"}));
}

TEST(Slots, TheEffectsOwnOperationsBehindThem)
{
    Names reached;
    NotedEffect noted(reached);
    MirrorEffect* const effect = mirrorOf(noted);
    stringStream stream;
    effect->current(nullptr);
    effect->choose(nullptr);
    effect->add(nullptr);
    effect->removeObserver(nullptr);
    effect->shift(0);
    effect->silent(false);
    effect->document(nullptr);
    effect->folder();
    effect->render(static_cast<OutputStream*>(&stream), 1);
    effect->drop(static_cast<InputStream*>(&stream), nullptr);
    effect->restart();
    effect->press();
    EXPECT_EQ(reached,
              (Names{"GetCurrentPattern", "SetCurrentPattern", "AddObserver", "RemoveObserver",
                     "VelocityShift", "SilentPlay", "GetDocumentPath", "GetPatternsDir",
                     "SaveTrack", "LoadTrack", "stopAndStart", "pressPlay"}));
}

TEST(Slots, TheLooperInterface)
{
    Names reached;
    NotedEffect effect(reached);
    auto* const looper = seenAs<MirrorLooper>(static_cast<ILooper*>(&effect));
    looper->current(nullptr);
    looper->choose(nullptr);
    looper->add(nullptr);
    looper->remove(nullptr);
    looper->shift(0);
    looper->silent(false);
    EXPECT_EQ(reached, (Names{"GetCurrentPattern", "SetCurrentPattern", "AddObserver",
                              "RemoveObserver", "VelocityShift", "SilentPlay"}));
}

TEST(Slots, TheEditor)
{
    Names reached;
    MidiEffectEditor* const made = new NotedEditor(reached);
    auto* const editor = seenAs<MirrorEditor>(made);
    editor->size(nullptr, nullptr);
    editor->attach(nullptr, 0, 0);
    editor->remove();
    delete editor;
    EXPECT_EQ(reached, (Names{"getEditorSize", "attach", "remove", "destructor"}));
}

TEST(Slots, AHostDrivesTheEffectThroughThem)
{
    CLooper looper;
    looper.set_track(pattern(480, {noteAt(0, 10), noteAt(480, 10)}));
    MirrorEffect* const effect = mirrorOf(looper);
    ListQueue queue;
    effect->initialize(nullptr);
    effect->enable();
    effect->start(0);
    effect->slice(0, 479, &queue);
    EXPECT_EQ(queue.events.size(), 1u);
    queue.events.clear();
    queue.Insert(0, 0xC0, 5, 0);
    effect->input(&queue);
    EXPECT_TRUE(queue.events.empty());
    auto* const found = seenAs<MirrorLooper>(effect->find("Korvanel::ILooper"));
    ASSERT_NE(found, nullptr);
    found->shift(500);
    EXPECT_EQ(looper.getVeloPlus().value, 127);
    effect->stop(480);
    effect->disable();
    EXPECT_FALSE(looper.isEnabled());
    effect->terminate();
    EXPECT_EQ(looper.getCurrentTick(), 0);
}
