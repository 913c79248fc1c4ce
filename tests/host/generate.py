#!/usr/bin/env python3
"""Writes stand-in host libraries, or the prototypes as a table, from the published headers.

Recording stand-ins log every call with its arguments; idle ones only answer, as fast as can be.
Noting ones are no library: idle ones that a test's own program holds, and is told of each call.
"""

import argparse
import re

import khronos
from bodies import EFFECTS, EXTENSIONS, IDLE_EFFECTS, RESULTS, VENDOR_ENTRIES

REALS = ("GLfloat", "GLclampf", "GLdouble")
HANDLES = ("EGLDisplay", "EGLConfig", "EGLSurface", "EGLContext", "EGLSync", "EGLImage", "GLsync")

# By library: its header, and what the log puts before its entries.
LIBRARIES = {"egl": ("EGL/egl.h", ""), "es1": ("GLES/gl.h", "es1."), "es2": ("GLES3/gl3.h", "")}

# How many scalars stand behind a pointer that goes in, by the entry's name.
COUNTS = [
    (r"glUniform([1-4])(?:f|i|ui)v", "count * {0}LL"),
    (r"glUniformMatrix([2-4])fv", "count * {0}LL * {0}"),
    (r"glUniformMatrix([2-4])x([2-4])fv", "count * {0}LL * {1}"),
    (r"glVertexAttribI?([1-4])(?:f|i|ui)v", "{0}"),
    (r"gl(?:Load|Mult)Matrix[fx]", "16"),
    (r"glClipPlane[fx]", "4"),
    (r"glClearBuffer\w+", "buffer == 0x1800 ? 4 : 1"),
]


def extension_entries(folder):
    """The entry points that only eglGetProcAddress hands out."""
    known = khronos.entries(folder, "GLES2/gl2ext.h") | khronos.entries(folder, "GLES/glext.h")
    for published, vendor in VENDOR_ENTRIES.items():
        known[vendor] = khronos.Entry(known[published].result, vendor, known[published].params)
    return {name: known[name] for names in EXTENSIONS.values() for name in names}


def count_of(entry, param):
    """How many scalars stand behind a pointer that goes in; None if nothing says it."""
    for pattern, count in COUNTS:
        if match := re.fullmatch(pattern, entry.name):
            return count.format(*match.groups())
    if entry.value("pname") and param.name in ("params", "param"):
        return "ParameterCount(pname)"
    return entry.value("n", "numAttachments", "count", "primcount", "uniformCount")


def data_size(entry, param):
    """How many bytes stand behind an untyped pointer that goes in; None if nothing says it."""
    if param.name == "indices":
        return "static_cast<long long>(count) * TypeSize(type)"
    if re.fullmatch(r"gl\w*Pointer(OES)?", entry.name):
        return None
    if entry.value("format") and entry.value("type") and entry.value("width"):
        return f"ImageSize(width, height, {entry.value('depth') or 1}, format, type)"
    return entry.value("size", "imageSize", "length")


def shown(entry, param):
    """The text that stands for an argument in the log."""
    base = param.type.replace("const ", "").strip()
    name = param.name
    if base in REALS:
        return f"Real({name})"
    if base in HANDLES:
        return f"Handle({name})"
    if not param.pointer:
        return f"Number((long long)(std::uintptr_t){name})"
    if base == "void *":
        count, form = data_size(entry, param), "Data({0}, {1})"
    elif base.startswith("GLchar") and base.count("*") > 1:
        lengths = "length" if entry.name == "glShaderSource" else "nullptr"
        count, form = count_of(entry, param), f"Strings({{0}}, {{1}}, {lengths})"
    else:
        count, form = count_of(entry, param), "Values({0}, {1})"
    if base in ("GLchar *", "char *"):
        count, form = 1, "Text({0})"
    if base == "EGLint *":
        count, form = 1, "Attributes({0})"
    if param.output or count is None or re.match(r"void \*.*\*", base):
        return f"Pointer((const void*){name})"
    return form.format(name, count)


