// Shaders, then the programs that link them.

#include <array>
#include <type_traits>
#include <utility>

#include "base/enumerants.h"
#include "transitions/es2_transition_steps.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

void Compile(SEs2Host& host, GLuint live, const SShaderState& shader) {
    const GLchar* source = shader.source->c_str();
    host.glShaderSource(live, 1, &source, nullptr);
    host.glCompileShader(live);
}

GLuint CreateShader(SEs2Transition& t, std::uint32_t name, const SShaderState& shader) {
    const GLuint live = t.host.glCreateShader(shader.type);
    t.names.SetShader(name, live, shader.type);
    t.names.GetShaderRecord(name)->deletePending = shader.deletePending != 0;
    return live;
}

void RecompileIfLost(SEs2Transition& t, GLuint live, const SShaderState& shader) {
    // A host that does not answer has nothing to say against the shader.
    const GLint status = t.answers.ShaderValue(live, GL_COMPILE_STATUS, GL_TRUE);
    if (shader.compiled != 0 && status == GL_FALSE) Compile(t.host, live, shader);
}

/// One shader of the target, whose record of before is `old`, if there is one.
void TransitionShader(SEs2Transition& t, std::uint32_t name, const SShaderState& shader,
                      const SShaderState* old) {
    const bool sameSource = old != nullptr && old->sourceId == shader.sourceId;
    if (sameSource && old->deletePending != 0 && shader.deletePending == 0) {
        const GLuint live = CreateShader(t, name, *old);
        t.names.GetShaderRecord(name)->deletePending = false;
        if (!old->source->empty()) Compile(t.host, live, *old);
        return;
    }
    // A shader that the player has lost is as good as new.
    const SShaderRecord* record = old != nullptr ? t.names.GetShaderRecord(name) : nullptr;
    if (record != nullptr && sameSource) {
        if (shader.deletePending == 0) RecompileIfLost(t, record->liveName, shader);
        return;
    }
    const GLuint live = record != nullptr ? record->liveName : CreateShader(t, name, shader);
    if (!shader.source->empty()) Compile(t.host, live, shader);
}

/// The places of the program's record that the attached shaders belong to.
std::array<std::uint32_t, 2> RecordedOf(SEs2Transition& t, const SAttachedShaders& attached,
                                        const SProgramState& program) {
    const bool fragmentFirst =
        attached.count > 0 &&
        t.answers.ShaderValue(attached.live[0], GL_SHADER_TYPE, 0) == GL_FRAGMENT_SHADER;
    if (fragmentFirst) return {program.fragmentShader, program.vertexShader};
    return {program.vertexShader, program.fragmentShader};
}

bool ShowsAttached(const SShaderState* shader) {
    return shader != nullptr && shader->attachCount > 0;
}

void BindAttributes(SEs2Host& host, GLuint live, const TStateTable<SAttributeState>* attributes) {
    if (attributes == nullptr) return;
    for (std::int32_t i = 0; i < attributes->Count(); ++i) {
        const SAttributeState& attribute = ValueAt(*attributes, i);
        if (attribute.bound == 0) continue;
        host.glBindAttribLocation(live, attributes->KeyAt(i), attribute.name->c_str());
    }
}

/// The one of two entries that takes values of type T.
template <typename T, typename Floats, typename Integers>
auto EntryFor(Floats floats, Integers integers) {
    if constexpr (std::is_same_v<T, GLfloat>) {
        return floats;
    } else {
        return integers;
    }
}

template <typename T>
void SetVectors(SEs2Host& host, GLint at, const SUniformState& uniform, const T* v) {
    const auto size = static_cast<GLsizei>(uniform.values.Count());
    if (uniform.components < 1 || uniform.components > 4 || size < uniform.components) return;
    const GLsizei count = size / uniform.components;
    switch (count > 1 ? uniform.components + 4 : uniform.components) {
        case 1:
            return EntryFor<T>(host.glUniform1f, host.glUniform1i)(at, v[0]);
        case 2:
            return EntryFor<T>(host.glUniform2f, host.glUniform2i)(at, v[0], v[1]);
        case 3:
            return EntryFor<T>(host.glUniform3f, host.glUniform3i)(at, v[0], v[1], v[2]);
        case 4:
            return EntryFor<T>(host.glUniform4f, host.glUniform4i)(at, v[0], v[1], v[2], v[3]);
        case 5:
            return EntryFor<T>(host.glUniform1fv, host.glUniform1iv)(at, count, v);
        case 6:
            return EntryFor<T>(host.glUniform2fv, host.glUniform2iv)(at, count, v);
        case 7:
            return EntryFor<T>(host.glUniform3fv, host.glUniform3iv)(at, count, v);
        default:
            return EntryFor<T>(host.glUniform4fv, host.glUniform4iv)(at, count, v);
    }
}

void SetMatrices(SEs2Host& host, GLint at, const SUniformState& uniform) {
    const GLfloat* v = uniform.values.Floats();
    const auto size = static_cast<GLsizei>(uniform.values.Count());
    switch (uniform.components) {
        case 4:
            return host.glUniformMatrix2fv(at, size / 4, GL_FALSE, v);
        case 9:
            return host.glUniformMatrix3fv(at, size / 9, GL_FALSE, v);
        case 16:
            return host.glUniformMatrix4fv(at, size / 16, GL_FALSE, v);
        default:
            return;
    }
}

