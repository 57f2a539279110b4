/// Starts programs that have nothing more to do with this process.
#pragma once
#include <string>
#include <vector>

namespace toolkit::native {

/// Starts a program in a session of its own, as nobody's child: it leaves no process to be waited
/// for, no thread and no code of ours behind, so that the module may be unloaded while it runs. It
/// inherits the environment, and neither descriptors nor signal settings; what it says goes
/// nowhere.
/// @param arguments  the program, searched for along $PATH where the name has no slash, and what it
///                   is given; without a shell
/// @return 0 once the program runs; else the error number of what failed, ENOENT when there is no
///         such program. Thread: any.
int startDetached(std::vector<std::string> arguments);

} // namespace toolkit::native
