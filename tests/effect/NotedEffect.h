/// An effect that only notes which of its virtual operations was reached.
#pragma once
#include "effect/CLooper.h"

#include <string>
#include <vector>

class NotedEffect : public CLooper
{
public:
    /// @param reached  outlives the effect, which notes its own end as well
    explicit NotedEffect(std::vector<std::string>& reached)
        : mReached(reached)
    {
    }

    ~NotedEffect() override { note("destructor"); }

    void Initialize(Korvanel::MidiContext*) override { note("Initialize"); }

    void Terminate() override { note("Terminate"); }

    void Enable() override { note("Enable"); }

    void Disable() override { note("Disable"); }

    void processStart(std::int32_t) override { note("processStart"); }

    void processStop(std::int32_t) override { note("processStop"); }

    void processLoop(std::int32_t, std::int32_t) override { note("processLoop"); }

    void process(std::int32_t, std::int32_t, Korvanel::MidiQueue&) override { note("process"); }

    void processInput(Korvanel::MidiQueue&) override { note("processInput"); }

    bool hasEditor() override { return note("hasEditor"); }

    Korvanel::MidiEffectEditor* createEditor() override
    {
        note("createEditor");
        return nullptr;
    }

    void SaveTo(Korvanel::OutputStream&) override { note("SaveTo"); }

    void LoadFrom(Korvanel::InputStream&) override { note("LoadFrom stream"); }

    void LoadFrom(void*, std::uint32_t) override { note("LoadFrom bytes"); }

    void* get_interface(const char*) override
    {
        note("get_interface");
        return nullptr;
    }

    bool GetCurrentPattern(IKVSSExStrumwerks::Pattern*) override
    {
        return note("GetCurrentPattern");
    }

    bool SetCurrentPattern(IKVSSExStrumwerks::Pattern*) override
    {
        return note("SetCurrentPattern");
    }

    bool AddObserver(IKVSSExStrumwerks::PatternObserver*) override { return note("AddObserver"); }

    bool RemoveObserver(IKVSSExStrumwerks::PatternObserver*) override
    {
        return note("RemoveObserver");
    }

    void VelocityShift(int) override { note("VelocityShift"); }

    void SilentPlay(bool) override { note("SilentPlay"); }

    bool GetDocumentPath(Korvanel::String*) override { return note("GetDocumentPath"); }

    Korvanel::String GetPatternsDir() override
    {
        note("GetPatternsDir");
        return {};
    }

    void SaveTrack(Korvanel::OutputStream&, int) override { note("SaveTrack"); }

    void LoadTrack(Korvanel::InputStream&, const char*) override { note("LoadTrack"); }

    void stopAndStart() override { note("stopAndStart"); }

    void pressPlay() override { note("pressPlay"); }

private:
    bool note(const char* name)
    {
        mReached.emplace_back(name);
        return true;
    }

    std::vector<std::string>& mReached;
};
