/// Small files read and written in one piece. Thread: any.
#pragma once
#include <cstddef>
#include <string>

namespace platform {

enum class FileRead { Done, Missing, TooLarge, Failed };

/// Reads a regular file; anything else (a folder, a pipe) is a failure and never waited for.
/// @param limit  bytes; a longer file is TooLarge
/// @param text   what was read; "" unless Done
FileRead readWholeFile(const std::string& path, std::size_t limit, std::string& text);

/// Puts `text` in the place of the file's old content, or makes the file. At every moment, power
/// cuts included, the path holds the whole old text or the whole new one. The text goes through
/// "<folder>/.<name>.new", so two callers must not write one file at a time. An old file's
/// permissions stay.
/// @return false when it could not be written; the old content is then untouched
bool replaceWholeFile(const std::string& path, const std::string& text);

enum class FileCreation { Done, Exists, Failed };

/// Makes a file that was not there, with `text` in it. Whatever has the name already, also a link
/// that leads nowhere, is left alone. When the text does not fit, no file remains.
FileCreation createWholeFile(const std::string& path, const std::string& text);

/// Where a chain of symbolic links that starts at `path` ends, whether something is there or not;
/// `path` itself when it is no link; "" for a chain without end.
std::string endOfLinks(const std::string& path);

} // namespace platform
