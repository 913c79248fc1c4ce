#!/usr/bin/env python3
"""Writes the entries that the recording library puts in the places of the host's.

    recorder.py CALLS HEADERS BY_HAND OUTPUT PARTS

CALLS is the folder of the tables of calls, HEADERS that of the published headers, BY_HAND the header
that declares what is written by hand. OUTPUT gets entries.h, entries.cpp and entries_1.cpp to
entries_PARTS.cpp.

An entry calls the host's and writes a record of the call. One that has no row only counts. BY_HAND
declares, for some:
    Record_<entry>   writes the record, in the place of what follows from the row
    Note_<entry>     runs behind a call that succeeded
    Call_<entry>     calls the host and records, if anything: all of the entry
    Write_<entry>    is made from the row: writes the record without a call
"""

import re
import sys
from pathlib import Path

import prototypes
from table import load

FAMILIES = ("egl", "es1", "es2", "es3", "ext")
# What a trace holds, but the player doesn't play.
NOT_PLAYED = ("none", "test", "fail")
# Extensions without entries of their own that are of use with those of others alone: of images, which the
# player doesn't play, of devices and streams, which a trace has no place for.
OF_OTHERS = re.compile(r"^EGL_.*_image|_EGL_image|^EGL_(EXT|NV|ANGLE)_(device|output|stream)_"
                       r"|_extension_pack_")
# What only --no-limit tells of: buffers that stay mapped are looked through at each draw.
COSTLY = {"glBufferStorageEXT"}
# Entries behind which a draw has to ask again where its arrays stand.
ARRAYS = re.compile(r"gl(\w+Pointer(OES)?|VertexAttribIPointer|(En|Dis)able(ClientState|VertexAttribArray)"
                    r"|BindVertexArray(OES)?|DeleteVertexArrays(OES)?|DeleteBuffers)$")


def newest(rows):
    """The layout that the current format has of each entry, by name."""
    return {row.entry: row for row in rows if not row.last}


# Entries that the player has act on the program that it takes for the current one.
UNIFORMS = re.compile(r"glUniform\d|glUniformMatrix")

# How much an enumerant stands for, by the parameter's name.
ENUMERANTS = {"buffer": "ClearValueCount", "pname": "ParameterCount", "target": "ParameterCount",
              "type": "ComponentBytes"}


def factor(word, parameter, classes, names):
    if word.isdigit():
        return word
    if classes[word] == "TGLenum":
        return f"{ENUMERANTS[word]}({names[word]})"
    if classes[word].startswith("S"):
        return f"Pointed({names[word]}, {names[parameter.room]})"
    return names[word]


def reach(parameter, row, names):
    """The C++ expression for how much of a pointer's data a call takes or gives; a failed one has
    none that can be relied on."""
    if not parameter.needs:
        return "0"
    classes = {p.name: p.cls for p in row.parameters}
    factors = " * ".join(f"std::int64_t{{{factor(word, parameter, classes, names)}}}"
                         for word in parameter.needs.split("*"))
    return f"(good ? {factors} : 0)"


def found_before(row, names):
    """The C++ statements that find out, ahead of the record, what the unpack or pack state has to say."""
    lines = []
    for p in row.parameters:
        if p.image:
            sizes = ", ".join(names[word] for word in ("width", "height", "format", "type"))
            depth = names.get("depth", "{}")
            lines.append(f"const std::int64_t captured = PackedBytes(*thread, error, {sizes});" if p.out
                         else f"const SImage captured = UnpackedImage(*thread, error, {depth}, {sizes}, "
                              f"{names[p.name]});")
        elif p.unpack:
            lines.append("const bool offset = UnpackBufferBound(*thread);")
        elif p.name == "alignment":
            lines.append("const GLint alignment = UnpackAlignment(*thread);")
            names["alignment"] = "alignment"
    return lines


def raised(name):
    """By what names of objects are raised that the player translates, by the parameter's name."""
    if re.fullmatch("(program|shader|texture|buffer|renderbuffer|sampler)s?", name):
        return "thread->Context()->sharedNames"
    return "thread->Context()->ownNames" if re.fullmatch("(framebuffer|array)s?", name) else None


