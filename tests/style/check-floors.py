"""Includes run down the floors of the house only, and no toolkit header leaves its own folder."""
import pathlib
import re
import sys

# Each folder, and the folders of ours that it may include besides itself.
FLOORS = {
    "platform/os": [],
    "platform/toolkit": [],
    "shared/System": ["platform/os"],
    "shared/Panes": ["shared/System", "platform/toolkit"],
    "midi": ["shared/System"],
    # Its folders are read and watched by the lowest floor; nothing else of it reaches up here.
    "library": ["midi", "shared/System", "platform/os"],
    "effect": ["library", "midi", "shared/System"],
    "editor": ["effect", "library", "midi", "shared/Panes", "shared/System", "platform/toolkit", "platform/os"],
}
TOOLKITS = re.compile(r'^\s*#\s*include\s*[<"](juce|X11|lv2|gtest|alsa)', re.M)
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)


def inside(path, folder):
    return path == folder or path.startswith(folder + "/")


def broken_includes(folder, allowed):
    for source in sorted(pathlib.Path(folder).rglob("*")):
        if source.suffix not in (".h", ".cpp"):
            continue
        text = source.read_text()
        for include in INCLUDE.findall(text):
            if not any(inside(include, floor) for floor in [folder, *allowed]):
                yield f"{source} includes {include}"
        if folder != "platform/toolkit" and TOOLKITS.search(text):
            yield f"{source} includes a toolkit's or a plug-in format's header"


broken = [line for folder, allowed in FLOORS.items() for line in broken_includes(folder, allowed)]
print("\n".join(broken) if broken else "every include runs down")
sys.exit(1 if broken else 0)