def name_list(entry):
    """Of an entry that makes or drops an array of names: which, their kind, count and array."""
    match = re.fullmatch(r"gl(Gen|Delete)(\w+?)(?:OES)?", entry.name)
    if match and len(entry.params) == 2 and entry.params[1].pointer:
        return match[1], match[2].lower(), entry.params[0].name, entry.params[1].name
    return None, "", "", ""


def recording_body(entry, prefix):
    lines = [f'CCall call("{entry.name}", "{prefix}");']
    which, kind, count, names = name_list(entry)
    if which:
        verb = "NewNames" if which == "Gen" else "DropNames"
        lines.append(f'{verb}("{kind}", {count}, {names});')
    for param in entry.params:
        text = f"Values({names}, {count})" if param.name == names else shown(entry, param)
        lines.append(f"call.Add({text});")
    if name := entry.value("pname", "attribute", "attrib", "name"):
        lines.append(f"call.Qualify(static_cast<unsigned>({name}));")
    lines.append(own(EFFECTS, entry, prefix, ""))
    if "return" in lines[-1]:
        return lines
    if entry.result == "void":
        return lines + ["call.End();"]
    form = "call.HandleResult({})" if is_handle(entry.result) else "call.Result({})"
    return lines + [f"return ({entry.result}){form.format(usual_result(entry, prefix))};"]


def idle_body(entry):
    which, _, count, names = name_list(entry)
    lines = [IDLE_EFFECTS.get(entry.name, "")]
    if which == "Gen":
        lines.append(f'for (int i = 0; i < {count}; ++i) {names}[i] = NewName("");')
    if entry.result != "void" and "return" not in lines[0]:
        lines.append(f"return ({entry.result}){usual_result(entry, '')};")
    return lines


def own(table, entry, prefix, usual):
    return table.get(prefix + entry.name, table.get(entry.name, usual))


def is_handle(kind):
    return "*" in kind or kind in HANDLES


def usual_result(entry, prefix):
    usual = "nullptr" if is_handle(entry.result) else "1" if "oolean" in entry.result else "0"
    return own(RESULTS, entry, prefix, usual)


def write_entry(out, entry, body, linkage):
    params = ", ".join(f"{p.type} {p.name}" for p in entry.params)
    lines = "".join(f"    {line}\n" for line in body if line)
    out.write(f"{linkage} {entry.result} {entry.name}({params}) {{\n{lines}}}\n\n")


def write_look_up(out, function, kind, rows, missing):
    out.write(f"{kind} {function}(const std::string& name) {{\n")
    out.write(f"    static const std::map<std::string, {kind}> values = {{\n")
    out.writelines(f'        {{"{name}", {value}}},\n' for name, value in rows.items())
    out.write("    };\n    const auto found = values.find(name);\n")
    out.write(f"    return found == values.end() ? {missing} : found->second;\n}}\n")


def write_head(out, header, state):
    out.write("// Generated from the published headers; changes belong into the generator.\n")
    out.write(f"#define EGL_NO_X11 1\n#include <{header}>\n#include <GLES2/gl2.h>\n")
    out.write("#include <cstdint>\n#include <cstdio>\n#include <map>\n#include <sstream>\n#include <utility>\n\n")
    out.write(f'#include "{state}"\n\nusing namespace kestrail::host;\n\n')


def write_library(out, folder, library, idle, omitted):
    header, prefix = LIBRARIES[library]
    write_head(out, header, f"{'idle' if idle else 'host'}_state.h")
    if library == "egl":
        extensions = extension_entries(folder)
        for entry in extensions.values():
            write_entry(out, entry, idle_body(entry) if idle else recording_body(entry, ""),
                        "static")
        # A strict driver hands out nothing else.
        kind = "__eglMustCastToProperFunctionPointerType"
        rows = {name: f"({kind}){name}" for name in extensions}
        write_look_up(out, "static FindExtension", kind, rows, "nullptr")
    kept = khronos.entries(folder, "GLES2/gl2.h") if "es3" in omitted else None
    for name, entry in khronos.entries(folder, header).items():
        if name not in omitted and (kept is None or name in kept):
            write_entry(out, entry, idle_body(entry) if idle else recording_body(entry, prefix),
                        'extern "C"')