def put(parameter, name, row, names):
    """The C++ statement that writes one parameter."""
    cls = parameter.cls
    untranslated = row.play == "plain" and not parameter.table
    if (by := raised(parameter.name)) and not untranslated:
        if cls == "TGLuint":
            return f"record.Put<{cls}>(Raised({name}, {by}));"
        if cls == "SArrayPtr<TGLuint, 1, 1>":
            return f"record.PutNames({name}, {reach(parameter, row, names)}, {by});"
    if parameter.image:
        return f"record.Put<{cls}>({name}, captured);" if parameter.out else "captured.Put(record);"
    if cls == "SString" and parameter.out:
        room = next((names[p] for p in ("bufSize", "bufsize", "maxLength") if p in names), "")
        return f"record.PutText({name}, good ? {room} : 0);"
    if cls.startswith("T") or cls in ("SString", "SEglAttribList") or cls.startswith("SPtr<"):
        return f"record.Put<{cls}>({name});"
    far = reach(parameter, row, names)
    return f"record.Put<{cls}>({name}, {f'offset ? 0 : {far}' if parameter.unpack else far});"


def record(row, prototype, indent):
    """The statements that write a row's record, one that isn't written by hand."""
    visible = [p for p in row.listed if not p.hidden]
    names = {p.name: word for p, (_, word) in zip(visible, prototype.parameters)}
    before = found_before(row, names)
    lines = [f"CCallWriter record(*thread, {row.id});",
             "record.Put<TEGLintEnum>(error);" if row.family == "egl" else "record.Put<TGLError>(error);"]
    if row.family == "ext":
        lines.append("record.Put<TGLubyte>(thread->Context()->IsEs1() ? 1 : 2);")
    if row.returns:
        made = f"Raised(result, {raised('program')})" if row.entry.startswith("glCreate") else "result"
        lines.append(f"record.Put<{row.returns}>({made});")
    for p in row.parameters:
        if not p.notread and not p.joins and not p.copies and not p.arrays:
            lines.append(put(p, names[p.name], row, names))
    if any("good ?" in line for line in lines):
        lines.insert(0, f"const bool good = error == "
                        f"{'EGL_SUCCESS' if row.family == 'egl' else 'GL_NO_ERROR'};")
    return [indent + line for line in before + lines]


def records(rows, prototype):
    """The same, by the API that is current."""
    es1 = next((row for row in rows if row.family == "es1"), None)
    other = next((row for row in rows if row.family != "es1"), None)
    if not es1 or not other:
        return ["    {"] + record(es1 or other, prototype, " " * 8) + ["    }"]
    return (["    if (thread->Context()->IsEs1()) {"] + record(es1, prototype, " " * 8)
            + ["    } else {"] + record(other, prototype, " " * 8) + ["    }"])


def write(name, prototype, rows):
    """A function that writes the record of a call that wasn't made."""
    listed = "".join(f", {kind} {word}" for kind, word in prototype.parameters)
    return ([f"void kestrail::recorder::Write_{name}(CThread* thread, std::uint32_t error{listed}) {{"]
            + records(rows, prototype) + ["}", ""])


