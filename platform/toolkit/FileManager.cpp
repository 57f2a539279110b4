#include "platform/toolkit/FileManager.h"

#include "platform/toolkit/native/DetachedProcess.h"

#include <filesystem>
#include <system_error>

namespace toolkit {

Status openDocument(const std::string& path)
{
    std::error_code error;
    // Absolute, so that no file's name is taken for an option.
    const auto absolute = std::filesystem::absolute(path, error);
    if (error || !std::filesystem::exists(absolute, error))
        return fileNotFoundErr;
    return native::startDetached({"xdg-open", absolute.string()});
}

} // namespace toolkit
