#include "calls/model/array_values.h"

namespace kestrail {

bool WriteArrayHead(CRecordWriter& out, const TPointer& pointer, std::uint32_t count,
                    std::uint32_t items) {
    const std::ptrdiff_t start = out.Size();
    out << pointer;
    out.UInt32(items != 0 ? items : count);
    if (items != 0) return true;
    if (pointer.value != 0) out.Starve(start);
    out.Claim(count);
    return false;
}

void SArrayPtr<SString, 1, 1>::Read(CTrace& trace) {
    trace >> pointer;
    count = ReadStored(trace, 0, std::uint32_t{});
    CheckRecordedSize(trace, count);
    m_elements.clear();
    // Kept: as for any array.
    if (count == 0) pointer.value = 0;
    if (pointer.value == 0) return;
    // Each string takes bytes of the record, so the array grows with what the record gives and not
    // with what the count claims.
    for (std::uint32_t i = 0; i < count && trace.RecordRemaining() > 0; ++i) {
        m_elements.emplace_back().Read(trace);
    }
}

void SArrayPtr<SString, 1, 1>::Write(CRecordWriter& out) const {
    if (!WriteArrayHead(out, pointer, count, ElementCount())) return;
    for (const SString& element : m_elements) out << element;
}

void SArrayPtr<SString, 1, 1>::AppendText(TextWriter& out) const {
    if (m_elements.empty()) return pointer.AppendText(out);
    AppendItems(out, ElementCount(), [this](TextWriter& text, std::uint32_t i, std::size_t) {
        m_elements[i].AppendText(text);
    });
}

void SArrayPtr<SString, 1, 1>::AppendNumericText(TextWriter& out) const {
    if (m_elements.empty()) return pointer.AppendText(out);
    out.Append("{ ");
    for (std::uint32_t i = 0; i < ElementCount(); ++i) {
        if (i != 0) out.Append(", ");
        m_elements[i].AppendNumericText(out);
    }
    out.Append(" }");
}

void SArrayPtr<SString, 1, 1>::AppendDetailText(TextWriter& out) const {
    if (m_elements.empty()) return pointer.AppendText(out);
    for (std::uint32_t i = 0; i < ElementCount(); ++i) {
        if (i != 0) out.Append('\n');
        m_elements[i].AppendDetailText(out);
    }
}

}  // namespace kestrail
