#!/usr/bin/env python3
"""Writes stand-in host libraries, or the prototypes as a table, from the published headers.

Recording stand-ins log every call with its arguments; idle ones only answer, as fast as can be.
"""

import argparse
import re
import sys

import khronos
from bodies import EXTENSIONS, IDLE, RECORDING, RECORDING_ES1, VENDOR_ENTRIES

REALS = {"GLfloat", "GLclampf", "GLdouble"}
HANDLES = {"EGLDisplay", "EGLConfig", "EGLSurface", "EGLContext", "EGLSync", "EGLImage", "GLsync"}
QUALIFIERS = ("pname", "attribute", "attrib")

LIBRARIES = {
    "egl": ("EGL/egl.h", ["EGL/egl.h"], ""),
    "es1": ("GLES/gl.h", ["GLES/gl.h"], "es1."),
    "es2": ("GLES3/gl3.h", ["GLES3/gl3.h"], ""),
}


def extension_entries(dirs):
    """The entry points that only eglGetProcAddress hands out."""
    known = khronos.entries(dirs, "GLES2/gl2ext.h")
    known.update(khronos.entries(dirs, "GLES/glext.h"))
    for published, vendor in VENDOR_ENTRIES.items():
        known[vendor] = khronos.Entry(known[published].result, vendor, known[published].params)
    return {name: known[name] for names in EXTENSIONS.values() for name in names}


def count_of(entry, param):
    """How many scalars stand behind a pointer that goes in; None if the name says nothing."""
    name = entry.name
    if match := re.match(r"glUniform([1-4])(?:f|i|ui)v$", name):
        return f"static_cast<long long>(count) * {match[1]}"
    if match := re.match(r"glUniformMatrix([2-4])(?:x([2-4]))?fv$", name):
        rows, columns = int(match[1]), int(match[2] or match[1])
        return f"static_cast<long long>(count) * {rows * columns}"
    if match := re.match(r"glVertexAttribI?([1-4])(?:f|i|ui)v$", name):
        return match[1]
    if re.match(r"gl(Load|Mult)Matrix[fx]$", name):
        return "16"
    if re.match(r"glClipPlane[fx]$", name):
        return "4"
    if entry.param("pname") and param.name in ("params", "param"):
        return "ParameterCount(pname)"
    if name.startswith("glClearBuffer"):
        return "buffer == 0x1800 ? 4 : 1"
    for counter in ("n", "numAttachments", "count", "primcount"):
        if entry.param(counter) and not entry.param(counter).pointer:
            return counter
    return None


def data_size(entry):
    for name in ("size", "imageSize", "length"):
        if entry.param(name) and not entry.param(name).pointer:
            return name
    if entry.param("format") and entry.param("type") and entry.param("width"):
        depth = "depth" if entry.param("depth") else "1"
        return f"ImageSize(width, height, {depth}, format, type)"
    return None


def log_argument(entry, param):
    base = param.type.replace("const ", "").strip()
    name = param.name
    if not param.pointer:
        if base in REALS:
            return f"call.Real(static_cast<double>({name}));"
        if base in HANDLES:
            return f"call.Handle({name});"
        if base.startswith("EGLNative") or base == "EGLClientBuffer":
            return f"call.Number((long long)(std::uintptr_t){name});"
        return f"call.Number(static_cast<long long>({name}));"
    if param.output:
        return f"call.Pointer((const void*){name});"
    if base in ("EGLint *", "EGLAttrib *") and entry.name.startswith("egl"):
        return f"call.Attributes({name});" if base == "EGLint *" else f"call.Pointer({name});"
    if base in ("GLchar *", "char *"):
        return f"call.Text({name});"
    if base.count("*") > 1:
        if base.startswith("GLchar"):
            lengths = "length" if entry.name == "glShaderSource" else "nullptr"
            counter = "uniformCount" if entry.param("uniformCount") else "count"
            return f"call.Strings({name}, {counter}, {lengths});"
        return f"call.Pointer({name});"
    count = count_of(entry, param)
    if name == "indices" and base == "void *":
        return "call.Data(indices, static_cast<long long>(count) * TypeSize(type));"
    if base == "void *":
        size = data_size(entry)
        if size and not re.match(r"gl\w*Pointer(OES)?$", entry.name):
            return f"call.Data({name}, {size});"
        return f"call.Pointer({name});"
    if count is None:
        return f"call.Pointer({name});"
    if base == "GLfloat *":
        return f"call.Reals({name}, {count});"
    if base in ("GLuint *", "GLenum *"):
        return f"call.Names({name}, {count});"
    return f"call.Numbers({name}, {count});"


