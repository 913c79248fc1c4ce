"""Calls of EGL and OpenGL ES by the published prototypes: made from text, and read back from recordings.

A call is written as tests/support/call_notation.h tells, whose layouts of records these are. What stands
behind a pointer is kept for as long as the process lives.
"""

import ctypes
import re
import struct
import sys
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TESTS / "host"), str(TESTS / "support")]

import generate
import khronos
import trace_file

HEADERS = ["EGL/egl.h", "EGL/eglext.h", "GLES/gl.h", "GLES/glext.h", "GLES2/gl2.h", "GLES2/gl2ext.h",
           "GLES3/gl3.h"]
NOTATION = (TESTS / "support" / "call_notation.cpp").read_text()
EXCEPTIONS, SCALARS = (re.search(rf'{name} = R"\(\n(.*?)\)"', NOTATION, re.S)[1]
                       for name in ("exceptions", "scalars"))
EXTENSION_ROWS = re.search(r'kExtEntries\[\] = R"\((.*?)\)"',
                           (TESTS / "support" / "table_rows.cpp").read_text(), re.S)[1].split()
TAGS = {word: int(tag) for word, tag, _ in (item.split(":") for item in SCALARS.split())}
WORDS = {kind: word for word, _, kind in reversed([item.split(":") for item in SCALARS.split()])}
FAMILIES = {1: "egl", 2: "es2", 3: "es1", 4: "ext", 5: "es3"}
FIRST = {"Egl": 1001, "Es2": 2001, "Es1": 3001, "Ext": 4001, "Es3": 5001 + 142}
UNSIGNED = {"Pointer", "EglEnum", "EglBoolean", "Enum", "Boolean", "Bitfield", "Ubyte", "Uint", "Uint64",
            "Config", "Context", "Display", "Surface", "EglClientBuffer", "EglNativeDisplay",
            "EglNativePixmap", "EglImage", "EglImageOes"}
REALS = {"Float", "Clampf"}


class Published:
    def __init__(self, folder):
        self.enumerants = khronos.enumerants(folder, HEADERS)
        self.entries = {}
        for header in reversed(HEADERS):
            self.entries.update(khronos.entries(folder, header))
        self.hosted = set(generate.extension_entries(folder)).union(
            *(khronos.entries(folder, header) for header, _ in generate.LIBRARIES.values()))
        self.layouts = {}  # by identifier: name, result, slots
        families = generate.by_identifier(folder)
        families["Ext"] = {name: self.entries[name] for name in EXTENSION_ROWS}
        for family, rows in families.items():
            for number, entry in enumerate(rows.values(), FIRST[family]):
                self.layouts[number] = (entry.name, result_word(entry),
                                        [slot_word(family, entry, p) for p in entry.params])
        for line in EXCEPTIONS.split("\n"):
            if line:
                number, name, result, *slots = line.split()
                self.layouts[int(number)] = (name.split(".")[-1], "" if result == "void" else result,
                                             [slot.split("@")[0] for slot in slots])

    def number(self, word):
        return sum(self.enumerants[part] if part in self.enumerants else int(part, 0)
                   for part in word.split("|"))


def result_word(entry):
    kind = entry.result
    if "char *" in kind or "GLubyte *" in kind:
        return "string"
    return "Pointer" if entry.name == "eglGetProcAddress" else WORDS.get(kind.replace(" ", ""), "")


def item_size(entry, name):
    if name in ("m", "eqn", "equation") or entry.startswith("glClearBuffer"):
        return 16 if name == "m" else 4
    digits = re.findall("[1-4]", entry)
    if name not in ("value", "v") or not digits:
        return 1
    return int(digits[0]) * (int(digits[-1]) if entry.startswith("glUniformMatrix") else 1)


