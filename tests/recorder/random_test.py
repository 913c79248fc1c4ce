#!/usr/bin/env python3
"""All entries that are made from the tables of calls, called with random values on the stand-in hosts: what
is recorded has to be what was called, and the errors that the program sees those that the host had.

    random_test.py COMMAND HOST HEADERS LIBRARY    LIBRARY is the folder of the recording library's sources
    random_test.py program HEADERS VERSION PLAN    the recorded program
"""

import ctypes
import json
import random
import re
import sys
import tempfile
from pathlib import Path

import calls
import generate
from rules_test import behind_start, run_recorded, same

ROUNDS = 6
ERROR = 0x502
# It ends the context, or has arrays read that aren't there.
UNSAFE = re.compile("eglReleaseThread|glPixelStorei|gl(En|Dis)able.*(Array|State)")
COUNTS = {"n", "count", "size", "imageSize", "length", "numAttachments", "primcount", "uniformCount",
          "maxCount", "bufSize", "bufsize", "maxLength", "config_size"}
PARTS = {"GL_RGBA": 4, "GL_RGB": 3, "GL_LUMINANCE": 1, "GL_LUMINANCE_ALPHA": 2}
BYTES = {"GL_UNSIGNED_BYTE": 1, "GL_SHORT": 2, "GL_FLOAT": 4}
PNAMES = {"GL_TEXTURE_MIN_FILTER": 1, "GL_AMBIENT": 4, "GL_SPOT_DIRECTION": 3}
CHOICES = {"width": [1, 2, 3], "height": [1, 2], "depth": [1, 2], "format": PARTS, "type": BYTES,
           "pname": PNAMES, "buffer": ["GL_COLOR", "GL_DEPTH"]}
OUT_ITEMS = 128


class RandomCall:
    """Values for a call, where pointers reach as far as its prototype tells. `holds` is what the record has to
    hold of each: itself, or where it isn't told how much, what begins with it. One that fails may have been
    given null."""

    def __init__(self, host, name, dice, fails):
        self.host, self.entry, self.dice = host, host.published.entries[name], dice
        self.words = {key: dice.choice(list(words)) for key, words in CHOICES.items()}
        if re.match(r"glGet\w*(Buffer|buffer|Query|Shader|Program|VertexAttrib|Sampler)", name):
            self.words["pname"] = "GL_TEXTURE_MIN_FILTER"
        self.image = all(map(self.entry.value, ("format", "type", "width")))
        self.scalars = {p.name: self.scalar(p) for p in self.entry.params if not p.pointer}
        null = fails and dice.random() < 0.5 and not name.startswith(("glGen", "glDelete"))
        self.arguments = [self.scalars[p.name] if not p.pointer else None if null else self.pointed(p)
                          for p in self.entry.params]

    def scalar(self, param):
        chosen = {"pname"} | (set(CHOICES) if self.image else set())
        if param.name in chosen or "ClearBuffer" in self.entry.name and param.name == "buffer":
            word = self.words[param.name]
            return self.host.published.number(word) if isinstance(word, str) else word
        kind = calls.c_type(param.type)
        if param.name in COUNTS:
            return self.dice.randrange(6)
        if kind is ctypes.c_float:
            return self.dice.randrange(-1000, 1000) / 8
        return kind(self.dice.randrange(1, 1 << 31)).value

    def reach(self, param):
        """How many items, or bytes, stand behind a pointer; None where the prototype doesn't tell."""
        name, words = self.entry.name, self.words
        # Theirs follows from more than their names.
        if re.match("glGet(Sync|Internalformat|ActiveUniform)", name) and param.output:
            return None
        if "ClearBuffer" in name:
            return 4 if words["buffer"] == "GL_COLOR" else 1
        if "void *" in param.type and self.image:
            row = words["width"] * PARTS[words["format"]] * BYTES[words["type"]]
            rows = words["height"] * (words["depth"] if "depth" in self.scalars else 1)
            return (row + 3) // 4 * 4 * (rows - 1) + row
        told = (generate.data_size if "void" in param.type else generate.count_of)(self.entry, param)
        return told and eval(told.replace("LL", ""),  # pylint: disable=eval-used
                             {"ParameterCount": lambda _: PNAMES[words["pname"]]}, self.scalars)

    def text(self):
        return "".join(self.dice.choice("ab_[0].") for _ in range(self.dice.randrange(5)))

    def pointed(self, param):
        kind = param.type
        if "char *const" in kind:
            return [self.text() for _ in range(self.reach(param))]
        if "char *" in kind:
            return self.text().ljust(OUT_ITEMS, "\0").encode() if param.output else self.text()
        if kind == "const EGLint *":
            return [self.dice.randrange(1, 99) for _ in range(4)] + [0x3038]
        reach = OUT_ITEMS if param.output else self.reach(param)
        if kind in ("const void *", "void *"):
            return self.dice.randrange(1, 1 << 31) if reach is None else self.dice.randbytes(reach * 4)[:reach]
        item = calls.c_type(kind.replace("*", "", 1))
        return [item(self.dice.randrange(6 if param.name == "length" else 256)).value for _ in range(reach)]

    def make(self):
        at = [self.host.argument(p.type, v) for p, v in zip(self.entry.params, self.arguments)]
        result = self.host.entry(self.entry.name)(*at)
        return result, [self.holds(*each) for each in zip(self.entry.params, self.arguments, at)]

    def holds(self, param, value, at):
        if not param.pointer or value is None or isinstance(value, int):
            return ["is", value]
        if self.image and not param.output:
            return ["is", value.hex() + "00" * (-len(value) % 4)]
        if not param.output:
            return ["is", value.hex() if isinstance(value, bytes) else value]
        if "char *" in param.type:
            return ["begins", ctypes.string_at(at).decode()]
        if isinstance(value, bytes):
            return ["begins", ctypes.string_at(at, len(value)).hex()]
        items = list((calls.c_type(param.type.replace("*", "", 1)) * len(value)).from_address(at))
        reach = self.reach(param)
        return ["begins", items] if reach is None else ["is", items[:reach]]


