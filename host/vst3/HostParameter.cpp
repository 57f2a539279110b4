#include "host/vst3/HostParameter.h"

#include <algorithm>
#include <cmath>

HostParameter::HostParameter(Parameters& parameters, std::size_t index)
    : AudioProcessorParameterWithID(juce::ParameterID(Parameters::table()[index].id, 1),
                                    Parameters::table()[index].name,
                                    juce::AudioProcessorParameterWithIDAttributes().withLabel(
                                        Parameters::table()[index].unit))
    , mParameters(parameters)
    , mIndex(index)
    , mRow(Parameters::table()[index])
{
}

float HostParameter::fraction(int value) const
{
    return static_cast<float>(value - mRow.min) / static_cast<float>(mRow.max - mRow.min);
}

int HostParameter::plain(float fraction) const
{
    const float within = std::clamp(fraction, 0.0F, 1.0F);
    return mRow.min +
           static_cast<int>(std::lround(within * static_cast<float>(mRow.max - mRow.min)));
}

float HostParameter::getValue() const
{
    return fraction(mParameters.value(mIndex));
}

void HostParameter::setValue(float value)
{
    if (std::isfinite(value))
        mParameters.fromHost(mIndex, static_cast<float>(plain(value)));
}

float HostParameter::getDefaultValue() const
{
    return fraction(mRow.normal);
}

int HostParameter::getNumSteps() const
{
    return mRow.max - mRow.min + 1;
}

bool HostParameter::isBoolean() const
{
    return mRow.kind == ParameterKind::Toggle;
}

juce::String HostParameter::getText(float value, int maximumLength) const
{
    const int shown = plain(value);
    juce::String text(shown);
    if (mRow.kind == ParameterKind::Choice)
        text = mRow.choices[static_cast<std::size_t>(shown - mRow.min)];
    else if (mRow.kind == ParameterKind::Toggle)
        text = shown != 0 ? "On" : "Off";
    return maximumLength > 0 ? text.substring(0, maximumLength) : text;
}

float HostParameter::getValueForText(const juce::String& text) const
{
    for (int value = mRow.min; mRow.kind != ParameterKind::Number && value <= mRow.max; ++value)
        if (text.trim().equalsIgnoreCase(getText(fraction(value), 0)))
            return fraction(value);
    return fraction(std::clamp(text.getIntValue(), mRow.min, mRow.max));
}

void HostParameter::report(int value)
{
    beginChangeGesture();
    sendValueChangedMessageToListeners(fraction(value));
    endChangeGesture();
}
