#include "shared/System/kvFile.h"

#include <unistd.h>

namespace Korvanel {

namespace {

const char* modeText(unsigned mode)
{
    switch (mode) {
    case File::ReadMode:
        return "rb";
    case File::WriteMode:
        return "wb";
    default:
        return nullptr;
    }
}

std::uint32_t moved(std::size_t count)
{
    return static_cast<std::uint32_t>(count);
}

} // namespace

File::File(const char* path, unsigned mode, unsigned unused)
{
    File::open(path, mode, unused);
}

File::~File()
{
    File::close();
}

bool File::open(const char* path, unsigned mode, unsigned)
{
    File::close(); // this class's own, also while a derived one is being made
    const char* text = modeText(mode);
    if (text != nullptr && path != nullptr)
        mFile = std::fopen(path, text);
    return mFile != nullptr;
}

void File::close()
{
    if (mFile != nullptr)
        std::fclose(mFile);
    mFile = nullptr;
}

std::uint32_t File::length()
{
    if (mFile == nullptr)
        return 0;
    const long position = std::ftell(mFile);
    const int found = std::fseek(mFile, 0, SEEK_END);
    std::fseek(mFile, position, SEEK_SET);
    return static_cast<std::uint32_t>(found);
}

bool File::seteof()
{
    if (mFile == nullptr || std::fflush(mFile) != 0)
        return false;
    const long position = std::ftell(mFile);
    return position >= 0 && ::ftruncate(::fileno(mFile), position) == 0;
}

int File::seek(std::uint32_t offset, int whence)
{
    if (mFile == nullptr)
        return 0;
    const bool fromStart = whence == SEEK_SET;
    const long distance = fromStart ? static_cast<long>(offset)
                                    : static_cast<long>(static_cast<std::int32_t>(offset));
    return std::fseek(mFile, distance, whence);
}

std::uint32_t File::read(void* data, std::uint32_t size)
{
    return mFile == nullptr ? 0 : moved(std::fread(data, size, 1, mFile));
}

std::uint32_t File::write(const void* data, std::uint32_t size)
{
    return mFile == nullptr ? 0 : moved(std::fwrite(data, size, 1, mFile));
}

std::uint32_t SimpleStream<File>::Read(void* data, std::uint32_t size)
{
    return mFile.read(data, size);
}

std::uint32_t SimpleStream<File>::Write(const void* data, std::uint32_t size)
{
    return mFile.write(data, size);
}

std::uint32_t SimpleStream<std::FILE*>::Read(void* data, std::uint32_t size)
{
    return mFile == nullptr ? 0 : moved(std::fread(data, 1, size, mFile));
}

std::uint32_t SimpleStream<std::FILE*>::Write(const void* data, std::uint32_t size)
{
    return mFile == nullptr ? 0 : moved(std::fwrite(data, 1, size, mFile));
}

} // namespace Korvanel
