#!/usr/bin/env python3
"""Writes the host libraries' tables of entry points.

    host_tables.py CALLS OUTPUT

CALLS is the folder of the tables of calls; OUTPUT gets <table>_entries.h for egl, es1, es2 and es3.
Entry points stand in the order of their identifiers, typed by the published headers.
"""

import sys
from pathlib import Path

from table import load

# For each table: the published header, and its families. The host's library must have whatever their
# executors play; calls of extensions none does.
TABLES = {
    "egl": ("EGL/egl.h", ["egl"]),
    "es1": ("GLES/gl.h", ["es1"]),
    "es2": ("GLES2/gl2.h", ["es2"]),
    "es3": ("GLES3/gl3.h", ["es2", "es3"]),
}


def entry_points(calls, families):
    """The entry points, one for each identifier that the families' executors play."""
    rows = [row for family in families for row in load(str(calls / family / f"{family}.calls"))]
    return list({row.id: row.entry for row in rows if row.play != "none"}.values())


def header(name, include, families, entries):
    struct = f"S{name.capitalize()}Entries"
    sources = " and ".join(f"calls/{family}/{family}.calls" for family in families)
    lines = [f"// Made by tools/callgen/host_tables.py from {sources}.", "#pragma once", "",
             f"#include <{include}>", "", "#include <cstddef>", "",
             '#include "host/entry_table.h"', "", "namespace kestrail {", "", f"struct {struct} {{"]
    lines += [f"    decltype(&::{entry}) {entry};" for entry in entries]
    lines += ["};", "", f"inline constexpr SEntryPlace k{name.capitalize()}Entries[] = {{"]
    lines += [f'    {{"{entry}", offsetof({struct}, {entry})}},' for entry in entries]
    lines += ["};", "", "}  // namespace kestrail", ""]
    return "\n".join(lines)


def main():
    if len(sys.argv) != 3:
        raise SystemExit(__doc__)
    calls, output = Path(sys.argv[1]), Path(sys.argv[2])
    for name, (include, families) in TABLES.items():
        text = header(name, include, families, entry_points(calls, families))
        (output / f"{name}_entries.h").write_text(text, encoding="ascii")


main()
