#!/usr/bin/env python3
"""Programs that others wrote, recorded and played: what is drawn has to be what was recorded.

Each program of programs.toml is recorded with pictures and its trace played in both load modes. The
player's frames are caught by a host library that knows nothing of the recorder, and have to be equal
to the pictures byte for byte; so have frames that are rendered without those before, alone and cut out
of the trace. A line for each program tells what was seen; exit status 77 if the
packages of all that were asked for are missing.

With --peer the programs are recorded by apitrace at the same time, which stands between them and the
recorder, and the calls are compared by name and number. Of getters apitrace writes few, and it makes
many more for itself: it may have seen less than the recorder. What it adds to its file it marks as
fake; arrays in the application's memory are in there as such calls alone, one for each draw.
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
PEER_PACKAGES = ["apitrace", "apitrace-tracers"]
PEER_CALL = re.compile(rb"\d+ (?:@\d+ )?(\w+)\(")
# The recorder writes the first as they were called before EGL 1.5, or without an extension.
LATER = re.compile(r"(egl\w*?)(?:Platform|WithDamage)(\w*?)(?:EXT|KHR)?$")
GETTER = re.compile("gl(Get|Is|CheckFramebufferStatus)|egl(Get|Query)")
LINE = "{:<26}{:>7}{:>8}{:>8}  {:<16}{}"
PEER_LINE = "{:<26}{:>7}{:>8}{:>7}  {}"


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


def record(row, build, folder, peer=None):
    """What the command tells of the recordings. With a peer the program goes on behind the last frame,
    since the peer's file is whole only when it is asked to end."""
    for name in ("XDG_RUNTIME_DIR", "HOME"):
        (folder / name).mkdir(mode=0o700)
    environment = dict(os.environ, LC_ALL="C.UTF-8", HOME=str(folder / "HOME"),
                       XDG_RUNTIME_DIR=str(folder / "XDG_RUNTIME_DIR"))
    environment.pop("LD_PRELOAD", None)
    environment |= {name: filled(value) for name, value in row["environment"].items()}
    if "prepare" in row:
        subprocess.run(filled(row["prepare"]), shell=True, check=True, cwd=folder, env=environment)
    way, loaded = ((["--pictures", "--exit"], []) if peer is None else
                   ([], ["sh", "-c", f'LD_PRELOAD="{peer}:$LD_PRELOAD" exec "$0" "$@"']))
    words = [build / "bin/kestrail", "record", f"--frames=1-{row['frames']}", *way,
             "--summary=summary.json", "-o", "app.kstl", *row.get("options", []), "--",
             *loaded, *shlex.split(filled(row["command"]))]
    status = run_whole(words, 10 if peer else row.get("seconds", 60), folder / "log", cwd=folder,
                       env=environment)
    told = (folder / "log").read_text(errors="replace")
    assert peer or status == row.get("status", 0), f"ended with {status}:\n{told[-2000:]}"
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


