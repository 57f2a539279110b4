/// The files that this process is made of. Thread: any.
#pragma once
#include <string>

namespace platform {

/// The absolute path, symbolic links kept, of the file whose loaded image holds `address`; "" when
/// none does.
std::string pathOfImageAt(const void* address);

} // namespace platform
