#include <cstring>
#include <vector>

#include "base/enumerants.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_updates.h"

namespace kestrail {
namespace {

/// One program less has the shader. It goes with the last one when it is to be deleted.
void ReleaseShader(CEs2State& state, std::uint32_t name) {
    const SShaderState* shader = name != 0 ? state.shaders->Find(name) : nullptr;
    if (shader == nullptr || shader->attachCount <= 0) return;
    if (shader->attachCount == 1 && shader->deletePending != 0) {
        state.shaders.Write().Erase(name);
    } else {
        --state.shaders.Write().Find(name)->attachCount;
    }
}

void RemoveProgram(CEs2State& state, std::uint32_t name) {
    const SProgramState* program = state.programs->Find(name);
    if (program == nullptr) return;
    // In the order of the table, in which the last record takes the place of an erased one.
    std::uint32_t first = program->vertexShader;
    std::uint32_t second = program->fragmentShader;
    if (state.shaders->IndexOf(second) < state.shaders->IndexOf(first)) std::swap(first, second);
    ReleaseShader(state, first);
    ReleaseShader(state, second);
    state.programs.Write().Erase(name);
    if (state.attributeValues->Find(name) != nullptr) state.attributeValues.Write().Erase(name);
}

/// The slot of a program that takes shaders of `type`; null for a type that it has no slot for.
std::uint32_t* ShaderSlot(SProgramState& program, std::uint32_t type) {
    if (type == GL_VERTEX_SHADER) return &program.vertexShader;
    return type == GL_FRAGMENT_SHADER ? &program.fragmentShader : nullptr;
}

/// Whether `held` has that text already, so that it needs no copy of its own.
bool SameText(const TShared<CKSTLString>& held, const SString& text) {
    return held->view() == text.GetCString();
}

}  // namespace

bool StoreUniform(CEs2State& state, std::int32_t location, std::uint32_t kind,
                  std::int32_t components, const void* values, std::uint32_t count) {
    if (location == -1) return true;
    const auto key = static_cast<std::uint32_t>(location);
    const std::uint32_t program = state.currentProgram.name;
    const TShared<SProgramUniforms>* uniforms = state.uniforms->Find(program);
    const SUniformState* held = uniforms != nullptr ? (*uniforms)->values.Find(key) : nullptr;
    if (held == nullptr) return true;
    if (held->kind == kind && held->components == components && held->values.Are(values, count)) {
        return true;
    }
    SUniformState& uniform = *state.uniforms.Write().Find(program)->Write().values.Find(key);
    uniform.kind = kind;
    uniform.components = components;
    uniform.values.Set(values, count);
    return true;
}

// Kept: constants are held by program, though a context has one set; tools compare seeks.
bool StoreAttribute(CEs2State& state, std::uint32_t index, const float* values,
                    std::uint32_t count) {
    if (values == nullptr || index >= SVertexArrayState::kMaxAttributes) return false;
    const std::uint32_t program = state.currentProgram.name;
    if (const auto* attributes = state.attributeValues->Find(program)) {
        const SAttributeState* held = (*attributes)->Find(index);
        if (held != nullptr && held->values.Are(values, count)) return true;
    }
    SAttributeState& attribute =
        state.attributeValues.Write().GetOrCreate(program).Write().GetOrCreate(index);
    attribute.index = index;
    attribute.components = static_cast<std::int32_t>(count);
    attribute.values.Set(values, count);
    return true;
}

bool CEs2_glCreateShader_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = result.GetValue();
    if (name == 0) return false;
    SShaderState& shader = state.shaders.Write().GetOrCreate(name);
    shader = SShaderState{};
    shader.name = name;
    shader.type = type.GetValue();
    return true;
}

bool CEs2_glShaderSource_v1::UpdateState(CEs2State& state, SUpdates&) {
    const SShaderState* found = state.shaders->Find(shader.GetValue());
    if (found == nullptr) return false;
    const auto id = reinterpret_cast<std::uintptr_t>(source.GetCString());
    if (source.length == 0 || found->sourceId == id) return true;
    SShaderState& target = *state.shaders.Write().Find(shader.GetValue());
    target.source = TShared<CKSTLString>(CKSTLString(source.GetCString(), source.length));
    target.sourceId = id;
    target.sourceLength = source.length;
    return true;
}

bool CEs2_glCompileShader_v1::UpdateState(CEs2State& state, SUpdates&) {
    const SShaderState* found = state.shaders->Find(shader.GetValue());
    if (found == nullptr) return false;
    if (found->compiled == 0) state.shaders.Write().Find(shader.GetValue())->compiled = 1;
    state.shaderCompilerReleased = 0;
    return true;
}

bool CEs2_glReleaseShaderCompiler_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.shaderCompilerReleased = 1;
    return true;
}