def entry(name, prototype, rows, by_hand):
    """One entry, whole."""
    listed = ", ".join(f"{kind} {word}" for kind, word in prototype.parameters)
    words = ", ".join(word for _, word in prototype.parameters)
    and_words = "".join(f", {word}" for _, word in prototype.parameters)
    returns = prototype.result != "void"
    out = [f'extern "C" KESTRAIL_ENTRY {prototype.result} {name}({listed}) {{']
    if f"Call_{name}" in by_hand:
        return out + [f"    {'return ' if returns else ''}Call_{name}({words});", "}", ""]
    egl = name.startswith("egl")
    library = "kEglLibrary" if egl else "CThread::Current().Library()"
    out.append(f"    const auto host = HostEntry<decltype(&::{name})>(kEntry_{name}, {library});")
    call = f"host({words})"
    if not rows:
        out.append(f"    CountLeftOut(kEntry_{name});")
        out.append(f"    {'return ' if returns else ''}{call};")
        return out + ["}", ""]
    out.append(f"    {f'const auto result = {call}' if returns else call};")
    done = "return result;" if returns else "return;"
    if egl:
        out.append("    CThread* const thread = &CThread::Current();")
        out.append("    const EGLint error = thread->KeepEglError();")
        out.append(f"    if (!CRecorder::Instance().Records()) {done}")
    else:
        out.append("    CThread* const thread = CThread::Recording();")
        out.append(f"    if (thread == nullptr) {done}")
        out.append("    const std::uint32_t error = thread->KeepGlError();")
        if UNIFORMS.match(name):
            out.append("    if (CRecorder::Instance().TakesProgramOfOther(thread->Context())) [[unlikely]]")
            out.append("        TellProgram(*thread);")
    result = ", result" if returns else ""
    if f"Record_{name}" in by_hand:
        out.append(f"    Record_{name}(*thread, error{result}{and_words});")
    else:
        out += records(rows, prototype)
    if ARRAYS.match(name) and not name.startswith("glGet"):
        out.append("    thread->Context()->arraysChanged = true;")
    if f"Note_{name}" in by_hand:
        good = "EGL_SUCCESS" if egl else "GL_NO_ERROR"
        out.append(f"    if (error == {good}) Note_{name}(*thread{result}{and_words});")
    if returns:
        out.append("    return result;")
    return out + ["}", ""]


NOTE = "// Made from the tables of calls and the published headers.\n"
INCLUDES = [f"#include <{header}>" for header in prototypes.HEADERS]


def main():
    calls, headers, by_hand_header, output, parts = sys.argv[1:]
    found = prototypes.read(headers)
    by_hand = set(re.findall(r"\b((?:Record|Note|Call|Write)_\w+)\(", Path(by_hand_header).read_text()))
    rows = {}
    for family in FAMILIES:
        for name, row in newest(load(f"{calls}/{family}/{family}.calls")).items():
            rows.setdefault(name, []).append(row)
    names = sorted(found)
    out = Path(output)
    out.mkdir(parents=True, exist_ok=True)
    lines = [NOTE + "#pragma once\n", *INCLUDES, "", "namespace kestrail::recorder {", "",
             "enum EEntry : int {"]
    lines += [f"    kEntry_{name}," for name in names]
    lines += ["    kEntryCount", "};", "", "}  // namespace kestrail::recorder", ""]
    (out / "entries.h").write_text("\n".join(lines))
    lines = [NOTE + '#include "recorder/library/host.h"\n', "namespace kestrail::recorder {", "",
             "const SEntry kEntries[kEntryCount] = {"]
    held = {name for name in names
            if f"Call_{name}" in by_hand or f"Record_{name}" in by_hand and name.startswith("gl")
            or any(row.play not in NOT_PLAYED for row in rows.get(name, []))}
    held -= COSTLY
    for name in names:
        lines.append(f'    {{"{name}", reinterpret_cast<void*>(&::{name}), '
                     f'{"true" if name in held else "false"}}},')
    published = prototypes.extensions(headers)
    left_out = tuple(name for name, entries in published.items() if not entries <= held)
    # One whose name goes on where that of another ends stands on that.
    extensions = sorted(name for name in published
                        if not name.startswith(left_out) and not OF_OTHERS.search(name))
    lines += ["};", "", "const std::string_view kHeldExtensions[] = {"]
    lines += [f'    "{name}",' for name in extensions]
    lines += ["};", f"const std::size_t kHeldExtensionCount = {len(extensions)};", "", "}  // namespace kestrail::recorder", ""]
    (out / "entries.cpp").write_text("\n".join(lines))
    parts = int(parts)
    for part in range(parts):
        # The published headers come first: in another order they don't declare all entries.
        lines = [NOTE + '#include "generated/recorder/library/entries.h"\n',
                 '#include "recorder/library/by_hand.h"\n', "using namespace kestrail;",
                 "using namespace kestrail::recorder;", ""]
        for name in names[part * len(names) // parts:(part + 1) * len(names) // parts]:
            lines += entry(name, found[name], rows.get(name), by_hand)
            if f"Write_{name}" in by_hand:
                lines += write(name, found[name], rows[name])
        (out / f"entries_{part + 1}.cpp").write_text("\n".join(lines))


main()
