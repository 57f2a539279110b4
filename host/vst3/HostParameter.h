/// One row of the bridge's parameters, as JUCE's wrappers show it to a host.
#pragma once
#include "host/bridge/Parameters.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstddef>

/// Values between the host and us are 0 to 1. The effect holds the value: there is no copy to get
/// out of step. Thread: any
class HostParameter final : public juce::AudioProcessorParameterWithID
{
public:
    /// @param parameters  outlive this
    HostParameter(Parameters& parameters, std::size_t index);

    float getValue() const override;
    void setValue(float value) override;
    float getDefaultValue() const override;
    int getNumSteps() const override;

    bool isDiscrete() const override { return true; }

    bool isBoolean() const override;
    juce::String getText(float value, int maximumLength) const override;
    float getValueForText(const juce::String& text) const override;

    /// Tells the host of a value that the effect has taken from elsewhere. [ui thread]
    void report(int value);

private:
    float fraction(int value) const;
    int plain(float fraction) const;

    Parameters& mParameters;
    const std::size_t mIndex;
    const Parameter& mRow;
};
