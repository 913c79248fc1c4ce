#include <GLES2/gl2.h>

#include <cstring>
#include <vector>

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

/// Sets a uniform of the current program. One whose location was never asked for has no name to
/// find it by in another run, so it has no place in the record.
template <typename T>
bool StoreUniform(CEs2State& state, std::int32_t location, std::uint32_t kind,
                  std::int32_t components, const T* values, std::uint32_t count) {
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

template <typename T>
constexpr std::uint32_t kKindOf = SUniformState::kInteger;
template <>
constexpr std::uint32_t kKindOf<float> = SUniformState::kFloat;

template <typename T, std::uint32_t N>
bool SetUniform(CEs2State& state, const TGLint& location, const T (&values)[N]) {
    return StoreUniform(state, location.GetValue(), kKindOf<T>, static_cast<std::int32_t>(N),
                        values, N);
}

template <typename Array>
bool SetUniformArray(CEs2State& state, const TGLint& location, const TGLsizei& count,
                     const Array& array, std::uint32_t kind) {
    const std::int32_t items = count.GetValue();
    if (items == 0) return true;
    if (items < 0 || static_cast<std::uint32_t>(items) > array.ItemCount()) return false;
    const typename Array::ValueType* values = array.GetRawArray();
    return StoreUniform(state, location.GetValue(), kind,
                        static_cast<std::int32_t>(Array::kItemSize), values,
                        static_cast<std::uint32_t>(items) * Array::kItemSize);
}

template <typename Array>
bool SetUniforms(CEs2State& state, const TGLint& location, const TGLsizei& count,
                 const Array& array) {
    return SetUniformArray(state, location, count, array, kKindOf<typename Array::ValueType>);
}

template <typename Array>
bool SetMatrices(CEs2State& state, const TGLint& location, const TGLsizei& count,
                 const Array& array) {
    return SetUniformArray(state, location, count, array, SUniformState::kMatrix);
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

template <std::uint32_t N>
bool SetAttribute(CEs2State& state, const TGLuint& index, const float (&values)[N]) {
    return StoreAttribute(state, index.GetValue(), values, N);
}

template <unsigned N>
bool SetAttribute(CEs2State& state, const TGLuint& index, const SPtr<TGLfloat, N, 1>& values) {
    return StoreAttribute(state, index.GetValue(), values.GetRawArray(), N);
}

/// Whether `held` has that text already, so that it needs no copy of its own.
bool SameText(const TShared<CKSTLString>& held, const SString& text) {
    return held->view() == text.GetCString();
}

}  // namespace

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

bool CEs2_glUniform1f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location, {v0.GetValue()});
}
bool CEs2_glUniform1fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform1i_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location, {v0.GetValue()});
}
bool CEs2_glUniform1iv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform2f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location, {v0.GetValue(), v1.GetValue()});
}
bool CEs2_glUniform2fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform2i_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location, {v0.GetValue(), v1.GetValue()});
}
bool CEs2_glUniform2iv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform3f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location, {v0.GetValue(), v1.GetValue(), v2.GetValue()});
}
bool CEs2_glUniform3fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform3i_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location, {v0.GetValue(), v1.GetValue(), v2.GetValue()});
}
bool CEs2_glUniform3iv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform4f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location,
                      {v0.GetValue(), v1.GetValue(), v2.GetValue(), v3.GetValue()});
}
bool CEs2_glUniform4fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniform4i_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniform(state, location,
                      {v0.GetValue(), v1.GetValue(), v2.GetValue(), v3.GetValue()});
}
bool CEs2_glUniform4iv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetUniforms(state, location, count, value);
}

bool CEs2_glUniformMatrix2fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetMatrices(state, location, count, value);
}

bool CEs2_glUniformMatrix3fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetMatrices(state, location, count, value);
}

bool CEs2_glUniformMatrix4fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetMatrices(state, location, count, value);
}

bool CEs2_glVertexAttrib1f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, {x.GetValue()});
}
bool CEs2_glVertexAttrib1fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, v);
}

bool CEs2_glVertexAttrib2f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, {x.GetValue(), y.GetValue()});
}
bool CEs2_glVertexAttrib2fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, v);
}

bool CEs2_glVertexAttrib3f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, {x.GetValue(), y.GetValue(), z.GetValue()});
}
bool CEs2_glVertexAttrib3fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, v);
}

bool CEs2_glVertexAttrib4f_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, {x.GetValue(), y.GetValue(), z.GetValue(), w.GetValue()});
}
bool CEs2_glVertexAttrib4fv_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribute(state, index, v);
}

}  // namespace kestrail
