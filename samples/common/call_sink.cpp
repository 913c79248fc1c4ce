#include "samples/common/call_sink.h"

#include <GLES2/gl2.h>

#include <algorithm>
#include <cstring>

namespace kestrail::samples {

namespace {

// Unlike the numbers that drivers begin with, so that a name passed untranslated shows. Samplers
// are the exception: the player sets their parameters by the recorded name.
constexpr std::uint32_t firstName = 11;
constexpr std::uint32_t firstSampler = 1;

constexpr std::uint8_t es1Selector = 1;
constexpr std::uint8_t es2Selector = 2;

std::size_t ComponentSize(std::uint32_t type) {
    switch (type) {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:
            return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT:
            return 2;
        default:
            return 4;
    }
}

std::uint32_t IndexAt(const std::uint8_t* indices, std::uint32_t type, std::size_t i) {
    std::uint32_t index = 0;
    const std::size_t size = ComponentSize(type);
    std::memcpy(&index, indices + size * i, size);
    return index;
}

}  // namespace

CRecordBuilder CCallSink::Begin(std::uint16_t id) const {
    const bool extension = id > 4000 && id < 5000;
    if (!extension) return m_backEnd.Trace()->Gl();
    return m_backEnd.Trace()->Ext(0, m_clientVersion == 1 ? es1Selector : es2Selector);
}

std::uint32_t CCallSink::MakeName(EObject kind) {
    std::set<std::uint32_t>& used = m_names[kind];
    std::uint32_t name = kind == EObject::Samplers ? firstSampler : firstName;
    while (!used.insert(name).second) ++name;
    return name;
}

void CCallSink::Generate(std::uint16_t id, const char* name, EObject kind, std::int32_t n,
                         std::uint32_t* names) {
    if (Recording()) {
        std::generate_n(names, n, [&] { return MakeName(kind); });
    }
    Do(id, name, Sizei{n}, Uints{names, static_cast<std::size_t>(n)});
}

void CCallSink::Delete(std::uint16_t id, const char* name, EObject kind, std::int32_t n,
                       const std::uint32_t* names) {
    for (std::int32_t i = 0; i < n; ++i) FreeName(kind, names[i]);
    Do(id, name, Sizei{n}, Uints{names, static_cast<std::size_t>(n)});
}

std::uint32_t& CCallSink::BoundBuffer(std::uint32_t target) {
    if (target == GL_ELEMENT_ARRAY_BUFFER) return VertexArray().elementBuffer;
    return m_boundBuffers[target];
}

Place CCallSink::SetArray(std::uint32_t index, std::int32_t size, std::uint32_t type,
                          std::int32_t stride, const void* pointer) {
    SClientArray& array = VertexArray().arrays[index];
    const std::uint32_t buffer = BoundBuffer(GL_ARRAY_BUFFER);
    array = {array.enabled, size, type, stride, pointer, buffer};
    return {pointer, buffer != 0};
}

void CCallSink::AppendIndices(CRecordBuilder& record, std::int32_t count, std::uint32_t type,
                              const void* indices) {
    const Place place = Indices(indices);
    const std::size_t size = static_cast<std::size_t>(count) * ComponentSize(type);
    record.Data(place.Recorded(), indices, place.inBuffer ? 0 : size);
}

std::uint32_t CCallSink::HighestIndex(std::int32_t count, std::uint32_t type, const void* indices) {
    const auto* first = static_cast<const std::uint8_t*>(indices);
    if (VertexArray().elementBuffer != 0) {
        first = BufferContents(GL_ELEMENT_ARRAY_BUFFER).data() +
                reinterpret_cast<std::uintptr_t>(indices);
    }
    std::uint32_t highest = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        highest = std::max(highest, IndexAt(first, type, i));
    }
    return highest;
}

void CCallSink::AppendClientArrays(CRecordBuilder& record, std::uint32_t highest) {
    for (const auto& [index, array] : VertexArray().arrays) {
        if (!array.enabled || array.buffer != 0 || array.pointer == nullptr) continue;
        const std::size_t vertex = static_cast<std::size_t>(array.size) * ComponentSize(array.type);
        const std::size_t stride =
            array.stride == 0 ? vertex : static_cast<std::size_t>(array.stride);
        Bytes packed;
        for (std::size_t i = 0; i <= highest; ++i) {
            const auto* source = static_cast<const std::uint8_t*>(array.pointer) + i * stride;
            packed.insert(packed.end(), source, source + vertex);
        }
        record.ClientArray(index, clientAddress, packed);
    }
}

}  // namespace kestrail::samples
