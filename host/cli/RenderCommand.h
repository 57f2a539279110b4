/// `looper render`: a pattern through the plug-in into a MIDI file.
#pragma once

namespace CLI {
class App;
}

/// Adds the command; its work throws CommandError.
void addRenderCommand(CLI::App& app);
