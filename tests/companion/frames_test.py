#!/usr/bin/env python3
"""Checks that `kestrail frames` renders every frame as it was recorded, whatever it begins with.

    frames_test.py COMMAND PLAYER TRACES...

A trace without pictures is played and recorded with them first. A display is wanted.
"""

import random
import subprocess
import sys
import tempfile
from pathlib import Path


def run(*command):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          timeout=200, check=False)


def frames_with_pictures(command, trace):
    """All of them in one go, which has to find them equal."""
    done = run(command, "frames", trace)
    lines = [line for line in done.stdout.splitlines() if "nothing to compare" not in line]
    assert done.returncode == (not lines) and all(line.endswith(": equal") for line in lines), \
        f"{trace}: {done.stdout}{done.stderr}"
    return [int(line.split()[1].rstrip(":")) for line in lines]


def main(command, player, *traces):
    order = random.Random(13)
    with tempfile.TemporaryDirectory() as folder:
        for trace in traces:
            frames = frames_with_pictures(command, trace)
            if not frames:
                copy = Path(folder, Path(trace).name)
                run(command, "record", "--pictures", "-o", copy, "--", player, trace)
                trace, frames = copy, frames_with_pictures(command, copy)
            assert frames, f"{trace}: no pictures"
            order.shuffle(frames)
            for frame in frames:
                done = run(command, "frames", f"--frames={frame}", trace)
                assert (done.returncode, done.stdout) == (0, f"frame {frame}: equal\n"), \
                    f"{trace}: {done.stdout}{done.stderr}"
            print(f"{Path(trace).name}: {len(frames)} frames, all equal")


if __name__ == "__main__":
    main(*sys.argv[1:])
