// The window of the built bundle, as a host gets it that knows nothing but the bundle's entry.
#include "editor/EditorHost.h"
#include "effect/MidiEffect.h"
#include "shared/System/kvStream.h"
#include "tests/platform/toolkit/VirtualDisplay.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <chrono>
#include <dlfcn.h>
#include <memory>
#include <thread>

namespace {

constexpr toolkit::Point kThru{512, 270};

class BundleEditorTest : public testing::Test
{
protected:
    BundleEditorTest()
    {
        environment.set("XDG_DATA_HOME", home.path());
        library = ::dlopen(KV_BUNDLE, RTLD_NOW | RTLD_LOCAL);
        using Create = Korvanel::MidiEffect* (*)();
        effect.reset(reinterpret_cast<Create>(::dlsym(library, "CreatePlugin"))());
        effect->Initialize(nullptr);
    }

    ~BundleEditorTest() override
    {
        effect->Terminate();
        effect.reset();
        ::dlclose(library);
    }

    std::string state() const
    {
        Korvanel::stringStream stream;
        effect->SaveTo(stream);
        return stream.text();
    }

    TemporaryFolder home;
    Environment environment;
    void* library = nullptr;
    std::unique_ptr<Korvanel::MidiEffect> effect;
};

template <typename Condition>
bool until(Condition condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition() && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
    return condition();
}

} // namespace

TEST_F(BundleEditorTest, WithoutADisplayThereIsAnEditorThatCannotBeAttached)
{
    environment.set("DISPLAY", std::nullopt);
    ASSERT_TRUE(effect->hasEditor());
    const std::unique_ptr<Korvanel::MidiEffectEditor> editor(effect->createEditor());
    ASSERT_NE(editor, nullptr);
    int width = 0;
    int height = 0;
    editor->getEditorSize(&width, &height);
    EXPECT_EQ(width, 100);
    EXPECT_EQ(height, 100);
    EditorHostInfo host{nullptr, nullptr};
    EXPECT_EQ(editor->attach(&host, 0, 0), toolkit::noDisplayErr);
}

TEST_F(BundleEditorTest, AClickInTheHostsWindowChangesTheEffect)
{
    VirtualDisplay& display = VirtualDisplay::get();
    const unsigned long parent = display.makeWindow(0, 0, 720, 540);
    const EditorHostWindow window{toolkit::ParentX11{parent}, std::nullopt};
    EditorHostInfo host{nullptr, &window};
    const std::unique_ptr<Korvanel::MidiEffectEditor> editor(effect->createEditor());
    ASSERT_EQ(editor->attach(&host, 0, 0), toolkit::noErr);
    ASSERT_TRUE(until([&] { return display.pixel(kThru) != 0; }));
    const std::string before = state();

    display.click(kThru);

    EXPECT_TRUE(until([&] { return state() != before; }));
    editor->remove();
    EXPECT_EQ(display.childrenOf(parent), 0u);
    display.destroyWindow(parent);
}

TEST_F(BundleEditorTest, TheModuleStaysAsItsThreadRunsOn)
{
    const std::unique_ptr<Korvanel::MidiEffectEditor> editor(effect->createEditor());
    ASSERT_NE(editor, nullptr);
    void* again = ::dlopen(KV_BUNDLE, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_EQ(again, library);
    ::dlclose(again);
    ::dlclose(library); // the last one
    int width = 0;
    editor->getEditorSize(&width, nullptr);
    EXPECT_EQ(width, 100);
    library = ::dlopen(KV_BUNDLE, RTLD_NOW | RTLD_NOLOAD);
    EXPECT_NE(library, nullptr);
}

TEST_F(BundleEditorTest, OpensAndClosesFiftyTimes)
{
    VirtualDisplay& display = VirtualDisplay::get();
    const unsigned long parent = display.makeWindow(0, 0, 720, 540);
    const EditorHostWindow window{toolkit::ParentX11{parent}, std::nullopt};
    EditorHostInfo host{nullptr, &window};
    for (int i = 0; i < 50; ++i) {
        const std::unique_ptr<Korvanel::MidiEffectEditor> editor(effect->createEditor());
        ASSERT_EQ(editor->attach(&host, 0, 0), toolkit::noErr);
    }
    EXPECT_EQ(display.childrenOf(parent), 0u);
    display.destroyWindow(parent);
}
