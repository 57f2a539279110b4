#include "platform/os/LoadedImage.h"

#include <dlfcn.h>
#include <filesystem>
#include <system_error>

namespace platform {

std::optional<std::string> pathOfImageAt(const void* address)
{
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr)
        return std::nullopt;
    const std::string name = info.dli_fname;
    // The loader knows the main program only by the name it was started with.
    if (name.find('/') == std::string::npos)
        return pathOfMainProgram();
    std::error_code error;
    const auto path = std::filesystem::absolute(name, error);
    return error ? std::string() : path.lexically_normal().string();
}

std::string pathOfMainProgram()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

} // namespace platform
