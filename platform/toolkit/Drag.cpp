#include "platform/toolkit/Drag.h"

#include "platform/toolkit/Window.h"
#include "platform/toolkit/native/ControlImpl.h"

namespace toolkit {

namespace {

juce::StringArray urlsOf(const Pasteboard& pasteboard)
{
    juce::StringArray urls;
    for (const auto item : pasteboard.items()) {
        std::string url;
        if (pasteboard.itemFlavor(item, fileUrlFlavor, url))
            urls.add(native::toJuce(url)); // escaped already, so the library leaves it as it is
    }
    return urls;
}

} // namespace

Control* pressedControl()
{
    return native::pressedUserPane();
}

Status startDrag(Control& source, const Pasteboard& pasteboard, std::function<void()> finished)
{
    auto& control = source.impl();
    if (!control.isOpen())
        return loopNotRunningErr;
    const auto urls = urlsOf(pasteboard);
    auto& component = control.view->component();
    if (urls.isEmpty() || !juce::ModifierKeys::currentModifiers.isAnyMouseButtonDown() ||
        !component.isShowing())
        return paramErr;
    const std::weak_ptr<Window> window = source.window().weak_from_this();
    const auto done = [window, finished = std::move(finished)] {
        const auto alive = window.lock();
        if (alive && alive->isOpen() && finished)
            finished();
    };
    const bool started =
        juce::DragAndDropContainer::performExternalDragDropOfFiles(urls, false, &component, done);
    return started ? noErr : paramErr;
}

} // namespace toolkit
