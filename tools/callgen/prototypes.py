"""Reads entry points out of the published headers of EGL and OpenGL ES."""

import re
from dataclasses import dataclass
from pathlib import Path

HEADERS = ("EGL/egl.h", "EGL/eglext.h", "GLES/gl.h", "GLES3/gl32.h", "GLES2/gl2ext.h",
           "GLES/glext.h")
PROTOTYPE = re.compile(r"^(?:EGLAPI|GL_API|GL_APICALL)\s+(.+?)\s*(?:EGLAPIENTRY|GL_APIENTRY)\s+"
                       r"(\w+)\s*\(([^)]*)\)\s*;", re.MULTILINE)
SECTION = re.compile(r"^#ifndef (E?GL_[A-Z0-9]+_\w+)\n#define \1 1\n(.*?)^#endif /\* \1 \*/",
                       re.MULTILINE | re.DOTALL)
PARAMETER = re.compile(r"(.*?[\s*])(\w+)$")


@dataclass
class Prototype:
    name: str
    result: str  # "void" without one
    parameters: list  # pairs of a type and a name


def sections(folder):
    """The versions and extensions of the headers in `folder` with their texts. A header leaves out what
    one before it has."""
    found = {}
    for header in HEADERS:
        for name, text in SECTION.findall(Path(folder, header).read_text()):
            kept = found.setdefault(name, text)
            lost = set(PROTOTYPE.findall(text)) - set(PROTOTYPE.findall(kept))
            assert not lost, f"{header}: {name} stands in a header before it without {lost}"
    return found


def read(folder):
    """All entry points of the headers in `folder`, by name."""
    found = {}
    for text in sections(folder).values():
        for result, name, listed in PROTOTYPE.findall(text):
            parts = [] if listed.strip() in ("", "void") else listed.split(",")
            pairs = [PARAMETER.match(" ".join(part.split())).groups() for part in parts]
            found.setdefault(name, Prototype(name, " ".join(result.split()),
                                             [(kind.strip(), word) for kind, word in pairs]))
    return found


def extensions(folder):
    """The extensions of the headers in `folder` with the names of their entry points."""
    return {name: {entry for _, entry, _ in PROTOTYPE.findall(text)}
            for name, text in sections(folder).items()}
