// Hosts and editors are built without each other's headers: they know the order of the virtual
// operations only. These mirrors declare it independently.
#include "tests/editor/EditorFixture.h"

#include <string>

namespace {

struct MirrorEditor
{
    virtual ~MirrorEditor() = default;
    virtual void size(int*, int*) = 0;
    virtual std::int32_t attach(void*, int, int) = 0;
    virtual void remove() = 0;
};

struct MirrorListener
{
    virtual void disconnect() = 0;
    virtual void refresh() = 0;
    virtual void loaded() = 0;
    virtual void update() = 0;
    virtual void start() = 0;
    virtual void patterns() = 0;
    virtual void program(int) = 0;
    virtual void selected() = 0;
    virtual ~MirrorListener() = default;
};

struct MirrorNotifier
{
    virtual ~MirrorNotifier() = default;

    virtual std::int32_t keep() { return ++references; }

    virtual std::int32_t release() { return --references; }

    virtual void fourth() { ++closed; }

    int references = 1;
    int closed = 0;
};

/// Notes by number which of its operations was called.
struct NotingListener : CLooper::Listener
{
    explicit NotingListener(std::string& note)
        : told(note)
    {
    }

    ~NotingListener() override { told += '9'; }

    void disconnect() override { told += '1'; }

    void RefreshChPort() override { told += '2'; }

    void loaded() override { told += '3'; }

    void update() override { told += '4'; }

    void startPlaying() override { told += '5'; }

    void patternsChanged() override { told += '6'; }

    void programChange(int number) override { told += std::to_string(number); }

    void patternSelected() override { told += '8'; }

    std::string& told;
};

class EditorSlots : public EditorFixture
{
};

} // namespace

TEST_F(EditorSlots, AHostDrivesTheEditorThroughThem)
{
    auto editor = std::make_unique<CLooperView>(effect.get());
    const CLooperView& seen = *editor;
    auto* mirror =
        reinterpret_cast<MirrorEditor*>(static_cast<Korvanel::MidiEffectEditor*>(editor.release()));
    EditorHostInfo host{&notifier, nullptr};
    int width = 0;
    int height = 0;

    mirror->size(&width, &height);
    EXPECT_EQ(width + height, 200);
    EXPECT_EQ(mirror->attach(&host, 0, 0), 0);
    ASSERT_NE(seen.window(), nullptr);
    EXPECT_TRUE(seen.window()->isVisible());
    mirror->remove();
    EXPECT_EQ(seen.window(), nullptr);
    mirror->attach(&host, 0, 0);
    EXPECT_EQ(notifier.references, 2);
    delete mirror;
    EXPECT_EQ(notifier.references, 1);
}

TEST_F(EditorSlots, TheEditorTellsItsHostByTheFourthOperation)
{
    MirrorNotifier mirror;
    view = std::make_unique<CLooperView>(effect.get());
    EditorHostInfo host{reinterpret_cast<EditorCloseNotifier*>(&mirror), nullptr};
    ASSERT_EQ(view->attach(&host, 0, 0), toolkit::noErr);
    EXPECT_EQ(mirror.references, 2);

    view->window()->dispose(); // as the close box does

    EXPECT_EQ(mirror.closed, 1);
    EXPECT_EQ(mirror.references, 1);
}

TEST(ListenerSlots, ComeInOrderAndTheDestructorLast)
{
    std::string told;
    auto* mirror = reinterpret_cast<MirrorListener*>(
        static_cast<CLooper::Listener*>(new NotingListener(told)));

    mirror->disconnect();
    mirror->refresh();
    mirror->loaded();
    mirror->update();
    mirror->start();
    mirror->patterns();
    mirror->program(7);
    mirror->selected();
    delete mirror;

    EXPECT_EQ(told, "123456789");
}
