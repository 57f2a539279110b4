// Any bytes as a pattern volume: what was read is written and read again to the same, and its
// patterns load or do not.
#include "fuzz/HeapLimit.h"
#include "library/Pattern.h"
#include "library/VolumeNode.h"
#include "midi/CMidiTrack.h"

#include <cstdlib>
#include <string>
#include <unistd.h>

using namespace Korvanel;

namespace {

/// A file of the fuzzer's own, in memory where there is one.
std::string scratchFile()
{
    std::string path = "/dev/shm/kv-fuzz-volume-XXXXXX";
    const int descriptor = ::mkstemp(path.data());
    if (descriptor >= 0)
        ::close(descriptor);
    return path;
}

std::string rewritten(VolumeNode& volume)
{
    volume.MakeNode();
    stringStream out;
    writeVolume(volume, out);
    return out.text();
}

void write(const std::string& path, const void* data, std::size_t size)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

void loadPatterns(VolumeNode& volume)
{
    int left = 20;
    CMidiTrack track;
    for (PatternIterator at(&volume); left > 0 && at.current() != nullptr; --left) {
        (*at).LoadTo(&track);
        const DirectoryTrees::Leaf* next = at.findNext();
        if (next == nullptr || !at.find(next->PathName(nullptr).c_str()))
            return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = scratchFile();
    const HeapLimit limit;
    auto* volume = new VolumeNode(path.c_str(), nullptr);
    write(path, data, size);
    const std::string once = rewritten(*volume);
    loadPatterns(*volume);

    write(path, once.data(), once.size());
    if (rewritten(*volume) != once)
        std::abort();
    volume->release();
    return 0;
}
