#include "host/cli/LibraryFolder.h"

#include "host/cli/CommandError.h"
#include "platform/os/StandardFolders.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* kInDataFolder = "Korvanel/Loops";

std::vector<fs::path> usualPlaces()
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error).parent_path();
    std::vector<fs::path> places{program / "Loops",
                                 fs::path(platform::userDataFolder()) / kInDataFolder,
                                 program.parent_path() / "share" / kInDataFolder};
    for (const std::string& folder : platform::systemDataFolders())
        places.push_back(fs::path(folder) / kInDataFolder);
    return places;
}

bool isFile(const fs::path& path)
{
    std::error_code error;
    return fs::exists(path, error) && !fs::is_directory(path, error);
}

} // namespace

std::string libraryFolder(const std::string& given)
{
    if (!given.empty())
        return given;
    std::error_code error;
    for (const fs::path& place : usualPlaces())
        if (fs::is_directory(place, error))
            return place;
    return {};
}

std::string findPattern(const std::string& name, const std::string& library)
{
    std::error_code error;
    if (fs::exists(name, error) || fs::path(name).is_absolute())
        return name;
    const std::string folder = libraryFolder(library);
    for (const char* extension : {"", ".mid"})
        if (const fs::path path = fs::path(folder) / (name + extension);
            !folder.empty() && isFile(path))
            return path;
    throw CommandError(ExitCode::BadPattern,
                       name + (folder.empty()
                                   ? ": does not exist, and there is no library (see --library)"
                                   : ": is neither a file nor a pattern of the library " + folder));
}

void addLibraryOption(CLI::App& command, std::string& library)
{
    command.add_option("--library", library,
                       "Folder of styles in which to look patterns up by name");
}
