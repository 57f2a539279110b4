/// The editor in the window that a host gives to JUCE's wrapper.
#pragma once
#include "editor/CLooperView.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

class LooperProcessor;

/// Keeps the toolkit's message loop, which is the host's here. Without it, as on a thread that is
/// not the loop's, no window can be made. [ui thread]
class LoopUser
{
public:
    LoopUser();
    ~LoopUser();
    LoopUser(const LoopUser&) = delete;
    LoopUser& operator=(const LoopUser&) = delete;

private:
    bool mStarted;
};

/// [ui thread]. The loop outlives the component: its last calls to the display may still fail.
class LooperEditor final : private LoopUser, public juce::AudioProcessorEditor, private juce::Timer
{
public:
    explicit LooperEditor(LooperProcessor& looper);
    ~LooperEditor() override;

    void resized() override;

    bool isOpen() const { return mView->window() != nullptr; } ///< false when it could not be made

private:
    void open();
    void timerCallback() override;

    LooperProcessor& mLooper;
    std::unique_ptr<CLooperView> mView;
};
