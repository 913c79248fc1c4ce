#!/usr/bin/env python3
"""Writes the call classes of one family and its factory.

    classes.py TABLE OUTPUT_FOLDER PARTS

gives <family>_calls.h, <family>_calls_1.cpp to <family>_calls_PARTS.cpp and <family>_factory.cpp.
"""

import sys
from itertools import groupby
from pathlib import Path

from table import STATES, load

APIS = {"egl": "EGL", "es1": "ES1", "es2": "ES2", "es3": "ES3"}
ERRORS = {"egl": "m_eglError", "ext": "m_extError"}


# Calls have virtual operations, so that offsetof of them is up to the compiler; both of ours know it.
OFFSETS = '#pragma GCC diagnostic ignored "-Winvalid-offsetof"\n'


def declaration(row, base):
    # The pointer-setting calls get both of their pointers from the mix-in.
    mixed = any(p.copies for p in row.parameters)
    bases = f"public {base}, public XXXYYYPointer" if mixed else f"public {base}"
    lines = [f"class {row.class_name} final : {bases} {{", "public:",
             "    static std::unique_ptr<CApiCall> FromRecord(CTrace& trace);",
             "    void Read(CTrace& trace);",
             "    void Write(CRecordWriter& out) const override;",
             "    const SClassLayout& Layout() const override;"]
    if row.state or row.sets:
        lines.insert(2, f"    {row.class_name}() {{ m_updatesState = true; }}")
        lines.append(f"    bool UpdateState({STATES[row.family]}& state, SUpdates& updates) override;")
    lines.append("    void ListEffects(CEffects& effects) const override;")
    lines.append("")
    if row.returns:
        lines.append(f"    {row.returns} result;")
    for p in row.parameters:
        if mixed and p.name in ("pointer", "pointerPlayback"):
            continue
        lines.append(f"    {p.cls} {p.name};")
    return "\n".join(lines + ["};", ""])


def stored(row):
    """Class and name of what stands in the record, but for captured arrays, which end it."""
    values = [(p.cls, p.name) for p in row.parameters
              if not p.notread and not p.arrays and not p.copies and not p.joins]
    return [(row.returns, "result")] + values if row.returns else values


def reading(row, base):
    arrays = [p for p in row.parameters if p.arrays]
    # The family's field is read with what follows, but for extensions, which have two, and where
    # captured arrays are counted from behind it.
    alone = arrays or row.family == "ext"
    body = [f"{base}::Read(trace);"] if alone else []
    values = stored(row) if alone else [("TGLError", ERRORS.get(row.family, "m_error"))] + stored(row)
    if arrays:
        body.append("const std::uint32_t start = trace.Stream().Tell();")
    # Single values, whose classes begin with a T, are read in runs.
    for single, group in groupby(values, lambda value: value[0].startswith("T")):
        names = [name for _, name in group]
        body.append(f"ReadRun(trace, {', '.join(names)});" if single
                    else f"trace >> {' >> '.join(names)};")
    for p in row.parameters:
        if p.copies:
            body.append(f"{p.name} = {p.copies};")
        if p.joins:
            body.append(f"{p.name}.Join({p.joins});")
    if arrays:
        body.append(f"ReadClientArrays(trace, start, {indexed(row)}, {arrays[0].name}, "
                    f"{arrays[1].name});")
    text = "".join(f"\n    {line}" for line in body)
    # Inline into the one that makes the call: values then are not set twice, to nothing and as read.
    return (f"inline void {row.class_name}::Read(CTrace& trace) {{{text}\n}}\n\n"
            f"std::unique_ptr<CApiCall> {row.class_name}::FromRecord(CTrace& trace) {{\n"
            f"    std::unique_ptr<{row.class_name}> call(new (trace) {row.class_name});\n"
            "    call->Read(trace);\n    return call;\n}\n")


def indexed(row):
    return "true" if row.version >= 14 else "false"


