/// How patterns are named and written when they leave the editor as MIDI files.
#pragma once
#include <string>

/// The file of a pattern that is dragged out. A pattern's name is anything that a host or a file
/// says: what cannot be a file's name in a folder becomes one that can. Of a name "file://..." the
/// last part stays, other slashes become hyphens, and a name too long is cut before its extension.
/// @return "unknown.mid" for a name that is empty, or of which nothing is left
std::string draggedFileName(const std::string& pattern);

/// The file of an exported pattern without its extension: no ".mid" or ".midi" at the end, and room
/// for a number and ".mid". "Pattern" stands for an empty name.
std::string exportedBaseName(const std::string& pattern);

/// Writes a file: an older one of that name is replaced, and a link of that name too, not followed.
/// @return false when it could not be written
bool writeDraggedFile(const std::string& path, const std::string& bytes);

/// Writes base.mid into the folder, or the first of "base 1.mid" to "base 999.mid" that is free.
/// @return false when none is or it could not be written; nothing of it remains then
bool writeExportedFile(const std::string& folder, const std::string& base,
                       const std::string& bytes);