def be_program(headers, version, path):
    """Writes what was called in the place of the plan."""
    host = calls.Host(calls.Published(headers), int(version))
    plan = json.loads(Path(path).read_text())
    for name, _ in plan:
        host.entry(name)
    dice = random.Random(version)
    host.make_context(int(version))
    done = []
    for name, error in plan:
        done.append((name, error, *RandomCall(host, name, dice, bool(error)).make()))
        if error:
            assert host.call("glGetError", []) == ERROR, name
            done.append(("glGetError", 0, ERROR, []))
    Path(path).write_text(json.dumps(done))


def fits(held, value):
    """Whether a record's value is what was called."""
    how, wanted = held
    if isinstance(value, bytes):
        value = value.hex()
    if wanted in ([], "") or how == "begins" and not isinstance(value, (str, list)):
        return not value or isinstance(value, int)
    if not isinstance(wanted, (list, str)):
        return same(wanted, value)
    if not isinstance(value, type(wanted)):
        return False
    if how == "begins":
        wanted = wanted[:len(value)]
    return len(wanted) == len(value) and all(map(same, wanted, value))


def check(published, family, done, record):
    name, error, result, held = done
    found_name, found_error, found_family, found_result, values = record
    if (name, error, family) != (found_name, found_error, found_family):
        return False
    if isinstance(found_result, int) and not same(result or 0, found_result):
        return False
    params = published.entries[name].params
    return all(fits(each, value) for param, each, value in zip(params, held, values)
               if not (error and param.pointer))


def main(command, host, headers, library):
    published = calls.Published(headers)
    sources = "".join(path.read_text() for path in Path(library).iterdir())
    by_hand = set(re.findall(r"\b(?:Call|Record)_(\w+)\(", sources))
    asked = set(re.findall(r"(?:HOST|EGL)\((?:thread, )?(\w+)\)", sources)) | set(re.findall(r"kEntry_(\w+)", sources))
    problems = []
    made = 0
    for version, families in ((1, (1, 3, 4)), (2, (1, 2, 4)), (3, (1, 2, 5, 4))):
        ext = {"ext": "ext1" if version == 1 else "ext2"}
        family_of = {name: ext.get(calls.FAMILIES[number // 1000], calls.FAMILIES[number // 1000])
                     for number, (name, *_) in published.layouts.items() if number // 1000 in families}
        names = [name for name in family_of
                 if name in published.hosted and name not in by_hand and not UNSAFE.match(name)]
        dice = random.Random(version)
        plan = []
        for turn in range(ROUNDS):
            dice.shuffle(names)
            plan += [(name, ERROR if turn % 3 == 1 and name[:2] == "gl" and name not in asked else 0)
                     for name in names]
        script = "".join(f"{name} {sum(other == name for other, _ in plan[:at + 1])} error {error}\n"
                         for at, (name, error) in enumerate(plan) if error)
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "plan")
            path.write_text(json.dumps(plan))
            out, *_ = run_recorded(__file__, command, host, Path(folder), script, headers, version, path)
            done = json.loads(path.read_text())
            found = behind_start(out, published)
        made += len(done)
        problems += [f"es{version}: {len(found)} records"] * (len(found) != len(done))
        problems += [f"es{version}: called {call}\n  recorded {record}"
                     for call, record in zip(done, found) if not check(published, family_of[call[0]], call, record)]
    print(f"{made} calls", *problems[:20], sep="\n")
    assert not problems


if __name__ == "__main__":
    if sys.argv[1] == "program":
        be_program(*sys.argv[2:])
    else:
        main(*sys.argv[1:])
