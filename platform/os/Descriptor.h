/// Owner of one of the kernel's file descriptors.
#pragma once
#include <unistd.h>
#include <utility>

namespace platform {

/// Closes its descriptor when it goes. One object belongs to one thread at a time.
class Descriptor
{
public:
    /// @param descriptor  becomes this object's own; below 0 for none
    explicit Descriptor(int descriptor)
        : mDescriptor(descriptor)
    {
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    Descriptor(Descriptor&& other) noexcept
        : mDescriptor(std::exchange(other.mDescriptor, -1))
    {
    }

    ~Descriptor() { close(); }

    explicit operator bool() const { return mDescriptor >= 0; }

    int get() const { return mDescriptor; }

    /// @return false when the kernel reports, as late as now, that what was written is lost
    bool close() { return mDescriptor < 0 || ::close(std::exchange(mDescriptor, -1)) == 0; }

private:
    int mDescriptor;
};

} // namespace platform