def usual_result(entry):
    if entry.name in ("eglGetError",):
        return "0x3000"
    if entry.name.startswith("glCheckFramebufferStatus"):
        return "0x8CD5"
    if entry.name == "glClientWaitSync":
        return "0x911A"
    if entry.name == "eglQueryAPI":
        return "0x30A0"
    return "1" if "oolean" in entry.result else "0"


def kind_of(entry):
    match = re.match(r"gl(?:Gen|Delete)(\w+?)(?:OES)?$", entry.name)
    return match[1].lower() if match else ""


def name_list(entry):
    """Gen and Delete take a count and an array; anything else with such a name does not."""
    if not re.match(r"gl(Gen|Delete)", entry.name) or len(entry.params) != 2:
        return None
    count, names = entry.params
    return (count.name, names.name) if count.type == "GLsizei" and names.pointer else None


def recording_body(entry, prefix):
    lines = []
    names = name_list(entry)
    generated = names is not None and entry.name.startswith("glGen")
    for param in entry.params:
        if generated and param.name == names[1]:
            lines.append(f'NewNames("{kind_of(entry)}", {names[0]}, {names[1]});')
            lines.append(f"call.Names({names[1]}, {names[0]});")
        else:
            lines.append(log_argument(entry, param))
    for param in entry.params:
        if param.name in QUALIFIERS and not param.pointer:
            lines.append(f"call.Qualify(static_cast<unsigned>({param.name}));")
    if names is not None and not generated:
        lines.append(f'DropNames("{kind_of(entry)}", {names[0]}, {names[1]});')
    own = RECORDING_ES1 if prefix == "es1." else {}
    special = own.get(entry.name, RECORDING.get(entry.name))
    if special is not None:
        lines.append(special)
    elif entry.result == "void":
        lines.append("call.End();")
    elif "*" in entry.result or entry.result in HANDLES:
        lines.append(f"return ({entry.result})(call.HandleResult(nullptr));")
    else:
        lines.append(f"return static_cast<{entry.result}>(call.Result({usual_result(entry)}));")
    return lines


def idle_body(entry):
    special = IDLE.get(entry.name)
    names = name_list(entry)
    if special is not None:
        return [special]
    if names is not None and entry.name.startswith("glGen"):
        return [f"for (int i = 0; i < {names[0]}; ++i) {names[1]}[i] = NextName();"]
    if entry.result == "void":
        return []
    if "*" in entry.result or entry.result in HANDLES:
        return ["return nullptr;"]
    return [f"return static_cast<{entry.result}>({usual_result(entry)});"]


def write_entry(out, entry, flavour, prefix, linkage):
    params = ", ".join(f"[[maybe_unused]] {p.type} {p.name}" for p in entry.params)
    out.write(f"{linkage} {entry.result} {entry.name}({params}) {{\n")
    if flavour == "recording":
        out.write(f'    CCall call("{entry.name}", "{prefix}");\n')
    body = recording_body(entry, prefix) if flavour == "recording" else idle_body(entry)
    for line in body:
        out.write(f"    {line}\n")
    out.write("}\n\n")


