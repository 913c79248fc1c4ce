#!/usr/bin/env python3
"""Runs clang-tidy over the sources that are written by hand, two at a time.

    tidy.py ROOT BUILD [SOURCE...]

BUILD is a Ninja build folder, built to the end, as the headers that a source includes are known
from there. A source that came out clean is passed over until it, one of those headers, its compile
command or a list of checks changes. Without sources named, it is all of them.
"""

import hashlib
import json
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

AT_ONCE = 2
# The compiler's precompiled headers are none that clang-tidy can read.
PRECOMPILED = re.compile(r" -Winvalid-pch| -include \S*/cmake_pch\.hxx")


def output_of(command, folder):
    return subprocess.run(command, cwd=folder, check=True, capture_output=True, text=True).stdout


def sources(root, build, stamps):
    """The compile commands of the sources outside of the build folder, by source, without
    precompiled headers; so they go into a list in the folder of stamps too."""
    commands, entries = {}, []
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = (Path(entry["directory"]) / entry["file"]).resolve()
        if path.is_relative_to(root) and not path.is_relative_to(build) and path not in commands:
            entry["command"] = commands[path] = PRECOMPILED.sub("", entry["command"])
            entries.append(entry)
    (stamps / "compile_commands.json").write_text(json.dumps(entries))
    return commands


def included(root, build):
    """What each source was compiled from, as far as it is ours."""
    files = {}
    for block in output_of(["ninja", "-t", "deps"], build).split("\n\n"):
        lines = [line.strip() for line in block.splitlines()]
        paths = [(build / line).resolve() for line in lines[1:]]
        ours = [path for path in paths if not path.name.startswith("cmake_pch.")
                and (path.is_relative_to(root) or path.is_relative_to(build))]
        if ours and lines[0].endswith("(VALID)"):
            files[ours[0]] = ours
    return files


class Tidy:
    def __init__(self, root, build):
        self.root, self.build = root, build
        self.stamps = build / "lint"
        self.stamps.mkdir(exist_ok=True)
        self.commands = sources(root, build, self.stamps)
        self.files = included(root, build)
        rooms = sorted({path.relative_to(root).parts[0] for path in self.commands})
        self.filter = f"--header-filter=^{re.escape(str(root))}/({'|'.join(rooms)})/"
        self.common = output_of(["clang-tidy", "--version"], root).encode()
        for checks in sorted(root.glob("**/.clang-tidy")):
            self.common += checks.read_bytes()

    def digest(self, source):
        """Of all that a verdict depends on; None when the build doesn't know the source."""
        if source not in self.files:
            return None
        whole = hashlib.sha256(self.common + self.commands[source].encode())
        for path in self.files[source]:
            if not path.exists():
                return None
            whole.update(hashlib.sha256(path.read_bytes()).digest())
        return whole.hexdigest()

    def run(self, source):
        """What clang-tidy has to say; empty for a clean source, None for one that still is."""
        stamp = self.stamps / str(source.relative_to(self.root)).replace("/", "_")
        digest = self.digest(source)
        if digest and stamp.exists() and stamp.read_text() == digest:
            return None
        done = subprocess.run(["clang-tidy", "-p", str(self.stamps), "--quiet", self.filter,
                               str(source)], capture_output=True, text=True, check=False)
        if done.returncode != 0:
            stamp.unlink(missing_ok=True)
            return done.stdout + done.stderr
        if digest:
            stamp.write_text(digest)
        return ""


def main():
    root, build = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    tidy = Tidy(root, build)
    chosen = [Path(name).resolve() for name in sys.argv[3:]] or sorted(tidy.commands)
    with ThreadPoolExecutor(AT_ONCE) as pool:
        reports = []
        for report in pool.map(tidy.run, chosen):
            reports.append(report)
            if report:
                print(report, flush=True)
    faults = sum(1 for report in reports if report)
    unchanged = sum(1 for report in reports if report is None)
    print(f"{len(reports)} sources, {unchanged} of them unchanged, {faults} with faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
