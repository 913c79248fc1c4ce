// The header's writer: for tools that edit what a trace disables and overrides.
#include <cstdio>

#include "tracefile/bytes/file_frame.h"
#include "tracefile/bytes/typed_writes.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {

bool CTraceDocument::Save(IOManager& out) const {
    // Kept: always today's widths, whatever was read; other readers of the header know version 14.
    const std::vector<std::uint8_t> start = TraceFileStart(m_dataFlag, m_secondFlag);
    out.Write(start.data(), static_cast<std::uint32_t>(start.size()));
    // Kept: no edits unless the flag is set, which tools do and reading doesn't.
    if (!m_hasEdits || !m_store) {
        WriteUInt32(out, 0);
        WriteUInt32(out, 0);
    } else {
        const CEditList& edits = m_store->Edits();
        WriteUInt32(out, static_cast<std::uint32_t>(edits.Disabled().size()));
        for (const auto& [number, disabled] : edits.Disabled()) WriteUInt32(out, number);
        WriteUInt32(out, static_cast<std::uint32_t>(edits.Overrides().size()));
        for (const auto& [number, text] : edits.Overrides()) {
            WriteUInt32(out, number);
            WriteUInt32(out, static_cast<std::uint32_t>(text.text.size()));
            out.Write(text.text.data(), static_cast<std::uint32_t>(text.text.size()));
        }
    }
    std::fflush(nullptr);
    return true;
}

}  // namespace kestrail
