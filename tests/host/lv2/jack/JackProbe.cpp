// Drives a plug-in host under JACK and checks what it plays: this is the timebase master, the
// transport's remote control, and the instrument that listens. Arguments: the host's MIDI input
// port, its output port.
//
// The pattern is one bar with a quarter note of key 40 at its start. Exits with 0 when every note
// came within the frame that it belongs to, and none was left on.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/transport.h>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr double kTicksPerBeat = 1920;
constexpr int kBeats = 4;

struct Heard
{
    std::int64_t frame; ///< of the transport
    bool rolling;
    std::uint8_t status;
    std::uint8_t key;
};

class Probe
{
public:
    Probe()
        : mClient(jack_client_open("probe", JackNoStartServer, nullptr))
    {
        if (mClient == nullptr)
            throw std::string("there is no JACK server");
        mHeard.reserve(100'000);
        mIn = jack_port_register(mClient, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        mOut = jack_port_register(mClient, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        jack_set_process_callback(mClient, &Probe::process, this);
        jack_set_timebase_callback(mClient, 0, &Probe::timebase, this);
        jack_activate(mClient);
    }

    ~Probe() { jack_client_close(mClient); }

    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    /// Waits for the host: its ports appear before it takes connections.
    void connect(const char* hostIn, const char* hostOut)
    {
        for (int tries = 0; tries < 400; ++tries) {
            if (isConnected(mOut, hostIn) && isConnected(mIn, hostOut))
                return;
            jack_connect(mClient, jack_port_name(mOut), hostIn);
            jack_connect(mClient, hostOut, jack_port_name(mIn));
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        throw std::string("the host's ports cannot be connected");
    }

    void chooseProgram(std::uint8_t program)
    {
        mProgram = program;
        waitFrames(rate()); // the host's worker loads it
    }

    void setTempo(double tempo) { mTempo = tempo; }

    /// Rolls from a frame for a while, and stops. @return what was heard
    std::vector<Heard> roll(std::uint32_t from, std::uint32_t frames)
    {
        jack_transport_locate(mClient, from);
        waitFrames(rate() / 2);
        const std::size_t first = mCount;
        jack_transport_start(mClient);
        waitFrames(frames);
        jack_transport_stop(mClient);
        waitFrames(rate() / 2);
        return {mHeard.begin() + static_cast<std::ptrdiff_t>(first),
                mHeard.begin() + static_cast<std::ptrdiff_t>(mCount)};
    }

    /// Rolls, and goes elsewhere without a stop in between.
    std::vector<Heard> rollAndRelocate(std::uint32_t from, std::uint32_t to, std::uint32_t frames)
    {
        jack_transport_locate(mClient, from);
        waitFrames(rate() / 2);
        const std::size_t first = mCount;
        jack_transport_start(mClient);
        waitFrames(frames);
        jack_transport_locate(mClient, to);
        waitFrames(frames);
        jack_transport_stop(mClient);
        waitFrames(rate() / 2);
        return {mHeard.begin() + static_cast<std::ptrdiff_t>(first),
                mHeard.begin() + static_cast<std::ptrdiff_t>(mCount)};
    }

    std::uint32_t rate() const { return jack_get_sample_rate(mClient); }

    double framesPerBar() const { return kBeats * 60.0 * rate() / mTempo; }

private:
    static bool isConnected(const jack_port_t* port, const char* other)
    {
        return jack_port_connected_to(port, other) != 0;
    }

    void waitFrames(std::uint32_t frames)
    {
        const std::int64_t end = mFrames + frames;
        while (mFrames < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    static int process(jack_nframes_t frames, void* self)
    {
        static_cast<Probe*>(self)->process(frames);
        return 0;
    }

    void process(jack_nframes_t frames)
    {
        jack_position_t position{};
        const bool rolling = jack_transport_query(mClient, &position) == JackTransportRolling;
        void* in = jack_port_get_buffer(mIn, frames);
        for (std::uint32_t i = 0; i < jack_midi_get_event_count(in); ++i) {
            jack_midi_event_t event{};
            jack_midi_event_get(&event, in, i);
            if (event.size == 3 && mHeard.size() < mHeard.capacity()) {
                mHeard.push_back({std::int64_t{position.frame} + event.time, rolling,
                                  event.buffer[0], event.buffer[1]});
                mCount = mHeard.size();
            }
        }
        void* out = jack_port_get_buffer(mOut, frames);
        jack_midi_clear_buffer(out);
        if (const int program = mProgram.exchange(-1); program >= 0) {
            const jack_midi_data_t bytes[]{0xC0, static_cast<jack_midi_data_t>(program)};
            jack_midi_event_write(out, 0, bytes, sizeof bytes);
        }
        mFrames += frames;
    }

    static void timebase(jack_transport_state_t, jack_nframes_t, jack_position_t* position, int,
                         void* self)
    {
        static_cast<Probe*>(self)->timebase(*position);
    }

    void timebase(jack_position_t& position) const
    {
        const double beats = position.frame * (mTempo / 60) / position.frame_rate;
        const double beat = std::floor(beats);
        position.valid = JackPositionBBT;
        position.bar = static_cast<int>(beat) / kBeats + 1;
        position.beat = static_cast<int>(beat) % kBeats + 1;
        position.tick = static_cast<int>((beats - beat) * kTicksPerBeat);
        position.bar_start_tick = (position.bar - 1) * kBeats * kTicksPerBeat;
        position.beats_per_bar = kBeats;
        position.beat_type = 4;
        position.ticks_per_beat = kTicksPerBeat;
        position.beats_per_minute = mTempo;
    }

    jack_client_t* mClient;
    jack_port_t* mIn = nullptr;
    jack_port_t* mOut = nullptr;
    std::vector<Heard> mHeard; ///< never grows beyond what is reserved
    std::atomic<std::size_t> mCount{0};
    std::atomic<std::int64_t> mFrames{0};
    std::atomic<int> mProgram{-1};
    std::atomic<double> mTempo{120};
};

/// Compares what was heard with the pattern, which begins on every bar.
class Judge
{
public:
    explicit Judge(const Probe& probe)
        : mProbe(probe)
    {
    }

    /// @param from, to  frames of the transport that were played without a jump
    void expectNotes(std::int64_t from, std::int64_t to)
    {
        const double bar = mProbe.framesPerBar();
        for (auto n = static_cast<std::int64_t>(std::ceil(static_cast<double>(from) / bar));
             static_cast<double>(n) * bar < static_cast<double>(to); ++n) {
            const double on = static_cast<double>(n) * bar;
            mExpected.push_back({static_cast<std::int64_t>(on), true});
            mExpected.push_back(
                {std::min(static_cast<std::int64_t>(on + bar / kBeats), to), false});
        }
    }

    /// JACK delivers what the host plays some whole periods late, always as many.
    void judge(const char* what, const std::vector<Heard>& heard)
    {
        bool good = heard.size() == mExpected.size();
        for (std::size_t i = 0; good && i < heard.size(); ++i) {
            const Event& expected = mExpected[i];
            if (mDelay < 0)
                mDelay = (heard[i].frame - expected.frame + kNear) / kPeriod * kPeriod;
            const std::int64_t off = heard[i].frame - mDelay - expected.frame;
            // Where the transport stops or jumps is known to the period only.
            const std::int64_t allowed = expected.isOn || i + 1 < heard.size() ? kNear : kLate;
            good = heard[i].key == 40 && (heard[i].status == 0x90) == expected.isOn &&
                   std::abs(off) <= allowed && mDelay <= 2 * kPeriod;
        }
        std::printf("%s: %s\n", what, good ? "as expected" : "WRONG");
        if (!good)
            print(heard);
        mAllGood = mAllGood && good;
        mExpected.clear();
    }

    bool allGood() const { return mAllGood; }

private:
    static constexpr std::int64_t kPeriod = 1024;
    static constexpr std::int64_t kNear = 2;
    static constexpr std::int64_t kLate = 24'000;

    struct Event
    {
        std::int64_t frame;
        bool isOn;
    };

    void print(const std::vector<Heard>& heard) const
    {
        for (const Event& event : mExpected)
            std::printf("  expected %8lld %s\n", static_cast<long long>(event.frame),
                        event.isOn ? "on" : "off");
        for (const Heard& event : heard)
            std::printf("  heard    %8lld %02X %d\n", static_cast<long long>(event.frame),
                        event.status, event.key);
    }

    const Probe& mProbe;
    std::vector<Event> mExpected;
    std::int64_t mDelay = -1;
    bool mAllGood = true;
};

} // namespace

int main(int count, char** arguments)
try {
    if (count != 3)
        throw std::string("jack_probe HOST-IN HOST-OUT");
    Probe probe;
    Judge judge(probe);
    probe.connect(arguments[1], arguments[2]);
    probe.chooseProgram(0);
    const std::uint32_t second = probe.rate();

    judge.expectNotes(0, 5 * second);
    judge.judge("from the start", probe.roll(0, 5 * second));

    judge.expectNotes(4 * second, 5 * second);
    judge.judge("from the third bar", probe.roll(4 * second, second));

    judge.expectNotes(0, second);
    judge.expectNotes(8 * second, 9 * second);
    judge.judge("from the first bar, then the fifth", probe.rollAndRelocate(0, 8 * second, second));

    probe.setTempo(93.7);
    judge.expectNotes(0, 6 * second);
    judge.judge("at 93.7 BPM", probe.roll(0, 6 * second));
    return judge.allGood() ? 0 : 1;

} catch (const std::string& problem) {

    std::fprintf(stderr, "jack_probe: %s\n", problem.c_str());
    return 1;
}
