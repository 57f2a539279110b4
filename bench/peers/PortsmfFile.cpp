// portsmf: notes with durations in beats, as ours, but one allocated object for each event.
#include "bench/FileSubject.h"

#include <allegro.h>
#include <istream>
#include <ostream>
#include <sstream>
#include <streambuf>

namespace bench {

namespace {

/// Reads bytes where they lie.
class MemoryBuf : public std::streambuf
{
public:
    explicit MemoryBuf(std::span<const std::uint8_t> bytes)
    {
        char* begin = const_cast<char*>(reinterpret_cast<const char*>(bytes.data()));
        setg(begin, begin, begin + bytes.size());
    }
};

class PortsmfFile final : public FileSubject
{
public:
    const char* name() const override { return "portsmf"; }

    void read(std::span<const std::uint8_t> file) override
    {
        MemoryBuf buffer(file);
        std::istream stream(&buffer);
        mSong = std::make_unique<Alg_seq>(stream, true);
    }

    void write() override
    {
        mOut = std::ostringstream();
        mSong->smf_write(mOut);
    }

    std::span<const std::uint8_t> written() override
    {
        mBytes = mOut.str();
        return {reinterpret_cast<const std::uint8_t*>(mBytes.data()), mBytes.size()};
    }

    std::size_t notes() const override
    {
        std::size_t count = 0;
        for (int track = 0; track < mSong->track_list.length(); ++track) {
            Alg_track& events = mSong->track_list[track];
            for (int i = 0; i < events.length(); ++i)
                count += events[i]->is_note() ? 1 : 0;
        }
        return count;
    }

private:
    std::unique_ptr<Alg_seq> mSong;
    std::ostringstream mOut;
    std::string mBytes;
};

} // namespace

std::unique_ptr<FileSubject> makePortsmf()
{
    return std::make_unique<PortsmfFile>();
}

} // namespace bench
