#include "platform/os/PreferenceFile.h"

#include "platform/os/FileLock.h"
#include "platform/os/PreferenceText.h"
#include "platform/os/StandardFolders.h"
#include "platform/os/WholeFile.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <utility>

namespace platform {

namespace {

/// The domain as a file name. Slashes, control characters and a leading dot are written as
/// %-numbers, and so is the percent sign, so that two domains never share a file.
std::string fileNameOf(std::string_view domain)
{
    std::string name;
    for (const char ch : domain) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte < 0x20 || byte == 0x7f || ch == '/' || ch == '%' || (ch == '.' && name.empty())) {
            char number[4];
            std::snprintf(number, sizeof number, "%%%02X", static_cast<unsigned>(byte));
            name += number;
        } else {
            name += ch;
        }
    }
    return name + ".json";
}

enum class Loaded { Settings, Damaged, Failed };

Loaded load(const std::string& path, PreferenceDictionary& settings)
{
    settings.clear();
    std::string text;
    switch (readWholeFile(path, kMostPreferenceBytes, text)) {
    case FileRead::Missing:
        return Loaded::Settings;
    case FileRead::TooLarge:
        return Loaded::Damaged;
    case FileRead::Failed:
        return Loaded::Failed;
    case FileRead::Done:
        break;
    }
    auto parsed = parsePreferences(text);
    if (!parsed)
        return Loaded::Damaged;
    settings = *std::move(parsed);
    return Loaded::Settings;
}

bool keepAside(const std::string& path)
{
    return std::rename(path.c_str(), (path + ".damaged").c_str()) == 0;
}

/// Beside the file itself, so that those who reach it through different links meet there.
std::string lockOf(const std::string& file)
{
    const std::filesystem::path path(file);
    return (path.parent_path() / ("." + path.filename().string() + ".lock")).string();
}

} // namespace

PreferenceFile::PreferenceFile(std::string folder, std::string_view domain, unsigned folderMode)
    : mFolder(std::move(folder))
    , mPath(domain.empty() ? "" : mFolder + "/" + fileNameOf(domain))
    , mFolderMode(folderMode)
{
}

bool PreferenceFile::read(PreferenceDictionary& settings) const
{
    settings.clear();
    try {
        // No lock: a writer puts the whole new file in the old one's place.
        return !mPath.empty() && load(mPath, settings) != Loaded::Failed;
    } catch (const std::exception&) {
        return false;
    }
}

bool PreferenceFile::update(const std::function<bool(PreferenceDictionary&)>& change) const
{
    try {
        if (mPath.empty() || !makeFolders(mFolder, mFolderMode))
            return false;
        const std::string file = endOfLinks(mPath);
        if (file.empty())
            return false;
        const FileLock lock(lockOf(file));
        PreferenceDictionary settings;
        const Loaded loaded = lock.held() ? load(file, settings) : Loaded::Failed;
        if (loaded == Loaded::Failed || !change(settings))
            return false;
        const auto text = formatPreferences(settings);
        return text && (loaded != Loaded::Damaged || keepAside(file)) &&
               replaceWholeFile(file, *text);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace platform
