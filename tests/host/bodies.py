"""What single entry points of the stand-in libraries do beyond logging their arguments."""

# The extensions that a player may look for, and the entries that each brings.
EXTENSIONS = {
    "GL_OES_matrix_palette": [
        "glCurrentPaletteMatrixOES", "glLoadPaletteFromModelViewMatrixOES",
        "glMatrixIndexPointerOES", "glWeightPointerOES"],
    "GL_OES_mapbuffer": ["glMapBufferOES", "glUnmapBufferOES", "glGetBufferPointervOES"],
    "GL_OES_framebuffer_object": [
        "glIsRenderbufferOES", "glBindRenderbufferOES", "glDeleteRenderbuffersOES",
        "glGenRenderbuffersOES", "glRenderbufferStorageOES", "glGetRenderbufferParameterivOES",
        "glIsFramebufferOES", "glBindFramebufferOES", "glDeleteFramebuffersOES",
        "glGenFramebuffersOES", "glCheckFramebufferStatusOES", "glFramebufferTexture2DOES",
        "glFramebufferRenderbufferOES", "glGetFramebufferAttachmentParameterivOES",
        "glGenerateMipmapOES"],
    "GL_EXT_multi_draw_arrays": ["glMultiDrawElementsEXT", "glMultiDrawArraysEXT"],
    "GL_OES_vertex_array_object": [
        "glBindVertexArrayOES", "glDeleteVertexArraysOES", "glGenVertexArraysOES",
        "glIsVertexArrayOES"],
    "GL_EXT_discard_framebuffer": ["glDiscardFramebufferEXT"],
    "GL_QVA_multisampled_render_to_texture": [
        "glFramebufferTexture2DMultisampleQVA", "glRenderbufferStorageMultisampleQVA"],
}

# Entries that no published header holds under their own name, by one with the same parameters.
VENDOR_ENTRIES = {
    "glRenderbufferStorageMultisampleIMG": "glRenderbufferStorageMultisampleQVA",
    "glFramebufferTexture2DMultisampleIMG": "glFramebufferTexture2DMultisampleQVA",
}

_ALL_EXTENSIONS = " ".join(EXTENSIONS)

# What a call answers unless the script says otherwise; without a line it is GL_TRUE, 0 or null.
RESULTS = {
    "eglCreateContext": 'NewHandle("context")',
    "eglCreatePbufferSurface": 'NewHandle("surface")',
    "eglCreatePlatformWindowSurface": 'NewHandle("surface")',
    "eglCreatePixmapSurface": 'NewHandle("surface")',
    "eglCreateWindowSurface": 'NewHandle("surface")',
    "eglGetDisplay": 'MakeHandle("display", 1)',
    "eglGetPlatformDisplay": 'MakeHandle("display", 2)',
    "eglGetError": "0x3000",
    "eglQueryAPI": "0x30A0",
    "es1.glIsEnabled": "ClientArray(cap).enabled",
    "glCheckFramebufferStatus": "0x8CD5",
    "glCheckFramebufferStatusOES": "0x8CD5",
    "glClientWaitSync": "0x911A",
    "glCreateProgram": 'NewName("programs")',
    "glCreateShader": 'NewName("shaders")',
    "glFenceSync": 'NewHandle("sync")',
    "glGetAttribLocation": "NewAttribute()",
    "glGetUniformLocation": "NewLocation()",
}

_CHOOSE_CONFIG = """const std::string answer = call.AnswerText("1");
    const bool found = answer != "fail" && answer != "none";
    Put(num_config, found);
    if (found && configs != nullptr && config_size > 0) {
        configs[0] = MakeHandle("config", std::stoi(answer));
    }
    call.End();
    return answer != "fail";"""

_BIND_BUFFER = """if (target == 0x8892) State().integers[0x8894] = buffer;
    if (target == 0x8893) State().integers[0x8895] = buffer;
    if (target == 0x88EB) State().integers[0x88ED] = buffer;
    if (target == 0x88EC) State().integers[0x88EF] = buffer;"""

_MAP = """State().isMapped = true;
    call.End();
    return State().mapped;"""

_UNMAP = """State().isMapped = false;
    call.Note(" wrote " + Data(State().mapped, 8));"""

_ATTACHED_SHADERS = """std::istringstream names(call.AnswerText("77"));
    GLsizei found = 0;
    while (shaders != nullptr && found < maxCount && names >> shaders[found]) ++found;
    Put(count, found);"""

_INFO_LOG = """if (bufSize > 0 && infoLog != nullptr) {
        std::snprintf(infoLog, (std::size_t)bufSize, "%s", call.AnswerText(""));
    }"""


def _draw_elements(arrays):
    return f"call.Note(DescribeArrays(State().{arrays}, HighestIndex(indices, type, count) + 1));"


def _client_pointer(array, size="size"):
    return f"SetArray(ClientArray({array}), {size}, type, 0, stride, pointer);"


