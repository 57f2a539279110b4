/// One way to read and write a MIDI file: ours, the floor's or a peer's.
#pragma once
#include "bench/Inputs.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace bench {

class FileSubject
{
public:
    virtual ~FileSubject() = default;
    virtual const char* name() const = 0;
    /// Makes a song of the bytes in place of the last one, whose disposal is part of the cost.
    virtual void read(std::span<const std::uint8_t> file) = 0;

    /// Whether writing this much ends within a reasonable time.
    virtual bool writes(const InputFile&) const { return true; }

    /// Makes a file of the song.
    virtual void write() = 0;
    /// The file that the last write made, for the check; valid until the next write.
    virtual std::span<const std::uint8_t> written() = 0;
    virtual std::size_t notes() const = 0; ///< of the song
};

std::unique_ptr<FileSubject> makeOurs();
std::unique_ptr<FileSubject> makeFloor();
std::unique_ptr<FileSubject> makeJuce();
std::unique_ptr<FileSubject> makeLibsmf();
std::unique_ptr<FileSubject> makePortsmf();
std::unique_ptr<FileSubject> makeDrumstick();

/// @param file  where ours and the floor must agree to the byte
/// @return what is wrong, or nothing
std::string compareOursWithFloor(const InputFile& file);

/// Registers reading and writing of each file by each subject. Files and subjects are kept.
/// @return what is wrong with a subject's result, or nothing
std::string addFileBenchmarks();
/// The same for slices.
std::string addSliceBenchmarks();
/// The same for a pattern rendered into a file.
std::string addRenderBenchmarks();

} // namespace bench
