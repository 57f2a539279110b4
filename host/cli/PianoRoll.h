/// A pattern drawn in text.
#pragma once
#include "midi/CMidiTrack.h"

#include <string>

/// A key's name and octave, C4 for key 60.
std::string noteName(int key);

/// A row for each key that sounds, the highest on top, a column for each step, a line at each bar;
/// shades tell velocity. Steps are sixteenths, or longer ones where the pattern would not fit; a
/// pattern too long for that is cut, and the last line says so.
/// @param columns  of the terminal, at least 40
std::string drawPianoRoll(const Korvanel::CMidiTrack& pattern, int columns);
