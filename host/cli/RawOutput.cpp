// A raw MIDI device, a pipe or a file as an output.
#include "host/cli/CommandError.h"
#include "host/cli/MidiOutput.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

class RawOutput : public MidiOutput
{
public:
    explicit RawOutput(const std::string& path)
        : mPath(path)
        , mDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
    {
        if (mDescriptor < 0)
            fail();
    }

    ~RawOutput() override { ::close(mDescriptor); }

    RawOutput(const RawOutput&) = delete;
    RawOutput& operator=(const RawOutput&) = delete;

    void send(std::span<const std::uint8_t> message) override
    {
        while (!message.empty()) {
            const auto written = ::write(mDescriptor, message.data(), message.size());
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                fail();
            message = message.subspan(static_cast<std::size_t>(written));
        }
    }

private:
    [[noreturn]] void fail() const
    {
        throw CommandError(ExitCode::NoMidi, mPath + ": " + std::strerror(errno));
    }

    std::string mPath;
    int mDescriptor;
};

} // namespace

std::unique_ptr<MidiOutput> openRawDevice(const std::string& path)
{
    return std::make_unique<RawOutput>(path);
}