void SetUniform(SEs2Host& host, GLint at, const SUniformState& uniform) {
    switch (uniform.kind) {
        case SUniformState::kInteger:
            return SetVectors(host, at, uniform, uniform.values.Integers());
        case SUniformState::kFloat:
            return SetVectors(host, at, uniform, uniform.values.Floats());
        case SUniformState::kMatrix:
            return SetMatrices(host, at, uniform);
        default:
            return;
    }
}

void SetConstantAttributes(SEs2Host& host, const TStateTable<SAttributeState>* attributes) {
    if (attributes == nullptr) return;
    for (std::int32_t i = 0; i < attributes->Count(); ++i) {
        const GLuint index = attributes->KeyAt(i);
        const SAttributeState& attribute = ValueAt(*attributes, i);
        if (std::cmp_less(attribute.values.Count(), attribute.components)) continue;
        const float* v = attribute.values.Floats();
        switch (attribute.components) {
            case 1:
                host.glVertexAttrib1f(index, v[0]);
                break;
            case 2:
                host.glVertexAttrib2f(index, v[0], v[1]);
                break;
            case 3:
                host.glVertexAttrib3f(index, v[0], v[1], v[2]);
                break;
            case 4:
                host.glVertexAttrib4f(index, v[0], v[1], v[2], v[3]);
                break;
            default:
                break;
        }
    }
}

class CProgramTransition {
public:
    explicit CProgramTransition(SEs2Transition& t)
        : m_t(t),
          m_target(t.target),
          m_current(t.current),
          m_host(t.host),
          m_names(t.names),
          m_unchanged(static_cast<std::size_t>(t.target.programs->Count())) {}

    void Run() {
        if (!DropChanged()) return;
        DropGone();
        const auto& programs = *m_target.programs;
        for (std::int32_t i = 0; i < programs.Count(); ++i) {
            const std::uint32_t name = programs.KeyAt(i);
            const bool known = m_unchanged[static_cast<std::size_t>(i)];
            if (!Bring(name, ValueAt(programs, i), known, false)) return;
        }
        if (!Bring(m_target.currentProgram.name, m_target.currentProgram, true, true)) return;
        DeleteReplacedShaders();
    }

private:
    /// Marks what stays, and deletes programs whose shaders are others now. False when one of these
    /// has no record.
    bool DropChanged() {
        const auto& programs = *m_target.programs;
        TKeyIndex<SProgramState> known(*m_current.programs);
        m_kept.resize(static_cast<std::size_t>(m_current.programs->Count()));
        for (std::int32_t i = 0; i < programs.Count(); ++i) {
            const std::uint32_t name = programs.KeyAt(i);
            const std::int32_t place = name != 0 ? known.Find(name, i) : -1;
            if (place < 0) continue;
            const SProgramState& program = ValueAt(programs, i);
            const SProgramState& old = ValueAt(*m_current.programs, place);
            if (old.vertexShader == program.vertexShader &&
                old.fragmentShader == program.fragmentShader) {
                m_unchanged[static_cast<std::size_t>(i)] = true;
                m_kept[static_cast<std::size_t>(place)] = true;
                continue;
            }
            m_host.glUseProgram(0);
            m_names.UseProgram(0, false);
            const SProgramRecord* record = m_names.GetProgramRecord(name);
            if (record == nullptr) return false;
            Delete(name, record->liveName);
        }
        return true;
    }

    void DropGone() {
        const auto& programs = *m_current.programs;
        for (std::int32_t i = 0; i < programs.Count(); ++i) {
            if (m_kept[static_cast<std::size_t>(i)]) continue;
            const SProgramRecord* record = m_names.GetProgramRecord(programs.KeyAt(i));
            if (record == nullptr || record->liveName == 0) continue;
            Delete(programs.KeyAt(i), record->liveName);
        }
    }

    void Delete(std::uint32_t name, GLuint live) {
        if (m_t.answers.IsProgram(live)) m_host.glDeleteProgram(live);
        m_names.DeleteProgram(name);
    }

