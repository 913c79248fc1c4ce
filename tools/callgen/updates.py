#!/usr/bin/env python3
"""Writes what the calls of one family that set plain values do to the record.

    updates.py TABLE SOURCE
"""

import sys
from pathlib import Path

from table import STATES, load


def update(row):
    sets = [f"    state.{' = state.'.join(p.sets)} = Stored({p.name});\n"
            for p in row.parameters if p.sets]
    return (f"bool {row.class_name}::UpdateState({STATES[row.family]}& state, SUpdates&) {{\n"
            f"{''.join(sets)}    return true;\n}}\n")


def main():
    path, source = sys.argv[1], Path(sys.argv[2])
    rows = [row for row in load(path) if row.sets]
    family = rows[0].family
    state = STATES[family][1:4].lower()
    text = [f"// Made from {family}.calls.", f'#include "generated/calls/{family}_calls.h"',
            f'#include "state/{state}/{state}_state.h"', '#include "state/stored_values.h"', "",
            "namespace kestrail {", ""]
    text += [update(row) for row in rows] + ["}  // namespace kestrail", ""]
    source.write_text("\n".join(text))


main()
