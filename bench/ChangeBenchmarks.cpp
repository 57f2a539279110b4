#include "bench/ChangeBenchmarks.h"

#include "bench/ScanSubject.h"
#include "library/PatternTree.h"
#include "platform/os/FolderWatch.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

/// Longer than the library spreads the calls of a burst, so that each change is told at once.
constexpr std::chrono::milliseconds kQuiet{200};
constexpr std::chrono::seconds kTooLong{5};

/// When the notice came.
class Notice
{
public:
    void forget()
    {
        const std::lock_guard hold(mLock);
        mAt.reset();
    }

    void come()
    {
        const auto now = Clock::now();
        const std::lock_guard hold(mLock);
        if (!mAt)
            mAt = now;
        mCame.notify_one();
    }

    std::optional<Clock::time_point> wait()
    {
        std::unique_lock hold(mLock);
        mCame.wait_for(hold, kTooLong, [&] { return mAt.has_value(); });
        return mAt;
    }

private:
    std::mutex mLock;
    std::condition_variable mCame;
    std::optional<Clock::time_point> mAt;
};

Notice gNotice; ///< one for all: the tree's notify procedure carries nothing

/// A pattern that comes and goes in one of the user's styles. Each change is one event.
class ExtraPattern
{
public:
    explicit ExtraPattern(const LibraryFolder& library)
        : mSource(library / "Style 000/Pattern 00000.mid")
        , mPath(library / "User/Style 099/Pattern new.mid")
    {
    }

    ExtraPattern(const ExtraPattern&) = delete;
    ExtraPattern& operator=(const ExtraPattern&) = delete;

    ~ExtraPattern() { ::unlink(mPath.c_str()); }

    void change()
    {
        if (::unlink(mPath.c_str()) != 0) [[maybe_unused]]
            const int linked = ::link(mSource.c_str(), mPath.c_str());
    }

private:
    std::string mSource;
    std::string mPath;
};

/// A thread that reads the events of one folder, as little as a watch can be.
class BareWatch
{
public:
    /// @param scan  done before the notice, when there is one
    BareWatch(const LibraryFolder& library, ScanSubject* scan)
        : mRoot(library.path())
        , mFolder(library / "User/Style 099")
        , mScan(scan)
        , mDescriptor(::inotify_init1(IN_CLOEXEC))
    {
        ::inotify_add_watch(mDescriptor, mFolder.c_str(), IN_CREATE | IN_DELETE);
        mThread = std::thread([this] { run(); });
    }

    BareWatch(const BareWatch&) = delete;
    BareWatch& operator=(const BareWatch&) = delete;

    ~BareWatch()
    {
        // Taking the one watch away is an event too, and the last one.
        ::inotify_rm_watch(mDescriptor, 1);
        mThread.join();
        ::close(mDescriptor);
    }

private:
    void run()
    {
        alignas(inotify_event) char buffer[4096];
        while (::read(mDescriptor, buffer, sizeof buffer) > 0) {
            if ((reinterpret_cast<const inotify_event*>(buffer)->mask & IN_IGNORED) != 0)
                return;
            if (mScan != nullptr)
                mScan->scan(mRoot);
            gNotice.come();
        }
    }

    std::string mRoot;
    std::string mFolder;
    ScanSubject* mScan;
    int mDescriptor;
    std::thread mThread;
};

/// The watch below the library, alone.
class OurWatch
{
public:
    explicit OurWatch(const LibraryFolder& library) { mWatch.start(library / "User"); }

private:
    platform::FolderWatch mWatch{[] { gNotice.come(); }};
};

/// The library itself: watch, rescan, notify procedure.
class OurTree
{
public:
    explicit OurTree(const LibraryFolder& library)
    {
        mTree.SetRoot(library.path().c_str());
        mTree.setNotifyProc([] { gNotice.come(); });
    }

private:
    PatternTree mTree;
};

class BareNotice : public BareWatch
{
public:
    explicit BareNotice(const LibraryFolder& library)
        : BareWatch(library, nullptr)
    {
    }
};

/// Without a tree to bring into step, everything is read again.
class BareScan
{
public:
    explicit BareScan(const LibraryFolder& library)
        : mWatch(library, mScan.get())
    {
    }

private:
    std::unique_ptr<ScanSubject> mScan = makeFloorScan();
    BareWatch mWatch; // last: its thread scans
};

template <typename Watcher>
void measureNotice(benchmark::State& state, const LibraryFolder& library)
{
    ExtraPattern pattern(library);
    Watcher watcher(library);
    for (auto _ : state) {
        std::this_thread::sleep_for(kQuiet);
        gNotice.forget();
        const auto begin = Clock::now();
        pattern.change();
        const auto came = gNotice.wait();
        if (!came) {
            state.SkipWithError("the change is not told");
            break;
        }
        state.SetIterationTime(std::chrono::duration<double>(*came - begin).count());
    }
}

template <typename Watcher>
void add(const char* name, const LibraryFolder& library)
{
    constexpr int kChanges = 5; // most of the time is quiet
    benchmark::RegisterBenchmark(name, measureNotice<Watcher>, std::cref(library))
        ->UseManualTime()
        ->Iterations(kChanges);
}

} // namespace

void addChangeBenchmarks(const LibraryFolder& library)
{
    add<OurWatch>("change/told/ours", library);
    add<BareNotice>("change/told/floor", library);
    add<OurTree>("change/in the tree/ours", library);
    add<BareScan>("change/in the tree/floor", library);
}

} // namespace bench
