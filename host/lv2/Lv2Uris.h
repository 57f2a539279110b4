/// The numbers that a host gives to the names we use.
#pragma once
#include <lv2/urid/urid.h>

struct Lv2Uris
{
    explicit Lv2Uris(const LV2_URID_Map& map);

    LV2_URID atomBlank;
    LV2_URID atomBool;
    LV2_URID atomChunk;
    LV2_URID atomDouble;
    LV2_URID atomFloat;
    LV2_URID atomInt;
    LV2_URID atomLong;
    LV2_URID atomObject;
    LV2_URID atomSequence;
    LV2_URID logError;
    LV2_URID maxBlockLength;
    LV2_URID midiEvent;
    LV2_URID nominalBlockLength;
    LV2_URID sampleRate;
    LV2_URID state;
    LV2_URID ardourTimeScale; ///< in the positions of Ardour and its kin
    LV2_URID timeBar;
    LV2_URID timeBarBeat;
    LV2_URID timeBeat;
    LV2_URID timeBeatUnit;
    LV2_URID timeBeatsPerBar;
    LV2_URID timeBeatsPerMinute;
    LV2_URID timeFrame;
    LV2_URID timePosition;
    LV2_URID timeSpeed;
};