def check_alone(build, trace, frames):
    """What of frames is other than recorded when they are rendered without all that is before, as texts."""
    def fault(*words):
        done = subprocess.run([build / "bin/kestrail", *words], capture_output=True, text=True, check=False)
        return [f"{' '.join(map(str, words))}: {done.stdout[-300:]}{done.stderr[-300:]}"] if done.returncode else []
    faults = fault("frames", trace)
    small = trace.with_suffix(".small")
    for frame in sorted({frames[len(frames) // 2], frames[-1]}):
        faults += fault("frames", trace, f"--frames={frame}")
    return (faults + fault("trim", trace, f"--frames={frames[-1]}", "--force", "-o", small) +
            fault("frames", small))


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
                              f"{sorted((pictures.keys() | drawn.keys()) - set(same))[:20]}")
            if odd := complaints.keys() - row.get("refused", {}).keys():
                faults.append(f"{trace.name} {mode}: not played: {sorted(odd)}")
        shown = [number for number, picture in pictures.items() if picture]
        faults += check_alone(build, trace, shown) if shown else []
    if odd := left_out.keys() - row.get("left_out", {}).keys():
        faults.append(f"not in the trace: {sorted(odd)}")
    told = ", ".join(f"{name} ({number})" for name, number in left_out.items()) or "-"
    return faults, LINE.format(row["name"], frames, calls, f"{size / 1e6:.1f}",
                               f"{equal['whole']} and {equal['streamed']}", told)


def peer_calls(trace, frames):
    """The names of the calls up to the end of that frame as the peer saw them, with their numbers, and
    the same of those that it has added."""
    calls, added = Counter(), Counter()
    with subprocess.Popen(["apitrace", "dump", "--color=never", trace], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL) as dump:
        for line in dump.stdout:
            if not (found := PEER_CALL.match(line)):
                continue
            (added if line.endswith(b"// fake\n") else calls)[LATER.sub(r"\1\2", found[1].decode())] += 1
            if calls["eglSwapBuffers"] == frames:
                dump.kill()
                break
    return calls, added


def check_peer(row, build, folder):
    """What the recorder and its peer saw otherwise, as texts, and the program's line of the table."""
    listed = subprocess.run(["dpkg", "-L", "apitrace-tracers"], capture_output=True, text=True, check=True)
    peer = next(path for path in listed.stdout.split() if path.endswith("/egltrace.so"))
    faults = []
    frames = 0
    ours, theirs, fake = Counter(), Counter(), Counter()
    for recording in record(row, build, folder, peer):
        if not recording["frames"]:
            continue
        trace = folder / recording["file"]
        play(build, trace, [], folder / trace.stem)
        ours += Counter(CALL.findall((folder / trace.stem / "log").read_text(errors="replace")))
        seen, added = peer_calls(folder / f"{recording['executable']}.trace", recording["frames"])
        theirs += seen
        fake += Counter({name: number for name, number in added.items() if name.endswith("Pointer")})
        frames += recording["frames"]
    if frames < row["frames"]:
        faults.append(f"{frames} frames")
    names = [name for name in sorted(ours | theirs)
             if not any(re.fullmatch(otherwise, name) for otherwise in row.get("peer", {}))]
    faults += [f"{name}: {ours[name]} calls, the peer saw {theirs[name]}" for name in names
               if ours[name] < theirs[name] or
               (ours[name] > theirs[name] + fake[name] and not GETTER.match(name))]
    getters = [name for name in names if GETTER.match(name)]
    told = ", ".join(f"{name} {ours[name]} {theirs[name]}" for name in getters if ours[name] != theirs[name])
    number = sum(ours[name] for name in names if name not in getters)
    return faults, PEER_LINE.format(row["name"], frames, number, len(names) - len(getters), told)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--packages", action="store_true", help="print what is to be installed")
    parser.add_argument("--keep", type=Path, help="a new folder for traces and logs")
    parser.add_argument("--peer", action="store_true",
                        help="compare the calls with those that apitrace saw, of rows that say so")
    parser.add_argument("build", nargs="?", type=Path)
    parser.add_argument("names", nargs="*", help="programs; all without any")
    asked = parser.parse_args()
    for ending in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(ending, lambda number, _: sys.exit(128 + number))
    rows = [row for row in programs() if row["name"] in asked.names or
            not asked.names and (not asked.peer or "peer" in row)]
    if asked.peer:
        rows = [row | {"packages": row["packages"] + PEER_PACKAGES} for row in rows]
    if asked.packages:
        print(*sorted({package for row in rows for package in row["packages"]}), sep="\n")
        return 0
    assert len(rows) >= max(len(asked.names), 1), f"{asked.names}: not all are in programs.toml"
    print(PEER_LINE.format("program", "frames", "calls", "names", "getters, and what the peer saw of them")
          if asked.peer else
          LINE.format("program", "frames", "calls", "MB", "equal", "not in the trace"))
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
                faults, line = (check_peer if asked.peer else check)(row, asked.build.resolve(), folder)
            except AssertionError as error:
                faults, line = [str(error)], row["name"]
        print(line, *(f"    {fault}" for fault in faults), sep="\n", flush=True)
        failed += bool(faults)
    return 1 if failed else SKIPPED if skipped == len(rows) else 0


if __name__ == "__main__":
    sys.exit(main())
