#!/usr/bin/env python3
"""Checks that nothing is lost, however a recorded program ends and whatever becomes of its file.

    endings_test.py COMMAND PLAYER HOST
"""

import os
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path
from signal import SIG_IGN, SIGABRT, SIGCHLD, SIGINT, SIGKILL, SIGSEGV, SIGTERM, signal

sys.path.insert(0, str(Path(__file__).parents[1] / "support"))
from trace_file import SWAP, records

THREAD, MAKE_WINDOW, CLEAR = 1, 1006, 2016
# What the programs begin with.
PRELUDE = """
import os, signal, sys, threading, time
from ctypes import CDLL, byref, c_int, c_long, c_void_p, create_string_buffer, string_at
egl, gl, libc = CDLL("libEGL.so"), CDLL("libGLESv2.so"), CDLL(None)
for maker in egl.eglGetDisplay, egl.eglGetPlatformDisplay, egl.eglCreateContext, egl.eglCreateWindowSurface:
    maker.restype = c_void_p
display = c_void_p(egl.eglGetDisplay(None))
egl.eglInitialize(display, None, None)
def draws_in(window, shared=None):
    context = c_void_p(egl.eglCreateContext(display, c_void_p(1), shared, (c_int * 3)(0x3098, 3, 0x3038)))
    surface = c_void_p(egl.eglCreateWindowSurface(display, c_void_p(1), c_void_p(window), None))
    assert egl.eglMakeCurrent(display, surface, surface, context)
    return context, surface
def frame(count, surface=None):
    for _ in range(count):
        gl.glClear(0x4000)
        egl.eglSwapBuffers(display, surface or main)
context, main = draws_in(7)
"""
PRELUDE = f"PRELUDE = {PRELUDE!r}{PRELUDE}"
# What a program does, its status, and the frames in each file that comes of it.
ENDINGS = [
    ("frame(3); string_at(0)", 128 + SIGSEGV, [3]),
    ("frame(3); os.abort()", 128 + SIGABRT, [3]),
    ("frame(3); os.kill(os.getpid(), signal.SIGTERM)", 128 + SIGTERM, [3]),
    ("frame(3); libc.signal(2, 0); os.kill(os.getpid(), 2)", 128 + SIGINT, [3]),
    ("frame(3); os.kill(os.getpid(), signal.SIGKILL)", 128 + SIGKILL, [3]),
    ("frame(3); os._exit(5)", 5, [3]),
    ("frame(3); libc.quick_exit(6)", 6, [3]),
    # A forked child leaves the recording alone; one that becomes another program has its own.
    ("frame(1); child = os.fork(); frame(2); child and os.waitpid(child, 0)", 0, [3]),
    ("frame(2); os.execv(sys.executable, [sys.executable, '-c', PRELUDE + 'frame(4)'])", 0, [2, 4]),
    # A child whose status nobody has asked for.
    ("frame(1); child = os.spawnv(os.P_NOWAIT, sys.executable, [sys.executable, '-c', PRELUDE + 'frame(2)'])\n"
     "os.waitid(os.P_PID, child, os.WEXITED | os.WNOWAIT)", 0, [1, 2]),
    # Behind the destructors of the thread, with its context gone.
    ("frame(2); libc.on_exit(gl.glFlush, None); egl.eglDestroyContext(display, context)", 0, [2]),
    # A signal handler that comes into an entry calls another.
    ("gl.glFlush(); frame(1); libc.signal(14, gl.glFlush); libc.ualarm(100, 100); frame(20000); libc.ualarm(0, 0)",
     0, [20001]),
    # An array that isn't there any more, which no shader uses.
    ("gl.glEnableVertexAttribArray(0); gl.glVertexAttribPointer(0, 4, 0x1406, 0, 0, c_void_p(4096))\n"
     "gl.glDrawArrays(4, 0, 3000); frame(1)", 0, [1]),
    # Nothing can be looked up in the process, and it has no descriptors.
    ("os.closerange(0, 1000); libc.prctl(4, 0); frame(3)", 0, [3]),
    ("data = create_string_buffer(100 << 20); gl.glBindBuffer(0x8892, 1)\n"
     "gl.glBufferData(0x8892, c_long(len(data)), data, 0x88E4); frame(1)", 0, [1]),
]

# What the command is started in, and the frames that are in the file at least and at most.
LIMIT = 300000
SURROUNDINGS = [
    (lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (LIMIT, LIMIT)), 1000, 9999),
    (lambda: [os.close(stream) for stream in range(3)], 10000, 10000),
    (lambda: signal(SIGCHLD, SIG_IGN), 10000, 10000),
]
# Two threads with contexts that share, each frame of which is a number of its own clears.
THREADS = """
def draw(window):
    _, surface = draws_in(window, context)
    for _ in range(200):
        for _ in range(window):
            gl.glClear(window)
        egl.eglSwapBuffers(display, surface)
threads = [threading.Thread(target=draw, args=(window,)) for window in (8, 9)]
for thread in threads: thread.start()
for thread in threads: thread.join()
"""


