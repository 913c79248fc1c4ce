#!/usr/bin/env python3
"""Writes what calls read and change of contents, member functions of their classes.

    effects.py OUTPUT TABLE...
"""

import re
import sys
from pathlib import Path

from table import load

# The places of a row's effects: an operation of CEffects, and what it takes, parameters or constants.
# Those of PART go into a struct, as far as the row has them.
PLACES = {
    "surface": ("Surface", ["surface"]),
    "aged": ("AgedSurface", ["surface", "attribute"]),
    "drawn": ("Drawn", []),
    "cleared": ("Cleared", ["mask"]),
    "attachments": ("Attachments", ["target", "attachments"]),
    "blitted": ("Blitted", ["mask"]),
    "pixels": ("Pixels", []),
    "packed": ("Packed", []),
    "sampled": ("Sampled", []),
    "vertices": ("Vertices", []),
    "elements": ("Buffer", ["GL_ELEMENT_ARRAY_BUFFER"]),
    "texture": ("Texture", []),
    "mipmaps": ("Mipmaps", ["target"]),
    "foreign": ("Foreign", []),
    "renderbuffer": ("Renderbuffer", []),
    "buffer": ("Buffer", ["target"]),
    "textures": ("Named", ["EContent::kTexture", "textures"]),
    "buffers": ("Named", ["EContent::kBuffer", "buffers"]),
    "renderbuffers": ("Named", ["EContent::kRenderbuffer", "renderbuffers"]),
}
PART = {"Texture": ["target", "level", "xoffset", "yoffset", "zoffset", "width", "height", "depth"],
        "Pixels": ["x", "y", "width", "height"]}
# What these do to contents is their whole point.
CHANGES = re.compile(
    r"gl(Multi)?Draw(?!Buffers)|glClear(Buffer\w+)?$|glCopy|glBlit|glReadPixels|glGenerateMipmap|"
    r"gl(Compressed)?Tex(Sub)?Image|glTexStorage|glBuffer(Sub)?Data|glUnmap|glFlushMapped|"
    r"glRenderbufferStorage|glInvalidateFramebuffer|glDiscard|glEGLImage|"
    r"glDelete(Textures|Buffers|Renderbuffers)|egl(SwapBuffers|CopyBuffers|BindTexImage)")


def operation(row, verb, word):
    place, _, parameter = word.partition(":")
    name, taken = PLACES[place]
    visible = [p.name for p in row.parameters]
    if name == "Cleared" and "mask" not in visible:
        taken = ["buffer", "drawbuffer"]
    if name == "Blitted":
        side = "src" if verb == "reads" else "dst"
        taken = taken + [f"{side}{end}" for end in ("X0", "Y0", "X1", "Y1")]
    values = [parameter or p for p in taken]
    arrays = {p.name for p in row.parameters if p.cls.startswith("SArrayPtr")}
    values = [f"{v}.GetValue()" if v in visible and v not in arrays else v for v in values]
    part = [f".{p} = {p}.GetValue()" for p in PART.get(name, []) if p in visible]
    if name in PART:
        values.append(f"{{{', '.join(part)}}}")
    return f"effects.{name}({', '.join(['EAccess::k' + verb[:-1].capitalize()] + values)});"


def main():
    rows = [row for table in sys.argv[2:] for row in load(table)]
    out = ["// Made from the tables of calls."]
    out += [f'#include "generated/calls/{family}_calls.h"'
            for family in dict.fromkeys(row.family for row in rows)]
    out += ['#include "state/effects.h"', "", "namespace kestrail {", ""]
    for row in rows:
        if CHANGES.match(row.entry) and not row.effects:
            raise SystemExit(f"{row.class_name}: changes contents, and no word says which")
        if row.effects:
            out.append(f"void {row.class_name}::ListEffects(CEffects& effects) const {{")
            out += [f"    {operation(row, verb, place)}" for verb, place in row.effects]
            out += ["}", ""]
    Path(sys.argv[1]).write_text("\n".join(out + ["}  // namespace kestrail", ""]))


main()
