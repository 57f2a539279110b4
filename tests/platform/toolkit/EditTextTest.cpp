#include "tests/platform/toolkit/ToolkitFixture.h"

#include <vector>

using namespace toolkit;

namespace {

const std::string twoFields =
    R"({"kind": "edit text", "id": 106, "bounds": [20, 20, 100, 24], "title": "12"},
       {"kind": "edit text", "id": 109, "bounds": [20, 60, 100, 24]})";

class EditTextTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        open(twoFields);
        control(106).setAction([this](Control&, ControlPart part) { committed.push_back(part); });
        ASSERT_TRUE(until([this] { return control(106).focus(); }));
    }

    std::vector<ControlPart> committed;
};

} // namespace

TEST_F(EditTextTest, TypingReplacesWhatFocusSelectedAndReturnCommits)
{
    display->type("345");
    ASSERT_TRUE(until([this] { return text(106) == "345"; }));
    EXPECT_TRUE(committed.empty());

    display->key("Return");

    ASSERT_TRUE(until([this] { return !committed.empty(); }));
    EXPECT_EQ(committed, std::vector<ControlPart>{editTextPart});
}

TEST_F(EditTextTest, TabCommitsAndGoesToTheNextField)
{
    display->type("7");
    display->key("Tab");

    EXPECT_TRUE(until([this] { return control(109).hasFocus() && committed.size() == 1; }));
    EXPECT_EQ(text(106), "7");
}

TEST_F(EditTextTest, AClickElsewhereCommits)
{
    display->type("8");
    ASSERT_TRUE(until([this] { return text(106) == "8"; }));

    click(109);

    EXPECT_TRUE(until([this] { return committed.size() == 1; }));
}

TEST_F(EditTextTest, EscapePutsTheTextBack)
{
    display->type("9");
    ASSERT_TRUE(until([this] { return text(106) == "9"; }));

    display->key("Escape");

    EXPECT_TRUE(until([this] { return text(106) == "12"; }));
    EXPECT_TRUE(committed.empty());
}

TEST_F(EditTextTest, ReturnWithoutAChangeCommitsNothing)
{
    display->key("Return");
    settle();

    EXPECT_TRUE(committed.empty());
}

TEST_F(EditTextTest, AKeyThatTheFilterRefusesDoesNotArrive)
{
    control(106).setKeyFilter([](Control&, const KeyStroke& key) {
        return key.character >= '0' && key.character <= '9';
    });

    display->type("a1b2");

    EXPECT_TRUE(until([this] { return text(106) == "12"; }));
}

TEST_F(EditTextTest, TheFilterHearsOfReturnAndBackspaceByTheirOldNumbers)
{
    std::vector<char32_t> heard;
    control(106).setKeyFilter([&heard](Control&, const KeyStroke& key) {
        heard.push_back(key.character);
        return true;
    });

    display->key("BackSpace");
    display->key("Left");
    display->key("Return");

    ASSERT_TRUE(until([&heard] { return heard.size() == 3; }));
    EXPECT_EQ(heard, (std::vector<char32_t>{8, 28, 13}));
}

TEST_F(EditTextTest, AFilterMayClearTheKeyboardFocus)
{
    control(106).setKeyFilter([](Control& field, const KeyStroke& key) {
        if (key.character == 13)
            field.window().clearKeyboardFocus();
        return false;
    });

    display->key("Return");

    EXPECT_TRUE(until([this] { return window->focusedControl() == nullptr; }));
}

TEST_F(EditTextTest, ValidationMayChangeTheTextBeforeTheAction)
{
    std::string seenByAction;
    control(106).setValidation([](Control& field) { field.setData(5, "text"_4cc, "99"); });
    control(106).setAction([&](Control&, ControlPart) { seenByAction = text(106); });

    display->type("500");
    display->key("Return");

    EXPECT_TRUE(until([&] { return seenByAction == "99"; }));
}

TEST_F(EditTextTest, ADisabledFieldShowsItsTextAndTakesNoKey)
{
    control(106).setEnabled(false);
    EXPECT_EQ(control(106).setData(5, "text"_4cc, "-15"), noErr);

    click(106);
    display->type("1");
    settle();

    EXPECT_EQ(text(106), "-15");
}

TEST_F(EditTextTest, OnlyTextIsData)
{
    EXPECT_EQ(control(106).setData(0, "vali"_4cc, "x"), propertyNotSupportedErr);
    EXPECT_EQ(control(106).setData(10, "text"_4cc, "x"), propertyNotSupportedErr);
}

TEST_F(EditTextTest, BytesThatAreNoTextAreShownAsReplacements)
{
    control(106).setData(0, "text"_4cc,
                         "a\xff"
                         "b\xc3");

    EXPECT_EQ(text(106), "a\xef\xbf\xbd"
                         "b\xef\xbf\xbd");
}
