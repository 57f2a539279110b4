#include "host/lv2/Lv2Time.h"

#include <lv2/atom/util.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

template <typename Atom>
double bodyOf(const LV2_Atom& atom)
{
    return static_cast<double>(reinterpret_cast<const Atom&>(atom).body);
}

/// Takes a value that makes sense.
void update(double& value, const std::optional<double>& told, double lowest)
{
    if (told && *told >= lowest && *told <= 1e6)
        value = *told;
}

} // namespace

void Lv2Time::prepare(double sampleRate)
{
    mSampleRate = sampleRate;
    mSpeed = 0;
    mTempo = 120;
    mBeatsPerBar = 4;
    mBeatUnit = 4;
    mBar = 0;
    mInQuarters = false;
}

bool Lv2Time::isPosition(const LV2_Atom& atom) const
{
    return (atom.type == mUris.atomObject || atom.type == mUris.atomBlank) &&
           reinterpret_cast<const LV2_Atom_Object&>(atom).body.otype == mUris.timePosition;
}

/// Hosts differ in the types that they send.
std::optional<double> Lv2Time::number(const LV2_Atom& atom) const
{
    if (atom.type == mUris.atomFloat)
        return bodyOf<LV2_Atom_Float>(atom);
    if (atom.type == mUris.atomDouble)
        return bodyOf<LV2_Atom_Double>(atom);
    if (atom.type == mUris.atomInt || atom.type == mUris.atomBool)
        return bodyOf<LV2_Atom_Int>(atom);
    if (atom.type == mUris.atomLong)
        return bodyOf<LV2_Atom_Long>(atom);
    return std::nullopt;
}

Lv2Time::Fields Lv2Time::take(const LV2_Atom_Object& object)
{
    Fields fields;
    LV2_ATOM_OBJECT_FOREACH(&object, property)
    {
        const LV2_URID key = property->key;
        mInQuarters = mInQuarters || key == mUris.ardourTimeScale;
        const std::optional<double> value = number(property->value);
        if (!value || !std::isfinite(*value))
            continue;
        if (key == mUris.timeSpeed)
            mSpeed = *value;
        else if (key == mUris.timeBeatsPerMinute)
            update(mTempo, value, 0.001);
        else if (key == mUris.timeBeatsPerBar)
            update(mBeatsPerBar, value, 0.001);
        else if (key == mUris.timeBeatUnit)
            update(mBeatUnit, value, 1);
        else if (key == mUris.timeBar)
            fields.bar = value;
        else if (key == mUris.timeBarBeat)
            fields.barBeat = value;
        else if (key == mUris.timeBeat)
            fields.beat = value;
        else if (key == mUris.timeFrame)
            fields.frame = value;
    }
    return fields;
}

HostPosition Lv2Time::read(const LV2_Atom_Object& object, double expected)
{
    const Fields fields = take(object);
    HostPosition position;
    position.playing = mSpeed > 0;
    position.tempo = quartersPerMinute() * (position.playing ? mSpeed : 1);
    position.numerator = std::max(1, static_cast<int>(std::lround(mBeatsPerBar)));
    position.denominator = static_cast<int>(std::lround(mBeatUnit));
    position.quarters = place(fields, expected);
    position.bar = static_cast<int>(std::clamp(mBar, -1e6, 1e6));
    position.barStart = mBar * barLength();
    return position;
}

double Lv2Time::place(const Fields& fields, double expected)
{
    const double inBar = quartersInBar(fields.barBeat.value_or(0));
    // Ardour ends a beat after a quarter even where it is longer: its frame is right at one tempo.
    const bool knowsBars = !mInQuarters || quartersPerBeat() <= 1;
    if (fields.bar)
        mBar = *fields.bar;
    else if (fields.barBeat)
        mBar = std::round((expected - inBar) / barLength());
    if (knowsBars && (fields.bar || fields.barBeat))
        return mBar * barLength() + inBar;

    double quarters = std::numeric_limits<double>::quiet_NaN();
    if (fields.beat)
        quarters = *fields.beat * quartersPerBeat();
    else if (fields.frame)
        quarters = *fields.frame / mSampleRate / 60 * quartersPerMinute();
    if (!std::isnan(quarters))
        mBar = std::floor(quarters / barLength());
    return quarters;
}

/// Ardour adds the quarters since the beat to the beat's number.
double Lv2Time::quartersInBar(double barBeat) const
{
    if (!mInQuarters)
        return barBeat * quartersPerBeat();
    const double beat = std::floor(barBeat);
    return beat * quartersPerBeat() + barBeat - beat;
}
