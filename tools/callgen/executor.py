#!/usr/bin/env python3
"""Writes the cases of one family's executor: how each identifier is played.

    executor.py TABLE HEADER SOURCE

The header has the values of each call by their names, for all layouts of its record, and the
functions Play<Entry-point> that what is played by hand is left to.
"""

import re
import sys
from dataclasses import replace
from pathlib import Path

from table import load

RECORDS = {"program": "GetProgramRecord", "shader": "GetShaderRecord"}
CASTS = {"TGLboolean": "GLboolean", "TGLubyte": "GLubyte"}

# Families whose calls are looked at before the host's table is made. An ES2 or ES3 call asks the
# host for its framebuffer before all else.
ASKED_FIRST = ("egl", "es1")

UNPLAYED = {"skip": "kLeftOut", "check": "kPlayed", "test": "kPlayed", "fail": "kFailed"}


def by_hand(row):
    return f"Play{row.entry[0].upper()}{row.entry[1:]}"


def accessor(table):
    return table[0].upper() + table[1:] + "()"


def values_class(row):
    return f"S{row.family.capitalize()}_{row.entry}"


def values(layouts):
    """What the calls of one identifier hold, so far as all layouts of their record agree."""
    row = layouts[-1]
    out = [f"struct {values_class(row)} : CCallValues {{", "    using CCallValues::CCallValues;"]
    listings = [[(p.name, p.cls) for p in other.listed] for other in layouts]
    for index, value in enumerate(listings[-1]):
        if all(listing[index:index + 1] == [value] for listing in listings):
            out.append(member(*value, "At", str(index)))
    if row.returns and all(other.returns == row.returns for other in layouts):
        out.append(member("result", row.returns, "Returned", ""))
    return out + ["};", ""]


def member(name, cls, getter, place):
    # Single values, whose classes begin with a T, are given by themselves.
    if cls.startswith("T"):
        return f"    auto {name}() const {{ return {getter}<{cls}>({place}).GetValue(); }}"
    return f"    {cls}& {name}() const {{ return {getter}<{cls}>({place}); }}"


def needed(row, parameter):
    """The C++ expression for how much of `parameter` the host reads."""
    if parameter.needs in ("pname", "buffer"):
        function = "ParameterCount" if parameter.needs == "pname" else "ClearValueCount"
        return f"{function}(call.{parameter.needs}())"
    factors = [factor if factor.isdigit() else f"std::int64_t{{call.{factor}()}}"
               for factor in parameter.needs.split("*")]
    return " * ".join(factors)


def image_expression(row, parameter):
    names = [p.name for p in row.listed]
    sizes = [name for name in ("format", "type", "width", "height", "depth") if name in names]
    return f"ImageBytes({', '.join(f'call.{name}()' for name in sizes)}, c.Pixels())"


def argument(row, parameter, lines):
    """Adds what must precede the host call to `lines`; returns the argument."""
    recorded = f"call.{parameter.name}()"
    if parameter.table in RECORDS:
        lines.append(f"const auto* {parameter.name} = "
                     f"c.names.{RECORDS[parameter.table]}({recorded});")
        lines.append(f"if ({parameter.name} == nullptr) return EPlayed::kFailed;")
        return f"{parameter.name}->liveName"
    if parameter.table == "uniform":
        return f"c.names.GetUniformLocation({recorded})"
    if parameter.table == "attribute":
        return f"AttributeIndex(c.names, {recorded})"
    if parameter.table:
        names = f"c.names.{accessor(parameter.table)}"
        if row.play == "bind":
            entry = re.sub(r"^glBind(\w+?)(OES)?$", r"glGen\1s\2", row.entry)
            return f"LiveOrGenerated({names}, {recorded}, c.host.{entry})"
        return f"{names}.Get({recorded})"
    if parameter.cls.startswith(("SDataPtr", "SImage")):
        null = "true" if parameter.null else "false"
        in_memory = ""
        if parameter.unpack:
            format_name = next(p.name for p in row.listed if p.name in ("internalformat", "format"))
            in_memory = f"!IsPaletted(call.{format_name}())"
            if parameter.null:
                null = in_memory
        reach = image_expression(row, parameter) if parameter.image else needed(row, parameter)
        unpack = "UnpackBufferBound(c)" if parameter.image or parameter.unpack else "false"
        if in_memory:
            unpack = f"{in_memory} && {unpack}"
        lines.append(f"const SHostData {parameter.name} = HostData({recorded}, {reach}, "
                     f"{null}, {unpack});")
        lines.append(f"if (!{parameter.name}.sound) return EPlayed::kFailed;")
        return f"{parameter.name}.pointer"
    if parameter.cls.startswith(("SArrayPtr", "SPtr")):
        lines.append(f"const auto& {parameter.name} = {recorded};")
        lines.append(f"if ({parameter.name}.ItemCount() < {needed(row, parameter)}) "
                     "return EPlayed::kFailed;")
        return f"{parameter.name}.GetRawArray()"
    if parameter.cls == "SString":
        return f"{recorded}.GetCString()"
    if parameter.cls == "TPointer":
        return f"AsPointer({recorded})"
    cast = CASTS.get(parameter.cls)
    return f"static_cast<{cast}>({recorded})" if cast else recorded


