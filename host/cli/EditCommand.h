/// `looper edit`: the editor, which is a program of its own.
#pragma once

namespace CLI {
class App;
}

void addEditCommand(CLI::App& app);
