#!/usr/bin/env python3
"""Checks of `kestrail record` as a user runs it.

    record_test.py manners COMMAND PLAYER TRACE HOST    statuses, signals, files; on the stand-in hosts
    record_test.py pictures COMMAND PLAYER TRACES...    the player, recorded while it plays, draws the same

A display is wanted by the second.
"""

import json
import os
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
# What a program does in a context that it asks for.
PROGRAM = """
from ctypes import CDLL, c_void_p
egl = CDLL("libEGL.so")
egl.eglGetDisplay.restype = egl.eglCreateContext.restype = c_void_p
display = c_void_p(egl.eglGetDisplay(None))
context = c_void_p(egl.eglCreateContext(display, c_void_p(1), None, None))
assert egl.eglMakeCurrent(display, None, None, context)
"""
MIXED = PROGRAM + 'CDLL("libGLESv2.so").glUseProgram(0)'
SWAPS = PROGRAM + "assert egl.eglSwapBuffers(display, None)"


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


def check_manners(command, player, trace, host):
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
                                  (["--frames=2-3", "true"], 2), (["-o", "plain", "true"], 5)):
            assert record(*arguments).returncode == status, (arguments, status)
        # The program's output is its own, and what it isn't told of stays away.
        shown = record("--no-follow", "--", "sh", "-c", "env")
        assert "kestrail" not in shown.stdout and "KESTRAIL" not in shown.stdout, shown.stdout
        assert "nothing recorded" in shown.stderr

        played = run(player, trace, cwd=folder, env=environment)
        whole = record("-o", out, "--summary", "summary.json", "--", player, trace)
        assert whole.returncode == 0 and whole.stdout == played.stdout
        frames = sum(identifier == SWAP for identifier, _ in records(out))
        calls = sum(identifier > 5 for identifier, _ in records(out))
        told, = json.loads((folder / "summary.json").read_text())["recordings"]
        assert (told["frames"], told["calls"], told["bytes"]) == (frames, calls, out.stat().st_size)
        assert f"{frames} frames, {calls} calls" in whole.stderr
        again = run(player, out, cwd=folder, env=environment).stdout
        assert again.count("Frame(P): ") == calls

        assert record("-o", out, "--", player, trace).returncode == 5
        assert record("-o", out, "--force", "--frames=1-2", "--exit", "--", player,
                      trace).returncode == 0
        assert sum(identifier == SWAP for identifier, _ in records(out)) == 2
        # Children have files of their own; the first that draws has the plain name.
        record("-o", out, "--force", "--", "sh", "-c", f"'{player}' '{trace}'; '{player}' '{trace}'")
        assert len(list(folder.glob("out*.kstl"))) == 2

        # An entry that only the other API's library has.
        mixed = record("-o", out, "--force", "--", sys.executable, "-c", MIXED)
        assert mixed.returncode == 0 and [identifier for identifier, _ in records(out)][-1] == USE_PROGRAM
        # What was drawn by desktop GL makes no frame.
        (folder / "desktop").write_text("eglQueryContext:EGL_CONTEXT_CLIENT_TYPE * EGL_OPENGL_API\n")
        for settings, last in (({}, SWAP), ({"KESTRAIL_HOST_SCRIPT": "desktop"}, MAKE_CURRENT)):
            drawn = run(command, "record", "-o", out, "--force", "--", sys.executable, "-c", SWAPS,
                        cwd=folder, env=environment | settings)
            assert drawn.returncode == 0 and [identifier for identifier, _ in records(out)][-1] == last
            assert ("desktop GL" in drawn.stderr) == bool(settings), drawn.stderr

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


def check_pictures(command, player, *traces):
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
    {"manners": check_manners, "pictures": check_pictures}[sys.argv[1]](*sys.argv[2:])
