/// What this process holds of the system, to see that something leaves nothing behind.
#pragma once
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <ostream>
#include <thread>

/// Threads and open descriptors of this process.
struct ProcessTally
{
    static ProcessTally now() { return {entriesIn("/proc/self/task"), entriesIn("/proc/self/fd")}; }

    /// The tally as soon as it equals `wanted`, or what it is after ten seconds: a thread leaves
    /// the process a moment after those who join it go on.
    static ProcessTally settled(const ProcessTally& wanted)
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        ProcessTally tally = now();
        while (!(tally == wanted) && std::chrono::steady_clock::now() < limit) {
            std::this_thread::yield();
            tally = now();
        }
        return tally;
    }

    bool operator==(const ProcessTally&) const = default;

    std::size_t threads = 0;
    std::size_t descriptors = 0;

private:
    static std::size_t entriesIn(const char* path)
    {
        const std::filesystem::directory_iterator entries(path);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
};

inline std::ostream& operator<<(std::ostream& out, const ProcessTally& tally)
{
    return out << tally.threads << " threads, " << tally.descriptors << " descriptors";
}
