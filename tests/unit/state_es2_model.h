// A model of an ES2 or ES3 context that tests bring about call by call.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "calls/model/factories.h"
#include "state/es2/es2_state.h"
#include "tests/unit/unit_support.h"

namespace kestrail {

inline CRecordBuilder Gl() {
    return Record().Enum(0);
}

/// A record and the calls whose bytes it refers to.
class CModel {
public:
    /// Applies the call of a record that is read to its end.
    bool Do(std::uint16_t id, const CRecordBuilder& record) {
        CRecordStream stream(record);
        const bool done = DoNext(id, stream.Trace());
        EXPECT_EQ(stream.Consumed(), record.Content().size()) << id;
        return done;
    }
    /// Applies the call whose record comes next.
    bool DoNext(std::uint16_t id, CTrace& trace) {
        m_calls.push_back(id < 5000 ? CreateEs2Call(id, trace) : CreateEs3Call(id, trace));
        return Again();
    }
    /// The last call once more.
    bool Again() {
        if (auto* call = dynamic_cast<CEs2Call*>(m_calls.back().get())) {
            return call->UpdateState(state);
        }
        return dynamic_cast<CEs3Call&>(*m_calls.back()).UpdateState(state);
    }
    bool Enum(std::uint16_t id, std::uint32_t value) { return Do(id, Gl().Enum(value)); }
    bool Uint(std::uint16_t id, std::uint32_t value) { return Do(id, Gl().Uint(value)); }
    bool Names(std::uint16_t id, const std::vector<std::int64_t>& names) {
        return Do(id, Gl().Sizei(static_cast<std::int64_t>(names.size()))
                          .Array(tag::Uint, names.empty() ? 0 : 9, names));
    }
    bool Bind(std::uint16_t id, std::uint32_t target, std::uint32_t name) {
        return Do(id, Gl().Enum(target).Uint(name));
    }
    bool CreateShader(std::uint32_t name, std::uint32_t type) {
        return Do(2027, Gl().Uint(name).Enum(type));
    }
    bool Pair(std::uint16_t id, std::uint32_t program, std::uint32_t shader) {
        return Do(id, Gl().Uint(program).Uint(shader));
    }
    bool Locate(std::uint32_t program, const char* name, std::int32_t location) {
        return Do(2077, Gl().Int(location).Uint(program).String(7, name));
    }

private:
    std::vector<std::unique_ptr<CApiCall>> m_calls;

public:
    CEs2State state;
};

/// Whether both share all their tables: then nothing was written in between.
inline bool SameTables(const CEs2State& a, const CEs2State& b) {
    return a.buffers.SameAs(b.buffers) && a.framebuffers.SameAs(b.framebuffers) &&
           a.programs.SameAs(b.programs) && a.renderbuffers.SameAs(b.renderbuffers) &&
           a.shaders.SameAs(b.shaders) && a.textures.SameAs(b.textures) &&
           a.uniforms.SameAs(b.uniforms) && a.attributeValues.SameAs(b.attributeValues) &&
           a.attributeBindings.SameAs(b.attributeBindings) && a.vertexArrays.SameAs(b.vertexArrays);
}

inline std::string BytesOf(const CSharedBytes& bytes) {
    std::vector<std::uint8_t> room;
    const std::uint8_t* start = bytes.Get(room);
    return std::string(start, start + bytes.Size());
}

inline Bytes Text(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

}  // namespace kestrail
