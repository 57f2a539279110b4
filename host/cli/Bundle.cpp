#include "host/cli/Bundle.h"

#include "host/cli/CommandError.h"

#include <array>
#include <dlfcn.h>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr const char* kLibraryInBundle = "Contents/Linux/Looper.so";

/// Beside the program in a build, below ../lib when installed.
std::string ownBundle()
{
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    const std::array<fs::path, 2> places{folder / "Looper.bundle",
                                         folder.parent_path() / "lib/korvanel/Looper.bundle"};
    for (const fs::path& place : places)
        if (fs::exists(place / kLibraryInBundle, error))
            return place;
    throw CommandError(ExitCode::NoBundle, "Looper.bundle is neither at " + places[0].string() +
                                               " nor at " + places[1].string() +
                                               "; name it with --bundle");
}

} // namespace

void Bundle::Close::operator()(void* library) const
{
    ::dlclose(library);
}

Bundle::Bundle(const std::string& path)
{
    fs::path file = path.empty() ? ownBundle() : path;
    std::error_code error;
    if (fs::is_directory(file, error))
        file /= kLibraryInBundle;
    mLibrary.reset(::dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL));
    if (mLibrary == nullptr)
        throw CommandError(ExitCode::NoBundle,
                           std::string("the plug-in cannot be loaded: ") + ::dlerror());
    mCreate = reinterpret_cast<Create>(::dlsym(mLibrary.get(), "CreatePlugin"));
    if (mCreate == nullptr)
        throw CommandError(ExitCode::NoBundle,
                           file.string() + ": is no looper plug-in (it has no CreatePlugin)");
}

std::unique_ptr<Korvanel::MidiEffect> Bundle::createEffect() const
{
    std::unique_ptr<Korvanel::MidiEffect> effect(mCreate());
    if (effect == nullptr)
        throw CommandError(ExitCode::NoBundle, "the plug-in makes no effect");
    return effect;
}
