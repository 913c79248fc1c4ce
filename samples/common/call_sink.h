// The one way from a scene's calls to a back end: a call is its identifier, its entry point's name
// and its values, and is written down or issued. What a recorder has to keep track of for that,
// names and memory that the driver reads later, is here too.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "samples/common/back_end.h"
#include "samples/common/values.h"

namespace kestrail::samples {

/// Objects whose names are handed out apart from each other.
enum class EObject {
    Buffers,
    Framebuffers,
    Renderbuffers,
    Textures,
    ShadersAndPrograms,
    VertexArrays,
    Samplers,
};

class CCallSink {
public:
    CCallSink(IBackEnd& backEnd, int clientVersion)
        : m_backEnd(backEnd), m_clientVersion(clientVersion) {}

    bool Open(int width, int height) { return m_backEnd.Open(m_clientVersion, width, height); }
    void Swap() { m_backEnd.Swap(); }
    void Close() { m_backEnd.Close(); }

protected:
    bool Recording() const { return m_backEnd.Trace() != nullptr; }
    int ClientVersion() const { return m_clientVersion; }

    /// A record with the fields that its family begins with.
    CRecordBuilder Begin(std::uint16_t id) const;
    void Add(std::uint16_t id, const CRecordBuilder& record) { m_backEnd.Trace()->Add(id, record); }

    template <typename... Values>
    void Record(std::uint16_t id, const Values&... values) {
        CRecordBuilder record = Begin(id);
        (values.Append(record), ...);
        Add(id, record);
    }

    template <typename Result, typename... Values>
    Result Issue(const char* name, const Values&... values) {
        using Function = Result (*)(decltype(values.Live())...);
        return reinterpret_cast<Function>(m_backEnd.Find(name))(values.Live()...);
    }

    /// A call without a result.
    template <typename... Values>
    void Do(std::uint16_t id, const char* name, const Values&... values) {
        if (Recording()) {
            Record(id, values...);
        } else {
            Issue<void>(name, values...);
        }
    }

    /// A call with a result; `recorded` stands for it in a trace, before the parameters.
    template <typename Returned, typename... Values>
    auto Ask(std::uint16_t id, const char* name, const Returned& recorded,
             const Values&... values) {
        if (!Recording()) return Issue<decltype(recorded.Live())>(name, values...);
        Record(id, recorded, values...);
        return recorded.Live();
    }

    void Generate(std::uint16_t id, const char* name, EObject kind, std::int32_t n,
                  std::uint32_t* names);
    void Delete(std::uint16_t id, const char* name, EObject kind, std::int32_t n,
                const std::uint32_t* names);
    /// A name as a driver might hand it out, taken until it is freed.
    std::uint32_t MakeName(EObject kind);
    void FreeName(EObject kind, std::uint32_t name) { m_names[kind].erase(name); }

    struct SClientArray {
        bool enabled = false;
        std::int32_t size = 4;
        std::uint32_t type = 0;
        std::int32_t stride = 0;
        const void* pointer = nullptr;
        std::uint32_t buffer = 0;
    };
    struct SVertexArray {
        std::map<std::uint32_t, SClientArray> arrays;
        std::uint32_t elementBuffer = 0;
    };

    SVertexArray& VertexArray() { return m_vertexArrays[m_vertexArray]; }
    void UseVertexArray(std::uint32_t name) { m_vertexArray = name; }
    /// Notes what a pointer-setting call said of an array; gives the pointer as a value.
    Place SetArray(std::uint32_t index, std::int32_t size, std::uint32_t type, std::int32_t stride,
                   const void* pointer);
    Place Indices(const void* indices) { return {indices, VertexArray().elementBuffer != 0}; }
    /// The bytes of indices that stand in client memory, and none of those in a buffer.
    void AppendIndices(CRecordBuilder& record, std::int32_t count, std::uint32_t type,
                       const void* indices);
    /// Appends the enabled client arrays, tightly packed, vertices 0 to `highest`.
    void AppendClientArrays(CRecordBuilder& record, std::uint32_t highest);
    std::uint32_t HighestIndex(std::int32_t count, std::uint32_t type, const void* indices);

    std::uint32_t& BoundBuffer(std::uint32_t target);
    Bytes& BufferContents(std::uint32_t target) { return m_bufferContents[BoundBuffer(target)]; }

private:
    IBackEnd& m_backEnd;
    int m_clientVersion;
    std::map<EObject, std::set<std::uint32_t>> m_names;
    std::map<std::uint32_t, Bytes> m_bufferContents;
    std::map<std::uint32_t, std::uint32_t> m_boundBuffers;
    std::map<std::uint32_t, SVertexArray> m_vertexArrays;
    std::uint32_t m_vertexArray = 0;
};

}  // namespace kestrail::samples
