// The loaded pattern as a piano roll: a header with bar numbers and beats, rows of notes, and the
// other events as lines from the bottom.
#include "editor/PianoRoll.h"
#include "effect/CLooper.h"
#include "shared/Panes/kvGraphics.h"

#include <string>

using Korvanel::CMidiTrack;
using Korvanel::Color;
using Korvanel::Font;
using Korvanel::GraphicsContext;
using Korvanel::Point;
using Korvanel::Rect;
using Korvanel::Ref;
using Korvanel::Region;
using Korvanel::ScopedLock;

namespace {

/// Keeps a drawing in a rectangle for a scope: an event at the pattern's very end and a number in
/// its last bar would reach over the edge. Reads the clip with the origin at the corner, where the
/// clip read is the clip that was set.
class ClipWithin
{
public:
    ClipWithin(GraphicsContext& g, const Rect& rect)
        : mContext(g)
    {
        const Point origin = g.ChangeOrigin({});
        g.GetClipping(mBefore);
        Region clip = Region::Intersection(mBefore, Region(rect.shiftedBy(origin)));
        g.SetClipping(clip);
        g.ChangeOrigin(origin);
    }

    ClipWithin(const ClipWithin&) = delete;
    ClipWithin& operator=(const ClipWithin&) = delete;

    ~ClipWithin()
    {
        const Point origin = mContext.ChangeOrigin({});
        mContext.SetClipping(mBefore);
        mContext.ChangeOrigin(origin);
    }

private:
    GraphicsContext& mContext;
    Region mBefore;
};

/// The first bar that begins at this beat or after it.
std::int64_t barFrom(std::int64_t beat, std::int32_t beatsPerBar)
{
    return (beat + beatsPerBar - 1) / beatsPerBar;
}

void drawBarNumber(GraphicsContext& g, std::int32_t x, std::int32_t top, std::int64_t bar)
{
    const std::string number = std::to_string(bar + 1);
    g.DrawString(number.c_str(), {x + 2, top, 18, 12}, Korvanel::AlignMiddle);
}

// Beats that share a column are one line, a bar's if a bar begins among them: the picture is that
// of drawing them all, at the cost of the columns.
void drawGrid(GraphicsContext& g, const RollLayout& layout, std::int32_t top)
{
    const Ref<Font> font = Font::Create(Font::Type::Small);
    const Korvanel::AutoTool<Font> current(g, font.get());
    for (std::int64_t beat = 0; beat < layout.beats();) {
        const std::int64_t next = layout.beatAfter(beat);
        const std::int32_t x = layout.xOfBeat(beat);
        const std::int64_t bar = barFrom(beat, layout.beatsPerBar());
        const bool isBar = bar * layout.beatsPerBar() < next;
        if (isBar)
            drawBarNumber(g, x, top, bar);
        if (beat > 0)
            g.DrawLine({x, isBar ? layout.bottom() : layout.headerBottom()}, {x, top}, Color::Grey);
        beat = next;
    }
}

void drawBevel(GraphicsContext& g, const Rect& note)
{
    const std::int32_t right = note.x + note.width - 1;
    const std::int32_t bottom = note.y + note.height - 1;
    g.DrawLine({right, note.y}, note.origin(), Color::White);
    g.DrawLine(note.origin(), {note.x, bottom}, Color::White);
    g.DrawLine({right, note.y}, {right, bottom}, Color::Black);
    g.DrawLine({right, bottom}, {note.x, bottom}, Color::Black);
}

void drawNote(GraphicsContext& g, const MfxEvent& event, const KeyRows& rows,
              const RollLayout& layout)
{
    const int row = rows.rowOf(event.key);
    if (row < 0)
        return; // no key of MIDI's, from a damaged file
    const Rect note = layout.noteAt(event, row);
    g.FillRect(note, noteColor(event.key));
    drawBevel(g, note);
}

/// How high an event's line stands, in parts of its range.
struct Level
{
    int value = -1; ///< below 0: the event is not drawn
    int most = 127;
};

Level levelOf(const MfxEvent& event)
{
    switch (event.type) {
    case MfxEvent::KeyAftertouch:
    case MfxEvent::ChannelAftertouch:
        return {event.amount};
    case MfxEvent::Controller:
        // what stands at the start sets the sound up, and is no movement to show
        return {event.time == 0 ? -1 : event.velocity};
    case MfxEvent::Patch:
        return {event.key};
    case MfxEvent::Wheel:
        return {event.wheel() + MfxEvent::kWheelCentre, 2 * MfxEvent::kWheelCentre - 1};
    default:
        return {};
    }
}

void drawLevel(GraphicsContext& g, const MfxEvent& event, const RollLayout& layout)
{
    const Level level = levelOf(event);
    if (level.value < 0)
        return;
    const std::int32_t x = layout.xOf(event.time);
    const auto height =
        static_cast<std::int32_t>(std::int64_t{layout.noteArea()} * level.value / level.most);
    g.DrawLine({x, layout.bottom()}, {x, layout.bottom() - height}, Color::Black);
}

} // namespace

void CLooper::DrawEvents(GraphicsContext& g, const Rect& r)
{
    CMidiTrack pattern;
    {
        const ScopedLock edit(mEdit);
        pattern = mSourceTrack; // drawing takes longer than copying, and a load may be waiting
    }
    const KeyRows rows(pattern);
    const RollLayout layout(pattern, r, rows.count());
    if (!layout.hasTime())
        return;
    const ClipWithin clip(g, r);
    drawGrid(g, layout, r.y);
    for (const MfxEvent& event : pattern.events)
        if (event.isNote())
            drawNote(g, event, rows, layout);
        else
            drawLevel(g, event, layout);
}
