#include "calls/model/egl_values.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "base/enumerants.h"
#include "calls/text/format_kind.h"
#include "tracefile/bytes/typed_reads.h"

namespace kestrail {
namespace {

std::uint64_t Widen(std::int32_t value) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

}  // namespace

SEglAttribList::SEglAttribList(const std::int32_t* list) {
    if (list == nullptr) return;
    std::uint32_t end = 0;
    while (list[end] != EGL_NONE) end += 2;
    count = end + 1;
    pointer.value = 1;
    m_items = count;
    m_elements.reset(new std::int32_t[count]);
    std::memcpy(m_elements.get(), list, count * sizeof(std::int32_t));
}

void SEglAttribList::GetAttribute(std::int32_t name, std::int32_t& out) const {
    for (std::uint32_t i = 0; i + 1 < ItemCount(); i += 2) {
        if (m_elements[i] == name) {
            out = m_elements[i + 1];
            return;
        }
    }
}

void SEglAttribList::Read(CTrace& trace) {
    SArrayPtr::Read(trace);
    if (!m_elements) return;
    // A host walks the list in pairs to its end mark, which a damaged record may lack: as a name or
    // as the value of a last lone name, two marks behind the elements end every list.
    const std::size_t items = m_items;
    std::unique_ptr<std::int32_t[]> ended(new std::int32_t[items + 2]);
    std::memcpy(ended.get(), m_elements.get(), items * sizeof(std::int32_t));
    ended[items] = EGL_NONE;
    ended[items + 1] = EGL_NONE;
    m_elements = std::move(ended);
}

void SEglAttribList::AppendPair(TextWriter& out, std::uint32_t index) const {
    const std::int32_t name = m_elements[index];
    int kind = kKindEglEnum;
    if (name == EGL_SURFACE_TYPE) kind = kKindEglSurfaceType;
    if (name == EGL_RENDERABLE_TYPE) kind = kKindEglRenderableType;
    AppendKind(out, kKindEglEnum, Widen(name));
    out.Append(" : ");
    AppendKind(out, kind, Widen(m_elements[index + 1]));
}

void SEglAttribList::AppendText(TextWriter& out) const {
    constexpr std::size_t kLimit = 40;
    constexpr std::size_t kShown = 37;
    if (!m_elements) return pointer.AppendText(out);
    const std::size_t start = out.Size();
    out.Append("{ ");
    for (std::uint32_t i = 0; i + 1 < m_items; i += 2) {
        AppendPair(out, i);
        if (out.Size() - start > kLimit) {
            out.Truncate(start + kShown);
            out.Append("...");
            break;
        }
        if (i + 3 < m_items) out.Append(", ");
    }
    out.Append(" }");
}

void SEglAttribList::AppendNumericText(TextWriter& out) const {
    if (!m_elements) return pointer.AppendText(out);
    const char* edge = count > 2 ? "\n" : "";
    out.Append("{ ");
    out.Append(edge);
    for (std::uint32_t i = 0; i + 1 < m_items; i += 2) {
        if (i != 0) out.Append(",\n");
        AppendPair(out, i);
    }
    out.Append(edge);
    out.Append(" }");
}

void SEglAttribList::AppendDetailText(TextWriter& out) const {
    if (!m_elements) return pointer.AppendText(out);
    for (std::uint32_t i = 0; i + 1 < m_items; i += 2) {
        AppendPair(out, i);
        out.Append('\n');
    }
}

void SEglNativeWindowDesc::Read(CTrace& trace) {
    trace >> handle;
    width = static_cast<std::int32_t>(ReadUInt32(trace.Stream(), 0, true));
    height = static_cast<std::int32_t>(ReadUInt32(trace.Stream(), 0, true));
}

void SEglNativeWindowDesc::Write(CRecordWriter& out) const {
    out << handle;
    out.UInt32(static_cast<std::uint32_t>(width));
    out.UInt32(static_cast<std::uint32_t>(height));
}

void SEglNativePixmapDesc::Read(CTrace& trace) {
    trace >> handle;
    // Kept: once in a trace; recordings have the length of the first pixmap alone.
    std::optional<std::uint32_t>& length = trace.PixmapLength();
    if (!length) length = ReadUInt32(trace.Stream(), 0, true);
    const std::uint32_t held = std::min(*length, trace.RecordRemaining());
    data.resize(held);
    trace.Stream().Read(data.data(), held, true);
}

void SEglNativePixmapDesc::Write(CRecordWriter& out) const {
    out << handle;
    std::optional<std::uint32_t>& length = out.PixmapLength();
    if (!length) out.UInt32(length.emplace(data.length()));
    const std::uint32_t held = std::min(*length, data.length());
    out.Bytes(data.c_str(), held);
    out.Zeros(*length - held);
}

}  // namespace kestrail
