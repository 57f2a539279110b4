#include "host/lv2/Lv2Uris.h"

#include "host/lv2/Lv2Names.h"

#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/log/log.h>
#include <lv2/midi/midi.h>
#include <lv2/parameters/parameters.h>
#include <lv2/time/time.h>

Lv2Uris::Lv2Uris(const LV2_URID_Map& map)
{
    const auto number = [&map](const char* uri) { return map.map(map.handle, uri); };
    atomBlank = number(LV2_ATOM__Blank);
    atomBool = number(LV2_ATOM__Bool);
    atomChunk = number(LV2_ATOM__Chunk);
    atomDouble = number(LV2_ATOM__Double);
    atomFloat = number(LV2_ATOM__Float);
    atomInt = number(LV2_ATOM__Int);
    atomLong = number(LV2_ATOM__Long);
    atomObject = number(LV2_ATOM__Object);
    atomSequence = number(LV2_ATOM__Sequence);
    logError = number(LV2_LOG__Error);
    maxBlockLength = number(LV2_BUF_SIZE__maxBlockLength);
    midiEvent = number(LV2_MIDI__MidiEvent);
    nominalBlockLength = number(LV2_BUF_SIZE__nominalBlockLength);
    sampleRate = number(LV2_PARAMETERS__sampleRate);
    state = number(kLv2StateUri);
    ardourTimeScale = number("http://ardour.org/lv2/time#scale");
    timeBar = number(LV2_TIME__bar);
    timeBarBeat = number(LV2_TIME__barBeat);
    timeBeat = number(LV2_TIME__beat);
    timeBeatUnit = number(LV2_TIME__beatUnit);
    timeBeatsPerBar = number(LV2_TIME__beatsPerBar);
    timeBeatsPerMinute = number(LV2_TIME__beatsPerMinute);
    timeFrame = number(LV2_TIME__frame);
    timePosition = number(LV2_TIME__Position);
    timeSpeed = number(LV2_TIME__speed);
}
