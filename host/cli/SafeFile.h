/// Files that are there whole or not at all.
#pragma once
#include <string>

/// Writes beside the file and renames, so that a full disk or a crash leaves the old file as it
/// was; "-" is standard output. Throws CommandError (CannotWrite).
void writeWhole(const std::string& path, const std::string& bytes);
