#!/usr/bin/env python3
"""Prints the results of a benchmark program as tables: ours beside the floor, the aim and each peer.

Every time is the smallest of the run's repetitions: what else the machine does only ever adds.
    summary.py RESULTS.json
"""
import json
import sys

ORDER = ["1KB", "100KB", "10MB", "lock", "empty", "one note", "each of 64 notes",
         "each of 64 notes, random", "jump to repetition 1", "jump to repetition 1,000",
         "jump to repetition 1,000,000", "1,000 bars", "100 styles", "one style",
         "one more style", "told", "in the tree",
         "1,000 panes", "1,000 opaque panes", "10,000 notes"] + \
        [f"{state}, {frames} frames, {instances}" for state in ("stopped", "playing")
         for instances in ("1 instance", "64 instances") for frames in (64, 512, 1024)] + \
        ["stopped, 512 frames", "playing, 512 frames"]
PEERS = {"read": ["JUCE", "libsmf", "portsmf", "drumstick"],
         "write": ["JUCE", "libsmf", "portsmf", "drumstick"],
         "slice": ["JUCE", "libsmf"],
         "render": [],
         "scan": ["filesystem", "nftw"],
         "change": [],
         "host": ["stepseq", "passthru", "midimap", "fifths"],
         "JUCE host": ["ours as LV2", "fifths as LV2"],
         "draw": []}


class Aim:
    """At most `factor` times the floor, or what ours takes for the row `of`, or what a peer takes,
    after `locks` uncontended locks are taken off."""

    def __init__(self, factor, locks=0, of=None, peer=None):
        self.factor = factor
        self.locks = locks
        self.of = of
        self.peer = peer

    def __str__(self):
        return f"<= {self.factor}x" + (" + lock" if self.locks else "") + \
            (f" {self.of or self.peer}" if self.of or self.peer else "")


AIMS = {"read": Aim(2), "write": Aim(3), "draw": Aim(1.5),
        "host": Aim(1, peer="stepseq"), "empty": Aim(2, locks=1), "one note": Aim(3, locks=1),
        "each of 64 notes": Aim(3), "each of 64 notes, random": Aim(3), "jump": Aim(3),
        "100 styles": Aim(1.5), "one style": Aim(1.5, of="100 styles"),
        "one more style": Aim(0.2, of="100 styles")}


def load(path):
    with open(path, encoding="utf-8") as file:
        data = json.load(file)
    nanoseconds = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    times = {}
    for run in data["benchmarks"]:
        if run.get("run_type") != "iteration" or run.get("error_occurred"):
            continue
        kind, row, who, *options = run["run_name"].split("/")
        # Measured by hand where the time passes on other threads.
        clock = "real_time" if "manual_time" in options else "cpu_time"
        time = run[clock] * nanoseconds[run["time_unit"]] / run.get("per", 1)
        rows = times.setdefault(kind, {}).setdefault(row, {})
        rows[who] = min(time, rows.get(who, time))
    return data["context"], times


def shown(nanoseconds):
    for unit, size in (("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}" if nanoseconds < 1e3 * size else \
                f"{nanoseconds / size:.0f} {unit}"
    return f"{nanoseconds:.3g} ns"


def aim_of(kind, row):
    if kind in AIMS:
        return AIMS[kind]
    return AIMS["jump"] if row.startswith("jump") else AIMS.get(row)


def judged(kind, row, rows, lock):
    """The ratio to the floor, the aim and the verdict, as three cells."""
    ours, floor = rows[row].get("ours"), rows[row].get("floor")
    if ours is None or floor is None:
        return ["", "", ""]
    aim = aim_of(kind, row)
    if aim is None:
        return [f"{ours / floor:.2f}x", "", ""]
    ratio = (ours - aim.locks * lock) / floor
    other = rows.get(aim.of, {}).get("ours")
    if aim.of and other is None:
        return [f"{ratio:.2f}x", str(aim), ""] # the row was not measured
    if aim.peer:
        other = rows[row].get(aim.peer, 0)
    measure = ours / other if aim.of or aim.peer else ratio
    return [f"{ratio:.2f}x", str(aim), "met" if measure <= aim.factor else "MISSED"]


def peer_cell(result, peer):
    if peer not in result:
        return "-"
    ratio = result[peer] / result["ours"]
    return f"{shown(result[peer])} ({ratio:.2g}x)" if ratio < 100 else \
        f"{shown(result[peer])} ({ratio:.0f}x)"


def table(kind, rows, lock):
    peers = PEERS[kind]
    whole = any("ours, whole effect" in result for result in rows.values())
    lines = [[kind, "ours"] + (["whole effect"] if whole else []) +
             ["floor", "ours/floor", "aim", ""] + [f"{peer} (/ours)" for peer in peers]]
    for row in sorted(rows, key=ORDER.index): # the run itself goes in random order
        result = rows[row]
        if "ours" not in result:
            continue
        cells = [row, shown(result["ours"])]
        if whole:
            effect = result.get("ours, whole effect")
            cells.append(shown(effect) if effect else "-")
        cells.append(shown(result["floor"]) if "floor" in result else "-")
        cells += judged(kind, row, rows, lock)
        cells += [peer_cell(result, peer) for peer in peers]
        lines.append(cells)
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    rule = ["-" * width for width in widths]
    for line in [lines[0], rule] + lines[1:]:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |")
    print()


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    context, times = load(sys.argv[1])
    for name in ("1KB", "100KB", "10MB"):
        if name in context:
            print(f"{name}: {context[name]}")
    print(f"{context['num_cpus']} x {context['mhz_per_cpu']} MHz, {context['date']}; CPU time, "
          "of changes real time\n")
    lock = times.get("slice", {}).get("lock", {}).get("ours", 0.0)
    for kind in PEERS:
        if kind in times:
            table(kind, times[kind], lock)


if __name__ == "__main__":
    main()
