#!/usr/bin/env python3
"""Writes the factory patterns from their scores: scores/*.score to Loops/STYLE/PATTERN.mid.

A score is a text. `style:` and `pattern:` name it; `about:` is the style's description (one score of a style has it);
`meter:`, `tempo:` and `grid:` (steps in a quarter) frame it; `ppq:` is its resolution. Then each line is a voice:
KEY[@CHANNEL] | STEPS | STEPS ... with a bar between bars. A step is a digit for a stroke (velocity 14 for each step up
from 1, 127 for 9), "." for a rest and "-" to hold the stroke before it. Lines of one key follow each other in time.
"""
import pathlib
import re
import struct
import sys

DRUMS = 10


def number(value):
    groups = [value & 0x7F]
    while value := value >> 7:
        groups.append(value & 0x7F | 0x80)
    return bytes(reversed(groups))


def velocity(digit):
    return min(1 + 14 * int(digit), 127)


class Score:
    def __init__(self, text):
        self.head = {"meter": "4/4", "tempo": "120", "grid": "4", "ppq": "240", "about": ""}
        self.notes = []
        positions = {}
        for line in text.splitlines():
            line = line.split("#")[0].strip()
            if voice := re.match(r"(\d+)(?:@(\d+))?\s*\|(.*)", line):
                key, channel = int(voice[1]), int(voice[2] or DRUMS)
                start = positions.get((key, channel), 0)
                positions[key, channel] = self.read(key, channel, voice[3], start)
            elif line:
                name, value = line.split(":", 1)
                self.head[name.strip()] = value.strip()
        self.bars = max(positions.values()) // self.steps_in_bar()

    def steps_in_bar(self):
        beats, unit = map(int, self.head["meter"].split("/"))
        return int(self.head["grid"]) * 4 * beats // unit

    def read(self, key, channel, text, start):
        ticks = int(self.head["ppq"]) // int(self.head["grid"])
        step = start
        for mark in re.sub(r"[\s|]", "", text):
            if mark.isdigit():
                self.notes.append([step * ticks, ticks, channel - 1, key, velocity(mark)])
            elif mark == "-":
                self.notes[-1][1] += ticks
            step += 1
        if step % self.steps_in_bar():
            raise ValueError(f"{self.head['pattern']}: key {key} does not fill its bar")
        return step

    def file(self):
        beats, unit = map(int, self.head["meter"].split("/"))
        name = f"{self.head['style']}/{self.head['pattern']}".encode()
        tempo = round(60e6 / float(self.head["tempo"]))
        events = [(0, 0, b"\xff\x03" + number(len(name)) + name),
                  (0, 1, b"\xff\x58\x04" + bytes([beats, unit.bit_length() - 1, 24, 8])),
                  (0, 2, b"\xff\x51\x03" + tempo.to_bytes(3, "big"))]
        for start, length, channel, key, strength in self.notes:
            events.append((start, 4, bytes([0x90 | channel, key, strength])))
            events.append((start + length, 3, bytes([0x80 | channel, key, 64])))
        end = self.bars * self.steps_in_bar() * int(self.head["ppq"]) // int(self.head["grid"])
        events.append((end, 5, b"\xff\x2f\x00"))
        track, now = b"", 0
        for time, _, message in sorted(events):
            track += number(time - now) + message
            now = time
        return b"MThd" + struct.pack(">IHHH", 6, 0, 1, int(self.head["ppq"])) + b"MTrk" + struct.pack(">I", len(track)) + track


def main(scores, target):
    for source in sorted(scores.glob("*.score")):
        score = Score(source.read_text())
        folder = target / score.head["style"]
        folder.mkdir(parents=True, exist_ok=True)
        (folder / (score.head["pattern"] + ".mid")).write_bytes(score.file())
        if score.head["about"]:
            (folder / (score.head["style"] + ".txt")).write_text(score.head["about"] + "\n")


if __name__ == "__main__":
    scores = pathlib.Path(__file__).resolve().parent
    main(scores, pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else scores.parent / "Loops")
