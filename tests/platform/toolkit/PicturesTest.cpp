#include "tests/platform/toolkit/ToolkitFixture.h"

#include <filesystem>

using namespace toolkit;

namespace {

class PicturesTest : public ToolkitFixture
{
protected:
    void openEditorWindow()
    {
        InterfaceDescription description;
        std::string error;
        ASSERT_EQ(description.load(KV_SOURCE_FOLDER "/editor/resources", "Looper", error), noErr)
            << error;
        ASSERT_NE(description.window("LooperView"), nullptr);
        ASSERT_EQ(Window::create(*description.window("LooperView"), {}, window), noErr);
        fill();
        ASSERT_EQ(window->show(), noErr);
    }

    /// Something to look at: three styles, a few patterns, values in the fields.
    void fill()
    {
        control(100).setData(0, "text"_4cc, "Rock/Straight Eight");
        control(100).invalidate();
        for (const std::int32_t id : {106, 109, 114, 116, 118}) {
            control(id).setData(0, "text"_4cc, std::to_string(id - 110));
            control(id).setEnabled(false);
        }
        control(111).setValue(1);
        fillBrowser(99, {"Funk", "Jazz", "Rock"});
        fillBrowser(101, {"Fill", "Four on the Floor", "Straight Eight", "Shuffle"});
        control(99).dataBrowser()->setDisclosureColumn("styl"_4cc, true);
        control(99).dataBrowser()->setSelectedItems({3}, DataBrowser::Assign::assign);
        control(101).dataBrowser()->setSelectedItems({3}, DataBrowser::Assign::assign);
    }

    void fillBrowser(std::int32_t id, const std::vector<std::string>& names)
    {
        auto& browser = *control(id).dataBrowser();
        browser.setCallbacks({.itemData =
                                  [names](Control&, BrowserItem item, BrowserProperty property,
                                          ItemData& data, bool) {
                                      data.setText(property == "leng"_4cc ? "4"
                                                                          : names.at(item - 1));
                                      data.setBoolean(property == itemIsContainerProperty);
                                      return noErr;
                                  },
                              .notification = {},
                              .getContextualMenu = {},
                              .selectContextualMenu = {}});
        for (BrowserItem item = 1; item <= names.size(); ++item)
            browser.addItems(0, {item});
    }

    static std::string picture(const std::string& name) { return KV_PICTURES "/" + name + ".png"; }
};

} // namespace

TEST_F(PicturesTest, TheEditorsWindowIsDrawnInBothLooksAndAtEveryScale)
{
    openEditorWindow();
    control(101).focus();
    for (const double scale : {1.0, 1.5, 2.0}) {
        window->setScale(scale);
        const auto percent = std::to_string(static_cast<int>(scale * 100));
        setAppearance(Appearance::dark);
        EXPECT_EQ(window->savePicture(picture("editor-dark-" + percent)), noErr);
        setAppearance(Appearance::light);
        EXPECT_EQ(window->savePicture(picture("editor-light-" + percent)), noErr);
    }
    EXPECT_GT(std::filesystem::file_size(picture("editor-dark-200")), 10000u);
}

TEST_F(PicturesTest, APictureThatCannotBeWrittenIsRefused)
{
    openEditorWindow();

    EXPECT_EQ(window->savePicture("/nowhere/at/all.png"), paramErr);
}
