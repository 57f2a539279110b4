/// The patterns of an effect's style as a host's programs, counted from 0.
#pragma once
#include "effect/CLooper.h"
#include "shared/System/kvString.h"

#include <optional>

/// A pattern's place in the library.
struct Program
{
    Korvanel::String style;
    Korvanel::String pattern;
};

/// Nothing where the current style has fewer patterns or there is no library. Thread: not audio;
/// takes the library's lock.
std::optional<Program> findProgram(const CLooper& effect, int program);

/// The program whose pattern is the effect's; nothing when it is none of its style's. Thread: not
/// audio; takes the library's lock.
std::optional<int> currentProgram(const CLooper& effect);

/// Makes the pattern the effect's, or does nothing where there is none. Thread: not audio
void selectProgram(CLooper& effect, int program);
