"""What single entry points of the stand-in libraries do beyond logging their arguments."""

# The extensions that a player may look for, and the entries that each brings.
EXTENSIONS = {
    "GL_OES_matrix_palette": [
        "glCurrentPaletteMatrixOES", "glLoadPaletteFromModelViewMatrixOES",
        "glMatrixIndexPointerOES", "glWeightPointerOES",
    ],
    "GL_OES_mapbuffer": ["glMapBufferOES", "glUnmapBufferOES", "glGetBufferPointervOES"],
    "GL_OES_framebuffer_object": [
        "glIsRenderbufferOES", "glBindRenderbufferOES", "glDeleteRenderbuffersOES",
        "glGenRenderbuffersOES", "glRenderbufferStorageOES", "glGetRenderbufferParameterivOES",
        "glIsFramebufferOES", "glBindFramebufferOES", "glDeleteFramebuffersOES",
        "glGenFramebuffersOES", "glCheckFramebufferStatusOES", "glFramebufferTexture2DOES",
        "glFramebufferRenderbufferOES", "glGetFramebufferAttachmentParameterivOES",
        "glGenerateMipmapOES",
    ],
    "GL_EXT_multi_draw_arrays": ["glMultiDrawElementsEXT", "glMultiDrawArraysEXT"],
    "GL_OES_vertex_array_object": [
        "glBindVertexArrayOES", "glDeleteVertexArraysOES", "glGenVertexArraysOES",
        "glIsVertexArrayOES",
    ],
    "GL_EXT_discard_framebuffer": ["glDiscardFramebufferEXT"],
    "GL_QVA_multisampled_render_to_texture": [
        "glFramebufferTexture2DMultisampleQVA", "glRenderbufferStorageMultisampleQVA",
    ],
}

# Entries that no published header holds under their own name, by one with the same parameters.
VENDOR_ENTRIES = {
    "glRenderbufferStorageMultisampleIMG": "glRenderbufferStorageMultisampleQVA",
    "glFramebufferTexture2DMultisampleIMG": "glFramebufferTexture2DMultisampleQVA",
}

_ALL_EXTENSIONS = " ".join(EXTENSIONS)

_GET_STRING = f"""const char* usual = name == 0x1F03 ? "{_ALL_EXTENSIONS}" : "stand-in";
    const SAnswer* answer = call.Answer();
    call.End();
    if (answer != nullptr && answer->text == "null") return nullptr;
    return (const GLubyte*)(answer != nullptr ? answer->text.c_str() : usual);"""

_CHOOSE_CONFIG = """const SAnswer* answer = call.Answer();
    const bool failed = answer != nullptr && answer->text == "fail";
    const bool none = answer != nullptr && answer->text == "none";
    if (num_config != nullptr) *num_config = failed || none ? 0 : 1;
    if (!failed && !none && configs != nullptr && config_size > 0) {
        configs[0] = MakeHandle(HandleKind::Config, answer != nullptr ? (unsigned)answer->value : 1);
    }
    call.End();
    return failed ? 0 : 1;"""

_QUERY_SURFACE = """const SGlState& state = State();
    OneInteger(call, attribute == 0x3057 ? state.width : attribute == 0x3056 ? state.height : 0,
               value);
    return 1;"""


def _handle(kind, counted):
    count = f'CountHandle("{counted}", 1);\n    ' if counted else ""
    return f"""{count}return const_cast<void*>(
        call.HandleResult(MakeHandle(HandleKind::{kind}, NewHandleNumber(HandleKind::{kind}))));"""


def _drop(counted):
    return f'CountHandle("{counted}", -1);\n    return static_cast<EGLBoolean>(call.Result(1));'


_BIND_BUFFER = """if (target == 0x8892) State().arrayBuffer = (std::int32_t)buffer;
    if (target == 0x8893) State().elementBuffer = (std::int32_t)buffer;
    if (target == 0x88EC) State().unpackBuffer = (std::int32_t)buffer;
    call.End();"""

_VIEWPORT = """State().viewport[0] = x;
    State().viewport[1] = y;
    State().viewport[2] = width;
    State().viewport[3] = height;
    call.End();"""

_PIXEL_STORE = """if (pname == 0x0CF5) State().unpackAlignment = param;
    State().pixelStore[pname] = param;
    call.End();"""