def slot_word(family, entry, param):
    kind, name = param.type, param.name
    if "*" not in kind:
        return WORDS.get(kind, "")
    if kind in ("const void *", "void *"):
        return "Pointer" if name == "pointer" and kind[0] == "c" else "data"
    if "char *const" in kind:
        return "strings"
    if "char *" in kind:
        return "string"
    if kind == "const EGLint *":
        return "attributes"
    if kind == "void **":
        return "[Pointer]"
    scalar = WORDS.get(kind.replace("const ", "").replace("*", "").strip(), "")
    if param.output:
        return f"[{scalar}]"
    if name in ("m", "eqn", "equation") or (name == "v" and scalar == "Float"):
        return f"({scalar}*{item_size(entry.name, name)})"
    if name not in ("value", "v") or family == "Es3":
        return f"[{scalar}]"
    return f"[{scalar}*{item_size(entry.name, name)}]"


# Text.

def split(line):
    return re.findall(r'(?:[^\s\[{"]|\[[^\]]*\]|"(?:\\.|[^"\\])*"|\{(?:"(?:\\.|[^"\\])*"|[^}"])*\})+', line)


def text_of(word):
    return word[1:-1].encode().decode("unicode_escape")


def value_of(word, published):
    """What a word stands for: a number, bytes, a text, a list, or None for null."""
    if word == "null":
        return None
    if word[0] == "[":
        parts = (part.partition("*") for part in word[1:-1].split())
        return b"".join(bytes.fromhex(once) * int(times or 1) for once, _, times in parts)
    if word[0] == '"':
        return text_of(word)
    if word[0] == "{":
        items = (re.fullmatch(r"(.*?)(?:\*(\d+))?", item, re.S).groups() for item in split(word[1:-1]))
        return [value_of(once, published) for once, times in items for _ in range(int(times or 1))]
    return float(word) if re.fullmatch(r"-?\d+\.\d+", word) else published.number(word)


# Calls.

C_TYPES = {"GLfloat": ctypes.c_float, "GLclampf": ctypes.c_float, "GLboolean": ctypes.c_uint8,
           "GLubyte": ctypes.c_uint8, "GLchar": ctypes.c_char, "GLint64": ctypes.c_int64,
           "GLuint64": ctypes.c_uint64, "GLintptr": ctypes.c_int64, "GLsizeiptr": ctypes.c_int64,
           "EGLAttrib": ctypes.c_int64, "EGLTime": ctypes.c_uint64, "EGLint": ctypes.c_int32}


def c_type(kind):
    kind = kind.replace("const ", "").strip()
    if "*" in kind or kind in generate.HANDLES or kind.startswith(("EGLNative", "__egl")) or kind in (
            "EGLClientBuffer", "EGLImageKHR"):
        return ctypes.c_void_p
    if kind in C_TYPES:
        return C_TYPES[kind]
    return ctypes.c_int32 if kind in ("GLint", "GLsizei", "GLfixed", "GLclampx") else ctypes.c_uint32


