#include "host/cli/PlayOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>

namespace {

constexpr double kMicrosecondsPerMinute = 60e6;

bool isPowerOfTwo(int value)
{
    return value > 0 && (value & (value - 1)) == 0;
}

Meter parseMeter(const std::string& text)
{
    Meter meter;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%d/%d%c", &meter.numerator, &meter.denominator, &rest) != 2 ||
        meter.numerator < 1 || meter.numerator > 99 || !isPowerOfTwo(meter.denominator) ||
        meter.denominator > 64)
        throw CLI::ValidationError("--meter", "'" + text + "' is not a meter such as 4/4 or 7/8");
    return meter;
}

std::optional<RandomVelocity> parseRandom(const std::string& text)
{
    if (text == "off")
        return std::nullopt;
    RandomVelocity random;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%d:%d:%d%c", &random.min, &random.max, &random.strength,
                    &rest) != 3)
        throw CLI::ValidationError(
            "--random", "'" + text + "' is not min:max:strength, for example -15:10:100, or off");
    if (random.min < -127 || random.min > 0 || random.max < 0 || random.max > 127 ||
        random.strength < 0 || random.strength > 100)
        throw CLI::ValidationError("--random", "min is -127..0, max 0..127 and strength 0..100");
    return random;
}

} // namespace

double PlayOptions::tempoOf(const Korvanel::CMidiTrack& pattern) const
{
    const double own = kMicrosecondsPerMinute / std::max<std::uint32_t>(pattern.tempo, 1);
    return tempo.value_or(std::clamp(own, 1.0, 1000.0));
}

Meter PlayOptions::meterOf(const Korvanel::CMidiTrack& pattern) const
{
    return meter.value_or(
        Meter{std::max<int>(pattern.numerator, 1), std::max<int>(pattern.denominator, 1)});
}

void addPlayOptions(CLI::App& command, PlayOptions& options)
{
    command.add_option("--tempo", options.tempo, "Beats per minute (the pattern's own)")
        ->check(CLI::Range(1.0, 1000.0));
    command.add_option_function<std::string>(
        "--meter", [&options](const std::string& text) { options.meter = parseMeter(text); },
        "Meter, for example 7/8 (the pattern's own)");
    const std::map<std::string, int> types{{"half", 0}, {"normal", 1}, {"double", 2}};
    command.add_option("--tempo-type", options.tempoType, "half, normal or double (normal)")
        ->transform(CLI::IsMember(types, CLI::ignore_case) &
                    CLI::Transformer(types, CLI::ignore_case));
    command.add_option("--velocity", options.velocity, "Added to every velocity, -127..127 (0)")
        ->check(CLI::Range(-127, 127));
    command.add_option_function<std::string>(
        "--random", [&options](const std::string& text) { options.random = parseRandom(text); },
        "Random velocity as min:max:strength, or off (off)");
    command.add_option("--bundle", options.bundle,
                       "The plug-in to load (the one installed with this program)");
}
