#!/usr/bin/env python3
"""Checks of `kestrail record` as a user runs it.

    record_test.py manners COMMAND PLAYER TRACE HOST INTERPOSER
                                                        statuses, signals, files; on the stand-in hosts
    record_test.py trip COMMAND PLAYER HOST TRACES...   the player, recorded while it plays, makes the same calls
    record_test.py pictures COMMAND PLAYER TRACES...    and draws the same

A display is wanted by the last.
"""

import ctypes
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1] / "support"))
import trace_file
from trace_file import SWAP, records

USE_PROGRAM = 2131
MAKE_CURRENT = 1018
UNIFORM = 2112
# Two threads take turns, each in a context that shares nothing with the other's.
TURNS = """
from concurrent.futures import ThreadPoolExecutor
from ctypes import CDLL, c_float, c_void_p
egl, gl = CDLL("libEGL.so"), CDLL("libGLESv2.so")
use, uniform = gl.glUseProgram, gl.glUniform1f
egl.eglGetDisplay.restype = egl.eglCreateContext.restype = c_void_p
display = c_void_p(egl.eglGetDisplay(None))
threads = [ThreadPoolExecutor(1), ThreadPoolExecutor(1)]
for thread in threads:
    context = c_void_p(egl.eglCreateContext(display, c_void_p(1), None, None))
    thread.submit(egl.eglMakeCurrent, display, None, None, context).result()
for call, *arguments in (use, 3), *2 * [(uniform, 0, c_float(1))]:
    for thread in threads:
        thread.submit(call, *arguments).result()
"""
# What the player asks or sets of itself around the calls that it plays, what is recorded in other words, and
# arrays that it has no bytes for: zeros at an address of the recording.
OF_ITSELF = re.compile(r"live |(es1\.)?(egl|gl)(Get|Is|Query|Check|ChooseConfig|Initialize|BindBuffer\(|ClientActive"
                       r"|Viewport|WaitSync|\w*Pointer\w*\(|MapBufferRange|FlushMapped|BufferSubData)")
NO_BYTES = re.compile(r"\[(\d+) (\d+|<0*:\d+>)\]")


def pictures(path):
    """Size and pixels, without alpha, of each frame; none for one that holds no picture."""
    found = []
    for picture in trace_file.pictures(path):
        pixels = bytearray(picture[2] if picture else b"")
        pixels[3::4] = bytes(len(pixels) // 4)
        found.append(picture and (*picture[:2], bytes(pixels)))
    return found


def run(*command, **settings):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          timeout=200, check=False, **settings)


