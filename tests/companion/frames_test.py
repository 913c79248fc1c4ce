#!/usr/bin/env python3
"""Checks that `kestrail frames` renders every frame as it was recorded, whatever it begins with.

    frames_test.py COMMAND PLAYER LASTING TRACES...

A trace without pictures is played and recorded with them first. LASTING is the program of
samples/lasting, of which it is checked as well which frames each one stands on. A display is wanted.
"""

import json
import random
import sys
import tempfile
from pathlib import Path

from support import recorded, run

# By frame, the earlier ones whose draws it shows, or what they wrote. Each three go together; the
# mipmaps are made in the first of theirs, and the last ones stand alone.
STANDS_ON = {first + turn: {first + earlier for earlier in range(turn)}
             for first in range(1, 28, 3) for turn in range(3)}
STANDS_ON |= {11: {10}, 12: {10}, 28: set(), 29: set(), 30: set()}


def compared(command, trace):
    """The frames with pictures, all rendered in one go, which has to find them equal."""
    done = run(command, "frames", trace)
    # These have calls that fail on any driver of ours.
    assert "failed" not in done.stderr or "es1" in trace.name, f"{trace}: {done.stderr}"
    lines = [line for line in done.stdout.splitlines() if "nothing to compare" not in line]
    assert done.returncode == (not lines) and all(line.endswith(": equal") for line in lines), \
        f"{trace}: {done.stdout}{done.stderr}"
    return [int(line.split()[1].rstrip(":")) for line in lines]


def check_reasons(command, trace):
    for frame, wanted in STANDS_ON.items():
        lines = run(command, "frames", trace, f"--why={frame}", "--json").stdout.splitlines()
        # What the first one does is to prepare.
        found = {told["frame"] for told in map(json.loads, lines)
                 if told["draw"] or (told["sendContents"] and told["frame"] > 1)}
        found -= {1} - wanted
        assert found == wanted, f"frame {frame} stands on {found}, not {wanted}"


def main(command, player, lasting, *traces):
    order = random.Random(13)
    with tempfile.TemporaryDirectory() as folder:
        lasting = recorded(command, folder, lasting)
        check_reasons(command, lasting)
        for trace in (lasting, *map(Path, traces)):
            frames = compared(command, trace)
            if not frames:
                trace = recorded(command, folder, player, trace)
                frames = compared(command, trace)
            assert frames, f"{trace}: no pictures"
            order.shuffle(frames)
            for frame in frames:
                done = run(command, "frames", f"--frames={frame}", trace)
                assert (done.returncode, done.stdout) == (0, f"frame {frame}: equal\n"), \
                    f"{trace}: {done.stdout}{done.stderr}"
            print(f"{Path(trace).name}: {len(frames)} frames, all equal")


if __name__ == "__main__":
    main(*sys.argv[1:])
