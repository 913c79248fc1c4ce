#!/usr/bin/env python3
"""Says which includes go against the order of the rooms, or in a circle.

    includes.py ROOT BUILD

ROOT is the repository; in BUILD/generated stands what the generator wrote.
"""

import re
import sys
from pathlib import Path

# Each room with those that it stands on. It may include them, and what they stand on.
ROOMS = {
    "base": [],
    "host": ["base"],
    "tracefile/bytes": ["base"],
    "calls": ["tracefile/bytes"],
    "state": ["calls"],
    "tracefile/document": ["state"],
    "slicing": ["tracefile/document"],
    "rewrite": ["slicing"],
    "exec": ["tracefile/document", "host"],
    "transitions": ["exec"],
    "pictures": [],
    "playback": ["transitions", "slicing", "pictures"],
    "recorder/channel": ["tracefile/bytes"],
    "recorder/library": ["recorder/channel", "calls"],
    "companion": ["playback", "rewrite", "pictures", "recorder/channel"],
    "samples": ["tests/support"],
    "bench": ["playback", "tests/support"],
    "fuzz": ["playback", "tests/program"],
    # What knows the format by itself, so that it can tell on the reader.
    "tests/host": [],
    "tests/support": ["tests/host"],
    "tests/cases": ["tests/support"],
    "tests/program": ["tests/support", "tracefile/document"],
    "tests/recorder": [],
    "tests/render": ["samples"],
    "tests/unit": ["playback", "pictures", "tests/support"],
}
SOURCES = ["*.h", "*.cpp"]
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def room_of(path):
    """The room of a file named from the root; None outside of them."""
    parts = path.split("/")
    if parts[0] == "generated":
        parts = parts[1:]
    for room in (parts[0], "/".join(parts[:2])):
        if room in ROOMS:
            return room
    return None


def reach(room):
    """The room and all that it stands on."""
    seen, waiting = set(), [room]
    while waiting:
        room = waiting.pop()
        if room not in seen:
            seen.add(room)
            waiting += ROOMS[room]
    return seen


def read_tree(root, build):
    """The includes of every file of the rooms, by names from the root."""
    files = {}
    tops = sorted({room.split("/")[0] for room in ROOMS})
    for base, folders in ((root, tops), (build, ["generated"])):
        for folder in folders:
            for pattern in SOURCES:
                for path in sorted((base / folder).rglob(pattern)):
                    files[str(path.relative_to(base))] = INCLUDE.findall(path.read_text())
    return files


def resolve(files):
    """The same with names that stand for a file beside the including one made whole."""
    return {name: [i if "/" in i else f"{name.rpartition('/')[0]}/{i}" for i in includes]
            for name, includes in files.items()}


def wrong_ways(files):
    reached = {room: reach(room) for room in ROOMS}
    for name, includes in files.items():
        room = room_of(name)
        if room is None:
            yield f"{name}: stands in no room"
            continue
        for included in includes:
            other = room_of(included)
            if other not in reached[room]:
                yield f"{name}: includes {included}, but {room} doesn't stand on {other or 'that'}"


def circle(files):
    """The files of a circle of includes, first and last the same; empty when there is none."""
    done = set()

    def walk(name, path):
        if name in path:
            return path[path.index(name):] + [name]
        if name in done:
            return []
        for included in files.get(name, []):
            if found := walk(included, path + [name]):
                return found
        done.add(name)
        return []

    for name in files:
        if found := walk(name, []):
            return found
    return []


def main():
    files = resolve(read_tree(Path(sys.argv[1]), Path(sys.argv[2])))
    faults = list(wrong_ways(files))
    if found := circle(files):
        faults.append("includes in a circle: " + " -> ".join(found))
    print("\n".join(faults) if faults else f"{len(files)} files include one way only")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
