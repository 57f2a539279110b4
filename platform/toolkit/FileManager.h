/// Hands documents to the programs that the desktop has for them.
#pragma once
#include "platform/toolkit/Status.h"

#include <string>

namespace toolkit {

/// Opens a file or a folder as a double click in the file manager does. The opener is started
/// without a shell, so every name is safe; what it does then is its own affair.
/// @return noErr when the opener was started; fileNotFoundErr when there is no such file; else the
/// positive error number of the start, ENOENT when the desktop has no opener. Thread: any.
Status openDocument(const std::string& path);

} // namespace toolkit