def write_noting(out, folder, library):
    """Entries in a namespace of their own, where they hide the headers' functions."""
    header, prefix = LIBRARIES[library]
    space = f"noting_{library}"
    write_head(out, header, "idle_state.h")
    out.write(f'#include "noting_entries.h"\n\nnamespace {space} {{\n\n')
    known = khronos.entries(folder, header)
    if library == "egl":
        known |= extension_entries(folder)
    find = f"Find{library.capitalize()}Entry"
    out.write("static Entry FindExtension(const char* name) { return FindEglEntry(name); }\n\n")
    for entry in known.values():
        write_entry(out, entry, [f'Note("{prefix}{entry.name}");', *idle_body(entry)], "static")
    out.write("}\n\n")
    rows = {name: f"(Entry){space}::{name}" for name in known}
    write_look_up(out, f"kestrail::host::{find}", "Entry", rows, "nullptr")


def write_enumerants(out, folder):
    headers = ["EGL/egl.h", "GLES/gl.h", "GLES2/gl2.h", "GLES2/gl2ext.h", "GLES3/gl3.h"]
    out.write('#include "host_state.h"\n\nnamespace kestrail::host {\n\n')
    write_look_up(out, "EnumerantValue", "long long", khronos.enumerants(folder, headers), "-1")
    out.write("\n}\n")


# Recorded calls are numbered as the headers list their entries, but for these, each with the one that
# it stands behind. ES 1.1 goes by the alphabet, and EGL ends with its version 1.2.
MOVED = {
    "Egl": [("eglGetCurrentContext", "eglGetConfigs"),
            ("eglQueryAPI", "eglCreatePbufferFromClientBuffer")],
    "Es1": [("glGenBuffers", "glGetClipPlanex"), ("glGenTextures", "glGenBuffers"),
            ("glPointSizePointerOES", "glViewport")],
    "Es2": [("glDeleteTextures", "glDeleteFramebuffers"), ("glDetachShader", "glDeleteShader")],
}


def by_identifier(folder):
    """The entries of each family in the order of their identifiers."""
    headers = {"Egl": "EGL/egl.h", "Es1": "GLES/gl.h", "Es2": "GLES2/gl2.h", "Es3": "GLES3/gl3.h"}
    sets = {family: khronos.entries(folder, header) for family, header in headers.items()}
    sets["Es1"] = dict(sorted(sets["Es1"].items()))
    sets["Es3"] = {n: e for n, e in sets["Es3"].items() if n not in sets["Es2"]}
    for family, moves in MOVED.items():
        names = list(sets[family])
        for name, before in moves:
            names.remove(name)
            names.insert(names.index(before) + 1, name)
        sets[family] = {name: sets[family][name] for name in names}
    egl = list(sets["Egl"])
    sets["Egl"] = {n: sets["Egl"][n] for n in egl[:egl.index("eglWaitClient") + 1]}
    return sets


def write_prototypes(out, folder):
    """Rows for the table tests: family, entry, result, and each parameter's type and name."""
    for family, entries in (by_identifier(folder) | {"Ext": extension_entries(folder)}).items():
        for entry in entries.values():
            params = ";".join(f"{p.type}|{p.name}" for p in entry.params)
            out.write(f'"{family};{entry.name};{entry.result};{params}",\n')


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("what", choices=[*LIBRARIES, "enumerants", "prototypes"])
    parser.add_argument("output")
    parser.add_argument("include")
    parser.add_argument("--idle", action="store_true")
    parser.add_argument("--noting", action="store_true")
    parser.add_argument("--omit", action="append", default=[],
                        help="an entry point to leave out, or es3 for all that ES 3.0 added")
    options = parser.parse_args()
    with open(options.output, "w", encoding="utf-8") as out:
        if options.what == "enumerants":
            write_enumerants(out, options.include)
        elif options.what == "prototypes":
            write_prototypes(out, options.include)
        elif options.noting:
            write_noting(out, options.include, options.what)
        else:
            write_library(out, options.include, options.what, options.idle, options.omit)


if __name__ == "__main__":
    main()
