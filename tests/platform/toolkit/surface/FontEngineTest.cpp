#include "platform/toolkit/FontEngine.h"

#include "platform/toolkit/FontEngineText.h"
#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace toolkit;

namespace {

constexpr FontStyle plain{0, 0, 12};

std::vector<std::uint32_t> charactersOf(std::string_view text)
{
    std::vector<std::uint32_t> characters;
    while (!text.empty())
        characters.push_back(takeCharacter(text));
    return characters;
}

std::string drawn(FontEngine& engine, const FontStyle& style, std::string_view text,
                  int percent = 100)
{
    const auto surface = Surface::create({0, 0, 60, 20}, {percent});
    engine.draw(*surface, {2, 15}, style, text, 0xFFFFFF);
    return letterArt(*surface);
}

} // namespace

TEST(TakeCharacter, ReadsSequencesOfEveryLength)
{
    EXPECT_EQ(charactersOf("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5"),
              (std::vector<std::uint32_t>{0x41, 0xE9, 0x20AC, 0x1F3B5}));
}

TEST(TakeCharacter, ReplacesEveryByteThatBeginsNothing)
{
    EXPECT_EQ(charactersOf("\xC3"), (std::vector<std::uint32_t>{0xFFFD}));
    EXPECT_EQ(charactersOf("\xE2\x82"), (std::vector<std::uint32_t>{0xFFFD, 0xFFFD}));
    EXPECT_EQ(charactersOf("\xC0\x80"), (std::vector<std::uint32_t>{0xFFFD, 0xFFFD}));
    EXPECT_EQ(charactersOf("\xED\xA0\x80"), (std::vector<std::uint32_t>{0xFFFD, 0xFFFD, 0xFFFD}));
    EXPECT_EQ(charactersOf("\xC3"
                           "A"),
              (std::vector<std::uint32_t>{0xFFFD, 0x41}));
    EXPECT_EQ(charactersOf("\xFF"), (std::vector<std::uint32_t>{0xFFFD}));
}

TEST(FontEngine, FindsAFamilyWhateverItsCase)
{
    FontEngine& engine = FontEngine::shared();
    const std::uint16_t mono = engine.familyNumber("DejaVu Sans Mono");
    EXPECT_NE(mono, 0);
    EXPECT_EQ(engine.familyNumber("dejavu sans mono"), mono);
}

TEST(FontEngine, AnUnknownFamilyIsTheDefaultOne)
{
    EXPECT_EQ(FontEngine::shared().familyNumber("No Such Family At All"), 0);
    EXPECT_EQ(FontEngine::shared().familyNumber(""), 0);
    EXPECT_EQ(FontEngine::shared().familyNumber("DejaVu Sans"), 0);
}

TEST(FontEngine, FixedLettersAreEquallyWide)
{
    FontEngine& engine = FontEngine::shared();
    const FontStyle mono{engine.familyNumber("DejaVu Sans Mono"), 0, 20};
    EXPECT_EQ(engine.width(mono, "iiiiiiiiii"), engine.width(mono, "MMMMMMMMMM"));
    EXPECT_EQ(engine.width(mono, "iiiiiiiiii"), 120); // 0.602 of the size for each letter
}

TEST(FontEngine, KernsPairs)
{
    FontEngine& engine = FontEngine::shared();
    const FontStyle large{0, 0, 100};
    EXPECT_LT(engine.width(large, "AV"), engine.width(large, "A") + engine.width(large, "V"));
}

TEST(FontEngine, BoldIsWiderThanPlain)
{
    FontEngine& engine = FontEngine::shared();
    EXPECT_GT(engine.width({0, FontStyle::bold, 40}, "Loop"), engine.width({0, 0, 40}, "Loop"));
}

TEST(FontEngine, SizesBelowOneAreTwelve)
{
    FontEngine& engine = FontEngine::shared();
    EXPECT_EQ(engine.width({0, 0, 0}, "Loop"), engine.width(plain, "Loop"));
    EXPECT_EQ(engine.width({0, 0, -7}, "Loop"), engine.width(plain, "Loop"));
    EXPECT_EQ(engine.metrics({0, 0, 0}).ascent, engine.metrics(plain).ascent);
}

TEST(FontEngine, MetricsSurroundTheBaseline)
{
    const TextMetrics metrics = FontEngine::shared().metrics({0, 0, 100});
    EXPECT_NEAR(metrics.ascent, 93, 1);
    EXPECT_NEAR(metrics.descent, 24, 1);
}

TEST(FontEngine, NoTextMeasuresAndDrawsNothing)
{
    FontEngine& engine = FontEngine::shared();
    EXPECT_EQ(engine.width(plain, ""), 0);
    EXPECT_EQ(drawn(engine, plain, "").find('#'), std::string::npos);
}

TEST(FontEngine, ASecondDrawingFromTheCacheIsTheSame)
{
    FontEngine& engine = FontEngine::shared();
    const std::string first = drawn(engine, plain, "Groove");
    EXPECT_NE(first.find('#'), std::string::npos);
    EXPECT_EQ(drawn(engine, plain, "Groove"), first);
}

TEST(FontEngine, UnderliningAddsALine)
{
    FontEngine& engine = FontEngine::shared();
    const std::string line = drawn(engine, {0, FontStyle::underline, 12}, "   ");
    EXPECT_EQ(line.find('#'), static_cast<std::size_t>(16 * 61 + 2));
}

TEST(FontEngine, MoreGlyphsThanTheCacheHoldsStillDraw)
{
    FontEngine& engine = FontEngine::shared();
    const auto surface = Surface::create({0, 0, 60, 20});
    for (std::int32_t size = 1; size <= 60; ++size)
        engine.draw(*surface, {0, 15}, {0, 0, size},
                    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                    "!\"#$%&'()*+,-./:;<=>?",
                    0xFFFFFF);
    EXPECT_NE(letterArt(*surface).find('#'), std::string::npos);
}

TEST(FontEngine, WithoutAnyFontMeasuresAndDrawsNothing)
{
    const auto folder = std::filesystem::temp_directory_path() / "kv-no-fonts-at-all";
    std::filesystem::create_directories(folder);
    FontEngine engine(folder.c_str());
    EXPECT_EQ(engine.familyNumber("DejaVu Sans Mono"), 0);
    EXPECT_EQ(engine.width(plain, "Groove"), 0);
    EXPECT_EQ(engine.metrics(plain).ascent, 0);
    EXPECT_EQ(drawn(engine, {0, FontStyle::underline, 12}, "Groove").find('#'), std::string::npos);
    std::filesystem::remove(folder);
}
