#include "host/cli/PianoRoll.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr int kLabelColumns = 9;

struct Grid
{
    std::int64_t step;  ///< ticks
    std::int64_t early; ///< ticks that a note may come before its step
    int stepsPerBar;
    int stepsPerBeat;
    int bars; ///< drawn

    int steps() const { return bars * stepsPerBar; }
};

int columnsOf(int stepsPerBar, int bars)
{
    return kLabelColumns + bars * (stepsPerBar + 1) + 1;
}

/// The finest of sixteenths, eighths, quarters and whole beats that lets all bars in; else as many
/// bars as fit.
Grid chooseGrid(const Korvanel::CMidiTrack& pattern, int columns)
{
    const int bars = std::max(pattern.numberOfBars(), 1);
    const std::int64_t bar = std::max(pattern.barLength(), 1);
    const int sixteenths = std::max(
        static_cast<int>(pattern.numerator * 16 / std::max<int>(pattern.denominator, 1)), 1);
    int perBar = sixteenths;
    while (columnsOf(perBar, bars) > columns && perBar % 2 == 0 &&
           perBar > std::max<int>(pattern.numerator, 1))
        perBar /= 2;
    int drawn = bars;
    while (drawn > 1 && columnsOf(perBar, drawn) > columns)
        --drawn;
    return {std::max<std::int64_t>(bar / perBar, 1), pattern.ticksPerQuarter / 8, perBar,
            std::max(perBar / std::max<int>(pattern.numerator, 1), 1), drawn};
}

const char* shade(int velocity)
{
    static constexpr std::array<const char*, 4> kShades{"░", "▒", "▓", "█"};
    return kShades[static_cast<std::size_t>(std::clamp(velocity / 32, 0, 3))];
}

using Row = std::vector<const char*>;

Row emptyRow(const Grid& grid)
{
    Row row(static_cast<std::size_t>(grid.steps()), " ");
    for (int step = 0; step < grid.steps(); step += grid.stepsPerBeat)
        row[static_cast<std::size_t>(step)] = "·";
    return row;
}

void drawNote(Row& row, const MfxEvent& note, const Grid& grid)
{
    const std::int64_t first = (note.time + grid.early) / grid.step;
    const std::int64_t length = note.duration == MfxEvent::kOpen ? 1 : note.duration / grid.step;
    const std::int64_t end =
        std::min<std::int64_t>(first + std::max<std::int64_t>(length, 1), grid.steps());
    if (first >= grid.steps())
        return;
    for (std::int64_t step = first + 1; step < end; ++step)
        row[static_cast<std::size_t>(step)] = "─";
    row[static_cast<std::size_t>(first)] = shade(note.velocity);
}

std::string rowText(int key, const Row& row, const Grid& grid)
{
    std::string label = noteName(key);
    label.resize(4, ' ');
    const std::string number = std::to_string(key);
    std::string line =
        "  " + label + std::string(3 - std::min<std::size_t>(number.size(), 3), ' ') + number;
    for (int step = 0; step < grid.steps(); ++step) {
        if (step % grid.stepsPerBar == 0)
            line += "│";
        line += row[static_cast<std::size_t>(step)];
    }
    return line + "│\n";
}

std::string ruler(const Grid& grid)
{
    std::string line(kLabelColumns, ' ');
    for (int bar = 1; bar <= grid.bars; ++bar) {
        std::string number = std::to_string(bar);
        number.resize(
            static_cast<std::size_t>(std::max(grid.stepsPerBar, static_cast<int>(number.size()))) +
                1,
            ' ');
        line += number;
    }
    line.resize(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

} // namespace

std::string noteName(int key)
{
    static constexpr std::array<const char*, 12> kNames{"C",  "C#", "D",  "D#", "E",  "F",
                                                        "F#", "G",  "G#", "A",  "A#", "B"};
    return kNames[static_cast<std::size_t>(key % 12)] + std::to_string(key / 12 - 1);
}

std::string drawPianoRoll(const Korvanel::CMidiTrack& pattern, int columns)
{
    const Grid grid = chooseGrid(pattern, columns);
    std::array<Row, 128> rows;
    for (const MfxEvent& event : pattern.events) {
        if (!event.isNote() || event.key >= rows.size())
            continue;
        Row& row = rows[event.key];
        if (row.empty())
            row = emptyRow(grid);
        drawNote(row, event, grid);
    }
    std::string text = ruler(grid);
    for (int key = 127; key >= 0; --key)
        if (const Row& row = rows[static_cast<std::size_t>(key)]; !row.empty())
            text += rowText(key, row, grid);
    if (grid.bars < pattern.numberOfBars())
        text += "  (bars " + std::to_string(grid.bars + 1) + " to " +
                std::to_string(pattern.numberOfBars()) + " are not drawn)\n";
    return text;
}
