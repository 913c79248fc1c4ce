#include "samples/common/common_calls.h"

#include <GLES3/gl3.h>

#include <algorithm>
#include <cstring>

namespace kestrail::samples {

namespace {

std::size_t PixelSize(std::uint32_t format, std::uint32_t type) {
    if (type != GL_UNSIGNED_BYTE) return 2;
    switch (format) {
        case GL_RGBA:
            return 4;
        case GL_RGB:
            return 3;
        case GL_LUMINANCE_ALPHA:
        case GL_RG:
            return 2;
        default:
            return 1;
    }
}

}  // namespace

void CCommonCalls::BindBuffer(std::uint32_t target, std::uint32_t buffer) {
    BoundBuffer(target) = buffer;
    Do(Id(3004, 2004), "glBindBuffer", Enum{target}, Uint{buffer});
}

void CCommonCalls::BufferData(std::uint32_t target, std::intptr_t size, const void* data,
                              std::uint32_t usage) {
    const auto bytes = static_cast<std::size_t>(size);
    Bytes& contents = BufferContents(target);
    contents.assign(bytes, 0);
    if (data != nullptr) std::memcpy(contents.data(), data, bytes);
    Do(Id(3007, 2013), "glBufferData", Enum{target}, Sizeiptr{size}, Block{data, bytes},
       Enum{usage});
}

void CCommonCalls::BufferSubData(std::uint32_t target, std::intptr_t offset, std::intptr_t size,
                                 const void* data) {
    const auto bytes = static_cast<std::size_t>(size);
    std::memcpy(BufferContents(target).data() + offset, data, bytes);
    Do(Id(3008, 2014), "glBufferSubData", Enum{target}, Intptr{offset}, Sizeiptr{size},
       Block{data, bytes});
}

void CCommonCalls::DrawArrays(std::uint32_t mode, std::int32_t first, std::int32_t count) {
    const std::uint16_t id = Id(3036, 2041);
    if (!Recording()) return Issue<void>("glDrawArrays", Enum{mode}, Int{first}, Sizei{count});
    CRecordBuilder record = Begin(id).Enum(mode).Int(first).Sizei(count);
    AppendClientArrays(record, static_cast<std::uint32_t>(first + count - 1));
    Add(id, record);
}

void CCommonCalls::DrawElements(std::uint32_t mode, std::int32_t count, std::uint32_t type,
                                const void* indices) {
    const std::uint16_t id = Id(3037, 2042);
    const Place place = Indices(indices);
    if (!Recording()) {
        return Issue<void>("glDrawElements", Enum{mode}, Sizei{count}, Enum{type}, place);
    }
    CRecordBuilder record = Begin(id).Enum(mode).Sizei(count).Enum(type);
    AppendIndices(record, count, type, indices);
    place.Append(record);
    AppendClientArrays(record, HighestIndex(count, type, indices));
    Add(id, record);
}

void CCommonCalls::PixelStorei(std::uint32_t name, std::int32_t value) {
    if (name == GL_UNPACK_ALIGNMENT) m_unpackAlignment = value;
    Do(Id(3103, 2091), "glPixelStorei", Enum{name}, Int{value});
}

Bytes CCommonCalls::CapturePixels(std::int32_t width, std::int32_t rows, std::uint32_t format,
                                  std::uint32_t type, const void* pixels) const {
    if (pixels == nullptr) return {};
    const std::size_t row = static_cast<std::size_t>(width) * PixelSize(format, type);
    const auto alignment = static_cast<std::size_t>(m_unpackAlignment);
    const std::size_t padded = (row + alignment - 1) / alignment * alignment;
    const auto height = static_cast<std::size_t>(rows);
    Bytes captured(height * padded);
    std::memcpy(captured.data(), pixels, (height - 1) * padded + row);
    return captured;
}

void CCommonCalls::TexImage2D(std::uint32_t target, std::int32_t level,
                              std::uint32_t internalFormat, std::int32_t width, std::int32_t height,
                              std::uint32_t format, std::uint32_t type, const void* pixels) {
    const std::uint16_t id = Id(3133, 2106);
    if (!Recording()) {
        return Issue<void>("glTexImage2D", Enum{target}, Int{level}, Format{internalFormat},
                           Sizei{width}, Sizei{height}, Int{0}, Enum{format}, Enum{type},
                           Block{pixels, 0});
    }
    const Bytes captured = CapturePixels(width, height, format, type, pixels);
    Record(id, Enum{target}, Int{level}, Format{internalFormat}, Sizei{width}, Sizei{height},
           Int{0}, Enum{format}, Enum{type},
           Block{pixels == nullptr ? nullptr : captured.data(), captured.size()},
           Int{m_unpackAlignment});
}

void CCommonCalls::TexSubImage2D(std::uint32_t target, std::int32_t level, std::int32_t xoffset,
                                 std::int32_t yoffset, std::int32_t width, std::int32_t height,
                                 std::uint32_t format, std::uint32_t type, const void* pixels) {
    const Bytes captured = CapturePixels(width, height, format, type, pixels);
    Do(Id(3140, 2111), "glTexSubImage2D", Enum{target}, Int{level}, Int{xoffset}, Int{yoffset},
       Sizei{width}, Sizei{height}, Enum{format}, Enum{type},
       Block{captured.data(), captured.size()});
}

}  // namespace kestrail::samples
