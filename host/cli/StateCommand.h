/// `looper state dump`: what is in a project's state chunk.
#pragma once

namespace CLI {
class App;
}

void addStateCommand(CLI::App& app);