class Host:
    """The libraries that a program finds."""

    def __init__(self, published, version):
        self.published = published
        self.kept = []
        self.entries = {}
        names = ["libEGL.so", *(["libGLES_CM.so"] if version == 1 else []), "libGLESv2.so"]
        self.libraries = [ctypes.CDLL(name) for name in names]

    def entry(self, name):
        if name not in self.entries:
            self.entries[name] = self.look_up(name)
        return self.entries[name]

    def look_up(self, name):
        prototype = self.published.entries[name]
        kinds = [None if prototype.result == "void" else c_type(prototype.result),
                 *(c_type(p.type) for p in prototype.params)]
        for library in self.libraries:
            try:
                return ctypes.CFUNCTYPE(*kinds)((name, library))
            except AttributeError:
                pass
        return ctypes.CFUNCTYPE(*kinds)(self.call("eglGetProcAddress", [name]))

    def call(self, name, values):
        params = self.published.entries[name].params
        return self.entry(name)(*(self.argument(p.type, v) for p, v in zip(params, values)))

    def argument(self, kind, value):
        if isinstance(value, str):
            value = value.encode() + b"\0"
        if isinstance(value, list):
            texts = bool(value) and isinstance(value[0], str)
            item = ctypes.c_char_p if texts else c_type(kind.replace("*", "", 1))
            value = (item * len(value))(*(v.encode() if texts else v for v in value))
        elif isinstance(value, bytes):
            value = ctypes.create_string_buffer(value, len(value))
        elif "*" in kind or c_type(kind) is ctypes.c_void_p or isinstance(value, float):
            return value
        else:
            return c_type(kind)(value).value
        self.kept.append(value)
        return ctypes.addressof(value)

    def make_context(self, version, size=0):
        """Makes a context current, and a surface with it where a size is given."""
        number = self.published.number
        display = self.call("eglGetDisplay", [None])
        config, surface = 0x10, None
        if size:
            assert self.call("eglInitialize", [display, None, None]), "no display"
            wanted = [number(word) for word in (
                "EGL_SURFACE_TYPE", "EGL_PBUFFER_BIT", "EGL_RENDERABLE_TYPE", "EGL_OPENGL_ES2_BIT",
                "EGL_ALPHA_SIZE", "8", "EGL_NONE")]
            found = (ctypes.c_void_p * 1)()
            self.call("eglChooseConfig", [display, wanted, ctypes.addressof(found), 1, [0]])
            config = found[0]
            surface = self.call("eglCreatePbufferSurface", [
                display, config, [number("EGL_WIDTH"), size, number("EGL_HEIGHT"), size, number("EGL_NONE")]])
        context = self.call("eglCreateContext", [
            display, config, None, [number("EGL_CONTEXT_CLIENT_VERSION"), version, number("EGL_NONE")]])
        assert self.call("eglMakeCurrent", [display, surface, surface, context])
        return display, surface


# Recordings.

class Record:
    """The values of one record, by the published prototypes and the widths that its file tells."""

    def __init__(self, payload, widths):
        self.payload, self.widths, self.at = payload, widths, 0

    def number(self, size, signed=False):
        self.at += size
        return int.from_bytes(self.payload[self.at - size:self.at], "little", signed=signed)

    def scalar(self, word):
        width = self.widths[TAGS[word]] if TAGS[word] < len(self.widths) else 4
        if word in REALS:
            return struct.unpack("<f", self.number(4).to_bytes(4, "little"))[0]
        return self.number(abs(width) or 4, word not in UNSIGNED)

    def slot(self, slot):
        if slot in TAGS:
            return self.scalar(slot)
        if slot == "window":
            return self.scalar("EglNativePixmap"), self.number(4), self.number(4)
        if slot == "raw":
            return None
        pointer = self.scalar("Pointer")
        match = re.match(r"([\[(])(\w+)(?:\*(\d+))?", slot)
        if match and match[1] == "(":
            return [self.scalar(match[2]) for _ in range(int(match[3]))] if pointer else None
        count = self.number(4)
        if slot in ("data", "string"):
            self.at += count
            held = self.payload[self.at - count:self.at]
            if slot == "string":
                return held.decode("latin-1") if pointer else None
            return held if pointer and count else pointer or None
        if slot == "strings":
            return [self.slot("string") for _ in range(count)] if pointer else None
        scalar, each = ("EglInt", 1) if slot == "attributes" else (match[2], int(match[3] or 1))
        return [self.scalar(scalar) for _ in range(count * each)] if pointer else None


def recorded(path, published):
    """Name, error, family, result and values of each call of a file."""
    head = Path(path).read_bytes()[:trace_file.EDITS + 255]
    widths = struct.unpack_from(f"{head[trace_file.EDITS - 1]}b", head, trace_file.EDITS)
    for identifier, payload in trace_file.records(path):
        if identifier < 1000:
            continue
        record = Record(payload, widths)
        name, result, slots = published.layouts[identifier]
        error = record.slot("Int") - (0x3000 if identifier < 2000 else 0)
        family = FAMILIES[identifier // 1000]
        family += str(record.number(1)) if family == "ext" else ""
        returned = record.slot(result) if result else None
        values = [record.slot(slot) for slot in slots]
        while name in ("glDrawArrays", "glDrawElements") and record.at < len(payload):
            values.append((record.slot("Int"), record.slot("data")))
        assert record.at == len(payload), f"{name}: {len(payload) - record.at} bytes are left"
        yield name, error, family, returned, values
