#include "host/cli/PianoRoll.h"

#include "tests/midi/MidiBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

Korvanel::CMidiTrack twoVoices(int bars)
{
    Korvanel::CMidiTrack track;
    for (int bar = 0; bar < bars; ++bar) {
        track.insert(note(bar * 960, 36, 240, 127));
        track.insert(note(bar * 960 + 240, 38, 60, 10));
    }
    track.lastTick = bars * 960;
    return track;
}

} // namespace

TEST(PianoRoll, NamesKeys)
{
    EXPECT_EQ(noteName(60), "C4");
    EXPECT_EQ(noteName(0), "C-1");
    EXPECT_EQ(noteName(127), "G9");
    EXPECT_EQ(noteName(70), "A#4");
}

TEST(PianoRoll, DrawsVoicesFromTheTopWithVelocityAndLength)
{
    EXPECT_EQ(drawPianoRoll(twoVoices(1), 80), "         1\n"
                                               "  D2   38│·   ░   ·   ·   │\n"
                                               "  C2   36│█───·   ·   ·   │\n");
}

TEST(PianoRoll, LongerPatternsGetCoarserSteps)
{
    const std::string eighths = drawPianoRoll(twoVoices(4), 60);
    EXPECT_NE(eighths.find("│█─· · · │"), std::string::npos) << eighths;
}

TEST(PianoRoll, ANoteLateInItsBarIsDrawnInIt)
{
    Korvanel::CMidiTrack track = twoVoices(8);
    track.insert(note(7 * 120, 46, 60, 100)); // the last eighth of the first bar
    EXPECT_NE(drawPianoRoll(track, 60).find("A#2  46│···█│····│"), std::string::npos);
}

TEST(PianoRoll, WhatDoesNotFitIsSaid)
{
    const std::string roll = drawPianoRoll(twoVoices(40), 60);
    EXPECT_NE(roll.find("(bars 11 to 40 are not drawn)"), std::string::npos) << roll;
}

TEST(PianoRoll, NoLineIsWiderThanTheTerminal)
{
    for (const int columns : {40, 61, 80, 200}) {
        const std::string roll = drawPianoRoll(twoVoices(13), columns);
        std::istringstream lines(roll.substr(0, roll.find("  (bars")));
        for (std::string line; std::getline(lines, line);) {
            const auto width = std::count_if(line.begin(), line.end(),
                                             [](char ch) { return (ch & 0xC0) != 0x80; });
            EXPECT_LE(width, columns) << line;
        }
    }
}
