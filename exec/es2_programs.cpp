// Shaders, programs and their locations. Records follow the rules of deletion of OpenGL ES, so that
// a translation lives as long as the host's object: a name without a record fails.
#include <algorithm>

#include "generated/exec/es2_cases.h"

namespace kestrail {

EPlayed PlayGlCreateProgram(SEs2Play& c, SEs2_glCreateProgram call) {
    const std::uint32_t recorded = call.result();
    if (c.names.GetProgramRecord(recorded) != nullptr) return EPlayed::kFailed;
    c.names.SetProgram(recorded, c.host.glCreateProgram());
    return EPlayed::kPlayed;
}

EPlayed PlayGlCreateShader(SEs2Play& c, SEs2_glCreateShader call) {
    const std::uint32_t recorded = call.result();
    const GLenum type = call.type();
    if (c.names.GetShaderRecord(recorded) != nullptr) return EPlayed::kFailed;
    c.names.SetShader(recorded, c.host.glCreateShader(type), type);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDeleteProgram(SEs2Play& c, SEs2_glDeleteProgram call) {
    const std::uint32_t recorded = call.program();
    const SProgramRecord* program = c.names.GetProgramRecord(recorded);
    if (program == nullptr) return EPlayed::kFailed;
    c.host.glDeleteProgram(program->liveName);
    c.names.DeleteProgram(recorded);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDeleteShader(SEs2Play& c, SEs2_glDeleteShader call) {
    const std::uint32_t recorded = call.shader();
    SShaderRecord* shader = c.names.GetShaderRecord(recorded);
    if (shader == nullptr) return EPlayed::kFailed;
    const GLuint live = shader->liveName;
    if (shader->references != 0) {
        shader->deletePending = true;
    } else {
        c.names.DeleteShaderRecord(recorded);
    }
    c.host.glDeleteShader(live);
    return EPlayed::kPlayed;
}

EPlayed PlayGlAttachShader(SEs2Play& c, SEs2_glAttachShader call) {
    const std::uint32_t recordedProgram = call.program();
    const std::uint32_t recordedShader = call.shader();
    const SProgramRecord* program = c.names.GetProgramRecord(recordedProgram);
    SShaderRecord* shader = c.names.GetShaderRecord(recordedShader);
    if (program == nullptr || shader == nullptr) return EPlayed::kFailed;
    c.names.AttachShader(recordedProgram, recordedShader);
    // Kept: an attach takes a deletion back; recordings reuse such shaders.
    shader->deletePending = false;
    c.host.glAttachShader(program->liveName, shader->liveName);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDetachShader(SEs2Play& c, SEs2_glDetachShader call) {
    const std::uint32_t recordedShader = call.shader();
    const SProgramRecord* program = c.names.GetProgramRecord(call.program());
    const SShaderRecord* shader = c.names.GetShaderRecord(recordedShader);
    if (program == nullptr || shader == nullptr) return EPlayed::kFailed;
    c.host.glDetachShader(program->liveName, shader->liveName);
    // Kept: neither count nor slot changes, unlike in a seek; recordings attach again.
    if (shader->deletePending) c.names.DeleteShaderRecord(recordedShader);
    return EPlayed::kPlayed;
}

EPlayed PlayGlGetAttribLocation(SEs2Play& c, SEs2_glGetAttribLocation call) {
    const SProgramRecord* program = c.names.GetProgramRecord(call.program());
    if (program == nullptr) return EPlayed::kFailed;
    const GLint live = c.host.glGetAttribLocation(program->liveName, call.name().GetCString());
    if (live != -1) c.names.SetAttribLocation(program->liveName, call.result(), live);
    return EPlayed::kPlayed;
}

EPlayed PlayGlGetUniformLocation(SEs2Play& c, SEs2_glGetUniformLocation call) {
    const SProgramRecord* program = c.names.GetProgramRecord(call.program());
    if (program == nullptr) return EPlayed::kFailed;
    const GLint live = c.host.glGetUniformLocation(program->liveName, call.name().GetCString());
    if (live != -1) c.names.SetUniformLocation(program->liveName, call.result(), live);
    return EPlayed::kPlayed;
}

EPlayed PlayGlGetProgramiv(SEs2Play& c, SEs2_glGetProgramiv call) {
    const SProgramRecord* program = c.names.GetProgramRecord(call.program());
    if (program == nullptr) return EPlayed::kFailed;
    // Kept: asked though nobody takes the answer; drivers finish a link when asked.
    GLint answer[16] = {};
    c.host.glGetProgramiv(program->liveName, call.pname(), answer);
    return EPlayed::kPlayed;
}

EPlayed PlayGlLinkProgram(SEs2Play& c, SEs2_glLinkProgram call) {
    constexpr GLsizei kLogSize = 400;
    const SProgramRecord* program = c.names.GetProgramRecord(call.program());
    if (program == nullptr) return EPlayed::kFailed;
    const GLuint live = program->liveName;
    c.host.glLinkProgram(live);
    GLint status = -1;
    GLint logLength = 0;
    c.host.glGetProgramiv(live, GL_LINK_STATUS, &status);
    c.host.glGetProgramiv(live, GL_INFO_LOG_LENGTH, &logLength);
    if (status != 0) return EPlayed::kPlayed;

    GLint attached = 0;
    c.host.glGetProgramiv(live, GL_ATTACHED_SHADERS, &attached);
    char log[kLogSize] = "";
    c.host.glGetProgramInfoLog(live, kLogSize, nullptr, log);
    log[kLogSize - 1] = '\0';
    GLuint shaders[2] = {0, 0};
    GLsizei count = 0;
    c.host.glGetAttachedShaders(live, 2, &count, shaders);
    c.player.diagnostics.Message(
        "Playback Link Status: %d <Link Program: %d> Shaders(%d,%d)     \n Log: %s", status,
        static_cast<int>(live), static_cast<int>(shaders[0]), static_cast<int>(shaders[1]), log);
    return EPlayed::kPlayed;
}

EPlayed PlayGlReleaseShaderCompiler(SEs2Play& c, SEs2_glReleaseShaderCompiler) {
    // Kept: its error is dropped; drivers without a compiler refuse it.
    c.host.glReleaseShaderCompiler();
    c.host.glGetError();
    return EPlayed::kPlayed;
}

EPlayed PlayGlShaderBinary(SEs2Play& c, SEs2_glShaderBinary call) {
    const GLsizei count = call.count();
    const auto& recorded = call.shaders();
    const GLsizei length = call.length();
    const SHostData binary = HostData(call.binary(), length, false, false);
    if (recorded.ItemCount() < std::int64_t{count} || !binary.sound) return EPlayed::kFailed;
    CLiveNames live(count);
    for (GLsizei i = 0; i < count; ++i) {
        const SShaderRecord* shader =
            c.names.GetShaderRecord(recorded.GetItem(static_cast<std::uint32_t>(i)));
        if (shader == nullptr) return EPlayed::kFailed;
        live[i] = shader->liveName;
    }
    c.host.glShaderBinary(count, live.Data(), call.binaryFormat(), binary.pointer, length);
    return EPlayed::kPlayed;
}

EPlayed PlayGlShaderSource(SEs2Play& c, SEs2_glShaderSource call) {
    const SShaderRecord* shader = c.names.GetShaderRecord(call.shader());
    if (shader == nullptr) return EPlayed::kFailed;
    const auto& source = call.source();
    const GLchar* text = source.GetCString();
    auto length = static_cast<GLint>(source.length);
    const CEditList& edits = c.player.store->Edits();
    if (c.entry.call->m_edited && edits.enabled) {
        const std::uint8_t* replacement = nullptr;
        std::uint32_t replacementLength = 0;
        bool fromFile = false;
        if (edits.GetTextOverride(c.player.currentCallNumber, replacement, replacementLength,
                                  fromFile) &&
            fromFile) {
            // A host takes no null pointer for a text, be it as short as it may.
            text = replacementLength > 0 ? reinterpret_cast<const GLchar*>(replacement) : "";
            length = static_cast<GLint>(replacementLength);
        }
    }
    c.host.glShaderSource(shader->liveName, 1, &text, &length);
    return EPlayed::kPlayed;
}

EPlayed PlayGlUseProgram(SEs2Play& c, SEs2_glUseProgram call) {
    const SProgramRecord* program = c.names.GetProgramRecord(call.program());
    if (program == nullptr) return EPlayed::kFailed;
    const GLuint live = program->liveName;
    c.host.glUseProgram(live);
    // Kept: no look at its error; after a failed link drivers refuse it each frame.
    c.names.UseProgram(live, true);
    return EPlayed::kLeftOut;
}

}  // namespace kestrail
