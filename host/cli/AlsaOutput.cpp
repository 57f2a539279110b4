// The ALSA sequencer as an output.
#include "host/cli/CommandError.h"
#include "host/cli/MidiOutput.h"

#include <alsa/asoundlib.h>

namespace {

struct CloseSequencer
{
    void operator()(snd_seq_t* sequencer) const { snd_seq_close(sequencer); }
};

struct FreeEncoder
{
    void operator()(snd_midi_event_t* encoder) const { snd_midi_event_free(encoder); }
};

using Sequencer = std::unique_ptr<snd_seq_t, CloseSequencer>;

constexpr unsigned kTakesMidi = SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE;

void keepQuiet(const char*, int, const char*, int, const char*, ...) {}

Sequencer openClient()
{
    snd_lib_error_set_handler(&keepQuiet); // our own line says it all
    snd_seq_t* opened = nullptr;
    if (snd_seq_open(&opened, "default", SND_SEQ_OPEN_DUPLEX, 0) < 0)
        throw CommandError(ExitCode::NoMidi, "there is no MIDI system here (no ALSA sequencer); "
                                             "`looper render` writes a file instead, "
                                             "and --device sends raw MIDI");
    snd_seq_set_client_name(opened, "Korvanel Looper");
    return Sequencer(opened);
}

/// Calls `visit` with each port that takes MIDI and its client's name.
template <typename Visit>
void forEachPort(snd_seq_t* sequencer, Visit visit)
{
    snd_seq_client_info_t* client = nullptr;
    snd_seq_port_info_t* port = nullptr;
    snd_seq_client_info_alloca(&client);
    snd_seq_port_info_alloca(&port);
    snd_seq_client_info_set_client(client, -1);
    while (snd_seq_query_next_client(sequencer, client) >= 0) {
        snd_seq_port_info_set_client(port, snd_seq_client_info_get_client(client));
        snd_seq_port_info_set_port(port, -1);
        while (snd_seq_query_next_port(sequencer, port) >= 0)
            if ((snd_seq_port_info_get_capability(port) & kTakesMidi) == kTakesMidi)
                visit(port, snd_seq_client_info_get_name(client));
    }
}

class AlsaOutput : public MidiOutput
{
public:
    AlsaOutput(Sequencer sequencer, const std::string& destination)
        : mSequencer(std::move(sequencer))
        , mPort(snd_seq_create_simple_port(
              mSequencer.get(), "out", SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ,
              SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION))
    {
        snd_midi_event_t* encoder = nullptr;
        if (mPort < 0 || snd_midi_event_new(16, &encoder) < 0)
            throw CommandError(ExitCode::NoMidi, "the ALSA sequencer gives us no port");
        mEncoder.reset(encoder);
        snd_midi_event_no_status(encoder, 1);
        if (!destination.empty())
            connectTo(destination);
    }

    void send(std::span<const std::uint8_t> message) override
    {
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        snd_midi_event_reset_encode(mEncoder.get());
        if (snd_midi_event_encode(mEncoder.get(), message.data(), static_cast<long>(message.size()),
                                  &event) <= 0)
            return;
        snd_seq_ev_set_source(&event, static_cast<unsigned char>(mPort));
        snd_seq_ev_set_subs(&event);
        snd_seq_ev_set_direct(&event);
        if (snd_seq_event_output_direct(mSequencer.get(), &event) < 0)
            throw CommandError(ExitCode::NoMidi, "the ALSA sequencer takes no more events");
    }

private:
    void connectTo(const std::string& destination)
    {
        snd_seq_addr_t address{};
        if (snd_seq_parse_address(mSequencer.get(), &address, destination.c_str()) < 0 ||
            snd_seq_connect_to(mSequencer.get(), mPort, address.client, address.port) < 0)
            throw CommandError(ExitCode::NoMidi,
                               "there is no MIDI port '" + destination +
                                   "'; `looper play --list-ports` names those there are");
    }

    Sequencer mSequencer;
    int mPort;
    std::unique_ptr<snd_midi_event_t, FreeEncoder> mEncoder;
};

} // namespace

std::unique_ptr<MidiOutput> openSequencer(const std::string& destination)
{
    return std::make_unique<AlsaOutput>(openClient(), destination);
}

std::vector<std::string> sequencerPorts()
{
    const Sequencer sequencer = openClient();
    std::vector<std::string> lines;
    forEachPort(sequencer.get(), [&lines](const snd_seq_port_info_t* port, const char* client) {
        lines.push_back(std::to_string(snd_seq_port_info_get_client(port)) + ":" +
                        std::to_string(snd_seq_port_info_get_port(port)) + "  " + client + ", " +
                        snd_seq_port_info_get_name(port));
    });
    return lines;
}
