#include "platform/os/LoadedImage.h"

#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <system_error>

namespace platform {

std::optional<std::string> pathOfImageAt(const void* address)
{
    Dl_info info{};
    link_map* image = nullptr;
    if (::dladdr1(address, &info, reinterpret_cast<void**>(&image), RTLD_DL_LINKMAP) == 0 ||
        info.dli_fname == nullptr)
        return std::nullopt;
    // The main program is nameless here: what the loader has is the name it was started with, which
    // may be a link from anywhere.
    if (image != nullptr && *image->l_name == 0)
        return pathOfMainProgram();
    const std::string name = info.dli_fname;
    std::error_code error;
    const auto path = std::filesystem::absolute(name, error);
    return error ? std::string() : path.lexically_normal().string();
}

void keepImageAt(const void* address)
{
    Dl_info info{};
    if (::dladdr(address, &info) != 0 && info.dli_fname != nullptr)
        ::dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

std::string pathOfMainProgram()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

} // namespace platform
