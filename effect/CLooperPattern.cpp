// Which pattern plays, and where patterns come from.
#include "effect/CLooper.h"
#include "effect/NoteGroups.h"
#include "shared/System/kvException.h"
#include "shared/System/kvModule.h"
#include "shared/System/kvStream.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

using Korvanel::CMidiTrack;
using Korvanel::ScopedLock;
using Korvanel::String;

namespace {

constexpr std::string_view kFileScheme = IKVSSExStrumwerks::Pattern::fileScheme;
constexpr int kStyleBytes = 259; ///< a style of so many leaves no room for a pattern's name
constexpr std::size_t kNameBytes = sizeof IKVSSExStrumwerks::Pattern::name;

std::string_view nameOf(const IKVSSExStrumwerks::Pattern& pattern)
{
    return {pattern.name, ::strnlen(pattern.name, kNameBytes)};
}

bool isFileName(std::string_view name)
{
    return name.substr(0, kFileScheme.size()) == kFileScheme;
}

std::string libraryPath(const String& folder, std::string_view name)
{
    std::string path = folder.c_str();
    if (path.empty() || path.back() != '\\')
        path += '\\';
    path.append(name).append(".mid");
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

/// Opening a pipe would wait for somebody to write into it. @return false, whatever went wrong,
/// with the track as it was
bool loadFile(const std::string& path, CMidiTrack& track)
try {
    if (!std::filesystem::is_regular_file(path))
        return false;
    const Korvanel::File file(path.c_str(), Korvanel::File::ReadMode, 0);
    if (!file.isOpen())
        return false;
    Korvanel::SimpleStream<std::FILE*> stream(file.get());
    return track.Load(stream, nullptr, nullptr) == 0;

} catch (const Korvanel::Exception&) {
    return false;

} catch (const std::exception&) {

    return false;
}

} // namespace

// Installing --------------------------------------------------------------------------------------

void CLooper::set_track(const CMidiTrack& src)
{
    CMidiTrack source = src;
    CMidiTrack play = src;
    lengthenLastNotes(play);
    const String name = src.name.c_str();
    const ScopedLock edit(mEdit);
    {
        const ScopedLock slice(mLock); // the processing thread may be waiting: swap and go
        std::swap(mPlayTrack, play);
        mRevision.fetch_add(1, std::memory_order_release);
        if (mLooper != nullptr)
            mLooper->reset();
    }
    std::swap(mSourceTrack, source);
    mPatternName = name;
} // the old tracks are freed with both locks open

void CLooper::Clear()
{
    CMidiTrack source;
    CMidiTrack play;
    const ScopedLock edit(mEdit);
    source.copyFrame(mSourceTrack);
    play.copyFrame(mPlayTrack);
    {
        const ScopedLock slice(mLock);
        std::swap(mPlayTrack, play);
        mRevision.fetch_add(1, std::memory_order_release);
        if (mLooper != nullptr)
            mLooper->reset();
    }
    std::swap(mSourceTrack, source);
    mPatternName.Empty();
}

void CLooper::LoadTrack(Korvanel::InputStream& stream, const char* name)
{
    CMidiTrack track;
    if (track.Load(stream, nullptr, nullptr) != 0)
        return;
    set_track(track);
    SetPatternName(name);
    broadcast_to_listeners(&Listener::patternSelected);
}

// From and to the host ----------------------------------------------------------------------------

bool CLooper::SetCurrentPattern(IKVSSExStrumwerks::Pattern* pattern)
{
    if (pattern == nullptr)
        return false;
    const std::string name(nameOf(*pattern));
    const bool isFile = isFileName(name);
    CMidiTrack track;
    if (!loadFile(isFile ? name.substr(kFileScheme.size()) : libraryPath(GetPatternsDir(), name),
                  track))
        return false;

    set_track(track);
    const std::size_t separator = name.rfind('\\');
    if (isFile) {
        SetPatternName(name.c_str());
        SetCurrentStyle("");
    } else if (separator == std::string::npos) {
        SetPatternName(name.c_str());
    } else {
        SetPatternName(name.c_str() + separator + 1);
        SetCurrentStyle(name.substr(0, separator).c_str());
    }
    broadcast_to_listeners(&Listener::loaded);
    return true;
}

bool CLooper::GetCurrentPattern(IKVSSExStrumwerks::Pattern* pattern)
{
    if (pattern == nullptr)
        return false;
    const ScopedLock edit(mEdit);
    pattern->numerator = mSourceTrack.numerator;
    pattern->denominator = mSourceTrack.denominator;
    pattern->bars = mSourceTrack.numberOfBars();

    const std::string full = std::string(mStyleName.c_str()) + '\\' + mPatternName.c_str();
    const std::size_t copied = std::min(full.size(), kNameBytes - 1);
    std::copy_n(full.data(), copied, pattern->name);
    pattern->name[copied] = 0;
    return mStyleName.GetLength() < kStyleBytes && !mPatternName.IsEmpty(); // a long name is cut
}

bool CLooper::AddObserver(IKVSSExStrumwerks::PatternObserver* observer)
{
    if (observer == nullptr)
        return false;
    mNotifier.observers.add(observer);
    if (mNotifier.observers.size() == 1)
        AddLooperListener(&mNotifier);
    return true;
}

bool CLooper::RemoveObserver(IKVSSExStrumwerks::PatternObserver* observer)
{
    mNotifier.observers.remove(observer);
    if (mNotifier.observers.size() == 0)
        RemoveLooperListener(&mNotifier);
    return true;
}

void CLooper::PatternChangeNotifier::patternSelected()
{
    observers.broadcast(
        [](IKVSSExStrumwerks::PatternObserver& observer) { observer.patternChanged(); });
}

// Names and folders -------------------------------------------------------------------------------

void CLooper::SetStyleName(const char* name)
{
    const ScopedLock edit(mEdit);
    mSourceTrack.subName = name;
    mStyleName = name;
}

void CLooper::SetPatternName(const char* name)
{
    if (name == nullptr)
        return;
    const ScopedLock edit(mEdit);
    mSourceTrack.name = name;
    mPatternName = mSourceTrack.name.c_str();
}

void CLooper::SetCurrentStyle(const char* name)
{
    const ScopedLock edit(mEdit);
    mStyleName = name;
}

String CLooper::GetStyleName() const
{
    const ScopedLock edit(mEdit);
    return mStyleName;
}

String CLooper::GetPatternName() const
{
    const ScopedLock edit(mEdit);
    return mPatternName;
}

bool CLooper::GetDocumentPath(String*)
{
    return false;
}

String CLooper::GetPatternsDir()
{
    const ScopedLock edit(mEdit);
    if (mPatternsDir == ".")
        SetPatDirToDefault();
    return mPatternsDir;
}

void CLooper::SetPatternsDir(const char* folder)
{
    const ScopedLock edit(mEdit);
    mPatternsDir = folder;
}

void CLooper::SetPatDirToDefault()
{
    Korvanel::Module::InitSelfLocation();
    String folder = Korvanel::Module::GetFolderPath();
    for (int level = 0; level < 3; ++level)
        if (const int slash = folder.ReverseFind('/'); slash >= 0)
            folder = folder.Left(slash);
    if (const int slash = folder.ReverseFind('/'); slash >= 0)
        folder = folder.Left(slash + 1);
    const ScopedLock edit(mEdit);
    mPatternsDir = folder + "Loops";
}
