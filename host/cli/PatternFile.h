/// A pattern read from disk, with a plain word on what is wrong when it cannot be.
#pragma once
#include "midi/CMidiTrack.h"

#include <cstdint>
#include <string>

struct PatternFile
{
    std::string path;
    std::uint16_t format = 0;
    std::uint16_t tracks = 0;
    Korvanel::CMidiTrack pattern;
};

/// Throws CommandError (BadPattern) with a line that names the file and what is wrong with it.
PatternFile readPatternFile(const std::string& path);
/// The same, and a pattern without notes is refused too: there would be nothing to hear.
PatternFile readPlayablePattern(const std::string& path);

/// "name/subName", or what there is of it.
std::string fullName(const Korvanel::CMidiTrack& pattern);
