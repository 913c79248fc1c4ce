#!/usr/bin/env python3
"""What the verbs of the command print, by cases written as a session at a shell.

    companion_test.py COMMAND PLAYER TRACE CASES...   a display is wanted
    companion_test.py png TRACE FRAME FILE            whether a PNG file is the picture in a trace

`$ LINE` runs a line in a folder of the case's own. Behind it stand what it prints, `? STATUS` if that
isn't 0, and `! TEXT` for a part of its messages. TRACE is there as bare.kstl, and with pictures as es2.kstl.
"""

import os
import struct
import subprocess
import sys
import tempfile
import zlib
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "support"))
import trace_file  # noqa: E402


def read_png(path):
    """Width, height and the rows of R, G, B from the top on."""
    data, at, packed = Path(path).read_bytes(), 8, b""
    while at < len(data):
        size, kind = struct.unpack_from(">I4s", data, at)
        if kind == b"IHDR":
            width, height = struct.unpack_from(">II", data, at + 8)
        elif kind == b"IDAT":
            packed += data[at + 8:at + 8 + size]
        at += size + 12
    raw, stride, above, rows = zlib.decompress(packed), 3 * width, bytes(3 * width), []
    for start in range(0, len(raw), stride + 1):
        row = bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            left, up, corner = (row[i - 3], above[i], above[i - 3]) if i > 2 else (0, above[i], 0)
            guess = left + up - corner
            paeth = min((left, up, corner), key=lambda value, guess=guess: abs(guess - value))
            row[i] = row[i] + (0, left, up, (left + up) // 2, paeth)[raw[start]] & 255
        above = bytes(row)
        rows.append(above)
    return width, height, rows


def is_picture(trace, frame, path):
    width, height, pixels = list(trace_file.pictures(trace))[int(frame) - 1]
    rows = [pixels[start:start + 4 * width] for start in range(0, len(pixels), 4 * width)]
    opaque = [bytes(value for i, value in enumerate(row) if i % 4 < 3) for row in reversed(rows)]
    return read_png(path) == (width, height, opaque)


def sections(path):
    """Names, and for each the lines to run with what is expected of them."""
    for text in path.read_text().split("\ncase ")[1:]:
        name, *lines = [line for line in text.splitlines() if line and line[0] != "#"]
        steps = []
        for line in lines:
            if line.startswith("$ "):
                steps.append((line[2:], [], [0], []))
            elif line[:2] in ("? ", "! "):
                step = steps[-1]
                step[2 if line[0] == "?" else 3].append(int(line[2:]) if line[0] == "?" else line[2:])
            else:
                steps[-1][1].append(line)
        yield name, steps


def run_case(steps, folder, environment):
    for line, printed, status, told in steps:
        done = subprocess.run(["bash", "-c", f'png() {{ "$PYTHON" -B "$TEST" png "$@"; }}; {line}'],
                              cwd=folder, env=environment, capture_output=True, text=True,
                              timeout=100, check=False)
        same = done.stdout.splitlines() == printed and done.returncode == status[-1]
        if not same or not all(text in done.stderr for text in told):
            return f"$ {line}\n{done.stdout}? {done.returncode}\n{done.stderr}"
    return ""


def main(command, player, trace, *files):
    environment = dict(os.environ, PATH=f"{Path(command).resolve().parent}:{os.environ['PATH']}",
                       PYTHON=sys.executable, TEST=str(Path(__file__).resolve()))
    failed = 0
    with tempfile.TemporaryDirectory() as name:
        pictures = Path(name, "pictures.kstl")
        subprocess.run([command, "record", "--pictures", "-o", pictures, "--", player, trace],
                       capture_output=True, timeout=100, check=True)
        cases = [case for file in files for case in sections(Path(file))]
        for number, (case, steps) in enumerate(cases):
            folder = Path(name, str(number))
            folder.mkdir()
            Path(folder, "bare.kstl").symlink_to(Path(trace).resolve())
            Path(folder, "es2.kstl").symlink_to(pictures)
            problem = run_case(steps, folder, environment)
            failed += problem != ""
            print(f"{case}: {problem or 'as expected'}")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    if sys.argv[1] == "png":
        print("equal" if is_picture(*sys.argv[2:]) else "different")
    else:
        main(*sys.argv[1:])
