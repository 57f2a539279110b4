#include "host/vst3/PlayHeadReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Bars start on sixty-fourth notes in every meter that people write.
constexpr double kGrid = 1.0 / 16;
/// Quarters that a host may be wrong by where a bar starts just now.
constexpr double kHostRounding = 1.0 / 240;
constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();

using TimeSignature = juce::AudioPlayHead::TimeSignature;

bool isMeter(const TimeSignature& meter)
{
    return meter.numerator > 0 && meter.denominator > 0;
}

/// A host that does not count in quarters plays the whole song at one tempo.
double quartersOf(const PlayHeadReader::PositionInfo& info)
{
    if (const auto quarters = info.getPpqPosition())
        return *quarters;
    const auto seconds = info.getTimeInSeconds();
    const auto tempo = info.getBpm();
    return seconds && tempo ? *seconds * *tempo / 60 : kNowhere;
}

} // namespace

HostPosition PlayHeadReader::read(const PositionInfo& info)
{
    HostPosition position;
    position.playing = info.getIsPlaying();
    position.quarters = quartersOf(info);
    position.tempo = info.getBpm().orFallback(0);
    const auto meter = info.getTimeSignature().orFallback(TimeSignature{0, 0});
    position.numerator = meter.numerator;
    position.denominator = meter.denominator;
    if (const auto loop = info.getLoopPoints()) {
        position.looping = info.getIsLooping();
        position.loopStart = loop->ppqStart;
        position.loopEnd = loop->ppqEnd;
    }
    if (const auto here = bar(info))
        alignTo(*here, position);
    return position;
}

/// The host's bar, or the one that its quarters lie in when nothing but its meter ever was.
std::optional<PlayHeadReader::Bar> PlayHeadReader::bar(const PositionInfo& info)
{
    const auto meter = info.getTimeSignature();
    const double quarters = quartersOf(info);
    if (!meter || !isMeter(*meter) || !std::isfinite(quarters))
        return std::nullopt;
    const double length = 4.0 * meter->numerator / meter->denominator;
    if (const auto start = info.getPpqPositionOfLastBarStart(); start && mBelievesBars) {
        // Some hosts count bars as if each had four quarters, from 1: in the first bar they show.
        mBelievesBars = quarters >= *start - kHostRounding && quarters <= *start + length + kGrid;
        if (mBelievesBars)
            return Bar{*start, length};
    }
    return Bar{std::floor((quarters + kHostRounding) / length) * length, length};
}

void PlayHeadReader::alignTo(const Bar& bar, HostPosition& position)
{
    // Half a grid step ahead, so that no bar's start lies where rounding decides between two bars.
    const double bars = std::floor((bar.start + kGrid / 2) / bar.length);
    const double behind = std::round((bar.start - bars * bar.length) / kGrid) * kGrid;
    position.quarters -= behind;
    position.loopStart -= behind;
    position.loopEnd -= behind;
    position.bar = static_cast<int>(std::clamp(bars, -1e6, 1e6));
    position.barStart = bars * bar.length;
}
