/// The plumbing that every view shares. `C` is the component class that is shown.
#pragma once
#include "platform/toolkit/native/ControlImpl.h"
#include "platform/toolkit/native/Look.h"

namespace toolkit::native {

template <class C>
class ViewBase : public ControlView
{
public:
    juce::Component& component() override { return mComponent; }

protected:
    template <class... Arguments>
    explicit ViewBase(Control::Impl& control, Arguments&&... arguments)
        : mControl(control)
        , mComponent(std::forward<Arguments>(arguments)...)
    {
    }

    const ControlDescription& state() const { return mControl.description; }

    Control::Impl& mControl;
    C mComponent;
};

/// The look of the window that the component is in.
inline const Look& lookOf(const juce::Component& component)
{
    return dynamic_cast<const Look&>(component.getLookAndFeel());
}

} // namespace toolkit::native
