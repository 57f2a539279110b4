#include "platform/toolkit/Events.h"

#include "platform/toolkit/EventLoop.h"

#include <algorithm>
#include <utility>

namespace toolkit {

Event& Event::set(FourCharCode name, Value value)
{
    for (auto& parameter : mParameters)
        if (parameter.name == name) {
            parameter.value = std::move(value);
            return *this;
        }
    mParameters.push_back({name, std::move(value)});
    return *this;
}

const Event::Value* Event::find(FourCharCode name) const
{
    for (const auto& parameter : mParameters)
        if (parameter.name == name)
            return &parameter.value;
    return nullptr;
}

FourCharCode Event::typeOf(FourCharCode name) const
{
    // In the order of the variant's alternatives.
    constexpr FourCharCode codes[] = {"long"_4cc, "magn"_4cc, "QDpt"_4cc, "qdrt"_4cc, "utf8"_4cc,
                                      "ctrl"_4cc, "wind"_4cc, "etrg"_4cc, "void"_4cc};
    static_assert(std::size(codes) == std::variant_size_v<Value>);
    const Value* value = find(name);
    return value ? codes[value->index()] : 0;
}

struct EventTarget::Installed
{
    HandlerId id;
    std::vector<EventType> types;
    EventHandler handler;
    bool removed = false;

    bool takes(EventType type) const
    {
        return !removed && std::find(types.begin(), types.end(), type) != types.end();
    }
};

EventTarget::EventTarget()
    : mSelf(std::make_shared<EventTarget*>(this))
{
}

EventTarget::~EventTarget() = default;

HandlerId EventTarget::installHandler(std::vector<EventType> types, EventHandler handler)
{
    const HandlerId id = ++mLastId;
    mHandlers.push_back(
        std::make_shared<Installed>(Installed{id, std::move(types), std::move(handler)}));
    return id;
}

void EventTarget::removeHandler(HandlerId handler)
{
    std::erase_if(mHandlers, [handler](const auto& installed) {
        if (installed->id != handler)
            return false;
        installed->removed = true;
        return true;
    });
}

Status EventTarget::sendToOwn(const Event& event)
{
    const auto handlers = mHandlers; // a handler may install or remove others
    for (auto each = handlers.rbegin(); each != handlers.rend(); ++each) {
        if (!(*each)->takes(event.type()))
            continue;
        const Status status = (*each)->handler(event);
        if (status != eventNotHandledErr)
            return status;
    }
    return eventNotHandledErr;
}

Status EventTarget::send(const Event& event)
{
    const auto alive = keepAlive();
    const Status status = sendToOwn(event);
    if (status != eventNotHandledErr)
        return status;
    EventTarget* next = nextTarget();
    return next ? next->send(event) : status;
}

void EventTarget::post(Event event)
{
    const std::weak_ptr<EventTarget*> target = mSelf;
    EventLoop::post([target, event = std::move(event)] {
        if (const auto self = target.lock())
            (*self)->send(event);
    });
}

} // namespace toolkit