def writing(row, base):
    arrays = [p.name for p in row.parameters if p.arrays]
    body = [f"{base}::Write(out);"]
    if stored(row):
        body.append(f"out << {' << '.join(name for _, name in stored(row))};")
    if arrays:
        body.append(f"WriteClientArrays(out, {indexed(row)}, {', '.join(arrays)});")
    text = "".join(f"\n    {line}" for line in body)
    return f"void {row.class_name}::Write(CRecordWriter& out) const {{{text}\n}}\n"


def layout(row):
    def offset(member):
        return f"offsetof({row.class_name}, {member})"

    ordered = sorted(row.listed, key=lambda p: p.hidden)
    if ordered != row.listed:
        raise SystemExit(f"{row.class_name}: a hidden parameter in front of a visible one")
    lines = []
    if row.listed:
        places = "".join(f'\n        {{"{p.name}", {offset(p.name)}}},' for p in row.listed)
        lines.append(f"static constexpr SParameterPlace kParameters[] = {{{places}}};")
    api = f'"{APIS[row.family]}"' if row.family in APIS else "nullptr"
    visible = sum(not p.hidden for p in row.listed)
    values = [f'"{row.entry}"', api, f'"{row.category}"', str(row.id),
              offset(ERRORS.get(row.family, "m_error")), offset("result") if row.returns else "0",
              str(visible), str(len(row.listed)), "kParameters" if row.listed else "nullptr"]
    lines += [f"static constexpr SClassLayout kLayout = {{{', '.join(values)}}};", "return kLayout;"]
    body = "".join(f"\n    {line}" for line in lines)
    return f"const SClassLayout& {row.class_name}::Layout() const {{{body}\n}}\n"


def selection(row):
    tests = []
    if row.first > 7:
        tests.append(f"trace.Version() >= {row.first}")
    if row.last:
        tests.append(f"trace.Version() <= {row.last}")
    return " && ".join(tests)


def factory(rows, family):
    out = [f'#include "calls/model/factories.h"', f'#include "generated/calls/{family}_calls.h"',
           "", "namespace kestrail {", "",
           f"std::unique_ptr<CApiCall> Create{family.capitalize()}Call(std::uint16_t id, "
           "CTrace& trace) {", "    switch (id) {"]
    for identifier in dict.fromkeys(row.id for row in rows):
        out.append(f"        case {identifier}:")
        for row in [r for r in rows if r.id == identifier]:
            test = selection(row)
            make = f"return {row.class_name}::FromRecord(trace);"
            out.append(f"            if ({test}) {make}" if test else f"            {make}")
        if test:
            out.append("            return nullptr;")
    out += ["        default:", "            return nullptr;", "    }", "}", "",
            "}  // namespace kestrail", ""]
    return "\n".join(out)


def main():
    path, folder, parts = sys.argv[1], Path(sys.argv[2]), int(sys.argv[3])
    rows = load(path)
    family = rows[0].family
    base = f"C{family.capitalize()}Call"
    note = f"// Made from {family}.calls.\n"
    folder.mkdir(parents=True, exist_ok=True)
    header = [note + "#pragma once\n", '#include "calls/model/api_call.h"',
              '#include "calls/model/client_arrays.h"', '#include "calls/model/egl_values.h"\n',
              "namespace kestrail {\n"]
    header += [declaration(row, base) for row in rows]
    (folder / f"{family}_calls.h").write_text("\n".join(header + ["}  // namespace kestrail", ""]))
    for part in range(parts):
        share = rows[part * len(rows) // parts:(part + 1) * len(rows) // parts]
        text = [note + f'#include "generated/calls/{family}_calls.h"\n', OFFSETS,
                "namespace kestrail {\n"]
        for row in share:
            text += [reading(row, base), writing(row, base), layout(row)]
        text += ["}  // namespace kestrail", ""]
        (folder / f"{family}_calls_{part + 1}.cpp").write_text("\n".join(text))
    (folder / f"{family}_factory.cpp").write_text(note + factory(rows, family))


main()
