/// A host's transport for tests: a song at one tempo in one meter, which hosts report from.
#pragma once
#include <juce_audio_basics/juce_audio_basics.h>

#include <cmath>

class SongHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override
    {
        PositionInfo info;
        info.setIsPlaying(playing);
        info.setBpm(tempo);
        info.setTimeSignature(TimeSignature{numerator, denominator});
        info.setPpqPosition(quarters);
        info.setPpqPositionOfLastBarStart(barStart());
        info.setBarCount(static_cast<std::int64_t>(std::lround(barStart() / barLength())));
        info.setTimeInSamples(static_cast<std::int64_t>(quarters * 60 / tempo * sampleRate));
        info.setTimeInSeconds(quarters * 60 / tempo);
        info.setIsLooping(looping);
        if (looping)
            info.setLoopPoints(LoopPoints{loopStart, loopEnd});
        return info;
    }

    /// Goes on by some frames, round the loop where one is set.
    void advance(int frames)
    {
        if (!playing)
            return;
        const bool before = quarters < loopEnd;
        quarters += frames / quarterFrames();
        if (looping && before && quarters >= loopEnd - 1e-9)
            quarters -= loopEnd - loopStart;
    }

    double barLength() const { return 4.0 * numerator / denominator; }

    double barStart() const
    {
        return firstBar + std::floor((quarters - firstBar + 1e-9) / barLength()) * barLength();
    }

    double quarterFrames() const { return sampleRate * 60 / tempo; }

    double sampleRate = 48000;
    bool playing = true;
    double quarters = 0;
    double tempo = 120;
    int numerator = 4;
    int denominator = 4;
    double firstBar = 0; ///< where the first bar of this meter starts
    bool looping = false;
    double loopStart = 0;
    double loopEnd = 0;
};
