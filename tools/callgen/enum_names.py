#!/usr/bin/env python3
"""Writes the lookup table of OpenGL ES enumerant names.

    enum_names.py NAMES_FILE OUTPUT

A value's high byte picks a page and its low byte an entry of the page: two reads a lookup.
"""

import sys
from pathlib import Path

PAGE = 256


def main():
    names = {}
    for line in Path(sys.argv[1]).read_text().splitlines():
        if line and not line.startswith("#"):
            value, name = line.split()
            names[int(value, 0)] = name
    values = sorted(names)
    pages = sorted({value // PAGE for value in values})
    out = ['// Made from gl_enumerants.txt.', '#include "calls/text/enum_names.h"', "",
           "namespace kestrail {", "namespace {", "",
           "constexpr std::string_view kNames[] = {", "    {},"]
    out += [f'    "{names[value]}",' for value in values]
    out += ["};", "", "// Indices into kNames; page 0 stands for every page without a name.",
            f"constexpr std::uint16_t kPages[][{PAGE}] = {{", "    {},"]
    index = {value: number for number, value in enumerate(values, 1)}
    for page in pages:
        entries = (str(index.get(page * PAGE + low, 0)) for low in range(PAGE))
        out.append("    {" + ", ".join(entries) + "},")
    page_of = {page: number for number, page in enumerate(pages, 1)}
    out += ["};", "", f"constexpr std::uint8_t kPageOf[{PAGE}] = {{"]
    out.append("    " + ", ".join(str(page_of.get(high, 0)) for high in range(PAGE)))
    out += ["};", "", "}  // namespace", "",
            "std::string_view GlEnumName(std::uint32_t value) {",
            "    if (value > 0xFFFF) return {};",
            "    return kNames[kPages[kPageOf[value >> 8]][value & 0xFF]];", "}", "",
            "}  // namespace kestrail", ""]
    Path(sys.argv[2]).write_text("\n".join(out))


main()
