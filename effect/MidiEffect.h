/// What a host sees of the effect, and what the effect sees of the host's musical time.
#pragma once
#include <cstdint>

namespace Korvanel {

class InputStream;
class MidiQueue;
class OutputStream;

/// Musical time; the host implements and owns it. Positions are zero-based; ticks are the host's.
/// Thread: [any thread]
class MidiContext
{
public:
    virtual int QuarterNoteLength() = 0; ///< ticks per quarter
    virtual double Tempo() = 0;          ///< beats per minute
    virtual std::int32_t BarPosition(int bar, int beat, int tick) = 0;
    /// Each pointer may be null.
    virtual void GetBar(std::int32_t at, int* bar, int* beat, int* tick) = 0;
    virtual int TimeSigNumerator() = 0;
    virtual int TimeSigDenominator() = 0;

protected:
    ~MidiContext() = default;
};

/// A world of 4/4 at 480 ticks per quarter and 120 BPM, for an effect without a host's.
class NullMidiContext : public MidiContext
{
public:
    int QuarterNoteLength() override { return 480; }

    double Tempo() override { return 120.0; }

    std::int32_t BarPosition(int bar, int beat, int tick) override;
    void GetBar(std::int32_t at, int* bar, int* beat, int* tick) override;

    int TimeSigNumerator() override { return 4; }

    int TimeSigDenominator() override { return 4; }
};

/// The effect's window, as the host handles it. Thread: [ui thread]
class MidiEffectEditor
{
public:
    virtual ~MidiEffectEditor() = default;
    virtual void getEditorSize(int* width, int* height); ///< pixels
    /// Shows the window. @param host  what the editor says that it takes; the base does nothing
    /// @return 0, or what went wrong as the platform numbers it
    virtual std::int32_t attach(void* host, int x, int y);
    virtual void remove(); ///< takes the window down; the editor stays
};

/// A MIDI effect. The host creates one, then calls Initialize, any number of the others, Terminate,
/// and destroys it. process, processInput and the transport run on the [audio thread], everything
/// else on the [ui thread], Initialize, Terminate and destruction while no slice runs.
class MidiEffect
{
public:
    virtual ~MidiEffect() = default;
    virtual void
    Initialize(MidiContext* context) = 0; ///< may be null; the context stays the host's
    virtual void Terminate() = 0;

    virtual void Enable() {}

    virtual void Disable() {}

    virtual void processStart(std::int32_t tick) = 0;
    virtual void processStop(std::int32_t tick) = 0;
    virtual void processLoop(std::int32_t from, std::int32_t to) = 0; ///< the cycle jumps back
    /// Renders the host ticks from..to, both included, into the queue.
    virtual void process(std::int32_t from, std::int32_t to, MidiQueue& queue) = 0;

    virtual void processInput(MidiQueue&) {} ///< incoming events; those that are used are removed

    virtual bool hasEditor() = 0;
    virtual MidiEffectEditor*
    createEditor() = 0; ///< the caller's to delete; null when there is none
    virtual void SaveTo(OutputStream& stream) = 0;
    virtual void LoadFrom(InputStream& stream) = 0; ///< exceptions of the stream pass through
    /// The same from `size` bytes of memory, which are only read.
    virtual void LoadFrom(void* data, std::uint32_t size);

    /// An extension interface by name, owned by the effect; null when there is none of that name.
    virtual void* get_interface(const char*) { return nullptr; }
};

} // namespace Korvanel