_MAP = """State().isMapped = true;
    call.End();
    return State().mapped;"""

_UNMAP = """State().isMapped = false;
    call.Note(" wrote ");
    CCall shown("");
    shown.Data(State().mapped, 8);
    call.Note(shown.Shown());
    return static_cast<GLboolean>(call.Result(1));"""


def _draw_arrays(arrays, count):
    return f"""call.Note(DescribeArrays(State().{arrays}, {count}, (long long)first + count));
    call.End();"""


def _draw_elements(arrays, array_count):
    return f"""call.Note(DescribeArrays(State().{arrays}, {array_count},
                              HighestIndex(indices, type, count) + 1));
    call.End();"""


def _enable(value):
    return f"""if (index < maxAttributes) State().attributes[index].enabled = {value};
    call.End();"""


def _client_state(value):
    return f"""if (ClientSlot(array) >= 0) State().clientArrays[ClientSlot(array)].enabled = {value};
    call.End();"""


def _client_pointer(array, size="size", kind="type"):
    return f"SetClientArray({array}, {size}, {kind}, stride, pointer);\n    call.End();"


RECORDING = {
    "eglChooseConfig": _CHOOSE_CONFIG,
    "eglGetConfigs": _CHOOSE_CONFIG,
    "eglCreateContext": _handle("Context", "contexts"),
    "eglCreateWindowSurface": _handle("Surface", "surfaces"),
    "eglCreatePbufferSurface": _handle("Surface", "surfaces"),
    "eglCreatePixmapSurface": _handle("Surface", "surfaces"),
    "eglDestroyContext": _drop("contexts"),
    "eglDestroySurface": _drop("surfaces"),
    "eglGetConfigAttrib": "OneInteger(call, 0, value);\n    return 1;",
    "eglGetDisplay": "return const_cast<void*>(call.HandleResult(MakeHandle(HandleKind::Display, 1)));",
    "eglQuerySurface": _QUERY_SURFACE,
    "eglGetProcAddress": "call.End();\n    return FindExtension(procname);",
    "eglQueryString": "call.End();\n    return \"\";",
    "glGetString": _GET_STRING,
    "glGetIntegerv": "Integerv(call, pname, data);",
    "glGetVertexAttribiv": "VertexAttribiv(call, index, pname, params);",
    "glGetVertexAttribPointerv": """if (pointer != nullptr) {
        *pointer = index < maxAttributes ? const_cast<void*>(State().attributes[index].pointer)
                                         : nullptr;
    }
    call.End();""",
    "glGetProgramiv": "OneInteger(call, pname == 0x8B82 ? 1 : 0, params);",
    "glGetShaderiv": "OneInteger(call, pname == 0x8B81 ? 1 : 0, params);",
    "glGetProgramInfoLog": """const SAnswer* answer = call.Answer();
    if (bufSize > 0 && infoLog != nullptr) {
        std::strncpy(infoLog, answer != nullptr ? answer->text.c_str() : "", (std::size_t)bufSize);
        infoLog[bufSize - 1] = '\\0';
    }
    call.End();""",
    "glGetAttachedShaders": """const SAnswer* answer = call.Answer();
    std::istringstream names(answer != nullptr ? answer->text : "77");
    GLsizei found = 0;
    while (shaders != nullptr && found < maxCount && names >> shaders[found]) ++found;
    if (count != nullptr) *count = found;
    call.End();""",
    "glGetUniformLocation": "return static_cast<GLint>(call.Result(NewLocation()));",
    "glGetAttribLocation": "return static_cast<GLint>(call.Result(NewAttribute()));",
    "glCreateShader": 'return static_cast<GLuint>(call.Result(NewName("shaders")));',
    "glCreateProgram": 'return static_cast<GLuint>(call.Result(NewName("programs")));',
    "glDeleteShader": 'DropNames("shaders", 1, &shader);\n    call.End();',
    "glDeleteProgram": 'DropNames("programs", 1, &program);\n    call.End();',
    "glFenceSync": """CountHandle("syncs", 1);
    return (GLsync)call.HandleResult(
        MakeHandle(HandleKind::Sync, NewHandleNumber(HandleKind::Sync)));""",
    "glDeleteSync": 'CountHandle("syncs", -1);\n    call.End();',
    "glBindBuffer": _BIND_BUFFER,
    "glBindFramebuffer": "State().framebuffer = (std::int32_t)framebuffer;\n    call.End();",
    "glBindFramebufferOES": "State().framebuffer = (std::int32_t)framebuffer;\n    call.End();",
    "glUseProgram": "State().currentProgram = (std::int32_t)program;\n    call.End();",
    "glViewport": _VIEWPORT,
    "glPixelStorei": _PIXEL_STORE,
    "glMapBufferOES": _MAP,
    "glMapBufferRange": _MAP,
    "glUnmapBufferOES": _UNMAP,
    "glUnmapBuffer": _UNMAP,
    "glGetBufferPointervOES": """if (params != nullptr) *params = State().mapped;
    call.End();""",
    "glGetBufferPointerv": """if (params != nullptr) *params = State().mapped;
    call.End();""",
    "glGetBufferParameteriv": "BufferParameteriv(call, pname, params);",
    "glVertexAttribPointer": """SetAttribute(index, size, type, normalized, stride, pointer);
    call.End();""",
    "glEnableVertexAttribArray": _enable(1),
    "glDisableVertexAttribArray": _enable(0),
    "glDrawArrays": _draw_arrays("attributes", "maxAttributes"),
    "glDrawElements": _draw_elements("attributes", "maxAttributes"),
    "glEnableClientState": _client_state(1),
    "glDisableClientState": _client_state(0),
    "glClientActiveTexture": """State().clientActiveTexture = (std::int32_t)texture;
    call.End();""",
    "glVertexPointer": _client_pointer("0x8074"),
    "glNormalPointer": _client_pointer("0x8075", size="3"),
    "glColorPointer": _client_pointer("0x8076"),
    "glTexCoordPointer": _client_pointer("0x8078"),
    "glPointSizePointerOES": _client_pointer("0x8B9C", size="1"),
    "glMatrixIndexPointerOES": _client_pointer("0x8844"),
    "glWeightPointerOES": _client_pointer("0x86AD"),
}

