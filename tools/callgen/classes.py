#!/usr/bin/env python3
"""Writes the call classes of one family and its factory.

    classes.py TABLE OUTPUT_FOLDER PARTS

gives <family>_calls.h, <family>_calls_1.cpp to <family>_calls_PARTS.cpp and <family>_factory.cpp.
"""

import sys
from pathlib import Path

from table import load

STATES = {"egl": "CEglState", "es1": "CEs1State", "es2": "CEs2State", "es3": "CEs2State",
          "ext": "CEs1State"}
MAX_PARAMETERS = 16  # CGenCallInfo::kCapacity


def cpp_class(cls):
    return cls.replace(",", ", ")


def declaration(row, base):
    # The pointer-setting calls get both of their pointers from the mix-in.
    mixed = any(p.copies for p in row.parameters)
    bases = f"public XXXYYYPointer, public {base}" if mixed else f"public {base}"
    lines = [f"class {row.class_name} final : {bases} {{", "public:",
             f"    explicit {row.class_name}(CTrace& trace);",
             "    void FillCallInfo(CCallInfo& info, bool withPlayback) override;",
             f'    const char* GetName() const override {{ return "{row.entry}"; }}',
             f"    std::uint16_t GetCallId() const override {{ return {row.id}; }}",
             f'    const char* GetCategory() const override {{ return "{row.category}"; }}']
    if row.state:
        lines.append(f"    bool UpdateState({STATES[row.family]}& state) override;")
    lines.append("")
    if row.returns:
        lines.append(f"    {cpp_class(row.returns)} result;")
    for p in row.parameters:
        if mixed and p.name in ("pointer", "pointerPlayback"):
            continue
        lines.append(f"    {cpp_class(p.cls)} {p.name};")
    return "\n".join(lines + ["};", ""])


def constructor(row, base):
    arrays = [p for p in row.parameters if p.arrays]
    read = [p.name for p in row.parameters if not p.notread and not p.arrays and not p.copies
            and not p.joins]
    if row.returns:
        read.insert(0, "result")
    body = ["m_updatesState = true;"] if row.state else []
    if arrays:
        body.append("const std::uint32_t start = trace.Stream().Tell();")
    if read:
        body.append("trace >> " + " >> ".join(read) + ";")
    for p in row.parameters:
        if p.copies:
            body.append(f"{p.name} = {p.copies};")
        if p.joins:
            body.append(f"{p.name}.Join({p.joins});")
    if arrays:
        indexed = "true" if row.version >= 14 else "false"
        body.append(f"ReadClientArrays(trace, start, {indexed}, {arrays[0].name}, "
                    f"{arrays[1].name});")
    text = "".join(f"\n    {line}" for line in body)
    return f"{row.class_name}::{row.class_name}(CTrace& trace) : {base}(trace) {{{text}\n}}\n"


def fill(row, base):
    body = [f"{base}::FillCallInfo(info, false);"]
    if row.returns:
        body.append("info.SetReturnValue(&result);")
    for p in row.listed:
        if p.hidden:
            body.append(f'if (withPlayback) info.AddParameter("{p.name}", &{p.name}, true);')
        else:
            body.append(f'info.AddParameter("{p.name}", &{p.name}, false);')
    flag = "withPlayback" if any(p.hidden for p in row.listed) else "/*withPlayback*/"
    lines = "".join(f"\n    {line}" for line in body)
    return (f"void {row.class_name}::FillCallInfo(CCallInfo& info, bool {flag}) {{{lines}\n}}\n")


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
            make = f"return std::make_unique<{row.class_name}>(trace);"
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
    for row in rows:
        if len(row.listed) > MAX_PARAMETERS:
            raise SystemExit(f"{row.class_name}: more than {MAX_PARAMETERS} parameters")
    note = f"// Made from {family}.calls.\n"
    folder.mkdir(parents=True, exist_ok=True)
    header = [note + "#pragma once\n", '#include "calls/model/api_call.h"',
              '#include "calls/model/client_arrays.h"', '#include "calls/model/egl_values.h"\n',
              "namespace kestrail {\n"]
    header += [declaration(row, base) for row in rows]
    (folder / f"{family}_calls.h").write_text("\n".join(header + ["}  // namespace kestrail", ""]))
    for part in range(parts):
        share = rows[part * len(rows) // parts:(part + 1) * len(rows) // parts]
        text = [note + f'#include "generated/calls/{family}_calls.h"\n', "namespace kestrail {\n"]
        for row in share:
            text += [constructor(row, base), fill(row, base)]
        text += ["}  // namespace kestrail", ""]
        (folder / f"{family}_calls_{part + 1}.cpp").write_text("\n".join(text))
    (folder / f"{family}_factory.cpp").write_text(note + factory(rows, family))


main()
