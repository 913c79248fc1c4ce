// The header's writer: for tools that edit what a trace disables and overrides.
#include <array>
#include <cstdio>

#include "tracefile/bytes/typed_writes.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kByteOrder = 0xFFFE0100;
constexpr std::uint32_t kWrittenVersion = 14;
constexpr std::uint32_t kWrittenTypeSet = 2;

/// Widths of the type tags in files of the written version; negative for signed types.
constexpr std::array<std::int8_t, 33> kWrittenWidths = {4, -4, 4,  4,  4,  4,  4,  4,  4,  4,  4,
                                                        4, 4,  1,  4,  -1, -2, -4, -4, 1,  2,  4,
                                                        4, 4,  -4, -4, -4, -4, 0,  -4, -4, -8, -8};

}  // namespace

bool CTraceDocument::Save(IOManager& out) const {
    out.Write("Kestrail", 8);
    WriteUInt32(out, kByteOrder);
    WriteUInt32(out, kWrittenVersion);
    WriteBool(out, m_dataFlag);
    WriteBool(out, m_secondFlag);
    WriteUInt32(out, kWrittenTypeSet);
    WriteInt8(out, static_cast<std::int8_t>(kWrittenWidths.size()));
    // Kept: always these, whatever was read; other readers of the header know version 14.
    for (const std::int8_t width : kWrittenWidths) WriteInt8(out, width);
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
