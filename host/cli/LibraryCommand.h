/// `looper library`: what is in a library, and volumes of it.
#pragma once

namespace CLI {
class App;
}

void addLibraryCommand(CLI::App& app);
