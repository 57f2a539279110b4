/// What the browser does to the library's files. Everything here stays inside the folder that it is
/// given, whatever names come in, and overwrites nothing. Thread: any.
#pragma once
#include "library/DirectoryTrees.h"

#include <string>

/// Whether a style or a pattern can have the name: not empty, no separator of paths (slash and
/// backslash), no NUL, and no point at the start, as the library does not show such a name.
bool isLibraryName(const std::string& name);

/// Makes a folder of the name in `folder`, or "name 1" to "name `last`" beside others.
/// @param folder  with its trailing slash
/// @return its name; "" when none could be made
std::string makeStyleFolder(const std::string& folder, const std::string& name = "New Style",
                            int last = 1000);

/// Writes a new pattern "name.mid" into `folder`, or "name 1.mid" to "name 999.mid" beside others.
/// The file is there when it is whole.
/// @param folder  with its trailing slash
/// @return false when the name is no library name or no file could be made; then there is none
bool addPatternFile(const std::string& folder, const std::string& name, const std::string& content);

/// Deletes a file; neither a folder nor what a link leads to. @return false when it is still there
bool deletePatternFile(const std::string& path);

/// Gives a style or a pattern another name. With the library's lock held.
/// @param name  a library name, with the extension of a pattern
/// @return false when it keeps its name: something else has the new one, or the disk refused
bool renameNode(Korvanel::DirectoryTrees::Node& node, const std::string& name);
