#!/usr/bin/env python3
"""Plants small faults in a copy of the product and prints which layer of tests sees which.

    mutants.py ROOT WORK [N] [--seed=S] [--all-tests]

The copy is made in the folder WORK, with all faults in one build, each behind a switch that is set
when the tests run. A layer is a label of ctest. Of each layer, a mutant is shown to those tests
only that reach its place, up to the first that fails. Slow tests, and all that draw, are shown only
what no fast test of any layer sees: "any" is exact, and so is what those tests see alone.
--all-tests shows every mutant to every test, and prints at the end which tests see one that no
other test sees.
"""

import argparse
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from collections import defaultdict
from dataclasses import dataclass, field
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lint"))
import candidates  # noqa: E402
from includes import room_of  # noqa: E402

WORKERS = 2
PRODUCT = ["base", "tracefile/bytes", "tracefile/document", "calls", "state", "transitions", "exec",
           "host", "playback", "generated"]
# The generated code is half of all, and much alike.
SHARE_OF_GENERATED = 0.2
LEAST_A_ROOM = 8
# More than are wanted are planted at once, as some of them won't compile.
SPARE = 1.5
MEMORY_LIMIT = 8 << 30
# In seconds: tests that take longer come last, and what a run may take beyond thrice its time.
SLOW = 1
PATIENCE = 20


def log(text):
    print(text, file=sys.stderr, flush=True)


def run(command, folder, **options):
    return subprocess.run([str(word) for word in command], cwd=folder, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)


def checked(command, folder):
    done = run(command, folder)
    if done.returncode != 0:
        sys.exit(f"{done.stdout}\n{' '.join(map(str, command))} failed")
    return done.stdout


def mutant_room(name):
    if name.startswith("generated/"):
        return "generated"
    room = room_of(name)
    return room if room in PRODUCT else None


# The copy and its build.


class Tree:
    """The copy of the sources, and what its product's files were before anything was planted."""

    def __init__(self, root, work):
        self.sources, self.build = work / "src", work / "build"
        shutil.rmtree(work, ignore_errors=True)
        for name in checked(["git", "ls-files", "-co", "--exclude-standard"], root).splitlines():
            if (root / name).is_file():
                (self.sources / name).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(root / name, self.sources / name)
        # Recordings that stand beside the repository stand beside the copy as well.
        if (root.parent / "shared").is_dir():
            (work / "shared").symlink_to(root.parent / "shared")
        switch = Path(__file__).resolve().parent / "switch.h"
        checked(["cmake", "-S", self.sources, "-B", self.build, "-G", "Ninja",
                 "-DCMAKE_BUILD_TYPE=Debug", f"-DCMAKE_CXX_FLAGS_DEBUG=-O1 -w -include {switch}",
                 "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON"],
                root)
        targets = checked(["ninja", "-t", "targets", "rule", "CUSTOM_COMMAND"], self.build)
        # The commands alone: what else the files wait for in a build is of no use before it.
        generated = re.findall(r"^generated/[^\s:]+", targets, re.MULTILINE)
        generators = set()
        for command in checked(["ninja", "-t", "commands", *generated], self.build).splitlines():
            script = re.search(r"python[^ ]* -B (\S+)", command)
            if script:
                checked(["sh", "-c", command], self.build)
                generators.add(script.group(1))
        # Nor may the build write them again, over what is planted in them.
        for script in generators:
            Path(script).write_text("")
        self.texts = {}
        for folder in (self.sources, self.build):
            for path in sorted(folder.rglob("*")):
                name = str(path.relative_to(folder))
                if path.suffix in (".h", ".cpp") and mutant_room(name) and (
                        folder == self.sources or name.startswith("generated/")):
                    self.texts[name] = path.read_text()
        self.planted = dict(self.texts)

    def path(self, name):
        return (self.build if name.startswith("generated/") else self.sources) / name

    def name(self, path):
        """What the path of a compiler's message is called here; None if it is none of ours."""
        path = Path(os.path.normpath(self.build / path))
        for folder in (self.build, self.sources):
            if path.is_relative_to(folder) and str(path.relative_to(folder)) in self.texts:
                return str(path.relative_to(folder))
        return None

    def write(self, name, text):
        if self.planted[name] != text:
            self.path(name).write_text(text)
            self.planted[name] = text