def names_call(row):
    count, names = row.listed
    function = {"gen": "GenerateNames", "genonce": "GenerateNamesOnce",
                "delete": "DeleteNames"}[row.play]
    return [f"return {function}(c.names.{accessor(names.table)}, call.{count.name}(), "
            f"call.{names.name}(), c.host.{row.entry});"]


def body(row):
    if row.exactly:
        played = body(replace(row, play=row.exactly, exactly=""))
        return ["if (c.player.playsAll) {", *(f"    {line}" for line in played), "}",
                f"return EPlayed::{UNPLAYED[row.play]};"]
    if row.play in UNPLAYED:
        return [f"return EPlayed::{UNPLAYED[row.play]};"]
    if row.play == "hand":
        return [f"return {by_hand(row)}(c, {values_class(row)}(c.info));"]
    lines = [f"const {values_class(row)} call(c.info);"]
    if row.play in ("gen", "genonce", "delete"):
        return lines + names_call(row)
    copied = {p.copies for p in row.listed if p.copies}
    passed = [p for p in row.listed if p.name not in copied and (p.copies or not p.hidden)]
    arguments = [argument(row, p, lines) for p in passed]
    return lines + [f"c.host.{row.entry}({', '.join(arguments)});", "return EPlayed::kPlayed;"]


def function(name, context, cases, note, optional):
    """One function with a case for each row. `optional`: the host may lack the entry."""
    out = [f"/// Plays the call by its identifier; {note} where that has no case.",
           f"EPlayed {name}({context}& c) {{", "    switch (c.id) {"]
    for row in cases:
        out.append(f"        case {row.id}: {{  // {row.entry}")
        if optional and row.play not in ("check", "hand"):
            out.append(f"            if (c.host.{row.entry} == nullptr) return EPlayed::kMissing;")
        out += [f"            {line}" for line in body(row)]
        out.append("        }")
    return out + ["        default:", f"            return EPlayed::{note};", "    }", "}", ""]


def left_out(name, cases):
    out = ["/// Whether the call is never played, so that the host's library need not be there.",
           f"bool LeavesOut{name}Call(std::uint16_t id) {{", "    switch (id) {"]
    out += [f"        case {row.id}:  // {row.entry}" for row in cases]
    return out + ["            return true;", "        default:", "            return false;",
                  "    }", "}", ""]


def elsewhere(cases):
    out = ["/// What becomes of a call whose API has no table, or one without the entry.",
           "EPlayed PlayExtElsewhere(std::uint16_t id) {", "    switch (id) {"]
    for checked, result in ((True, "kPlayed"), (False, "kMissing")):
        out += [f"        case {row.id}:  // {row.entry}" for row in cases
                if (row.play == "check") == checked]
        out.append(f"            return EPlayed::{result};")
    return out + ["        default:", "            return EPlayed::kFailed;", "    }", "}", ""]


def declarations(family, layouts):
    out = [f"// Made from {family}.calls.", "#pragma once", "",
           '#include "calls/model/client_arrays.h"', '#include "calls/model/egl_values.h"',
           '#include "exec/host_data.h"', '#include "exec/name_calls.h"',
           '#include "exec/play_context.h"', '#include "exec/played.h"',
           "", "namespace kestrail {", ""]
    for rows in layouts:
        if rows[-1].play not in UNPLAYED or rows[-1].exactly:
            out += values(rows)
    for row in (rows[-1] for rows in layouts if "hand" in (rows[-1].play, rows[-1].exactly)):
        apis = row.apis or (family,)
        context = "Context" if len(apis) > 1 else f"S{apis[0].capitalize()}Play"
        if len(apis) > 1:
            out.append("template <typename Context>")
        out.append(f"EPlayed {by_hand(row)}({context}& c, {values_class(row)} call);")
    return out + [""]


def main():
    rows = load(sys.argv[1])
    family = rows[0].family
    layouts = {}
    for row in rows:
        if row.play != "none":
            layouts.setdefault(row.id, []).append(row)
    # Every layout of a call is played alike, so one case serves them all.
    cases = [same[-1] for same in layouts.values()]
    name = family.capitalize()
    if family == "ext":
        functions = []
        for api in ("Es1", "Es2"):
            here = [row for row in cases if row.play == "check" or api.lower() in row.apis]
            functions += function(f"PlayExt{api}Case", f"S{api}Play", here, "kElsewhere", True)
        functions += elsewhere(cases)
    elif family in ASKED_FIRST:
        functions = left_out(name, [row for row in cases if row.play == "skip"])
        played = [row for row in cases if row.play != "skip"]
        functions += function(f"Play{name}Case", f"S{name}Play", played, "kFailed", False)
    else:
        functions = function(f"Play{name}Case", f"S{name}Play", cases, "kFailed", False)
    declared = declarations(family, layouts.values())
    declared += [line.replace(" {", ";") for line in functions if re.match(r"///|\w.* \{$", line)]
    end = ["", "}  // namespace kestrail", ""]
    Path(sys.argv[2]).write_text("\n".join(declared + end))
    out = [f"// Made from {family}.calls.", f'#include "generated/exec/{family}_cases.h"', "",
           "namespace kestrail {", ""]
    Path(sys.argv[3]).write_text("\n".join(out + functions + end[1:]))


main()