bool CEs2_glDeleteShader_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = shader.GetValue();
    const SShaderState* found = state.shaders->Find(name);
    if (found == nullptr) return false;
    if (found->attachCount == 0) {
        state.shaders.Write().Erase(name);
    } else if (found->deletePending == 0) {
        state.shaders.Write().Find(name)->deletePending = 1;
    }
    return true;
}

bool CEs2_glCreateProgram_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = result.GetValue();
    if (name == 0) return false;
    SProgramState& program = state.programs.Write().GetOrCreate(name);
    program = SProgramState{};
    program.name = name;
    return true;
}

bool CEs2_glAttachShader_v1::UpdateState(CEs2State& state, SUpdates&) {
    if (state.programs->Find(program.GetValue()) == nullptr ||
        state.shaders->Find(shader.GetValue()) == nullptr) {
        return false;
    }
    SShaderState& attached = *state.shaders.Write().Find(shader.GetValue());
    ++attached.attachCount;
    SProgramState& target = *state.programs.Write().Find(program.GetValue());
    if (std::uint32_t* slot = ShaderSlot(target, attached.type)) *slot = attached.name;
    return true;
}

bool CEs2_glDetachShader_v1::UpdateState(CEs2State& state, SUpdates&) {
    const SShaderState* found = state.shaders->Find(shader.GetValue());
    if (found == nullptr || state.programs->Find(program.GetValue()) == nullptr) return false;
    SProgramState& target = *state.programs.Write().Find(program.GetValue());
    if (std::uint32_t* slot = ShaderSlot(target, found->type)) *slot = 0;
    ReleaseShader(state, shader.GetValue());
    return true;
}

bool CEs2_glLinkProgram_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = program.GetValue();
    const SProgramState* found = state.programs->Find(name);
    if (found == nullptr) return false;
    if (found->linked == 0) state.programs.Write().Find(name)->linked = 1;
    // Kept: a link puts bindings in the place of constant values; tools compare seeks.
    if (const auto* bindings = state.attributeBindings->Find(name)) {
        const auto* values = state.attributeValues->Find(name);
        if (values == nullptr || !values->SameAs(*bindings)) {
            state.attributeValues.Write().GetOrCreate(name) = *bindings;
        }
    } else if (state.attributeValues->Find(name) != nullptr) {
        state.attributeValues.Write().Erase(name);
    }
    return true;
}

bool CEs2_glUseProgram_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = program.GetValue();
    if (state.programs->Find(name) == nullptr) return false;
    if (state.currentProgramDeletePending != 0 && name != state.currentProgram.name) {
        state.currentProgramDeletePending = 0;
        RemoveProgram(state, state.currentProgram.name);
    }
    state.currentProgram = *state.programs->Find(name);
    return true;
}

bool CEs2_glDeleteProgram_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = program.GetValue();
    if (name == 0) return true;
    if (state.programs->Find(name) == nullptr) return false;
    if (name != state.currentProgram.name) {
        RemoveProgram(state, name);
        return true;
    }
    state.currentProgramDeletePending = 1;
    state.currentProgram.deletePending = 1;
    state.programs.Write().Find(name)->deletePending = 1;
    return true;
}

bool CEs2_glBindAttribLocation_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t key = index.GetValue();
    if (key >= SVertexArrayState::kMaxAttributes) return false;
    if (const auto* bindings = state.attributeBindings->Find(program.GetValue())) {
        const SAttributeState* held = (*bindings)->Find(key);
        if (held != nullptr && held->bound != 0 && SameText(held->name, name)) return true;
    }
    SAttributeState& binding =
        state.attributeBindings.Write().GetOrCreate(program.GetValue()).Write().GetOrCreate(key);
    binding.index = key;
    binding.bound = 1;
    binding.name = TShared<CKSTLString>(CKSTLString(name.GetCString()));
    return true;
}

bool CEs2_glGetUniformLocation_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::int32_t location = result.GetValue();
    if (location == -1 || name.GetCString()[0] == '\0') return true;
    const auto key = static_cast<std::uint32_t>(location);
    if (const auto* uniforms = state.uniforms->Find(program.GetValue())) {
        const SUniformLocation* held = (*uniforms)->locations->Find(key);
        if (held != nullptr && held->name->view() == name.GetCString()) return true;
    }
    SProgramUniforms& uniforms = state.uniforms.Write().GetOrCreate(program.GetValue()).Write();
    uniforms.values.GetOrCreate(key);
    SUniformLocation& made = uniforms.locations.Write().GetOrCreate(key);
    made.location = made.liveLocation = location;
    made.name = TShared<CKSTLString>(CKSTLString(name.GetCString()));
    return true;
}

}  // namespace kestrail
