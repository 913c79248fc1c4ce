#!/usr/bin/env python3
"""Programs that others wrote, recorded and played: what is drawn has to be what was recorded.

Each program of programs.toml is recorded with pictures and its trace played in both load modes. The
player's frames are caught by a host library that knows nothing of the recorder, and have to be equal
to the pictures byte for byte. A line for each program tells what was seen; exit status 77 if the
packages of all that were asked for are missing.
"""

import argparse
import ctypes
import json
import os
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import tomllib
from collections import Counter
from contextlib import suppress
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
import trace_file

LIBC = ctypes.CDLL(None)
SKIPPED = 77
MODES = {"whole": [], "streamed": ["--noMemory"]}
COMPLAINT = re.compile("Error call:|Error Code|Error loading|Exception|No enought Data|dlopen failed|"
                       "Playback Link Status|Aborting Playback|not available on this platform")
CALL = re.compile(r"KESTRAIL\(M\) Frame\(P\): \d+ Call:\d+ (\w+)")
LINE = "{:<26}{:>7}{:>8}{:>8}  {:<16}{}"


def programs():
    """The rows, each with what its group gives it."""
    for group in tomllib.loads((HERE / "programs.toml").read_text())["group"]:
        rows = group.pop("programs")
        for row in rows:
            environment = group.get("environment", {}) | row.get("environment", {})
            yield group | row | {"environment": environment}


def is_installed(package):
    asked = subprocess.run(["dpkg-query", "-W", "-f=${db:Status-Status}", package],
                           capture_output=True, text=True, check=False)
    return asked.stdout == "installed"


def filled(text):
    return text.replace("{here}", str(HERE))


def end_with_us():
    """In the child that ends all others: it is asked to if this program is killed itself."""
    set_death_signal = 1
    LIBC.prctl(set_death_signal, signal.SIGTERM)


def run_whole(words, seconds, log, **settings):
    """The status of a program that is asked to end after so many seconds, if it hasn't by itself."""
    limited = ["timeout", "--kill-after=5", str(seconds + 30), *words]
    with open(log, "wb") as output, subprocess.Popen(
            limited, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT, start_new_session=True,
            preexec_fn=end_with_us, **settings) as running:
        try:
            for patience in (seconds, 10):
                with suppress(subprocess.TimeoutExpired):
                    return running.wait(patience)
                running.terminate()
            return -signal.SIGKILL
        finally:
            # What the program left behind has nobody else to end it.
            with suppress(ProcessLookupError):
                os.killpg(running.pid, signal.SIGKILL)


def record(row, build, folder):
    """What the command tells of the recordings."""
    for name in ("XDG_RUNTIME_DIR", "HOME"):
        (folder / name).mkdir(mode=0o700)
    environment = dict(os.environ, LC_ALL="C.UTF-8", HOME=str(folder / "HOME"),
                       XDG_RUNTIME_DIR=str(folder / "XDG_RUNTIME_DIR"))
    environment.pop("LD_PRELOAD", None)
    environment |= {name: filled(value) for name, value in row["environment"].items()}
    if "prepare" in row:
        subprocess.run(filled(row["prepare"]), shell=True, check=True, cwd=folder, env=environment)
    words = [build / "bin/kestrail", "record", "--pictures", f"--frames=1-{row['frames']}", "--exit",
             "--summary=summary.json", "-o", "app.kstl", *row.get("options", []), "--",
             *shlex.split(filled(row["command"]))]
    status = run_whole(words, row.get("seconds", 60), folder / "log", cwd=folder, env=environment)
    told = (folder / "log").read_text(errors="replace")
    assert status == row.get("status", 0), f"ended with {status}:\n{told[-2000:]}"
    recordings = json.loads((folder / "summary.json").read_text())["recordings"]
    assert recordings, told
    return recordings


