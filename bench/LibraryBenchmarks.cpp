// The pattern library: scans of the whole folder, and rescans after one change.
#include "bench/ChangeBenchmarks.h"
#include "bench/LibraryFolder.h"
#include "bench/ScanSubject.h"

#include <benchmark/benchmark.h>

namespace bench {

namespace {

namespace fs = std::filesystem;

struct Library
{
    const char* name; ///< as its row of the results is called
    LibraryFolder folder;
};

/// Adds one style to the folder "User", or takes it away again.
class ExtraStyle
{
public:
    explicit ExtraStyle(const LibraryFolder& library)
        : mPath(library / "User/Style new")
    {
    }

    ExtraStyle(const ExtraStyle&) = delete;
    ExtraStyle& operator=(const ExtraStyle&) = delete;

    ~ExtraStyle() { fs::remove(mPath); }

    void change()
    {
        if (!fs::create_directory(mPath))
            fs::remove(mPath);
    }

private:
    std::string mPath;
};

void measureScan(benchmark::State& state, ScanSubject& subject, const Library& library)
{
    for (auto _ : state)
        subject.scan(library.folder.path());
}

void measureRescan(benchmark::State& state, ScanSubject& subject, const Library& library)
{
    ExtraStyle style(library.folder);
    subject.scan(library.folder.path());
    for (auto _ : state) {
        state.PauseTiming();
        style.change();
        state.ResumeTiming();
        subject.rescan();
    }
}

std::string checkScan(ScanSubject& subject, const Library& library)
{
    static std::vector<std::string> expected;
    subject.scan(library.folder.path());
    if (subject.name() == std::string("ours"))
        expected = subject.paths();
    if (subject.paths().size() != kPatterns || subject.paths() != expected)
        return std::string(library.name) + ": " + subject.name() + " finds other patterns. ";
    return {};
}

/// A rescan must leave what a fresh scan finds, both when a style comes and when it goes.
std::string checkRescan(ScanSubject& subject, ScanSubject& fresh, const Library& library)
{
    const std::string style = library.folder / "User/Style new";
    subject.scan(library.folder.path());
    for (const bool add : {true, false}) {
        if (add)
            fs::copy(library.folder / "User/Style 099", style);
        else
            fs::remove_all(style);
        subject.rescan();
        fresh.scan(library.folder.path());
        if (subject.paths() != fresh.paths() || (subject.paths().size() != kPatterns) != add)
            return std::string("rescan: ") + subject.name() + " finds other patterns. ";
    }
    return {};
}

std::string addScans(const Library& library, const std::vector<std::unique_ptr<ScanSubject>>& all)
{
    std::string wrong;
    for (const auto& subject : all) {
        wrong += checkScan(*subject, library);
        benchmark::RegisterBenchmark(
            (std::string("scan/") + library.name + "/" + subject->name()).c_str(), measureScan,
            std::ref(*subject), std::cref(library));
    }
    return wrong;
}

std::string addRescans(const Library& library, const std::vector<std::unique_ptr<ScanSubject>>& all)
{
    const auto fresh = makeFilesystemScan();
    std::string wrong;
    library.folder.waitUntilOld();
    for (const auto& subject : all) {
        if (!subject->rescans())
            continue;
        wrong += checkRescan(*subject, *fresh, library);
        benchmark::RegisterBenchmark(
            (std::string("scan/one more style/") + subject->name()).c_str(), measureRescan,
            std::ref(*subject), std::cref(library));
    }
    return wrong;
}

} // namespace

std::string addLibraryBenchmarks()
{
    static const Library spread{"100 styles", LibraryFolder(100)};
    static const Library crowded{"one style", LibraryFolder(1)};
    static std::vector<std::unique_ptr<ScanSubject>> subjects;
    for (const auto make : {makeOurScan, makeFloorScan, makeFilesystemScan, makeNftwScan})
        subjects.push_back(make());
    std::string wrong = addScans(spread, subjects) + addScans(crowded, subjects);
    wrong += addRescans(spread, subjects);
    addChangeBenchmarks(spread.folder);
    return wrong;
}

} // namespace bench
