#!/usr/bin/env python3
"""Writes what calls read and change of what a driver holds, member functions of their classes.

    effects.py OUTPUT RULES TABLE...
"""

import re
import sys
from pathlib import Path

from table import load

WORD = re.compile(r"[A-Za-z_][\w.|]*(?:::\w+)*|\"[^\"]*\"|'[^']*'")


def rules(path):
    """Pattern and operations of each line."""
    for line in Path(path).read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            pattern, operations = re.match(r"(\S+)\s+(.*)", line).groups()
            yield re.compile(pattern), operations


def value(word, row):
    """A word of a rule as C++: a parameter's value, or what it is by itself."""
    known = {p.name: p for p in row.parameters}
    choices = word.split("|")
    name = next((c for c in choices if c.split(".")[0] in known or c == "result"), choices[-1])
    if name == "result":
        return "result.GetValue()"
    if "." in name or name not in known:
        return name
    return name if known[name].cls.startswith("SArrayPtr") else f"{name}.GetValue()"


def main():
    output, rule_file, *tables = sys.argv[1:]
    known = list(rules(rule_file))
    rows = [row for table in tables for row in load(table)]
    out = ["// Made from the tables of calls and their effects."]
    out += [f'#include "generated/calls/{family}_calls.h"'
            for family in dict.fromkeys(row.family for row in rows)]
    out += ['#include "slicing/effects.h"', "", "namespace kestrail {", ""]
    states = {}
    for row in rows:
        match, operations = next(((found, text) for pattern, text in known
                                  if (found := pattern.fullmatch(row.entry))), (None, ""))
        if match is None:
            raise SystemExit(f"{rule_file}: no rule for {row.entry}")
        taken = match.expand(operations).split(" ; ") if operations != "Nothing()" else []
        out.append(f"void {row.class_name}::ListEffects(CEffects&{' effects' if taken else ''}) const {{")
        for operation in taken:
            name, arguments = re.fullmatch(r"(\w+)\((.*)\)", operation).groups()
            if name in ("State", "Faces"):
                state, _, rest = arguments.partition(",")
                number = states.setdefault(state, len(states))
                arguments = f"CEffects::StatePlace({number})" + (f",{rest}" if rest else "")
            arguments = WORD.sub(lambda found: value(found.group(), row), arguments)
            out.append(f"    effects.{name}({arguments});")
        out += ["}", ""]
    Path(output).write_text("\n".join(out + ["}  // namespace kestrail", ""]))


main()
