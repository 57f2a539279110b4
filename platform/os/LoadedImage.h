/// The files that this process is made of. Thread: any.
#pragma once
#include <optional>
#include <string>

namespace platform {

/// The absolute path, symbolic links kept but for the main program's, of the file whose loaded
/// image holds `address`; "" when that file cannot be told; nothing when no image holds it.
std::optional<std::string> pathOfImageAt(const void* address);

/// Keeps the file whose loaded image holds `address` in memory until the process ends, whoever
/// unloads it. Nothing happens when no image holds it.
void keepImageAt(const void* address);

/// The absolute path of the program that the process runs; "" when it cannot be told.
std::string pathOfMainProgram();

} // namespace platform
