/// Panes that write down what happens to them.
#pragma once
#include "shared/Panes/kvRootPane.h"

#include <functional>
#include <string>
#include <vector>

namespace panetrace {

using Trace = std::vector<std::string>;

inline std::string atPoint(Korvanel::Point p)
{
    return "(" + std::to_string(p.x) + "," + std::to_string(p.y) + ")";
}

/// "A 4 (3,5)": pane A got kind 4 at that point.
class TracePane : public Korvanel::Pane
{
public:
    TracePane(std::string name, Trace& trace)
        : mName(std::move(name))
        , mTrace(trace)
    {
    }

    ~TracePane() override { mTrace.push_back(mName + " gone"); }

    void AfterCreate() override
    {
        mTrace.push_back(mName + " created");
        Pane::AfterCreate();
    }

    void BeforeDestroy() override
    {
        mTrace.push_back(mName + " ending");
        Pane::BeforeDestroy();
    }

    void DrawSelf(Korvanel::GraphicsContext& g) override
    {
        mTrace.push_back(mName + " drawn " + atPoint(g.GetOrigin()));
        if (painted)
            g.FillRect({0, 0, bounds.width, bounds.height}, color);
    }

    void HandleMouse(Korvanel::MouseEvent& e) override { note(e); }

    void HandleMouseMotion(Korvanel::MouseEvent& e) override { note(e); }

    void HandleMouseWheel(Korvanel::MouseEvent& e) override
    {
        mTrace.push_back(mName + " wheel " + std::to_string(e.deltaY) + " " + atPoint(e.point));
    }

    void HandleKey(Korvanel::KeyEvent& e) override
    {
        mTrace.push_back(mName + " key " + std::to_string(e.key));
    }

    void HandleFocus(Korvanel::FocusEvent& e) override
    {
        mTrace.push_back(mName + " focus " + std::to_string(e.kind));
    }

    std::function<void(Korvanel::MouseEvent&)> onMouse; ///< after the note is taken
    bool painted = false;
    Korvanel::Color color = Korvanel::Color::White;

private:
    void note(Korvanel::MouseEvent& e)
    {
        mTrace.push_back(mName + " " + std::to_string(e.kind) + " " + atPoint(e.point));
        if (onMouse)
            onMouse(e);
    }

    std::string mName;
    Trace& mTrace;
};

/// A root that stands for the platform's.
class TraceRoot : public Korvanel::RootPane
{
public:
    explicit TraceRoot(Trace& trace)
        : mTrace(trace)
    {
    }

    bool CaptureMouse() const override { return captured; }

    bool AllowOpaqueDrawing() const override { return opaqueAllowed; }

    void turn_mouse_tracking_on() override { mTrace.push_back("tracking on"); }

    void turn_mouse_tracking_off() override { mTrace.push_back("tracking off"); }

    void HandleMouse(Korvanel::MouseEvent& e) override { note(e); }

    void HandleMouseMotion(Korvanel::MouseEvent& e) override { note(e); }

    void HandleEvent(Korvanel::PaneEvent& e) override
    {
        mTrace.push_back("R event " + std::to_string(e.kind));
    }

    void DrawSelf(Korvanel::GraphicsContext&) override { mTrace.push_back("R drawn"); }

    void peerInvalidate(const Korvanel::Rect& r) override { invalidated.push_back(r); }

    void mouse(int kind, int x, int y, std::uint32_t held = 0)
    {
        Korvanel::MouseEvent event(kind, {x, y}, 0, 0, {held}, 0, 0);
        OnMouse(event);
    }

    bool captured = false;
    bool opaqueAllowed = true;
    std::vector<Korvanel::Rect> invalidated;

private:
    void note(Korvanel::MouseEvent& e)
    {
        mTrace.push_back("R " + std::to_string(e.kind) + " " + atPoint(e.point));
    }

    Trace& mTrace;
};

} // namespace panetrace
