/// Notes that choke each other, as the strings and strokes of an instrument do.
#pragma once

namespace Korvanel {
class CMidiTrack;
}

/// In each group, the last note sounds on into the next repetition up to the group's first note, if
/// it reaches the pattern's end. A note that starts behind the end, and one that never ends, stays
/// as it is. Thread: [ui thread], on a track that nobody plays yet.
void lengthenLastNotes(Korvanel::CMidiTrack& track);
