/// What windows and controls tell their owners: an event has a class, a kind and typed parameters,
/// and goes to the handlers of its control, newest first, then to those of the window, until one
/// answers anything but `eventNotHandledErr`.
///
/// class   kind          sent to   parameters besides '----' (the control or the window)
/// 'wind'  5, 6          window    it became, or is no longer, the active one
/// 'wind'  22            window    about to be shown
/// 'wind'  27            window    size changed
/// 'wind'  73            window    closed by its user or its owner; its controls go next
/// 'cntl'  1             control   hit: the value is the new one. 'part' (long)
/// 'cntl'  4             control   a user pane is about to be shown: bring its pixels up to date
/// 'cntl'  7             control   keyboard focus came ('part' 1) or went ('part' 0) (long)
/// 'cntl'  12            control   contextual-menu click. 'mloc' (QDpt)
/// 'cntl'  154           control   bounds changed. 'orct', 'crct' (qdrt): before, now
/// 'cntl'  1001          control   disposed of
/// 'mous'  1, 2          user pane button down, up. All of 'mous': 'mloc' (QDpt), 'chor' (magn):
///                                 buttons, 'kmod' (magn): keys; 1, 2: 'mbtn', 'ccnt' (magn)
/// 'mous'  5, 6          user pane moved; moved with a button held, also outside the pane
/// 'mous'  8, 9          user pane pointer came, went
/// 'mous'  10            user pane wheel. 'mwdx', 'mwdy' (long): 1 a notch, above 0 is right, up
/// 'keyb'  1, 3          user pane key down (also repeated), up. 'kchr' (magn): character,
///                                 'kcod' (magn): key, 'kmod' (magn)
/// 'kvsw'  any           any       private to the owner
///
/// Points are window points from the window's content corner. Thread: user interface, but `post`.
#pragma once
#include "platform/toolkit/FourCharCode.h"
#include "platform/toolkit/Geometry.h"
#include "platform/toolkit/Status.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace toolkit {

class Control;
class EventTarget;
class Window;

struct EventType
{
    FourCharCode eventClass = 0;
    std::uint32_t kind = 0;

    bool operator==(const EventType&) const = default;
};

/// The bits of 'chor', and, alone, the values of 'mbtn'.
enum MouseButton : std::uint32_t { leftButton = 1, rightButton = 2, middleButton = 4 };

/// The bits of 'kmod'.
enum KeyModifier : std::uint32_t { shiftKey = 1, controlKey = 2, altKey = 4 };

class Event
{
public:
    using Value = std::variant<std::int32_t, std::uint32_t, Point, Rect, std::string, Control*,
                               Window*, EventTarget*, void*>;

    explicit Event(EventType type)
        : mType(type)
    {
    }

    EventType type() const { return mType; }

    bool is(FourCharCode eventClass, std::uint32_t kind) const
    {
        return mType == EventType{eventClass, kind};
    }

    /// Adds the parameter, or replaces the one of that name.
    Event& set(FourCharCode name, Value value);

    /// The parameter, if the event carries it with this type.
    template <class T>
    std::optional<T> get(FourCharCode name) const
    {
        const Value* value = find(name);
        const T* typed = value ? std::get_if<T>(value) : nullptr;
        return typed ? std::optional<T>(*typed) : std::nullopt;
    }

    /// The parameter's type: 'long', 'magn', 'QDpt', 'qdrt', 'utf8', 'ctrl', 'wind', 'etrg',
    /// 'void'; 0 when the event does not carry it.
    FourCharCode typeOf(FourCharCode name) const;

private:
    struct Parameter
    {
        FourCharCode name;
        Value value;
    };

    const Value* find(FourCharCode name) const;

    EventType mType;
    std::vector<Parameter> mParameters;
};

/// @return noErr or another status when the event was dealt with, eventNotHandledErr to pass it on
using EventHandler = std::function<Status(const Event&)>;
using HandlerId = std::uint32_t;

/// Whatever handlers can be installed on: windows and controls.
class EventTarget
{
public:
    virtual ~EventTarget();
    EventTarget(const EventTarget&) = delete;
    EventTarget& operator=(const EventTarget&) = delete;

    /// Calls `handler` for these types of event, before the handlers installed so far.
    HandlerId installHandler(std::vector<EventType> types, EventHandler handler);

    /// The handler is not called again, also when the event being handled would have reached it.
    /// Does nothing for an unknown number.
    void removeHandler(HandlerId handler);

    /// Sends the event to the handlers now. One of them may remove handlers, or close the window.
    /// @return what the last handler asked answered; eventNotHandledErr without any
    Status send(const Event& event);

    /// Sends the event from the message loop, later; dropped when the target goes first or no loop
    /// runs. Thread: any, while the caller knows that the target lives.
    void post(Event event);

protected:
    EventTarget();

    /// Who is asked next when no handler here takes the event; null for nobody.
    virtual EventTarget* nextTarget() { return nullptr; }

    /// Keeps what holds this target alive while its handlers run.
    virtual std::shared_ptr<void> keepAlive() { return nullptr; }

private:
    struct Installed;

    Status sendToOwn(const Event& event);

    std::vector<std::shared_ptr<Installed>> mHandlers; // oldest first
    HandlerId mLastId = 0;
    std::shared_ptr<EventTarget*> mSelf; // what posted events hold, weakly
};

} // namespace toolkit
