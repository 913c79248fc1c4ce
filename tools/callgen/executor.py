#!/usr/bin/env python3
"""Writes the cases of one family's executor: how each identifier is played.

    executor.py TABLE OUTPUT

What is played by hand is left to a function Play<Entry-point> of exec/<family>_calls.h.
"""

import re
import sys
from pathlib import Path

from table import load

RECORDS = {"program": "GetProgramRecord", "shader": "GetShaderRecord"}
CASTS = {"TGLboolean": "GLboolean", "TGLubyte": "GLubyte"}

# Families whose calls are looked at before the host's table is made. An ES2 or ES3 call asks the
# host for its framebuffer before all else.
ASKED_FIRST = ("egl", "es1")


def by_hand(row):
    return f"Play{row.entry[0].upper()}{row.entry[1:]}"


def accessor(table):
    return table[0].upper() + table[1:] + "()"


def index_of(row, name):
    return [p.name for p in row.listed].index(name)


def value(row, name):
    parameter = row.listed[index_of(row, name)]
    return f"c.Value<{parameter.cls}>({index_of(row, name)})"


def needed(row, parameter):
    """The C++ expression for how much of `parameter` the host reads."""
    if parameter.needs in ("pname", "buffer"):
        function = "ParameterCount" if parameter.needs == "pname" else "ClearValueCount"
        return f"{function}({value(row, parameter.needs)})"
    factors = [factor if factor.isdigit() else f"std::int64_t{{{value(row, factor)}}}"
               for factor in parameter.needs.split("*")]
    return " * ".join(factors)


def image_expression(row, parameter):
    names = [p.name for p in row.listed]
    sizes = [name for name in ("format", "type", "width", "height", "depth") if name in names]
    return f"ImageBytes({', '.join(value(row, name) for name in sizes)}, c.Pixels())"


def argument(row, parameter, lines):
    """Adds what must precede the host call to `lines`; returns the argument."""
    index = index_of(row, parameter.name)
    cls = parameter.cls
    if parameter.table in RECORDS:
        lines.append(f"const auto* {parameter.name} = c.names.{RECORDS[parameter.table]}("
                     f"c.Value<{cls}>({index}));")
        lines.append(f"if ({parameter.name} == nullptr) return EPlayed::kFailed;")
        return f"{parameter.name}->liveName"
    if parameter.table == "uniform":
        return f"c.names.GetUniformLocation(c.Value<{cls}>({index}))"
    if parameter.table == "attribute":
        return f"AttributeIndex(c.names, c.Value<{cls}>({index}))"
    if parameter.table:
        names = f"c.names.{accessor(parameter.table)}"
        if row.play == "bind":
            entry = re.sub(r"^glBind(\w+?)(OES)?$", r"glGen\1s\2", row.entry)
            return f"LiveOrGenerated({names}, c.Value<{cls}>({index}), c.host.{entry})"
        return f"{names}.Get(c.Value<{cls}>({index}))"
    if parameter.cls.startswith(("SDataPtr", "SImage")):
        null = "true" if parameter.null else "false"
        in_memory = ""
        if parameter.unpack:
            format_name = next(p.name for p in row.listed if p.name in ("internalformat", "format"))
            in_memory = f"!IsPaletted({value(row, format_name)})"
            if parameter.null:
                null = in_memory
        reach = image_expression(row, parameter) if parameter.image else needed(row, parameter)
        unpack = "UnpackBufferBound(c)" if parameter.image or parameter.unpack else "false"
        if in_memory:
            unpack = f"{in_memory} && {unpack}"
        lines.append(f"const SHostData {parameter.name} = HostData(c.At<{cls}>({index}), {reach}, "
                     f"{null}, {unpack});")
        lines.append(f"if (!{parameter.name}.sound) return EPlayed::kFailed;")
        return f"{parameter.name}.pointer"
    if parameter.cls.startswith(("SArrayPtr", "SPtr")):
        lines.append(f"const auto& {parameter.name} = c.At<{cls}>({index});")
        lines.append(f"if ({parameter.name}.ItemCount() < {needed(row, parameter)}) "
                     "return EPlayed::kFailed;")
        return f"{parameter.name}.GetRawArray()"
    if parameter.cls == "SString":
        return f"c.At<SString>({index}).GetCString()"
    if parameter.cls == "TPointer":
        return f"AsPointer(c.Value<TPointer>({index}))"
    plain = f"c.Value<{cls}>({index})"
    return f"static_cast<{CASTS[cls]}>({plain})" if cls in CASTS else plain


