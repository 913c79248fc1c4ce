#!/usr/bin/env python3
"""Checks that what `kestrail trim` cuts out of a trace draws what the trace draws there.

    trim_test.py COMMAND PLAYER LASTING TRACES...

A trace without pictures is played and recorded with them first. LASTING is the program of
samples/lasting. A display is wanted.
"""

import random
import struct
import sys
import tempfile
from pathlib import Path

from support import recorded, run

SWAP = 1022
EDITS = 0x17  # behind the length of the width table


def pictures(path):
    """Size and pixels, without alpha, of each frame; none for one that holds no picture."""
    data = Path(path).read_bytes()
    at = EDITS + data[EDITS - 1] + 8
    state, = struct.unpack("<Q", data[-8:])
    found = []
    while at < (state or len(data) - 10):
        size, identifier = struct.unpack_from("<IH", data, at)
        if identifier == SWAP:
            width, height, _, length = struct.unpack_from("<4I", data, at + 26)
            pixels = bytearray(data[at + 42:at + 42 + length])
            pixels[3::4] = bytes(len(pixels) // 4)
            found.append((width, height, bytes(pixels)) if length else None)
        at += 6 + size
    return found


def main(command, player, lasting, *traces):
    choose = random.Random(13)
    with tempfile.TemporaryDirectory() as folder:
        small, drawn = Path(folder, "small.kstl"), Path(folder, "drawn.kstl")
        for trace in (recorded(command, folder, lasting), *traces):
            if not any(pictures(trace)):
                trace = recorded(command, folder, player, trace)
            kept = pictures(trace)
            known = [number for number, picture in enumerate(kept, 1) if picture]
            for first in sorted(choose.sample(known, min(3, len(known)))):
                last = min(first + 2, len(kept))
                stretch = kept[first - 1:last]
                done = run(command, "trim", trace, f"--frames={first}-{last}", "-o", small, "--force")
                assert done.returncode == 0, done.stderr
                assert len(small.read_bytes()) <= len(Path(trace).read_bytes())
                # A stream begins anew behind its last frame.
                for options in ([], ["--noMemory"]):
                    run(command, "record", "--pictures", f"--frames=1-{len(stretch)}", "--exit", "-o",
                        drawn, "--force", "--", player, small, *options)
                    again = pictures(drawn)[:len(stretch)]
                    assert len(again) == len(stretch) and all(
                        want in (None, got) for want, got in zip(stretch, again)), \
                        f"{trace}: frames {first} to {last} {options}"
                alone = run(command, "frames", small)
                assert alone.returncode == 0 and ": equal" in alone.stdout, alone.stdout + alone.stderr
            print(f"{Path(trace).name}: equal")


if __name__ == "__main__":
    main(*sys.argv[1:])