def check_manners(command, player, trace, host, interposer):
    environment = dict(os.environ, LD_LIBRARY_PATH=host, LC_ALL="C")
    environment.pop("LD_PRELOAD", None)
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        out = folder / "out.kstl"

        def record(*arguments):
            return run(command, "record", *arguments, cwd=folder, env=environment)

        plain = folder / "plain"
        plain.write_text("no program")
        for arguments, status in ((["--", "sh", "-c", "exit 7"], 7),
                                  (["--", "sh", "-c", "kill -9 $$"], 128 + 9),
                                  (["--", "./absent"], 127), (["--", "./plain"], 126),
                                  ([], 2), (["--nonsense", "true"], 2),
                                  (["--frames=3-2", "true"], 2), (["-o", "plain", "true"], 5)):
            assert record(*arguments).returncode == status, (arguments, status)
        # The program's output is its own, and what it isn't told of stays away.
        shown = record("--no-follow", "--", "sh", "-c", "env")
        assert "kestrail" not in shown.stdout and "KESTRAIL" not in shown.stdout, shown.stdout
        assert "nothing recorded" in shown.stderr

        # Others that stand before a library find what is behind themselves.
        behind = run(command, "record", "--", sys.executable, "-c",
                     "import os; assert os.getppid()", cwd=folder,
                     env=environment | {"LD_PRELOAD": interposer})
        assert behind.returncode == 0, behind

        played = run(player, trace, cwd=folder, env=environment)
        whole = record("-o", out, "--summary", "summary.json", "--", player, trace)
        assert whole.returncode == 0 and whole.stdout == played.stdout
        frames = sum(identifier == SWAP for identifier, _ in records(out))
        calls = sum(identifier > 5 for identifier, _ in records(out))
        told, = json.loads((folder / "summary.json").read_text())["recordings"]
        assert (told["frames"], told["calls"], told["bytes"]) == (frames, calls, out.stat().st_size)
        assert f"{frames} frames, {calls} calls" in whole.stderr

        assert record("-o", out, "--", player, trace).returncode == 5
        assert record("-o", out, "--force", "--frames=1-2", "--exit", "--", player,
                      trace).returncode == 0
        assert sum(identifier == SWAP for identifier, _ in records(out)) == 2
        # Children have files of their own; the first that draws has the plain name.
        record("-o", out, "--force", "--", "sh", "-c", f"'{player}' '{trace}'; '{player}' '{trace}'")
        assert len(list(folder.glob("out*.kstl"))) == 2

        # A player has one thread and one table of names.
        (folder / "two").write_text("eglQueryContext:EGL_CONTEXT_CLIENT_VERSION * 2\n"
                                    "glGetIntegerv:0x8B8D * 3\n")
        turns = run(command, "record", "-o", out, "--force", "--", sys.executable, "-c", TURNS,
                    cwd=folder, env=environment | {"KESTRAIL_HOST_SCRIPT": "two"})
        assert turns.returncode == 0, turns.stderr
        taken = [(identifier, int.from_bytes(payload[4:8], "little") if identifier == USE_PROGRAM else None)
                 for identifier, payload in records(out)
                 if identifier in (MAKE_CURRENT, USE_PROGRAM, UNIFORM)]
        current, uniform = (MAKE_CURRENT, None), (UNIFORM, None)
        uses = [[current, (USE_PROGRAM, name)] for name in (3, 3 + (1 << 20))]
        assert taken == sum([[current], [current], *uses, *[[*use, uniform] for use in uses * 2]], []), taken

        # A program that is killed leaves what it had done.
        script = f"while :; do '{player}' '{trace}' >/dev/null 2>&1; done"
        killed = subprocess.Popen([command, "record", "-o", folder / "killed.kstl", "--", "sh", "-c",
                                   script], env=environment, stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + 60
        while not list(folder.glob("killed.*.kstl")) and time.monotonic() < deadline:
            time.sleep(0.05)
        killed.send_signal(signal.SIGTERM)
        assert killed.wait(60) == 128 + signal.SIGTERM
        assert sum(identifier == SWAP for identifier, _ in records(folder / "killed.kstl")) == frames


def check_trip(command, player, host, *traces):
    environment = dict(os.environ, LD_LIBRARY_PATH=host)
    environment.pop("DISPLAY", None)  # whose windows have other numbers each time

    def calls_of(folder, *program):
        log = folder / "log"
        log.unlink(missing_ok=True)
        done = run(*program, cwd=folder, env=environment | {"KESTRAIL_HOST_LOG": str(log)})
        assert done.returncode == 0, done.stderr
        return [NO_BYTES.sub(r"[\1]", line) for line in log.read_text().splitlines()
                if not OF_ITSELF.match(line)]

    for trace in traces:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            played = calls_of(folder, player, trace)
            calls_of(folder, command, "record", "-o", "again.kstl", "--", player, trace)
            again = calls_of(folder, player, "again.kstl")
            for number, pair in enumerate(zip(played, again)):
                assert pair[0] == pair[1], f"{trace}: call {number}: {pair}"
            assert len(played) == len(again) > 0, f"{trace}: {len(played)} and {len(again)} calls"
            print(f"{Path(trace).name}: {len(played)} calls, all equal")


def check_pictures(command, player, *traces):
    # An X server may start anew, and refuse programs meanwhile, when its last client leaves.
    ctypes.CDLL("libX11.so.6").XOpenDisplay(None)
    for trace in traces:
        with tempfile.TemporaryDirectory() as name:
            ways = [Path(name, "first.kstl"), Path(name, "second.kstl")]
            for source, target in zip([trace, ways[0]], ways):
                done = run(command, "record", "--pictures", "-o", target, "--", player, source)
                assert done.returncode == 0, done.stderr
            first, second = (pictures(way) for way in ways)
            assert first and None not in first and first == second, f"{trace}: drawn otherwise"
            for number, (kept, drawn) in enumerate(zip(pictures(trace), first), 1):
                assert kept is None or kept == drawn, f"{trace}: frame {number}"
            print(f"{Path(trace).name}: {len(first)} frames, all equal")


if __name__ == "__main__":
    {"manners": check_manners, "trip": check_trip, "pictures": check_pictures}[sys.argv[1]](*sys.argv[2:])