def play(build, trace, options, folder):
    """The pictures of the frames as the player draws them, and the calls that it complains of."""
    folder.mkdir()
    environment = dict(os.environ, KESTRAIL_CAPTURE_DIR=str(folder),
                       LD_LIBRARY_PATH=str(build / "tests/render/capture"))
    environment.pop("LD_PRELOAD", None)
    log = folder / "log"
    status = run_whole([build / "bin/kestrail-playback_g", trace, *options], 100, log, env=environment)
    assert status == 0, f"played with status {status}"
    complaints = Counter()
    call = "before the first call"
    for line in log.read_text(errors="replace").splitlines():
        if found := CALL.search(line):
            call = found[1]
        elif COMPLAINT.search(line):
            complaints[call] += 1
    drawn = {}
    for path in folder.glob("frame-*.rgba"):
        data = path.read_bytes()
        size = (int.from_bytes(data[at:at + 4], sys.byteorder) for at in (0, 4))
        drawn[int(path.stem[6:])] = (*size, data[8:])
    return drawn, complaints


def check(row, build, folder):
    """What is wrong with a program's recording, as texts, and its line of the table."""
    faults = []
    frames = calls = size = 0
    equal = Counter()
    left_out = Counter()
    for recording in record(row, build, folder):
        trace = folder / recording["file"]
        pictures = dict(enumerate(trace_file.pictures(trace), 1))
        if not recording["calls"]:
            continue
        frames += recording["frames"]
        calls += recording["calls"]
        size += recording["bytes"]
        left_out += Counter(recording["notInTrace"])
        if not recording["frames"] >= row["frames"] or len(pictures) != recording["frames"]:
            faults.append(f"{trace.name}: {len(pictures)} frames")
        if all(picture is None or picture[2] == picture[2][:4] * (len(picture[2]) // 4)
               for picture in pictures.values()):
            faults.append(f"{trace.name}: its pictures show nothing")
        for mode, options in MODES.items():
            drawn, complaints = play(build, trace, options, folder / f"{trace.stem}-{mode}")
            same = [number for number in pictures if pictures[number] == drawn.get(number)]
            equal[mode] += len(same)
            same += [number for number in range(1, 1 + row.get("small", 0)) if pictures[number] is None]
            if len(same) != len(pictures) or drawn.keys() != pictures.keys():
                faults.append(f"{trace.name} {mode}: other than recorded: "
                              f"{sorted((pictures.keys() | drawn.keys()) - set(same))}")
            if odd := complaints.keys() - row.get("refused", {}).keys():
                faults.append(f"{trace.name} {mode}: not played: {sorted(odd)}")
    if odd := left_out.keys() - row.get("left_out", {}).keys():
        faults.append(f"not in the trace: {sorted(odd)}")
    told = ", ".join(f"{name} ({number})" for name, number in left_out.items()) or "-"
    return faults, LINE.format(row["name"], frames, calls, f"{size / 1e6:.1f}",
                               f"{equal['whole']} and {equal['streamed']}", told)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--packages", action="store_true", help="print what is to be installed")
    parser.add_argument("--keep", type=Path, help="a new folder for traces and logs")
    parser.add_argument("build", nargs="?", type=Path)
    parser.add_argument("names", nargs="*", help="programs; all without any")
    asked = parser.parse_args()
    for ending in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(ending, lambda number, _: sys.exit(128 + number))
    rows = [row for row in programs() if not asked.names or row["name"] in asked.names]
    if asked.packages:
        print(*sorted({package for row in rows for package in row["packages"]}), sep="\n")
        return 0
    assert len(rows) >= max(len(asked.names), 1), f"{asked.names}: not all are in programs.toml"
    print(LINE.format("program", "frames", "calls", "MB", "equal", "not in the trace"))
    skipped = failed = 0
    for row in rows:
        if missing := [package for package in row["packages"] if not is_installed(package)]:
            print(f"{row['name']}: skipped, {', '.join(missing)} not installed")
            skipped += 1
            continue
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            if asked.keep:
                folder = asked.keep.resolve() / row["name"]
                folder.mkdir(parents=True)
            try:
                faults, line = check(row, asked.build.resolve(), folder)
            except AssertionError as error:
                faults, line = [str(error)], row["name"]
        print(line, *(f"    {fault}" for fault in faults), sep="\n", flush=True)
        failed += bool(faults)
    return 1 if failed else SKIPPED if skipped == len(rows) else 0


if __name__ == "__main__":
    sys.exit(main())
