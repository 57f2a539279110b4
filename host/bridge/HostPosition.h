/// What a host says about its transport at one moment.
#pragma once

/// Positions are quarters from the start of the song, negative in a count-in.
struct HostPosition
{
    bool playing = false; ///< forwards; a host that plays backwards counts as stopped
    double quarters = 0;
    double tempo = 120; ///< quarters per minute as they pass, the host's speed included
    int numerator = 4;
    int denominator = 4;
    int bar = 0;          ///< counted from 0
    double barStart = 0;  ///< where that bar starts
    bool looping = false; ///< the host will go from loopEnd to loopStart, maybe in mid-block
    double loopStart = 0;
    double loopEnd = 0;
};
