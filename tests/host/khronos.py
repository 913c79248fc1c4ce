"""Reads entry points and enumerants out of the published Khronos headers."""

import pathlib
import re

_PROTOTYPE = re.compile(
    r"^(?:EGLAPI|GL_API|GL_APICALL)\s+(?P<result>.+?)\s*(?:EGLAPIENTRY|GL_APIENTRY)\s+"
    r"(?P<name>\w+)\s*\((?P<params>[^)]*)\)\s*;",
    re.MULTILINE,
)
_ENUMERANT = re.compile(r"^#define\s+((?:E?GL)_\w+)\s+(0x[0-9A-Fa-f]+|\d+)\s*$", re.MULTILINE)


class Param:
    def __init__(self, text):
        match = re.match(r"(?P<type>.*?[\s*])(?P<name>\w+)$", text.strip())
        self.type = re.sub(r"\s+", " ", match["type"]).strip()
        self.name = match["name"]
        self.pointer = "*" in self.type
        self.output = self.pointer and not self.type.startswith("const")


class Entry:
    def __init__(self, result, name, params):
        self.result = re.sub(r"\s+", " ", result).strip()
        self.name = name
        self.params = params

    def value(self, *names):
        """The first of these that is the name of a parameter, and no pointer."""
        values = [p.name for p in self.params if not p.pointer]
        return next((name for name in names if name in values), None)


def entries(folder, header):
    """All entry points of a header by name, in its own order."""
    found = {}
    for match in _PROTOTYPE.finditer(pathlib.Path(folder, header).read_text()):
        params = match["params"].strip()
        listed = [] if params in ("", "void") else [Param(p) for p in params.split(",")]
        found[match["name"]] = Entry(match["result"], match["name"], listed)
    return found


def enumerants(folder, headers):
    values = {}
    for header in headers:
        for name, value in _ENUMERANT.findall(pathlib.Path(folder, header).read_text()):
            values.setdefault(name, int(value, 0))
    return values
