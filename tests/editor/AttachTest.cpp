// How the editor comes to its window. The program lies in a bundle of its own, whose resources the
// tests make.
#include "shared/System/kvModule.h"
#include "tests/editor/EditorFixture.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class AttachTest : public EditorFixture
{
protected:
    void SetUp() override
    {
        EditorFixture::SetUp();
        const std::string contents =
            std::string(Korvanel::Module::getBundleMacho().folder.c_str()) + "Contents";
        resources = contents + "/Resources";
        bundle = ::open(contents.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_EQ(::flock(bundle, LOCK_EX), 0); // tests may run side by side
        fs::remove_all(resources);
        fs::create_directory(resources);
        view = std::make_unique<CLooperView>(effect.get());
    }

    void TearDown() override
    {
        EditorFixture::TearDown();
        fs::remove_all(resources);
        ::close(bundle);
    }

    void describe(const std::string& windows) const
    {
        putContent(resources + "/Looper.json", R"({"format": 1, "windows": {)" + windows + "}}");
    }

    toolkit::Status attach(const EditorHostWindow* window = nullptr)
    {
        EditorHostInfo host{&notifier, window};
        return view->attach(&host, 0, 0);
    }

    std::string resources;
    int bundle = -1;
};

constexpr const char* kBareWindow = R"("LooperView": {"size": [300, 200], "controls": []})";

} // namespace

TEST_F(AttachTest, WithoutADescriptionThereIsNoWindow)
{
    EXPECT_EQ(attach(), -10960);
    EXPECT_EQ(view->window(), nullptr);
    EXPECT_EQ(notifier.references, 1);
}

TEST_F(AttachTest, ADescriptionWithoutTheWindowIsNamed)
{
    describe(R"("Other": {"size": [300, 200], "controls": []})");
    EXPECT_EQ(attach(), -10961);
    EXPECT_EQ(view->window(), nullptr);
}

TEST_F(AttachTest, AHostWindowThatIsNotThereIsNamed)
{
    describe(kBareWindow);
    const EditorHostWindow gone{toolkit::ParentX11{1}, std::nullopt};
    EXPECT_EQ(attach(&gone), -10981);
    EXPECT_EQ(view->window(), nullptr);
}

TEST_F(AttachTest, AfterAFailureItCanBeTriedAgain)
{
    EXPECT_NE(attach(), toolkit::noErr);
    describe(kBareWindow);
    EXPECT_EQ(attach(), toolkit::noErr);
    EXPECT_TRUE(view->window()->isVisible());
}

TEST_F(AttachTest, AWindowWithoutControlsWorksAsFarAsItGoes)
{
    describe(kBareWindow);
    ASSERT_EQ(attach(), toolkit::noErr);

    effect->ChangePattern("Rock", "a.mid");
    view->performNumEdit(110, 5);
    view->AddPattern();

    EXPECT_EQ(effect->getVeloPlus().value, 5);
    EXPECT_FALSE(fs::exists(library / "Rock/a 1.mid")); // no style is listed
}

TEST_F(AttachTest, TheWindowTakesTheHostWindowsClass)
{
    describe(kBareWindow);
    const EditorHostWindow floating{{}, toolkit::WindowClass::floating};
    ASSERT_EQ(attach(&floating), toolkit::noErr);
    EXPECT_EQ(view->window()->windowClass(), toolkit::WindowClass::floating);

    view->remove();
    const EditorHostWindow unknown{{}, std::nullopt};
    ASSERT_EQ(attach(&unknown), toolkit::noErr);
    EXPECT_EQ(view->window()->windowClass(), toolkit::WindowClass::document);
}
