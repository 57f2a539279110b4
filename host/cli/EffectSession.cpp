#include "host/cli/EffectSession.h"

#include "effect/ILooper.h"
#include "host/cli/CommandError.h"
#include "host/cli/StateChunk.h"
#include "midi/TickMath.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace {

std::int32_t loopTicks(const Korvanel::CMidiTrack& pattern, int ticksPerQuarter, int tempoType)
{
    const std::int64_t length =
        Korvanel::convertTicks(pattern.barsLength(), ticksPerQuarter, pattern.ticksPerQuarter);
    return Korvanel::toTicks(tempoType == 0 ? length * 2 : tempoType == 1 ? length : length / 2);
}

/// An open file descriptor, as a short name for a file whose path is too long for the host's
/// pattern record.
class ShortName
{
public:
    explicit ShortName(const std::string& path)
        : mDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
    }

    ~ShortName()
    {
        if (mDescriptor >= 0)
            ::close(mDescriptor);
    }

    ShortName(const ShortName&) = delete;
    ShortName& operator=(const ShortName&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(mDescriptor); }

private:
    int mDescriptor;
};

} // namespace

EffectSession::EffectSession(const Bundle& bundle, const PatternFile& pattern,
                             const PlayOptions& options, int ticksPerQuarter)
    : mTime(ticksPerQuarter, options.tempoOf(pattern.pattern), options.meterOf(pattern.pattern))
    , mEffect(bundle.createEffect())
    , mLoopLength(loopTicks(pattern.pattern, ticksPerQuarter, options.tempoType))
{
    std::vector<std::uint8_t> state = makeStateChunk(options);
    mEffect->LoadFrom(state.data(), static_cast<std::uint32_t>(state.size()));
    mEffect->Initialize(&mTime);
    choosePattern(pattern.path);
    mEffect->Enable();
    mEffect->processStart(0);
}

EffectSession::~EffectSession()
{
    mEffect->processStop(mPosition);
    mEffect->Terminate();
}

void EffectSession::choosePattern(const std::string& path)
{
    auto* looper = static_cast<Korvanel::ILooper*>(mEffect->get_interface("Korvanel::ILooper"));
    if (looper == nullptr)
        throw CommandError(ExitCode::NoBundle, "the plug-in does not let a host choose patterns");
    IKVSSExStrumwerks::Pattern record{};
    const std::string scheme(IKVSSExStrumwerks::Pattern::fileScheme);
    std::string name = scheme + std::filesystem::absolute(path).string();
    const ShortName shortName(path);
    if (name.size() >= sizeof record.name)
        name = scheme + shortName.path();
    std::copy(name.begin(), name.end(), record.name);
    if (!looper->SetCurrentPattern(&record))
        throw CommandError(ExitCode::BadPattern, path + ": the plug-in does not take it");
}

const std::vector<Korvanel::MidiEvent>& EffectSession::play(std::int32_t from, std::int32_t to)
{
    mQueue.clear();
    mEffect->process(from, to, mQueue);
    mPosition = to;
    return mQueue.events();
}
