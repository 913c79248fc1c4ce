#!/usr/bin/env python3
"""What is recorded of calls, on stand-in host libraries that answer by script.

    rules_test.py COMMAND HOST HEADERS CASES      the cases of a file
    rules_test.py scenes COMMAND PLAYER HEADERS CASES      what calls draw on the machine's own driver; played,
                                                           it has to look the same
    rules_test.py program [window] HEADERS VERSION CALLS   the recorded program

A case is a line `case NAME [es1|es2|es3]` and, indented by two, the calls that a program makes. Each is
expected to be recorded as it is written, or as the lines say that stand below it, indented by four; `-`
says that nothing is. Beside calls there are:
    script ENTRY[:PNAME] NTH|* VALUE    an answer of the host
    write [BYTES]                       to where the last map of a buffer is
    left out: NAME                      what the summary tells
    says TEXT                           a part of what is told on standard error
A line that ends with a `\\` goes on in the next. `= RESULT` behind a call is what the program sees, `!ERROR` an error that the host has after it. `*` stands
for any value.
"""

import ctypes
import json
import os
import random
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import calls
import trace_file


def parse(line):
    """Name, words, result and error of a call."""
    words = calls.split(line)
    error = words.pop()[1:] if words[-1][0] == "!" else "0"
    result = words.pop() if len(words) > 2 and words[-2] == "=" else None
    return words[0], words[1:len(words) - (result is not None)], result, error


def run_recorded(program, command, host, folder, script, *arguments):
    (folder / "script").write_text(script)
    environment = dict(os.environ, LD_LIBRARY_PATH=host, KESTRAIL_HOST_SCRIPT=str(folder / "script"))
    environment.pop("LD_PRELOAD", None)
    out = folder / "out.kstl"
    done = subprocess.run([command, "record", "-o", out, "--summary", folder / "summary", "--",
                           sys.executable, "-B", program, "program", *map(str, arguments)],
                          env=environment, capture_output=True, text=True, timeout=100, check=False)
    assert done.returncode == 0, f"status {done.returncode}: {done.stderr} {done.stdout[-200:]}"
    return out, json.loads((folder / "summary").read_text())["recordings"][0]["notInTrace"], done.stderr


def behind_start(path, published):
    found = list(calls.recorded(path, published))
    start = next(i for i, call in enumerate(found) if call[0] == "eglMakeCurrent")
    return found[start + 1:]


def same(expected, found):
    if expected is None:
        return not found and found != b""
    if isinstance(expected, float):
        return abs(expected - found) < 1e-6
    if isinstance(expected, int) and isinstance(found, int):
        return (expected - found) % (1 << 32) == 0
    return expected == found


class Case:
    def __init__(self, name, version):
        self.name, self.version = name, version
        self.program, self.expected, self.left_out, self.script, self.told = [], [], {}, "", ""

    def add(self, line):
        text = line.strip()
        first = text.split()[0]
        if line.startswith("    "):
            if self.own:
                self.expected.pop()
            self.own = False
            if text != "-":
                self.expected.append(text)
        elif first == "script":
            self.script += text[7:] + "\n"
        elif first == "says":
            self.told = text[5:]
        elif text.startswith("left out:"):
            self.left_out[text[9:].strip()] = 1
        else:
            self.program.append(text)
            if first != "write":
                self.expected.append(text)
                self.own = True
                error = parse(text)[3]
                nth = sum(line.split()[0] == first for line in self.program)
                if error != "0":
                    self.script += f"{first} {nth} error {error}\n"

    def run(self, command, host, headers):
        published = calls.Published(headers)
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "calls").write_text("\n".join(self.program))
            try:
                out, left_out, told = run_recorded(__file__, command, host, folder, self.script, headers,
                                             self.version, folder / "calls")
            except AssertionError as failure:
                return [failure]
            found = behind_start(out, published)
        problems = [] if left_out == self.left_out and self.told in told else [left_out, told]
        lines = [line for line, call in zip(self.expected, found)
                 if not self.matches(line, call, published)]
        if lines or len(found) != len(self.expected):
            problems += ["expected:", *self.expected, "found:", *map(str, found)]
        return problems

    @staticmethod
    def matches(line, call, published):
        name, words, result, error = parse(line)
        found_name, found_error, _, found_result, values = call
        if (name, published.number(error)) != (found_name, found_error):
            return False
        if result and not same(calls.value_of(result, published), found_result):
            return False
        for word, value in zip(words, values):
            if isinstance(value, tuple) and "x" in word.partition(":")[2]:
                word, value = "*", word == "{:#x}:{}x{}".format(*value) or False
            elif isinstance(value, tuple):
                index, data = word.split(":", 1)
                word, value = data, value[1] if value[0] == int(index) else False
            if word != "*" and not same(calls.value_of(word, published), value):
                return False
        rest = values[len(words):]
        return len(words) <= len(values) and not any(isinstance(value, tuple) for value in rest)