def write_proc_address(out, extensions):
    """eglGetProcAddress knows the extensions' entries alone, as a strict driver would."""
    out.write("namespace {\n\nstruct SExtensionEntry {\n    const char* name;\n")
    out.write("    __eglMustCastToProperFunctionPointerType address;\n};\n\n")
    out.write("const SExtensionEntry extensionEntries[] = {\n")
    for name in extensions:
        out.write(f'    {{"{name}", (__eglMustCastToProperFunctionPointerType){name}}},\n')
    out.write("};\n\n__eglMustCastToProperFunctionPointerType FindExtension(const char* name) {\n")
    out.write("    for (const SExtensionEntry& entry : extensionEntries) {\n")
    out.write("        if (std::strcmp(entry.name, name) == 0) return entry.address;\n    }\n")
    out.write("    return nullptr;\n}\n\n}  // namespace\n\n")


def write_library(out, dirs, library, flavour, omitted):
    header, includes, prefix = LIBRARIES[library]
    entries = khronos.entries(dirs, header)
    if "es3" in omitted:
        entries = {n: e for n, e in entries.items() if n in khronos.entries(dirs, "GLES2/gl2.h")}
    out.write("// Generated from the published headers; changes belong into the generator.\n")
    out.write("#define EGL_NO_X11 1\n")
    for include in includes:
        out.write(f"#include <{include}>\n")
    if library == "egl":
        out.write("#include <GLES3/gl3.h>\n")
    out.write("#include <cstdint>\n#include <cstring>\n#include <sstream>\n")
    own = "host_state.h" if flavour == "recording" else "idle_state.h"
    out.write(f'\n#include "{own}"\n\nusing namespace kestrail::host;\n\n')
    if library == "egl":
        extensions = extension_entries(dirs)
        for entry in extensions.values():
            write_entry(out, entry, flavour, "", "static")
        write_proc_address(out, extensions)
    for entry in entries.values():
        if entry.name not in omitted:
            write_entry(out, entry, flavour, prefix, 'extern "C"')


def write_enumerants(out, dirs):
    headers = ["EGL/egl.h", "GLES/gl.h", "GLES2/gl2.h", "GLES2/gl2ext.h", "GLES3/gl3.h"]
    out.write('#include <map>\n#include <string>\n\n#include "host_state.h"\n\n')
    out.write("namespace kestrail::host {\n\nlong long EnumerantValue(const std::string& name) {\n")
    out.write("    static const std::map<std::string, long long> values = {\n")
    for name, value in sorted(khronos.enumerants(dirs, headers).items()):
        out.write(f'        {{"{name}", {value}LL}},\n')
    out.write("    };\n    const auto found = values.find(name);\n")
    out.write("    return found == values.end() ? -1 : found->second;\n}\n\n}\n")


def write_prototypes(out, dirs):
    """Rows for the table tests: family, entry, result, and each parameter's type and name."""
    sets = {
        "Egl": khronos.entries(dirs, "EGL/egl.h"),
        "Es1": khronos.entries(dirs, "GLES/gl.h"),
        "Es2": khronos.entries(dirs, "GLES2/gl2.h"),
        "Es3": khronos.entries(dirs, "GLES3/gl3.h"),
        "Ext": extension_entries(dirs),
    }
    for family, entries in sets.items():
        for entry in entries.values():
            params = ";".join(f"{p.type}|{p.name}" for p in entry.params)
            out.write(f'"{family};{entry.name};{entry.result};{params}",\n')


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("what", choices=["library", "enumerants", "prototypes"])
    parser.add_argument("output")
    parser.add_argument("--include", action="append", required=True)
    parser.add_argument("--library", choices=sorted(LIBRARIES))
    parser.add_argument("--flavour", choices=["recording", "idle"], default="recording")
    parser.add_argument("--omit", action="append", default=[],
                        help="an entry point to leave out, or es3 for all that ES 3.0 added")
    options = parser.parse_args()
    with open(options.output, "w", encoding="utf-8") as out:
        if options.what == "library":
            write_library(out, options.include, options.library, options.flavour,
                          set(options.omit))
        elif options.what == "enumerants":
            write_enumerants(out, options.include)
        else:
            write_prototypes(out, options.include)
    return 0


if __name__ == "__main__":
    sys.exit(main())
