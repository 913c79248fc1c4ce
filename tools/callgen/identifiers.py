#!/usr/bin/env python3
"""Writes the names of the calls' identifiers, and whose they are.

    identifiers.py OUTPUT TABLE...
"""

import sys
from pathlib import Path

from table import load


def names(family, ids):
    return [f"namespace {family}_id {{", ""] + [
        f"inline constexpr std::uint16_t {entry} = {id};" for id, entry in ids.items()] + [
        "", f"}}  // namespace {family}_id", ""]


def family_of(name, note, ranges):
    return [note, f"constexpr EFamily {name}(std::uint16_t id) {{"] + [
        f"    if (id >= {first} && id <= {last}) return EFamily::k{family.capitalize()};"
        for family, first, last in ranges] + ["    return EFamily::kNone;", "}", ""]


def main():
    out = ["// Made by tools/callgen/identifiers.py from the tables of calls.", "#pragma once", "",
           "#include <cstdint>", "", "namespace kestrail {", ""]
    known, played = [], []
    for path in sys.argv[2:]:
        rows = load(path)
        family = rows[0].family
        out += names(family, {row.id: row.entry for row in rows})
        known.append((family, rows[0].id, rows[-1].id))
        played.append((family, rows[0].id, max(row.id for row in rows if row.play != "none")))
    families = ", ".join(f"k{family.capitalize()}" for family, _, _ in known)
    out += [f"enum class EFamily : std::uint8_t {{ kNone, {families} }};", ""]
    out += family_of("FamilyOf", "/// kNone for what no table reaches to.", known)
    out += family_of("PlayedFamilyOf", "/// kNone behind the last call that the family's executor has.",
                     played)
    out += ["}  // namespace kestrail", ""]
    Path(sys.argv[1]).write_text("\n".join(out), encoding="ascii")


main()
