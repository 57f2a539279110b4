#include "shared/Panes/kvGraphics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Korvanel;

TEST(Color, FullIntensityIsAByteShiftedUp)
{
    Color color;
    color.SetRGB(255, 128, 1);
    EXPECT_EQ(color, (Color{0xFF00, 0x8000, 0x0100}));
}

TEST(Color, ClampsItsValuesFirst)
{
    Color color;
    color.SetRGB(256, -1, 100'000);
    EXPECT_EQ(color, (Color{0xFF00, 0, 0xFF00}));
}

TEST(Color, HasNamedConstants)
{
    EXPECT_EQ(Color::Black, (Color{0, 0, 0}));
    EXPECT_EQ(Color::Grey, (Color{0x8000, 0x8000, 0x8000}));
    EXPECT_EQ(Color::White, (Color{0xFF00, 0xFF00, 0xFF00}));
    EXPECT_EQ(Color::Red, (Color{0xFF00, 0, 0}));
    EXPECT_EQ(Color::Yellow, (Color{0xFF00, 0xFF00, 0}));
    EXPECT_EQ(Color::Green, (Color{0, 0xFF00, 0}));
    EXPECT_EQ(Color::Cyan, (Color{0, 0xFF00, 0xFF00}));
    EXPECT_EQ(Color::Blue, (Color{0, 0, 0xFF00}));
    EXPECT_EQ(Color::Magenta, (Color{0xFF00, 0, 0xFF00}));
}

TEST(Tools, AreCountedAndGoWithTheirLastReference)
{
    const std::int32_t before = Base::numAllocations;
    {
        const Ref<Pen> pen = Pen::Create(Color::Red);
        const Ref<Brush> brush = Brush::Create(Color::Blue);
        const Ref<Font> font = Font::Create(Font::Type::System);
        EXPECT_EQ(Base::numAllocations, before + 3);
        EXPECT_EQ(pen->GetColor(), Color::Red);
        EXPECT_EQ(brush->GetColor(), Color::Blue);
    }
    EXPECT_EQ(Base::numAllocations, before);
}

TEST(Font, TheDefaultIsAllZero)
{
    const auto font = Ref<Font>::adopt(new Font);
    EXPECT_EQ(font->GetStyle(), 0);
    EXPECT_EQ(font->GetFamily(), 0);
    EXPECT_EQ(font->GetSize(), 0);
}

TEST(Font, CutsItsSizeToAWholeNumber)
{
    EXPECT_EQ(Font::Create("DejaVu Sans", 11.9F, 0, Font::Bold, Font::Unit::Point)->GetSize(), 11);
    EXPECT_EQ(Font::Create("DejaVu Sans", 0.9F, 0, Font::Bold, Font::Unit::Point)->GetSize(), 0);
}

TEST(Font, ASizeThatIsNoneIsSound)
{
    const auto sizeOf = [](float size) {
        return Font::Create(nullptr, size, 0, Font::Plain, Font::Unit::Point)->GetSize();
    };
    EXPECT_EQ(sizeOf(std::nanf("")), 0);
    EXPECT_EQ(sizeOf(-std::numeric_limits<float>::infinity()), 0);
    EXPECT_EQ(sizeOf(std::numeric_limits<float>::infinity()), 1000);
}

TEST(Font, LooksItsFamilyUpByName)
{
    const auto familyOf = [](const char* name) {
        return Font::Create(name, 12, 0, Font::Plain, Font::Unit::Point)->GetFamily();
    };
    EXPECT_NE(familyOf("DejaVu Sans Mono"), 0);
    EXPECT_EQ(familyOf("No Such Family At All"), 0);
    EXPECT_EQ(familyOf(nullptr), 0);
}

TEST(Font, OfAContextTakesItsFamily)
{
    GraphicsContext g(nullptr);
    const Ref<Font> fixed = Font::Create(Font::Type::Fixed);
    g.SetTool(fixed.get());
    const Ref<Font> font = Font::Create(g, 20, Font::Italic, Font::Unit::Point);
    EXPECT_EQ(font->GetFamily(), fixed->GetFamily());
    EXPECT_EQ(font->GetSize(), 20);
    EXPECT_EQ(font->GetStyle(), Font::Italic);
}
