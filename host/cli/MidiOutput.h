/// Where played MIDI goes.
#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

class MidiOutput
{
public:
    virtual ~MidiOutput() = default;
    /// Sends one message now. Throws CommandError (NoMidi) when the other end is gone.
    virtual void send(std::span<const std::uint8_t> message) = 0;
};

/// A port of the ALSA sequencer.
/// @param destination  CLIENT:PORT or a client's name to connect to; empty to wait for others to
/// connect Throws CommandError (NoMidi) without a sequencer or such a destination.
std::unique_ptr<MidiOutput> openSequencer(const std::string& destination);

/// The sequencer's ports that take MIDI, a line each. Throws CommandError (NoMidi) without a
/// sequencer.
std::vector<std::string> sequencerPorts();

/// Raw MIDI bytes to a device, a pipe or a file. Throws CommandError (NoMidi) when it cannot be
/// opened.
std::unique_ptr<MidiOutput> openRawDevice(const std::string& path);