def run(*command, **settings):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          timeout=100, check=False, **settings)


def frames_of(folder, number):
    files = sorted(folder.glob(f"{number}.*kstl"), key=lambda file: file.stat().st_ctime)
    return [sum(identifier == SWAP for identifier, _ in records(file)) for file in files]


def main():
    command, player, host = sys.argv[1:]
    environment = dict(os.environ, LD_LIBRARY_PATH=host, LC_ALL="C", PYTHONDONTWRITEBYTECODE="1")
    environment.pop("LD_PRELOAD", None)
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        script = folder / "script"
        script.write_text("eglQueryContext:EGL_CONTEXT_CLIENT_VERSION * 3\n")
        environment |= {"TMPDIR": name, "KESTRAIL_HOST_SCRIPT": str(script)}

        def record(out, program, *options, **settings):
            return run(command, "record", *options, "-o", out, "--", sys.executable, "-c",
                       PRELUDE + program, env=environment, **settings)

        for number, (program, status, frames) in enumerate(ENDINGS):
            out = folder / f"{number}.kstl"
            done = record(out, program)
            assert done.returncode == status, (program, done.returncode, done.stderr)
            assert frames_of(folder, number) == frames, (program, frames_of(folder, number), done.stderr)
            played = run(player, out, env=environment).stdout.count("Frame(P): ")
            assert played == sum(identifier > 5 for identifier, _ in records(out)), program

        # The program doesn't notice, and what fits plays.
        for number, (prepare, least, most) in enumerate(SURROUNDINGS, 100):
            out = folder / f"{number}.kstl"
            done = record(out, "frame(10000); os._exit(9)", preexec_fn=prepare)
            assert done.returncode == 9, (number, done.returncode, done.stderr)
            assert least <= frames_of(folder, number)[0] <= most, (number, frames_of(folder, number))
            assert (LIMIT - 1000 < out.stat().st_size <= LIMIT) == ("too large" in done.stderr)
        for out in "/dev/full", folder / "absent" / "out.kstl":
            done = record(out, "frame(5); print('goes on')", "--force")
            assert (done.returncode, done.stdout) == (0, "goes on\n") and done.stderr.count("ends here") == 1

        # The command goes, the program stays.
        whole = subprocess.Popen([command, "record", "-o", folder / "alone.kstl", "--", sys.executable, "-c",
                                  PRELUDE + "frame(1000); time.sleep(0.5); os.kill(os.getppid(), 9)\n"
                                  "data = create_string_buffer(10 << 20); gl.glBindBuffer(0x8892, 1)\n"
                                  "for _ in range(10): gl.glBufferData(0x8892, c_long(len(data)), data, 0x88E4)\n"
                                  "print('done')"], env=environment, stdout=subprocess.PIPE)
        assert whole.stdout.read() == b"done\n" and whole.wait() == -SIGKILL
        assert frames_of(folder, "alone") == [1000]

        # Windows that a platform takes by a pointer to their number.
        record(folder / "windows.kstl", "display = c_void_p(egl.eglGetPlatformDisplay(0x31D5, None, None))\n"
               "for number in 5, 6: egl.eglCreatePlatformWindowSurface(display, None, byref(c_long(number)), None)")
        made = [struct.unpack_from("<I", payload, 16)[0] for identifier, payload in
                records(folder / "windows.kstl") if identifier == MAKE_WINDOW]
        assert made == [7, 5, 6], made
        # Entries are there where they are without the recorder: none in the process, another library's in it.
        shutil.copy(Path(host).parent / "idle" / "libGLESv2.so", folder / "libother.so")
        asked = run(command, "record", "--no-follow", "--", sys.executable, "-c",
                    "import os; from ctypes import CDLL; print(CDLL(None).dlsym(None, b'glClear'),"
                    "os.environ['LD_PRELOAD'], bool(CDLL('./libother.so').glClear))", cwd=folder, env=dict(environment, LD_PRELOAD="libm.so.6"))
        assert asked.stdout == "0 libm.so.6 True\n", asked

        # Records of several threads, each behind one that tells the thread.
        record(folder / "threads.kstl", THREADS)
        thread, drawn = 0, {}
        for identifier, payload in records(folder / "threads.kstl"):
            if identifier == THREAD:
                thread, = struct.unpack("<Q", payload)
            elif identifier == CLEAR:
                drawn.setdefault(thread, []).append(struct.unpack_from("<I", payload, 4)[0])
            elif identifier == SWAP:
                drawn.setdefault(thread, []).append(0)
        expected = [([window] * window + [0]) * 200 for window in (8, 9)]
        assert sorted(drawn.values()) == expected, drawn.keys()


main()
