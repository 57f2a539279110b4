// The piano roll as it reaches a picture: approved pictures of whole patterns, and single pixels of
// each rule.
#include "effect/CLooper.h"
#include "shared/Panes/kvGraphics.h"
#include "tests/effect/Fakes.h"
#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Korvanel;
using toolkit::Surface;

namespace {

constexpr std::uint32_t kYellow = 0xFFFF80;
constexpr std::uint32_t kGrey = 0x808080;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kBlack = 0;

MfxEvent event(MfxEvent::Type type, std::int32_t time)
{
    MfxEvent result{};
    result.type = type;
    result.time = time;
    return result;
}

MfxEvent controller(std::int32_t time, int value)
{
    MfxEvent result = event(MfxEvent::Controller, time);
    result.key = 1;
    result.velocity = static_cast<std::uint8_t>(value);
    return result;
}

MfxEvent pressure(MfxEvent::Type type, std::int32_t time, int amount)
{
    MfxEvent result = event(type, time);
    result.amount = static_cast<std::uint8_t>(amount);
    return result;
}

MfxEvent patch(std::int32_t time, int program)
{
    MfxEvent result = event(MfxEvent::Patch, time);
    result.key = static_cast<std::uint8_t>(program);
    return result;
}

MfxEvent wheel(std::int32_t time, std::int16_t value)
{
    MfxEvent result = event(MfxEvent::Wheel, time);
    result.setWheel(value);
    return result;
}

/// A drawing of 120 x 88 with a margin of 2 around the roll: header 10, note area 74, in rows of 14
/// for up to five keys; the columns are 2 to 118.
class DrawEventsTest : public testing::Test
{
protected:
    static constexpr Rect place{2, 2, 116, 84};

    void draw(const CMidiTrack& track, Point origin = {})
    {
        effect.set_track(track);
        surface = Surface::create({0, 0, 120, 88});
        GraphicsContext g(surface.get());
        g.FillRect({0, 0, 120, 88}, {0xFF00, 0xFF00, 0x8000});
        g.SetOrigin(origin.x, origin.y);
        effect.DrawEvents(g, {place.x - origin.x, place.y - origin.y, place.width, place.height});
    }

    void draw(const std::vector<MfxEvent>& events) { draw(pattern(240, events)); }

    std::uint32_t at(int x, int y) const { return surface->pixel(x, y) & 0xFFFFFF; }

    /// The first row of a column, from the bottom up, that is not black; 86 when there is no line.
    int topOfLine(int x) const
    {
        int y = 86;
        while (y > 0 && at(x, y - 1) == kBlack)
            --y;
        return y;
    }

    bool marginIsUntouched() const
    {
        for (int y = 0; y < 88; ++y)
            for (int x = 0; x < 120; ++x)
                if (!place.contains({x, y}) && at(x, y) != kYellow)
                    return false;
        return true;
    }

    CLooper effect;
    std::unique_ptr<Surface> surface;
};

/// Two bars of drums with open and closed strokes, fills, a pitch wheel and a controller.
CMidiTrack drums()
{
    std::vector<MfxEvent> events;
    for (int step = 0; step < 32; ++step)
        events.push_back(noteAt(step * 60, 50, step % 4 == 3 ? 6 : 4));
    for (int beat = 0; beat < 8; ++beat)
        events.push_back(noteAt(beat * 240, 120, beat % 2 == 0 ? 15 : 17));
    for (int beat = 0; beat < 8; ++beat)
        events.push_back(noteAt(beat * 240 + 120, 60, 8 + beat));
    events.push_back(noteAt(1680, 240, 21));
    events.push_back(noteAt(1800, 120, 49));
    for (int step = 0; step < 12; ++step)
        events.push_back(wheel(960 + step * 20, static_cast<std::int16_t>(-8192 + step * 1300)));
    for (int step = 0; step < 12; ++step)
        events.push_back(controller(1200 + step * 20, 127 - step * 10));
    return pattern(240, events);
}

/// Scales of eighths through the bars of a waltz.
CMidiTrack waltz(int bars)
{
    CMidiTrack track;
    track.numerator = 3;
    constexpr int steps[] = {0, 2, 4, 5, 7, 9, 11, 12};
    for (int i = 0; i < bars * 6; ++i)
        track.insert(noteAt(i * 120, 115, 60 + steps[i % 8]));
    return track;
}

/// As the event view does it: its own background behind the roll.
testing::AssertionResult looksApproved(const std::string& name, const CMidiTrack& track, Point size,
                                       int percent)
{
    CLooper effect;
    effect.set_track(track);
    const auto surface = Surface::create({0, 0, size.x, size.y}, {percent});
    GraphicsContext g(surface.get());
    g.FillRect({0, 0, size.x, size.y}, {0xFF00, 0xFF00, 0x8000});
    effect.DrawEvents(g, {1, 1, size.x - 2, size.y - 2});
    return looksLike("editor/" + name + "-" + std::to_string(percent), *surface, 8);
}

} // namespace

