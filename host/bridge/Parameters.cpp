#include "host/bridge/Parameters.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr auto kNumber = ParameterKind::Number;
constexpr auto kToggle = ParameterKind::Toggle;
constexpr auto kChoice = ParameterKind::Choice;

using Effect = const CLooper&;

// The order is the order of ports and of automation lanes; new ones go to the end.
constexpr std::array<Parameter, Parameters::kCount> kTable{{
    {"velocity_add",
     "Velocity Add",
     kNumber,
     -127,
     127,
     LooperParameters::kVeloPlus,
     "",
     {},
     [](Effect effect) { return effect.getVeloPlus().value; },
     [](CLooper& effect, int value) { effect.setVeloPlus(value); }},
    {"random_minimum",
     "Random Minimum",
     kNumber,
     -127,
     0,
     LooperParameters::kRandomVeloMin,
     "",
     {},
     [](Effect effect) { return effect.getRandomVeloMin().value; },
     [](CLooper& effect, int value) { effect.setRandomVeloMin(value); }},
    {"random_maximum",
     "Random Maximum",
     kNumber,
     0,
     127,
     LooperParameters::kRandomVeloMax,
     "",
     {},
     [](Effect effect) { return effect.getRandomVeloMax().value; },
     [](CLooper& effect, int value) { effect.setRandomVeloMax(value); }},
    {"random_strength",
     "Random Strength",
     kNumber,
     0,
     100,
     LooperParameters::kRandomVeloStrength,
     "%",
     {},
     [](Effect effect) { return effect.getRandomVeloStrength().value; },
     [](CLooper& effect, int value) { effect.setRandomVeloStrength(value); }},
    {"pitch_wheel",
     "Use Pitch Wheel",
     kToggle,
     0,
     1,
     0,
     "",
     {},
     [](Effect effect) { return effect.isPitchWheelUsed() ? 1 : 0; },
     [](CLooper& effect, int value) { effect.usePitchWheel(value != 0); }},
    {"velocity_controller",
     "Use Velocity Controller",
     kToggle,
     0,
     1,
     0,
     "",
     {},
     [](Effect effect) { return effect.isVelocityUsed() ? 1 : 0; },
     [](CLooper& effect, int value) { effect.useVelocity(value != 0); }},
    {"random_velocity",
     "Random Velocity",
     kToggle,
     0,
     1,
     1,
     "",
     {},
     [](Effect effect) { return effect.isRandomVelo() ? 1 : 0; },
     [](CLooper& effect, int value) { effect.setRandomVelo(value != 0); }},
    {"thru",
     "MIDI Thru",
     kToggle,
     0,
     1,
     0,
     "",
     {},
     [](Effect effect) { return effect.isThru() ? 1 : 0; },
     [](CLooper& effect, int value) { effect.setThru(value != 0); }},
    {"tempo_type",
     "Tempo",
     kChoice,
     0,
     2,
     1,
     "",
     {"Half", "Normal", "Double"},
     [](Effect effect) { return effect.tempoType(); },
     [](CLooper& effect, int value) { effect.TempoType(value); }},
    {"drag_repeat",
     "Drag Repeat",
     kNumber,
     1,
     999,
     1,
     "",
     {},
     [](Effect effect) { return effect.getDnDRepeat().value; },
     [](CLooper& effect, int value) { effect.setDnDRepeat(value); }},
}};

} // namespace

std::span<const Parameter, Parameters::kCount> Parameters::table()
{
    return kTable;
}

Parameters::Parameters(CLooper& effect)
    : mEffect(effect)
{
    for (std::size_t index = 0; index < kCount; ++index)
        mKnown[index] = value(index);
}

int Parameters::value(std::size_t index) const
{
    const Parameter& parameter = kTable[index];
    return std::clamp(parameter.get(mEffect), parameter.min, parameter.max);
}

void Parameters::fromHost(std::size_t index, float value)
{
    if (!std::isfinite(value))
        return;
    const Parameter& parameter = kTable[index];
    const auto rounded = static_cast<int>(std::lround(
        std::clamp(value, static_cast<float>(parameter.min), static_cast<float>(parameter.max))));
    if (rounded == mKnown[index].load(std::memory_order_relaxed))
        return;
    parameter.set(mEffect, rounded); // before it is known: see reportChanges
    mKnown[index].store(rounded, std::memory_order_release);
}
