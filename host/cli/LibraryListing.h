/// What is in a library, for users and for programs.
#pragma once
#include "library/DirectoryTrees.h"

#include <string>
#include <vector>

struct ListedPattern
{
    std::string name; ///< without ".mid"
    std::string path;
    int bars = 0;
    std::string problem; ///< why it cannot be played; empty when it can
};

struct ListedStyle
{
    std::string name;
    std::string path;
    std::string description; ///< the first line of its description file, or ""
    std::vector<ListedPattern> patterns;
    std::vector<ListedStyle> styles;

    int patternCount() const; ///< with those of the styles in it
    int barCount() const;     ///< as above
    std::vector<ListedPattern> unreadable() const;
};

/// Scans the folder and reads every pattern in it. Throws CommandError (BadPattern) for what is no
/// folder or cannot be read.
ListedStyle listLibrary(const std::string& folder);
