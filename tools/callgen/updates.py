#!/usr/bin/env python3
"""Writes the updates of the record by calls of one family that the table tells.

    updates.py TABLE SOURCE
"""

import sys
from pathlib import Path

from table import STATES, load

HEADERS = {"egl": "egl/egl_state.h", "es1": "es1/es1_updates.h", "es2": "es2/es2_updates.h",
           "es3": "es2/es2_state.h", "ext": "es1/es1_state.h"}


def body(row):
    if row.state:
        function = row.state.removeprefix("state=")
        return f"    return {function}(state, {', '.join(p.name for p in row.listed)});\n"
    sets = [f"    state.{' = state.'.join(p.sets)} = Stored({p.name});\n"
            for p in row.parameters if p.sets]
    return "".join(sets) + "    return true;\n"


def main():
    path, source = sys.argv[1], Path(sys.argv[2])
    rows = [row for row in load(path) if row.sets or "=" in row.state]
    family = rows[0].family
    text = [f"// Made from {family}.calls.", f'#include "generated/calls/{family}_calls.h"',
            f'#include "state/{HEADERS[family]}"', '#include "state/stored_values.h"', "",
            "namespace kestrail {", ""]
    text += [f"bool {row.class_name}::UpdateState({STATES[family]}& state, SUpdates&) {{\n"
             f"{body(row)}}}\n" for row in rows]
    text += ["}  // namespace kestrail", ""]
    source.write_text("\n".join(text))


main()