# What a call does once its arguments are logged. Its line is written, and it answers, behind that,
# unless a return stands here.
EFFECTS = {
    "eglChooseConfig": _CHOOSE_CONFIG,
    "eglCreateContext": """for (const EGLint* a = attrib_list; a != nullptr && *a != 0x3038; a += 2) {
        if (*a == 0x3098) State().version = a[1];
    }""",
    "eglDestroyContext": 'CountHandle("contexts", -1);',
    "eglDestroySurface": 'CountHandle("surfaces", -1);',
    "eglGetConfigAttrib": "OneInteger(call, 0, value); call.End(); return 1;",
    "eglGetConfigs": _CHOOSE_CONFIG,
    "eglGetProcAddress": "call.End(); return FindExtension(procname);",
    "eglQueryContext": """OneInteger(call, attribute == 0x3097 ? 0x30A0 : State().version, value);
    call.End();
    return 1;""",
    "eglQueryString": 'call.End(); return "";',
    "eglQuerySurface": """OneInteger(call, attribute == 0x3057 || attribute == 0x3056 ? 300 : 0, value);
    call.End();
    return 1;""",
    "es1.glDrawArrays": "call.Note(DescribeArrays(State().clientArrays, first + count));",
    "es1.glDrawElements": _draw_elements("clientArrays"),
    "es1.glGetPointerv": "Put(params, ClientArray(pname).pointer);",
    "glBindBuffer": _BIND_BUFFER,
    "glBindFramebuffer": "State().integers[0x8CA6] = framebuffer;",
    "glBindFramebufferOES": "State().integers[0x8CA6] = framebuffer;",
    "glClientActiveTexture": "State().integers[0x84E1] = texture;",
    "glColorPointer": _client_pointer("0x8076"),
    "glDeleteProgram": 'DropNames("programs", 1, &program);',
    "glDeleteShader": 'DropNames("shaders", 1, &shader);',
    "glDeleteSync": 'CountHandle("syncs", -1);',
    "glDisableClientState": "ClientArray(array).enabled = false;",
    "glDisableVertexAttribArray": "Attribute(index).enabled = false;",
    "glDrawArrays": "call.Note(DescribeArrays(State().attributes, first + count));",
    "glDrawElements": _draw_elements("attributes"),
    "glEnableClientState": "ClientArray(array).enabled = true;",
    "glEnableVertexAttribArray": "Attribute(index).enabled = true;",
    "glGetAttachedShaders": _ATTACHED_SHADERS,
    "glGetBufferParameteriv": """OneInteger(call, pname == 0x88BC   ? State().isMapped
                     : pname == 0x8764 ? sizeof State().mapped
                                       : 0, params);""",
    "glGetBufferPointerv": "Put(params, State().mapped);",
    "glGetBufferPointervOES": "Put(params, State().mapped);",
    "glGetError": "return call.Result(std::exchange(State().error, 0));",
    "glGetIntegeri_v": "OneInteger(call, 0, data);",
    "glGetIntegerv": "Integerv(call, pname, data);",
    "glGetProgramInfoLog": _INFO_LOG,
    "glGetProgramiv": "OneInteger(call, pname == 0x8B82, params);",
    "glGetShaderInfoLog": _INFO_LOG,
    "glGetShaderiv": "OneInteger(call, pname == 0x8B81, params);",
    "glGetString": f"""const char* text =
        call.AnswerText(name == 0x1F03 ? "{_ALL_EXTENSIONS}" : "stand-in");
    call.End();
    return (const GLubyte*)text;""",
    "glGetVertexAttribPointerv": "Put(pointer, Attribute(index).pointer);",
    "glGetVertexAttribiv": "OneInteger(call, AttributeInteger(index, pname), params);",
    "glMapBufferOES": _MAP,
    "glMapBufferRange": _MAP,
    "glMatrixIndexPointerOES": _client_pointer("0x8844"),
    "glNormalPointer": _client_pointer("0x8075", size="3"),
    "glPixelStorei": "State().integers[pname] = param;",
    "glPointSizePointerOES": _client_pointer("0x8B9C", size="1"),
    "glTexCoordPointer": _client_pointer("0x8078"),
    "glUnmapBuffer": _UNMAP,
    "glUnmapBufferOES": _UNMAP,
    "glUseProgram": "State().integers[0x8B8D] = program;",
    "glVertexAttribPointer":
        "SetArray(Attribute(index), size, type, normalized, stride, pointer);",
    "glVertexPointer": _client_pointer("0x8074"),
    "glViewport": "State().viewport = {x, y, width, height};",
    "glWeightPointerOES": _client_pointer("0x86AD"),
}

_IDLE_CHOOSE = """if (num_config != nullptr) *num_config = 1;
    if (configs != nullptr && config_size > 0) configs[0] = MakeHandle("config", 1);
    return 1;"""

IDLE_EFFECTS = {
    "eglChooseConfig": _IDLE_CHOOSE,
    "eglGetConfigAttrib": "if (value != nullptr) *value = 0;",
    "eglGetConfigs": _IDLE_CHOOSE,
    "eglGetProcAddress": "return FindExtension(procname);",
    "eglQuerySurface": "if (value != nullptr) *value = 300;",
    "glGetIntegerv": "Integerv(pname, data);",
    "glGetProgramiv": "*params = pname == 0x8B82;",
    "glGetString": f"""return reinterpret_cast<const GLubyte*>(
        name == 0x1F03 ? "{_ALL_EXTENSIONS}" : "stand-in");""",
    "glGetVertexAttribPointerv": "*pointer = nullptr;",
    "glGetVertexAttribiv": "*params = 0;",
}
