/// Where the command line finds patterns by their names.
#pragma once
#include <string>

namespace CLI {
class App;
}

/// The library that a command works on: `given` when there is one; else the first that exists of
/// "Loops" beside the plug-in, the user's own and those of the system. "" when there is none.
std::string libraryFolder(const std::string& given);

/// The file that a pattern on the command line means: that file, or a pattern of the library by its
/// style and name ("Rock/Straight Eight"), with or without ".mid". An absolute path is taken as it
/// is. Throws CommandError (BadPattern) when there is neither.
std::string findPattern(const std::string& name, const std::string& library);

/// Adds --library; `library` outlives the command.
void addLibraryOption(CLI::App& command, std::string& library);