def quotas(texts, number):
    lines = defaultdict(int)
    for name, text in texts.items():
        lines[mutant_room(name)] += sum(1 for line in text.splitlines()
                                        if line.strip() and not line.strip().startswith("//"))
    generated = round(number * SHARE_OF_GENERATED)
    by_hand = sum(count for room, count in lines.items() if room != "generated")
    return {room: generated if room == "generated" else
            max(min(LEAST_A_ROOM, number // 10), round((number - generated) * count / by_hand))
            for room, count in lines.items()}


def overlap(one, two):
    return one.start == two.start or (one.start < two.end and two.start < one.end)


def take(ordered, wanted, taken, dropped):
    """Adds the next candidates that neither overlap nor are known not to compile to those taken."""
    by_file = defaultdict(list)
    for candidate in taken:
        by_file[candidate.file].append(candidate)
    for candidate in ordered:
        if len(taken) >= wanted:
            break
        others = by_file[candidate.file]
        if candidate.key not in dropped and not any(overlap(candidate, o) for o in others):
            taken.append(candidate)
            others.append(candidate)


def culprits(tree, output, planted):
    """The keys of the mutants that the compiler's complaints point at."""
    guilty = set()
    for block in re.split(r"^FAILED: ", output, flags=re.MULTILINE)[1:]:
        block = re.split(r"^\[\d+/\d+\]", block, flags=re.MULTILINE)[0]
        places = {True: set(), False: set()}
        for match in re.finditer(r"^(?:In file included from |\s+from )?([^\s:]+):(\d+)(:.*)?$",
                                 block, re.MULTILINE):
            error = "error:" in (match.group(3) or "")
            places[error].add((tree.name(match.group(1)), int(match.group(2))))
        hits = set()
        for error in (True, False):
            for c in planted:
                last = c.line + c.planted.count("\n")
                if any(name == c.file and c.line <= line <= last for name, line in places[error]):
                    hits.add(c.key)
            if hits:
                break
        if not hits:
            sys.exit(f"No mutant explains why this doesn't compile:\n{block}")
        guilty |= hits
    return guilty


def build(tree, ordered, quota):
    """Builds the tree with mutants in it; gives back those that count, and how many there are."""
    numbers, dropped = {}, set()
    planted = {room: [] for room in ordered}
    # The player first: what doesn't compile there isn't compiled for the tests as well.
    targets = [["kestrail-playback_g"], []]
    while True:
        for room, found in ordered.items():
            if len(planted[room]) < quota[room]:
                take(found, round(quota[room] * SPARE), planted[room], dropped)
        flat = [c for found in planted.values() for c in found]
        # Who stays keeps its number, so that as little as possible is compiled again.
        for c in flat:
            c.number = numbers.setdefault(c.key, len(numbers) + 1)
        for name, text in tree.texts.items():
            tree.write(name, candidates.plant(text, [c for c in flat if c.file == name]))
        start = time.monotonic()
        done = run(["ninja", "-j", WORKERS, "-k", "0", *targets[0]], tree.build)
        log(f"mutants: built with {len(flat)} in {time.monotonic() - start:.0f} s")
        if done.returncode == 0 and targets.pop(0):
            continue
        if done.returncode == 0:
            counted = [c for room, found in planted.items() for c in found[:quota[room]]]
            return sorted(counted, key=lambda c: (c.file, c.start)), len(numbers)
        guilty = culprits(tree, done.stdout, flat)
        for c in flat:
            if c.key in guilty:
                log(f"mutants: doesn't compile: {c.file}:{c.line} {c.before} -> {c.after}")
        log(f"mutants: {len(guilty)} of them don't compile")
        dropped |= guilty
        for found in planted.values():
            found[:] = [c for c in found if c.key not in guilty]


# The tests.


@dataclass
class Test:
    layer: str
    name: str
    command: list
    filter: str  # of a GoogleTest program; empty for any other
    environment: dict
    folder: str
    seconds: float = 200  # until it is known
    reached: bytes = b""

    @property
    def slow(self):
        return self.seconds > SLOW or self.layer == "render"


@dataclass
class Result:
    reached: int = 0
    failed: list = field(default_factory=list)


def discover(build):
    tests = []
    for entry in json.loads(checked(["ctest", "--show-only=json-v1"], build))["tests"]:
        if "command" not in entry:  # not built
            continue
        properties = {p["name"]: p["value"] for p in entry.get("properties", [])}
        command = entry["command"]
        chosen = [word for word in command if word.startswith("--gtest_filter=")]
        layer = (properties.get("LABELS") or ["none"])[0]
        tests.append(Test(
            layer=layer,
            # The name in ctest may tell an address, as a parameter's text.
            name=f"{layer}.{chosen[0].split('=', 1)[1]}" if chosen else entry["name"],
            command=[word for word in command if not word.startswith("--gtest_filter=")],
            filter=chosen[0].split("=", 1)[1] if chosen else "",
            environment=dict(v.split("=", 1) for v in properties.get("ENVIRONMENT", [])),
            folder=properties.get("WORKING_DIRECTORY", str(build))))
    return tests


def limit():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    # A shell's background job ignores it, which tests of ours would inherit.
    signal.signal(signal.SIGINT, signal.SIG_DFL)


def run_tests(tests, number=0, options=(), variables=None):
    """Runs tests of one program with a mutant; gives back whether one fails, and what is said."""
    first = tests[0]
    command = first.command + list(options)
    if first.filter:
        command.append("--gtest_filter=" + ":".join(test.filter for test in tests))
    with tempfile.TemporaryDirectory(prefix="mutants-") as scratch, \
            tempfile.TemporaryFile(mode="w+", errors="replace") as output:
        environment = {**os.environ, **first.environment, **(variables or {}), "TMPDIR": scratch,
                       "KESTRAIL_MUTANT": str(number)}
        seconds = 3 * sum(test.seconds for test in tests) + PATIENCE
        process = subprocess.Popen(command, cwd=first.folder, env=environment, stdout=output,
                                   stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                   start_new_session=True, preexec_fn=limit)
        try:
            status = process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            status = None
        try:  # whatever it started
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
        output.seek(0)
        return status != 0, output.read()


def show(tests, number, all_tests):
    """The names of the tests that fail with the mutant: of the first, or of all."""
    programs, failed = defaultdict(list), []
    for test in tests:
        programs[tuple(test.command), not test.filter and test.name].append(test)
    for group in programs.values():
        options = [] if all_tests or not group[0].filter else ["--gtest_fail_fast"]
        while group and (all_tests or not failed):
            seen, words = run_tests(group, number, options)
            if not seen:
                break
            skipped = re.findall(r"^\[  SKIPPED \] (\S+)", words, re.MULTILINE)
            started = [name for name in re.findall(r"^\[ RUN      \] (\S+)", words, re.MULTILINE)
                       if name not in skipped]
            names = re.findall(r"^\[  FAILED  \] ([^\s,]+)", words, re.MULTILINE) + started[-1:]
            suspects = [test for test in group if test.filter in names] or group[:1]
            # Once more alone: what fails for want of time alone doesn't see the mutant.
            failed += [test.name for test in suspects if run_tests([test], number)[0]]
            group = [test for test in group if test.filter not in started and test not in suspects]
    return failed


def in_parallel(jobs, action):
    """Does all jobs. Those of tests that need the display, which write their pictures to one place,
    are done by the first worker alone."""
    queues = [[job for job in jobs if job[0] == "render"],
              [job for job in jobs if job[0] != "render"]]
    lock = threading.Lock()

    def next_job(worker):
        with lock:
            for queue in queues if worker == 0 else queues[1:]:
                if queue:
                    return queue.pop(0)
        return None

    def work(worker):
        while job := next_job(worker):
            action(*job)

    threads = [threading.Thread(target=work, args=(worker,)) for worker in range(WORKERS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def profile(tests, count):
    """Runs every test by itself without a mutant: how long it takes, which places it reaches."""
    broken = []

    def one(_, test):
        with tempfile.NamedTemporaryFile() as file:
            file.write(bytes(count + 1))
            file.flush()
            start = time.monotonic()
            failed, _ = run_tests([test], variables={"KESTRAIL_MUTANTS_REACHED": file.name})
            test.seconds = time.monotonic() - start
            test.reached = Path(file.name).read_bytes()
            if failed:
                broken.append(test)

    in_parallel([(test.layer, test) for test in tests], one)
    for test in sorted(broken, key=lambda test: test.name):
        log(f"mutants: {test.name} fails without a mutant; left out")
        tests.remove(test)


# What is printed.


def report(mutants, layers, results):
    seen_by = {c.number: [layer for layer in layers if results[c.number, layer].failed]
               for c in mutants}
    for c in mutants:
        number = c.number
        reached = any(results[number, layer].reached for layer in layers)
        verdict = ", ".join(f"{layer} ({results[number, layer].failed[0]})"
                            for layer in seen_by[number])
        print(f"{c.key} {c.file}:{c.line} {c.kind}: {c.before} -> {c.after or 'nothing'}\n"
              f"    {verdict or ('nobody' if reached else 'not reached')}")
    print()
    columns = [*layers, "any", "nobody", "not reached"]
    print(f"{'seen by':20}{'mutants':>9}" + "".join(f"{column:>13}" for column in columns))
    rooms = [room for room in PRODUCT if any(mutant_room(c.file) == room for c in mutants)]
    kinds = sorted({c.kind for c in mutants})
    rows = [(room, [c.number for c in mutants if mutant_room(c.file) == room]) for room in rooms]
    rows += [(kind, [c.number for c in mutants if c.kind == kind]) for kind in kinds]
    rows.append(("all", [c.number for c in mutants]))
    for name, numbers in rows:
        if name in (kinds[0], "all"):
            print()
        counts = [sum(layer in seen_by[n] for n in numbers) for layer in layers]
        unreached = sum(not any(results[n, layer].reached for layer in layers) for n in numbers)
        seen = sum(bool(seen_by[n]) for n in numbers)
        counts += [seen, len(numbers) - seen - unreached, unreached]
        print(f"{name:20}{len(numbers):9}" + "".join(f"{count:13}" for count in counts))
    alone = [sum(seen_by[c.number] == [layer] for c in mutants) for layer in layers]
    print(f"{'by this layer alone':29}" + "".join(f"{count:13}" for count in alone))


def report_tests(mutants, tests, results):
    alone = defaultdict(list)
    for c in mutants:
        failed = [name for layer in {t.layer for t in tests}
                  for name in results[c.number, layer].failed]
        if len(failed) == 1:
            alone[failed[0]].append(c.key)
    print("\nTests that are the only ones to see a mutant:")
    for test in tests:
        if test.name in alone:
            print(f"{test.name}: {' '.join(alone[test.name])}")
    print("\nTests that see no mutant that no other test sees:")
    for test in tests:
        if test.name not in alone:
            print(test.name)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=Path)
    parser.add_argument("work", type=Path)
    parser.add_argument("number", type=int, nargs="?", default=200)
    parser.add_argument("--seed", default="1")
    parser.add_argument("--all-tests", action="store_true")
    options = parser.parse_args()

    tree = Tree(options.root.resolve(), options.work.resolve())
    ordered = candidates.find(tree.texts, mutant_room, options.seed)
    mutants, count = build(tree, ordered, quotas(tree.texts, options.number))
    tests = discover(tree.build)
    layers = list(dict.fromkeys(test.layer for test in tests))
    log(f"mutants: {len(mutants)} of them count; {len(tests)} tests in {', '.join(layers)}")
    start = time.monotonic()
    profile(tests, count)
    log(f"mutants: looked which test reaches which, in {time.monotonic() - start:.0f} s")

    results, journal = {}, (options.work / "journal").open("w")

    def one(layer, mutant, slow):
        reaching = [test for test in tests if test.layer == layer and test.reached[mutant.number]]
        result = results.setdefault((mutant.number, layer), Result(len(reaching)))
        chosen = [test for test in reaching if options.all_tests or test.slow == slow]
        if chosen:
            result.failed += show(chosen, mutant.number, options.all_tests)
        print(mutant.key, layer, "slow" if slow else "fast", *result.failed, file=journal,
              flush=True)

    start = time.monotonic()
    jobs = [(layer, mutant) for layer in layers for mutant in mutants]
    in_parallel([(*job, False) for job in jobs], one)
    log(f"mutants: shown to fast tests in {time.monotonic() - start:.0f} s")
    if not options.all_tests:
        seen = {number for (number, _), result in results.items() if result.failed}
        in_parallel([(*job, True) for job in jobs if job[1].number not in seen], one)
        log(f"mutants: shown to all in {time.monotonic() - start:.0f} s")
    report(mutants, layers, results)
    if options.all_tests:
        report_tests(mutants, tests, results)


if __name__ == "__main__":
    main()
