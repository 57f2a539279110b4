/// Reads time:Position objects, of which hosts send any part.
#pragma once
#include "host/bridge/HostPosition.h"
#include "host/lv2/Lv2Uris.h"

#include <lv2/atom/atom.h>

#include <optional>

/// Remembers what a host does not repeat: speed, tempo, meter and bar. [audio thread]
class Lv2Time
{
public:
    explicit Lv2Time(const Lv2Uris& uris)
        : mUris(uris)
    {
    }

    void prepare(double sampleRate); ///< forgets what the host has said

    bool isPosition(const LV2_Atom& atom) const;

    /// The place in the song follows from bar and beat in the bar; without the bar it is the
    /// nearest such beat; else from the running beat, else from the frame. A host that names none
    /// of them only changes speed, tempo or meter: the place is no number then.
    /// @param expected  where the song should be, in quarters
    HostPosition read(const LV2_Atom_Object& object, double expected);

private:
    /// One object's properties; what is missing or no number is nothing.
    struct Fields
    {
        std::optional<double> bar, barBeat, beat, frame;
    };

    Fields take(const LV2_Atom_Object& object);
    std::optional<double> number(const LV2_Atom& atom) const;
    double place(const Fields& fields, double expected);
    double quartersInBar(double barBeat) const;

    double quartersPerBeat() const { return 4 / mBeatUnit; }

    double quartersPerMinute() const { return mTempo * (mInQuarters ? 1 : quartersPerBeat()); }

    double barLength() const { return mBeatsPerBar * quartersPerBeat(); } ///< quarters

    const Lv2Uris& mUris;
    double mSampleRate = 48000;
    double mSpeed = 0;
    double mTempo = 120; ///< beats per minute, as the host counts them
    double mBeatsPerBar = 4;
    double mBeatUnit = 4;
    double mBar = 0;
    bool mInQuarters = false; ///< Ardour's tempo and parts of beats are of quarters in any meter
};
