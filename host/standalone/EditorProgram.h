/// The editor in a window of its own, with its effect and a running transport.
#pragma once
#include "host/cli/PlayOptions.h"

#include <string>

struct EditorOptions
{
    std::string pattern;                ///< a file or Style/Pattern of the library; empty for none
    std::string library;                ///< its folder; empty for the usual one
    std::string appearance = "desktop"; ///< dark, light, or as the desktop has it
    std::string picture; ///< where to save a picture of the window, after which the program ends
    double scale = 1;
    double tempo = 120;
};

/// Shows the window until the user closes it. Throws CommandError, also where there is no display.
void runEditor(const EditorOptions& options);
