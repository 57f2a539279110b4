/// `looper show`: what is in a pattern file, in words and as a piano roll.
#pragma once

namespace CLI {
class App;
}

/// Adds the command; its work throws CommandError.
void addShowCommand(CLI::App& app);
