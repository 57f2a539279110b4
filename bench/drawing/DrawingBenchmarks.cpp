// Redrawing an editor: a tree of a thousand panes, and a pattern of ten thousand notes, beside the
// same rectangles filled by pixman on the same kind of picture. Both must give the same pixels
// before anything is timed.
#include "shared/Panes/kvRootPane.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <pixman.h>
#include <random>
#include <vector>

namespace {

using namespace Korvanel;
using toolkit::Surface;

constexpr int width = 800;
constexpr int height = 600;
constexpr int groups = 20; // rows of panes, 50 panes in each
constexpr int panesInGroup = 50;
constexpr int notes = 10'000;

struct Filled
{
    Rect rect;
    Color color;
};

/// Draws rectangles as they are, with nothing between them and the library.
class Floor
{
public:
    void draw(const std::vector<Filled>& all)
    {
        for (const auto& [rect, color] : all)
            pixman_fill(mPixels.data(), width, 32, rect.x, rect.y, rect.width, rect.height,
                        0xFF000000u | rgbOf(color));
    }

    const std::vector<std::uint32_t>& pixels() const { return mPixels; }

private:
    std::vector<std::uint32_t> mPixels = std::vector<std::uint32_t>(std::size_t{width} * height);
};

class FilledPane : public Pane
{
public:
    explicit FilledPane(Color color)
        : mColor(color)
    {
    }

    void DrawSelf(GraphicsContext& g) override
    {
        g.FillRect({0, 0, bounds.width, bounds.height}, mColor);
    }

private:
    Color mColor;
};

/// The panes, and what they fill.
struct PaneTree
{
    explicit PaneTree(bool opaque)
    {
        root.Create(nullptr, {0, 0, width, height});
        auto* back = add(&root, {0, 0, width, height}, Color::Grey, false);
        for (int row = 0; row < groups; ++row) {
            auto* group = add(back, {0, row * 30, width, 30}, Color::White, false);
            for (int i = 0; i < panesInGroup; ++i)
                add(group, {i * 16 + 1, 1, 14, 28}, i % 2 == 0 ? Color::Red : Color::Blue, opaque);
        }
    }

    Pane* add(Pane* parent, const Rect& place, Color color, bool opaque)
    {
        auto* pane = new FilledPane(color);
        pane->Create(parent, place);
        pane->SetOpaque(opaque);
        filled.push_back({pane->WorldBounds(), color});
        return pane;
    }

    RootPane root;
    std::vector<Filled> filled;
};

/// Notes anywhere, each with its bevel.
std::vector<Rect> noteRects()
{
    std::mt19937 random(1);
    std::vector<Rect> rects;
    for (int i = 0; i < notes; ++i)
        rects.push_back({static_cast<int>(random() % (width - 40)),
                         static_cast<int>(random() % (height - 20)),
                         4 + static_cast<int>(random() % 30), 12});
    return rects;
}

void drawNote(GraphicsContext& g, const Rect& r)
{
    const int right = r.x + r.width - 1;
    const int bottom = r.y + r.height - 1;
    g.FillRect(r, Color::Green);
    g.DrawLine({right, r.y}, {r.x, r.y}, Color::White);
    g.DrawLine({r.x, r.y}, {r.x, bottom}, Color::White);
    g.DrawLine({right, r.y}, {right, bottom - 1}, Color::Black);
    g.DrawLine({r.x, bottom}, {right, bottom}, Color::Black);
}

std::vector<Filled> partsOfNotes(const std::vector<Rect>& rects)
{
    std::vector<Filled> parts;
    for (const Rect& r : rects) {
        parts.push_back({r, Color::Green});
        parts.push_back({{r.x, r.y, r.width, 1}, Color::White});
        parts.push_back({{r.x, r.y, 1, r.height}, Color::White});
        parts.push_back({{r.x + r.width - 1, r.y, 1, r.height - 1}, Color::Black});
        parts.push_back({{r.x, r.y + r.height - 1, r.width, 1}, Color::Black});
    }
    return parts;
}

std::unique_ptr<Surface> picture()
{
    return Surface::create({0, 0, width, height});
}

bool same(const Surface& ours, const Floor& floor)
{
    return std::ranges::equal(ours.pixels(), floor.pixels());
}

void drawPanes(Surface& surface, RootPane& root)
{
    GraphicsContext g(&surface);
    root.OnDraw(g);
}

void drawNotes(Surface& surface, const std::vector<Rect>& rects)
{
    GraphicsContext g(&surface);
    for (const Rect& rect : rects)
        drawNote(g, rect);
}

bool allDrawAlike()
{
    for (const bool opaque : {false, true}) {
        PaneTree tree(opaque);
        const auto surface = picture();
        Floor floor;
        drawPanes(*surface, tree.root);
        floor.draw(tree.filled);
        if (!same(*surface, floor))
            return false;
    }
    const auto surface = picture();
    Floor floor;
    drawNotes(*surface, noteRects());
    floor.draw(partsOfNotes(noteRects()));
    return same(*surface, floor);
}

void panes(benchmark::State& state, bool opaque)
{
    PaneTree tree(opaque);
    const auto surface = picture();
    for (auto _ : state)
        drawPanes(*surface, tree.root);
}

void panesFloor(benchmark::State& state)
{
    const PaneTree tree(false);
    Floor floor;
    for (auto _ : state)
        floor.draw(tree.filled);
}

void notesOurs(benchmark::State& state)
{
    const std::vector<Rect> rects = noteRects();
    const auto surface = picture();
    for (auto _ : state)
        drawNotes(*surface, rects);
}

void notesFloor(benchmark::State& state)
{
    const std::vector<Filled> parts = partsOfNotes(noteRects());
    Floor floor;
    for (auto _ : state)
        floor.draw(parts);
}

BENCHMARK_CAPTURE(panes, ours, false)->Name("draw/1,000 panes/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(panes, opaque, true)
    ->Name("draw/1,000 opaque panes/ours")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(panesFloor)->Name("draw/1,000 panes/floor")->Unit(benchmark::kMicrosecond);
BENCHMARK(panesFloor)->Name("draw/1,000 opaque panes/floor")->Unit(benchmark::kMicrosecond);
BENCHMARK(notesOurs)->Name("draw/10,000 notes/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(notesFloor)->Name("draw/10,000 notes/floor")->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    if (!allDrawAlike()) {
        std::fprintf(stderr, "drawing_bench: the floor draws other pixels\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
