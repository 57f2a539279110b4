/// Reads the transport that JUCE's wrappers tell of in every block.
#pragma once
#include "host/bridge/HostPosition.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <optional>

/// The song's bars count from its start in one meter for us, while the host's quarters go through
/// every meter that came before. So the position is moved by less than a bar, to where the host's
/// bar lies on a bar of ours: patterns start with the bars after every change of meter. A host that
/// has once named a bar that cannot be is believed no more: its quarters are taken as they are.
/// [audio thread]
class PlayHeadReader
{
public:
    using PositionInfo = juce::AudioPlayHead::PositionInfo;

    void prepare() { mBelievesBars = true; } ///< forgets what the host has said

    /// What the host leaves out is no number or 0, which changes nothing for the bridge.
    HostPosition read(const PositionInfo& info);

private:
    struct Bar
    {
        double start;  ///< in the host's quarters
        double length; ///< quarters
    };

    std::optional<Bar> bar(const PositionInfo& info);
    static void alignTo(const Bar& bar, HostPosition& position);

    bool mBelievesBars = true;
};