def read_cases(path):
    """The cases of a file, and what stands ahead of the first."""
    cases = [Case("", 3)]
    for line in re.sub(r"\\\n *", " ", Path(path).read_text()).splitlines():
        if line.startswith("case "):
            name, version = re.fullmatch(r"case (.*?)(?: es([123]))?", line).groups()
            cases.append(Case(name, int(version or 2)))
        elif line and line[0] != "#":
            cases[-1].add(line)
    return cases[0], cases[1:]


def tell(cases, run):
    with ThreadPoolExecutor(2) as pool:
        found = {case.name: problems for case, problems in zip(cases, pool.map(run, cases)) if problems}
    for name, problems in found.items():
        print(f"case {name}", *problems, sep="\n  ")
    assert cases and not found
    print(f"{len(cases)} cases")


def run_rules(command, host, headers, path):
    tell(read_cases(path)[1], lambda case: case.run(command, host, headers))


def run_scenes(command, player, headers, path):
    first, cases = read_cases(path)
    # An X server may start anew, and refuse programs meanwhile, when its last client leaves.
    ctypes.CDLL("libX11.so.6").XOpenDisplay(None)

    def pictures(folder, name, *program):
        done = subprocess.run([command, "record", "--pictures", "--no-limit", "-o", folder / name, "--", *map(str, program)],
                              capture_output=True, text=True, timeout=100, check=False)
        assert done.returncode == 0, done.stderr
        return list(trace_file.pictures(folder / name))

    def run(case):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "calls").write_text("\n".join(first.program + case.program))
            drawn = pictures(folder, "drawn", sys.executable, "-B", __file__, "program", "window", headers, 3,
                             folder / "calls")
            played = [pictures(folder, f"played{mode}", player, folder / "drawn", *mode)
                      for mode in ([], ["--noMemory"])]
        blank = len(set(drawn[0][2])) == 1
        return ["drawn:", drawn, "played:", played] if played != [drawn, drawn] or blank else []

    tell(cases, run)


def be_program(*arguments):
    *window, headers, version, path = arguments
    published = calls.Published(headers)
    host = calls.Host(published, int(version))
    lines = [parse(line) for line in Path(path).read_text().splitlines()]
    for name in {name for name, *_ in lines} - {"write"}:
        host.entry(name)
    display, surface = host.make_context(int(version), 8 if window else 0)
    mapped = None
    for name, words, result, _ in lines:
        values = [calls.value_of(word, published) for word in words]
        if name == "write":
            ctypes.memmove(mapped, values[0], len(values[0]))
            continue
        last = host.call(name, values)
        mapped = last if name.startswith("glMap") else mapped
        if result and result[0] == '"':
            last = ctypes.string_at(last).decode()
        assert not result or same(calls.value_of(result, published), last), f"{name} {words}: {last}"
    if window:
        host.call("eglSwapBuffers", [display, surface])


if __name__ == "__main__":
    modes = {"program": be_program, "scenes": run_scenes}
    if sys.argv[1] in modes:
        modes[sys.argv[1]](*sys.argv[2:])
    else:
        run_rules(*sys.argv[1:])