# Where ES 1 means something else by a name.
RECORDING_ES1 = {
    "glIsEnabled": "return static_cast<GLboolean>(call.Result(IsClientArrayEnabled(cap)));",
    "glGetPointerv": """if (params != nullptr) *params = const_cast<void*>(ClientArrayPointer(pname));
    call.End();""",
    "glDrawArrays": _draw_arrays("clientArrays", "maxClientArrays"),
    "glDrawElements": _draw_elements("clientArrays", "maxClientArrays"),
}

_IDLE_STRING = f"""return reinterpret_cast<const GLubyte*>(
        name == 0x1F03 ? "{_ALL_EXTENSIONS}" : "stand-in");"""

_IDLE_CHOOSE = """if (num_config != nullptr) *num_config = 1;
    if (configs != nullptr && config_size > 0) configs[0] = Handle(2);
    return 1;"""

IDLE = {
    "eglChooseConfig": _IDLE_CHOOSE,
    "eglGetConfigs": _IDLE_CHOOSE,
    "eglGetDisplay": "return Handle(1);",
    "eglCreateContext": "return Handle(3);",
    "eglCreateWindowSurface": "return Handle(4);",
    "eglCreatePbufferSurface": "return Handle(4);",
    "eglQuerySurface": "if (value != nullptr) *value = 300;\n    return 1;",
    "eglGetConfigAttrib": "if (value != nullptr) *value = 0;\n    return 1;",
    "eglGetProcAddress": "return FindExtension(procname);",
    "glGetString": _IDLE_STRING,
    "glGetIntegerv": "Integerv(pname, data);",
    "glGetVertexAttribiv": "*params = 0;",
    "glGetVertexAttribPointerv": "*pointer = nullptr;",
    "glGetProgramiv": "*params = pname == 0x8B82 ? 1 : 0;",
    "glGetUniformLocation": "return NextLocation();",
    "glGetAttribLocation": "return NextLocation() % 8;",
    "glCreateShader": "return NextName();",
    "glCreateProgram": "return NextName();",
    "glFenceSync": "return (GLsync)Handle(5);",
}
