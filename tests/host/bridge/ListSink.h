/// A host's output port that keeps what it gets.
#pragma once
#include "host/bridge/MidiSink.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

struct Sent
{
    std::int64_t frame;
    std::vector<std::uint8_t> bytes;

    friend bool operator==(const Sent&, const Sent&) = default;

    friend std::ostream& operator<<(std::ostream& out, const Sent& sent)
    {
        out << sent.frame << ':';
        for (const std::uint8_t byte : sent.bytes)
            out << ' ' << int{byte};
        return out;
    }
};

class ListSink : public MidiSink
{
public:
    bool send(std::uint32_t frame, std::span<const std::uint8_t> message) override
    {
        if (sent.size() >= room)
            return false;
        sent.push_back({blockStart + frame, {message.begin(), message.end()}});
        return true;
    }

    std::vector<Sent> sent;
    std::size_t room = SIZE_MAX; ///< messages in all
    std::int64_t blockStart = 0; ///< what frames are counted from
};
