// `looper edit`, run as a user runs it.
#include "tests/host/cli/RunLooper.h"
#include "tests/platform/toolkit/VirtualDisplay.h"
#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>

namespace {

class EditCommand : public testing::Test
{
protected:
    LibraryFolder folder;
};

} // namespace

TEST_F(EditCommand, ShowsAPatternOfTheLibrary)
{
    VirtualDisplay::get();

    const Outcome shown =
        runLooper({"edit", "Rock/Straight Eight", "--picture", folder / "window.png"});

    EXPECT_EQ(shown.code, 0) << shown.err;
    EXPECT_EQ(contentOf(folder / "window.png").substr(1, 3), "PNG");
}

TEST_F(EditCommand, ShowsAFileFromElsewhere)
{
    VirtualDisplay::get();
    folder.put("elsewhere.mid");

    const Outcome shown = runLooper(
        {"edit", folder / "elsewhere.mid", "--look", "light", "--picture", folder / "window.png"});

    EXPECT_EQ(shown.code, 0) << shown.err;
}

TEST_F(EditCommand, WithoutADisplaySaysSo)
{
    Environment environment;
    environment.set("DISPLAY", std::nullopt);

    const Outcome refused = runLooper({"edit"});

    EXPECT_EQ(refused.code, 6);
    EXPECT_NE(refused.err.find("there is no display to open a window on"), std::string::npos)
        << refused.err;
}

TEST_F(EditCommand, APatternThatIsNotThereIsRefused)
{
    VirtualDisplay::get();

    const Outcome refused = runLooper({"edit", "Rock/Nothing"});

    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("is neither a file nor a pattern of the library"), std::string::npos)
        << refused.err;
}

TEST_F(EditCommand, UnknownOptionsAreRefused)
{
    EXPECT_EQ(runLooper({"edit", "--nonsense"}).code, 1);
    EXPECT_EQ(runLooper({"edit", "--look", "pink"}).code, 1);
}

TEST_F(EditCommand, APictureThatCannotBeWrittenIsAnError)
{
    VirtualDisplay::get();

    EXPECT_EQ(runLooper({"edit", "--picture", "/nowhere/window.png"}).code, 3);
}
