#include "exec/es2_names.h"

#include "base/enumerants.h"

namespace kestrail {
namespace {

/// The program's slot for shaders of that type. Anything but a fragment shader counts as vertex.
std::uint32_t& ShaderSlot(SProgramRecord& program, std::uint32_t type) {
    return type == GL_FRAGMENT_SHADER ? program.fragmentShader : program.vertexShader;
}

}  // namespace

CEs2Names::SState CEs2Names::s_state;

void CEs2Names::SetShader(std::uint32_t recorded, std::uint32_t live, std::uint32_t type) {
    SShaderRecord& shader = s_state.shaders.GetOrCreate(recorded);
    shader = SShaderRecord{};
    shader.liveName = live;
    shader.type = type;
}

void CEs2Names::SetProgram(std::uint32_t recorded, std::uint32_t live) {
    s_state.programs.GetOrCreate(recorded).liveName = live;
}

void CEs2Names::AttachShader(std::uint32_t recordedProgram, std::uint32_t recordedShader) {
    SShaderRecord* shader = GetShaderRecord(recordedShader);
    SProgramRecord* program = GetProgramRecord(recordedProgram);
    if (shader == nullptr || program == nullptr) return;
    ++shader->references;
    ShaderSlot(*program, shader->type) = recordedShader;
}

void CEs2Names::DetachShader(std::uint32_t recordedProgram, std::uint32_t recordedShader) {
    SShaderRecord* shader = GetShaderRecord(recordedShader);
    SProgramRecord* program = GetProgramRecord(recordedProgram);
    if (shader == nullptr || program == nullptr) return;
    --shader->references;
    ShaderSlot(*program, shader->type) = 0;
    if (shader->references == 0 && shader->deletePending) DeleteShaderRecord(recordedShader);
}

void CEs2Names::ReleaseShader(std::uint32_t recorded) {
    SShaderRecord* shader = GetShaderRecord(recorded);
    if (shader == nullptr) return;
    if (shader->references == 1 && shader->deletePending) {
        s_state.shaders.Erase(recorded);
    } else {
        --shader->references;
    }
}

void CEs2Names::DeleteProgram(std::uint32_t recordedProgram) {
    SProgramRecord* program = GetProgramRecord(recordedProgram);
    if (program == nullptr) return;
    if (program->liveName == s_state.currentProgram) {
        program->deletePending = true;
        s_state.currentPending = true;
        return;
    }
    const std::uint32_t vertexShader = program->vertexShader;
    const std::uint32_t fragmentShader = program->fragmentShader;
    ReleaseShader(vertexShader);
    if (fragmentShader != vertexShader) ReleaseShader(fragmentShader);
    s_state.programs.Erase(recordedProgram);
}

void CEs2Names::UseProgram(std::uint32_t liveName, bool sweep) {
    if (liveName != s_state.currentProgram) {
        s_state.programsPending = s_state.programsPending || s_state.currentPending;
        s_state.currentPending = false;
    }
    s_state.currentProgram = liveName;
    if (!sweep || !s_state.programsPending) return;
    s_state.programsPending = false;
    auto& programs = s_state.programs;
    for (std::int32_t i = 0; i < programs.Count(); ++i) {
        const SProgramRecord& program = *programs.ValueAt(i);
        if (!program.deletePending) continue;
        if (program.liveName == liveName) {
            s_state.currentPending = true;
            continue;
        }
        DeleteProgram(programs.KeyAt(i));
        --i;
    }
}

void CEs2Names::SetUniformLocation(std::uint32_t liveProgram, std::int32_t recorded,
                                   std::int32_t live) {
    s_state.uniformLocations.GetOrCreate(liveProgram)
        .GetOrCreate(static_cast<std::uint32_t>(recorded)) = live;
}

void CEs2Names::SetAttribLocation(std::uint32_t liveProgram, std::int32_t recorded,
                                  std::int32_t live) {
    s_state.attribLocations.GetOrCreate(liveProgram)
        .GetOrCreate(static_cast<std::uint32_t>(recorded)) = live;
}

void CEs2Names::EraseUniformLocation(std::int32_t recorded) {
    Locations* locations = s_state.uniformLocations.Find(s_state.currentProgram);
    if (locations != nullptr) locations->Erase(static_cast<std::uint32_t>(recorded));
}

void CEs2Names::ClearUniformLocations(std::uint32_t liveProgram) {
    Locations* locations = s_state.uniformLocations.Find(liveProgram);
    if (locations != nullptr) locations->Clear();
}

void CEs2Names::ResetNames() {
    s_state.extensionsResolved = false;
    s_state.vertexArrays.Clear();
    s_state.framebuffers.Clear();
    s_state.renderbuffers.Clear();
    s_state.samplers.Clear();
    s_state.syncs.Clear();
    s_state.textures.Clear();
    s_state.shaders.Clear();
    s_state.programs.Clear();
    s_state.uniformLocations.Clear();
    s_state.buffers.Clear();
    s_state.currentProgram = 0;

    s_state.vertexArrays.Set(0, 0);
    s_state.framebuffers.Set(0, 0);
    s_state.renderbuffers.Set(0, 0);
    s_state.samplers.Set(0, 0);
    s_state.syncs.Set(0, 0);
    s_state.textures.Set(0, 0);
    SetProgram(0, 0);
    s_state.buffers.Set(0, 0);
}

}  // namespace kestrail