TEST_F(DrawEventsTest, AnEmptyPatternDrawsNothing)
{
    draw(CMidiTrack());
    for (int x = 0; x < 120; x += 3)
        for (int y = 0; y < 88; ++y)
            ASSERT_EQ(at(x, y), kYellow);
}

TEST_F(DrawEventsTest, ANoteIsFilledAndBevelled)
{
    draw({noteAt(240, 480, 15), noteAt(950, 10, 16)}); // a bar: x 31 to 88; the row's top is 70
    EXPECT_EQ(at(40, 71), 0x008000u);
    EXPECT_EQ(at(40, 70), kWhite);
    EXPECT_EQ(at(31, 72), kWhite);
    EXPECT_EQ(at(88, 70), kBlack);
    EXPECT_EQ(at(88, 72), kBlack);
    EXPECT_EQ(at(40, 83), kBlack);
    EXPECT_EQ(at(31, 83), kBlack);
    EXPECT_EQ(at(89, 72), kYellow);
    EXPECT_EQ(at(40, 84), kYellow); // the rows stand two pixels above the bottom
}

TEST_F(DrawEventsTest, ThreeKeysStandLowInFiveRows)
{
    draw({noteAt(0, 960, 15), noteAt(0, 960, 16), noteAt(0, 960, 17)});
    EXPECT_EQ(at(60, 71), 0x008000u);
    EXPECT_EQ(at(60, 57), 0x008000u);
    EXPECT_EQ(at(60, 43), 0x008000u);
    EXPECT_EQ(at(60, 42), kWhite);
    EXPECT_EQ(at(60, 41), kYellow);
    EXPECT_EQ(at(60, 13), kYellow);
}

TEST_F(DrawEventsTest, AVariantHasItsOwnColourInItsStrokesRow)
{
    draw({noteAt(0, 480, 4), noteAt(480, 480, 6), noteAt(0, 960, 8)});
    EXPECT_EQ(at(20, 75), 0x408040u);
    EXPECT_EQ(at(90, 75), 0x800000u);
    EXPECT_EQ(at(20, 60), 0x808000u);
}

TEST_F(DrawEventsTest, LaterEventsLieOverEarlierOnes)
{
    draw({noteAt(0, 960, 4), noteAt(240, 240, 6), noteAt(0, 960, 8)});
    EXPECT_EQ(at(40, 75), 0x800000u);
    EXPECT_EQ(at(80, 75), 0x408040u);
}

TEST_F(DrawEventsTest, BeatsStandInTheHeaderAndBarsDownToTheBottom)
{
    draw({noteAt(0, 10, 15), noteAt(1910, 10, 15)}); // two bars: the second at x 60
    EXPECT_EQ(at(60, 2), kGrey);
    EXPECT_EQ(at(60, 85), kGrey);
    EXPECT_EQ(at(31, 2), kGrey); // the third beat
    EXPECT_EQ(at(31, 12), kGrey);
    EXPECT_EQ(at(31, 13), kYellow);
    EXPECT_EQ(at(2, 85), kYellow); // none at the first beat
}

TEST_F(DrawEventsTest, BarNumbersStandRightOfTheirLines)
{
    draw({noteAt(1910, 10, 15)});
    const auto hasInk = [this](int left, int right) {
        for (int x = left; x < right; ++x)
            for (int y = 2; y < 14; ++y)
                if (at(x, y) != kYellow && at(x, y) != kGrey)
                    return true;
        return false;
    };
    EXPECT_TRUE(hasInk(4, 12));
    EXPECT_TRUE(hasInk(62, 70));
    EXPECT_FALSE(hasInk(76, 118));
}

