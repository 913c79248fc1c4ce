#include "exec/es2_names.h"

#include "base/enumerants.h"

namespace kestrail {
namespace {

/// The program's slot for shaders of that type. Anything but a fragment shader counts as vertex.
std::uint32_t& ShaderSlot(SProgramRecord& program, std::uint32_t type) {
    return type == GL_FRAGMENT_SHADER ? program.fragmentShader : program.vertexShader;
}

}  // namespace

void CEs2Names::SetShader(std::uint32_t recorded, std::uint32_t live, std::uint32_t type) {
    SShaderRecord& shader = m_shaders.GetOrCreate(recorded);
    shader = SShaderRecord{};
    shader.liveName = live;
    shader.type = type;
}

void CEs2Names::SetProgram(std::uint32_t recorded, std::uint32_t live) {
    m_programs.GetOrCreate(recorded).liveName = live;
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
        m_shaders.Erase(recorded);
    } else {
        --shader->references;
    }
}

void CEs2Names::DeleteProgram(std::uint32_t recordedProgram) {
    SProgramRecord* program = GetProgramRecord(recordedProgram);
    if (program == nullptr) return;
    if (program->liveName == m_currentProgram) {
        program->deletePending = true;
        m_currentPending = true;
        return;
    }
    const std::uint32_t vertexShader = program->vertexShader;
    const std::uint32_t fragmentShader = program->fragmentShader;
    ReleaseShader(vertexShader);
    if (fragmentShader != vertexShader) ReleaseShader(fragmentShader);
    m_programs.Erase(recordedProgram);
}

void CEs2Names::UseProgram(std::uint32_t liveName, bool sweep) {
    if (liveName != m_currentProgram) {
        m_programsPending = m_programsPending || m_currentPending;
        m_currentPending = false;
    }
    m_currentProgram = liveName;
    if (!sweep || !m_programsPending) return;
    m_programsPending = false;
    auto& programs = m_programs;
    for (std::int32_t i = 0; i < programs.Count(); ++i) {
        const SProgramRecord& program = *programs.ValueAt(i);
        if (!program.deletePending) continue;
        if (program.liveName == liveName) {
            m_currentPending = true;
            continue;
        }
        DeleteProgram(programs.KeyAt(i));
        --i;
    }
}

void CEs2Names::SetUniformLocation(std::uint32_t liveProgram, std::int32_t recorded,
                                   std::int32_t live) {
    m_uniformLocations.GetOrCreate(liveProgram).GetOrCreate(static_cast<std::uint32_t>(recorded)) =
        live;
}

void CEs2Names::SetAttribLocation(std::uint32_t liveProgram, std::int32_t recorded,
                                  std::int32_t live) {
    m_attribLocations.GetOrCreate(liveProgram).GetOrCreate(static_cast<std::uint32_t>(recorded)) =
        live;
}

void CEs2Names::EraseUniformLocation(std::int32_t recorded) {
    Locations* locations = m_uniformLocations.Find(m_currentProgram);
    if (locations != nullptr) locations->Erase(static_cast<std::uint32_t>(recorded));
}

void CEs2Names::ClearUniformLocations(std::uint32_t liveProgram) {
    Locations* locations = m_uniformLocations.Find(liveProgram);
    if (locations != nullptr) locations->Clear();
}

void CEs2Names::ResetNames() {
    m_extensionsResolved = false;
    m_vertexArrays.Clear();
    m_framebuffers.Clear();
    m_renderbuffers.Clear();
    m_samplers.Clear();
    m_syncs.Clear();
    m_textures.Clear();
    m_shaders.Clear();
    m_programs.Clear();
    m_uniformLocations.Clear();
    m_buffers.Clear();
    m_currentProgram = 0;

    m_vertexArrays.Set(0, 0);
    m_framebuffers.Set(0, 0);
    m_renderbuffers.Set(0, 0);
    m_samplers.Set(0, 0);
    m_syncs.Set(0, 0);
    m_textures.Set(0, 0);
    SetProgram(0, 0);
    m_buffers.Set(0, 0);
}

}  // namespace kestrail
