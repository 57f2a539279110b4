#include "host/cli/StateChunk.h"

#include "midi/CMidiTrack.h"
#include "shared/System/kvStream.h"

namespace {

constexpr std::int32_t kVersion = 6;
constexpr std::uint32_t kRandomVelocity = 4;

} // namespace

std::vector<std::uint8_t> makeStateChunk(const PlayOptions& options)
{
    const RandomVelocity random = options.random.value_or(RandomVelocity{});
    Korvanel::stringStream stream;
    stream.WriteInt32(kVersion);
    stream.WriteInt32(0); // no folder
    stream.WriteInt32(0); // no style
    Korvanel::CMidiTrack().Save(stream);
    stream.WriteInt32(-1); // no channel
    stream.WriteInt32(0);
    stream.WriteInt32(20); // bytes of the five that follow
    stream.WriteInt32(options.velocity);
    stream.WriteInt32(random.min);
    stream.WriteInt32(random.max);
    stream.WriteInt32(random.strength);
    stream.WriteUInt32(options.random ? kRandomVelocity : 0);
    stream.WriteInt8(0); // not thru
    stream.WriteInt8(static_cast<signed char>(options.tempoType));
    stream.WriteInt16(1);
    return {stream.text().begin(), stream.text().end()};
}