def names_call(row):
    count, names = row.listed
    function = {"gen": "GenerateNames", "genonce": "GenerateNamesOnce",
                "delete": "DeleteNames"}[row.play]
    return [f"return {function}(c.names.{accessor(names.table)}, {value(row, count.name)}, "
            f"c.At<{names.cls}>(1), c.host.{row.entry});"]


def body(row):
    if row.play in ("skip", "check", "test", "fail"):
        result = {"skip": "kLeftOut", "check": "kPlayed", "test": "kPlayed", "fail": "kFailed"}[row.play]
        return [f"return EPlayed::{result};"]
    if row.play == "hand":
        return [f"return {by_hand(row)}(c);"]
    if row.play in ("gen", "genonce", "delete"):
        return names_call(row)
    lines = []
    copied = {p.copies for p in row.listed if p.copies}
    passed = [p for p in row.listed if p.name not in copied and (p.copies or not p.hidden)]
    arguments = [argument(row, p, lines) for p in passed]
    return lines + [f"c.host.{row.entry}({', '.join(arguments)});", "return EPlayed::kPlayed;"]


def function(name, context, cases, note, optional):
    """One function with a case for each row. `optional`: the host may lack the entry."""
    out = [f"EPlayed {name}({context}& c) {{", "    switch (c.id) {"]
    for row in cases:
        out.append(f"        case {row.id}: {{  // {row.entry}")
        if optional and row.play not in ("check", "hand"):
            out.append(f"            if (c.host.{row.entry} == nullptr) return EPlayed::kMissing;")
        out += [f"            {line}" for line in body(row)]
        out.append("        }")
    return out + ["        default:", f"            return EPlayed::{note};", "    }", "}", ""]


def left_out(name, cases):
    """Whether a call is left out, for a family whose host library is loaded by the first other."""
    out = [f"bool LeavesOut{name}Call(std::uint16_t id) {{", "    switch (id) {"]
    out += [f"        case {row.id}:  // {row.entry}" for row in cases]
    return out + ["            return true;", "        default:", "            return false;",
                  "    }", "}", ""]


def elsewhere(cases):
    """What becomes of an extension call whose API has no table, or one without the entry."""
    out = ["EPlayed PlayExtElsewhere(std::uint16_t id) {", "    switch (id) {"]
    for checked, result in ((True, "kPlayed"), (False, "kMissing")):
        out += [f"        case {row.id}:  // {row.entry}" for row in cases
                if (row.play == "check") == checked]
        out.append(f"            return EPlayed::{result};")
    return out + ["        default:", "            return EPlayed::kFailed;", "    }", "}", ""]


def main():
    rows = load(sys.argv[1])
    family = rows[0].family
    # Every layout of a call is played alike, so one case serves them all.
    cases = list({row.id: row for row in rows if row.play != "none"}.values())
    out = [f"// Made from {family}.calls.", f'#include "exec/{family}_calls.h"', "",
           "namespace kestrail {", ""]
    if family == "ext":
        for api in ("es1", "es2"):
            name = api.capitalize()
            here = [row for row in cases if row.play == "check" or api in row.apis]
            out += function(f"PlayExt{name}Case", f"S{name}Play", here, "kElsewhere", True)
        out += elsewhere(cases)
    else:
        name = family.capitalize()
        if family in ASKED_FIRST:
            out += left_out(name, [row for row in cases if row.play == "skip"])
            cases = [row for row in cases if row.play != "skip"]
        out += function(f"Play{name}Case", f"S{name}Play", cases, "kFailed", False)
    out += ["}  // namespace kestrail", ""]
    Path(sys.argv[2]).write_text("\n".join(out))


main()
