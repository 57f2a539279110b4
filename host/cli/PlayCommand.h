/// `looper play`: patterns in real time.
#pragma once

namespace CLI {
class App;
}

/// Adds the command; its work throws CommandError.
void addPlayCommand(CLI::App& app);