    /// Makes the program, or finds the one there is, and sets all that belongs to it. `last`: for
    /// the program in use. False when a program that should be there has no record.
    bool Bring(std::uint32_t name, const SProgramState& program, bool known, bool last) {
        if (name == 0) {
            m_host.glUseProgram(0);
            m_names.UseProgram(0, true);
            return true;
        }
        GLuint live = 0;
        if (known) {
            const SProgramRecord* record = m_names.GetProgramRecord(name);
            if (record == nullptr) return false;
            live = record->liveName;
        } else {
            live = m_host.glCreateProgram();
            m_names.SetProgram(name, live);
        }
        AttachShaders(name, live, program);
        const auto* values = m_target.attributeValues->Find(name);
        const TStateTable<SAttributeState>* constants = values != nullptr ? &**values : nullptr;
        if (!last) {
            BindAttributes(m_host, live, constants);
            // Kept: an empty line for each program; readers match it.
            m_t.session.diagnostics.Message("\n");
            // Kept: also what is unchanged; drivers clear uniforms by it, and all are set.
            if (program.linked != 0) {
                m_host.glLinkProgram(live);
                if (m_t.answers.Es2Error() != GL_NO_ERROR) CheckTransitionError(m_t);
            }
        }
        // Kept: behind the link that they are for; tools compare seeks.
        const auto* bindings = m_target.attributeBindings->Find(name);
        BindAttributes(m_host, live, bindings != nullptr ? &**bindings : nullptr);
        if (program.linked != 0) {
            m_host.glValidateProgram(live);
            CheckTransitionError(m_t);
            m_host.glUseProgram(live);
            m_names.UseProgram(live, last);
            SetUniforms(name, live);
        }
        SetConstantAttributes(m_host, constants);
        return true;
    }

    void AttachShaders(std::uint32_t name, GLuint live, const SProgramState& program) {
        const SAttachedShaders attached = m_t.answers.AttachedShaders(live);
        const std::array<std::uint32_t, 2> recorded = RecordedOf(m_t, attached, program);
        for (std::size_t i = 0; std::cmp_less(i, attached.count); ++i) {
            const std::uint32_t shader = recorded[i];
            if (ShowsAttached(m_target.shaders->Find(shader))) continue;
            m_host.glDetachShader(live, attached.live[i]);
            m_names.DetachShader(name, shader);
        }
        for (const std::uint32_t shader : {program.fragmentShader, program.vertexShader}) {
            const SShaderState* state = m_target.shaders->Find(shader);
            const SShaderRecord* record = m_names.GetShaderRecord(shader);
            if (shader == 0 || state == nullptr || record == nullptr) continue;
            if (attached.count == 2 && ShowsAttached(state)) continue;
            m_host.glAttachShader(live, record->liveName);
            m_names.AttachShader(name, shader);
        }
    }

    void SetUniforms(std::uint32_t name, GLuint live) {
        m_names.ClearUniformLocations(live);
        const auto* entry = m_target.uniforms->Find(name);
        if (entry == nullptr) return;
        const TStateTable<SUniformLocation>& locations = *(*entry)->locations;
        for (std::int32_t i = 0; i < locations.Count(); ++i) {
            const SUniformLocation& uniform = ValueAt(locations, i);
            const GLint at = m_t.answers.UniformLocation(live, uniform.name->c_str());
            if (at == -1) {
                // Kept: an answer that nobody takes; tools compare seeks.
                m_t.answers.IsProgram(live);
                continue;
            }
            m_names.SetUniformLocation(live, uniform.location, at);
            SetUniform(m_host, at, *(*entry)->values.Find(locations.KeyAt(i)));
        }
    }

    void DeleteReplacedShaders() {
        const auto& programs = *m_target.programs;
        for (std::int32_t i = 0; i < programs.Count(); ++i) {
            const SProgramState& program = ValueAt(programs, i);
            for (const std::uint32_t name : {program.vertexShader, program.fragmentShader}) {
                const SShaderState* shader = m_target.shaders->Find(name);
                const SShaderState* old = m_current.shaders->Find(name);
                if (shader == nullptr || old == nullptr) continue;
                if (shader->deletePending == 0 || old->deletePending == 0) continue;
                const SShaderRecord* record = m_names.GetShaderRecord(name);
                if (shader->sourceId == old->sourceId || record == nullptr) continue;
                m_host.glDeleteShader(record->liveName);
            }
        }
    }

    SEs2Transition& m_t;
    const CEs2State& m_target;
    const CEs2State& m_current;
    SEs2Host& m_host;
    CEs2Names& m_names;
    std::vector<bool> m_unchanged;  ///< programs of the target
    std::vector<bool> m_kept;       ///< programs of the current record
};

}  // namespace

void TransitionShaders(SEs2Transition& t) {
    const auto& shaders = *t.target.shaders;
    const auto& before = *t.current.shaders;
    TKeyIndex<SShaderState> known(before);
    std::vector<bool> kept(static_cast<std::size_t>(before.Count()));
    for (std::int32_t i = 0; i < shaders.Count(); ++i) {
        const std::uint32_t name = shaders.KeyAt(i);
        const std::int32_t place = known.Find(name, i);
        if (place >= 0) kept[static_cast<std::size_t>(place)] = true;
        TransitionShader(t, name, ValueAt(shaders, i),
                         place >= 0 ? &ValueAt(before, place) : nullptr);
    }
    for (std::int32_t i = 0; i < before.Count(); ++i) {
        if (kept[static_cast<std::size_t>(i)]) continue;
        const std::uint32_t name = before.KeyAt(i);
        const SShaderRecord* record = t.names.GetShaderRecord(name);
        if (record == nullptr) continue;
        t.host.glDeleteShader(record->liveName);
        t.names.DeleteShaderRecord(name);
    }
}

void TransitionPrograms(SEs2Transition& t) {
    CProgramTransition(t).Run();
}

}  // namespace kestrail
