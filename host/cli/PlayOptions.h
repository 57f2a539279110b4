/// How a pattern is to be played: what `play` and `render` share.
#pragma once
#include "midi/CMidiTrack.h"

#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
}

struct Meter
{
    int numerator = 4;
    int denominator = 4;
};

struct RandomVelocity
{
    int min = 0;
    int max = 0;
    int strength = 0; ///< percent
};

/// Without a choice of the user's a pattern plays as it was written.
struct PlayOptions
{
    std::optional<double> tempo; ///< beats per minute; else the pattern's own
    std::optional<Meter> meter;  ///< else the pattern's own
    int tempoType = 1;           ///< 0 half, 1 normal, 2 double
    int velocity = 0;            ///< -127..127
    std::optional<RandomVelocity> random;
    std::string bundle; ///< path of the plug-in; empty for the one that belongs to this program

    double tempoOf(const Korvanel::CMidiTrack& pattern) const;
    Meter meterOf(const Korvanel::CMidiTrack& pattern) const;
};

/// Adds the options to a command; the options object outlives it.
void addPlayOptions(CLI::App& command, PlayOptions& options);