TEST_F(DrawEventsTest, OtherEventsAreLinesAsHighAsTheirValue)
{
    // 74 pixels of note area for the largest value of each
    draw({noteAt(950, 10, 15), pressure(MfxEvent::KeyAftertouch, 120, 127), controller(240, 64),
          patch(360, 32), pressure(MfxEvent::ChannelAftertouch, 480, 1), wheel(600, 0),
          wheel(660, 8191), wheel(720, -8192)});
    EXPECT_EQ(topOfLine(16), 12);
    EXPECT_EQ(topOfLine(31), 86 - 37);
    EXPECT_EQ(topOfLine(45), 86 - 18);
    EXPECT_EQ(topOfLine(60), 86);
    EXPECT_EQ(topOfLine(74), 86 - 37);
    EXPECT_EQ(topOfLine(81), 12);
    EXPECT_EQ(topOfLine(89), 86);
}

TEST_F(DrawEventsTest, AControllerAtTheStartIsNotDrawn)
{
    draw({controller(0, 127), noteAt(950, 10, 15)});
    EXPECT_EQ(topOfLine(2), 86);
    draw({pressure(MfxEvent::KeyAftertouch, 0, 127), noteAt(950, 10, 15)});
    EXPECT_EQ(topOfLine(2), 12);
}

TEST_F(DrawEventsTest, RecordsOfOtherTypesAreNotDrawn)
{
    MfxEvent strange = controller(480, 127);
    strange.type = 6;
    MfxEvent none = controller(240, 127);
    none.type = MfxEvent::NotChannel;
    draw({none, strange, noteAt(950, 10, 15)});
    EXPECT_EQ(topOfLine(31), 86);
    EXPECT_EQ(topOfLine(60), 86);
}

TEST_F(DrawEventsTest, NothingReachesOverTheEdges)
{
    MfxEvent strange = pressure(MfxEvent::KeyAftertouch, 480, 255); // twice the most
    MfxEvent noKey = noteAt(0, 960, 200);
    draw({noKey, noteAt(0, MfxEvent::kOpen, 15), strange, controller(960, 127),
          noteAt(960, MfxEvent::kOpen, 16)});
    EXPECT_TRUE(marginIsUntouched());

    draw({noteAt(1919 * 40, 10, 15)}); // bars of one pixel: their numbers pile up
    EXPECT_TRUE(marginIsUntouched());
}

TEST_F(DrawEventsTest, TheClipIsAsBeforeUnderAnyOrigin)
{
    draw({noteAt(0, 960, 15)});
    const std::vector<std::uint32_t> expected(surface->pixels().begin(), surface->pixels().end());

    draw(pattern(240, {noteAt(0, 960, 15)}), {5, 9});

    EXPECT_EQ(expected,
              std::vector<std::uint32_t>(surface->pixels().begin(), surface->pixels().end()));
    EXPECT_EQ(surface->clip(), toolkit::SurfaceRegion({0, 0, 120, 88}));
}

TEST_F(DrawEventsTest, NoRoomIsNoHarm)
{
    effect.set_track(drums());
    GraphicsContext nowhere(nullptr);
    effect.DrawEvents(nowhere, place);
    surface = Surface::create({0, 0, 120, 88});
    GraphicsContext g(surface.get());
    effect.DrawEvents(g, {10, 10, 0, 0});
    effect.DrawEvents(g, {10, 10, -2, -2});
    for (const std::uint32_t pixel : surface->pixels())
        ASSERT_EQ(pixel, 0u);
}

TEST(DrawEventsPictures, Drums)
{
    for (const int percent : {100, 150, 200})
        EXPECT_TRUE(looksApproved("drums", drums(), {688, 116}, percent));
}

TEST(DrawEventsPictures, SmallAndLarge)
{
    EXPECT_TRUE(looksApproved("small", drums(), {200, 48}, 100));
    EXPECT_TRUE(looksApproved("large", drums(), {1200, 400}, 100));
}

TEST(DrawEventsPictures, Waltz)
{
    EXPECT_TRUE(looksApproved("waltz", waltz(4), {688, 116}, 100));
    EXPECT_TRUE(looksApproved("waltz-long", waltz(24), {688, 116}, 100));
}
