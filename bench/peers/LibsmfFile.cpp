// libsmf: one allocated event for each message, with its time in seconds; notes are not paired. It
// writes to a path only, so it gets a file that lies in memory.
#include "bench/FileSubject.h"

#include <cstdlib>
#include <smf.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace bench {

namespace {

/// smf_delete looks for each event from the start of its track, which for the largest file takes
/// hours; so the events go first, by hand.
struct DeleteSong
{
    void operator()(smf_t* song) const
    {
        for (int number = 1; number <= song->number_of_tracks; ++number) {
            smf_track_t* track = smf_get_track_by_number(song, number);
            for (guint i = 0; i < track->events_array->len; ++i) {
                auto* event = static_cast<smf_event_t*>(g_ptr_array_index(track->events_array, i));
                std::free(event->midi_buffer);
                std::free(event);
            }
            g_ptr_array_set_size(track->events_array, 0);
            track->number_of_events = 0;
        }
        smf_delete(song);
    }
};

class LibsmfFile final : public FileSubject
{
public:
    LibsmfFile()
        : mFile(::memfd_create("libsmf", 0))
        , mPath("/proc/self/fd/" + std::to_string(mFile))
    {
        if (mFile < 0)
            throw std::runtime_error("no file in memory for libsmf");
    }

    LibsmfFile(const LibsmfFile&) = delete;
    LibsmfFile& operator=(const LibsmfFile&) = delete;

    ~LibsmfFile() override { ::close(mFile); }

    const char* name() const override { return "libsmf"; }

    void read(std::span<const std::uint8_t> file) override
    {
        mSong.reset(smf_load_from_memory(file.data(), static_cast<int>(file.size())));
    }

    /// Saving loads the result again, compares and deletes it: see DeleteSong.
    bool writes(const InputFile& file) const override { return file.bytes.size() < 1'000'000; }

    void write() override
    {
        if (smf_save(mSong.get(), mPath.c_str()) != 0)
            throw std::runtime_error("libsmf cannot save");
    }

    std::span<const std::uint8_t> written() override
    {
        struct stat status = {};
        ::fstat(mFile, &status);
        mBytes.resize(static_cast<std::size_t>(status.st_size));
        if (::pread(mFile, mBytes.data(), mBytes.size(), 0) != status.st_size)
            mBytes.clear();
        return mBytes;
    }

    std::size_t notes() const override
    {
        std::size_t count = 0;
        smf_rewind(mSong.get());
        while (const smf_event_t* event = smf_get_next_event(mSong.get()))
            count += (event->midi_buffer[0] & 0xF0) == 0x90 && event->midi_buffer[2] != 0 ? 1 : 0;
        return count;
    }

private:
    int mFile;
    std::string mPath;
    std::unique_ptr<smf_t, DeleteSong> mSong;
    Bytes mBytes;
};

} // namespace

std::unique_ptr<FileSubject> makeLibsmf()
{
    return std::make_unique<LibsmfFile>();
}

} // namespace bench
