// What stands before and behind the records of a trace: header and footer.
#include <algorithm>
#include <cstring>

#include "tracefile/bytes/typed_reads.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

constexpr char kMagic[] = {'K', 'e', 's', 't', 'r', 'a', 'i', 'l'};
constexpr std::uint32_t kByteOrder = 0xFFFE0100;
constexpr std::uint32_t kOtherByteOrder = 0x0001FEFF;
constexpr std::uint32_t kOldestVersion = 7;
constexpr std::int32_t kFooterSize = 10;

}  // namespace

bool CTraceDocument::ReadTraceStart() {
    constexpr std::uint32_t kFirstWithFooter = 12;
    if (!ReadFileHeader()) return false;
    m_stateOffset = kNoFooter;
    m_firstRecordOffset = m_stream.Tell();
    if (m_version >= kFirstWithFooter) ReadFooter();
    return true;
}

bool CTraceDocument::ReadFileHeader() {
    constexpr std::uint32_t kFirstWithSecondFlag = 11;
    constexpr std::uint32_t kFirstWithEdits = 13;
    char magic[sizeof(kMagic)] = {};
    m_stream.Read(magic, sizeof(magic), true);
    if (std::memcmp(magic, kMagic, sizeof(kMagic)) != 0) {
        // Kept: this and the refusals below end in an empty line; readers match it.
        m_diagnostics.Tell(EDiagnostic::kError, "Unrecognized file type.\n");
        return false;
    }
    const std::uint32_t order = ReadUInt32(m_stream, 0, true);
    // Kept: the other order passes and isn't swapped; such recordings end as damaged ones.
    if (order != kByteOrder && order != kOtherByteOrder) {
        m_diagnostics.Tell(EDiagnostic::kError, "Unsupported trace endianness.\n");
        return false;
    }
    m_version = ReadUInt32(m_stream, 0, true);
    if (m_version < kOldestVersion) {
        m_diagnostics.Tell(EDiagnostic::kError, "Unsupported file format version...\n");
        return false;
    }
    const std::uint8_t dataFlag = ReadBool(m_stream, 1, true);
    m_dataFlag = dataFlag == 1;
    if (!m_dataFlag) {
        m_diagnostics.Tell(EDiagnostic::kError,
                           "Trace file was recorded with no data, unable to replay.\n");
        return false;
    }
    m_secondFlag = false;
    if (m_version >= kFirstWithSecondFlag) m_secondFlag = ReadBool(m_stream, 1, true) != 0;
    ReadWidthTable(ReadUInt32(m_stream, 0, true));
    if (m_version >= kFirstWithEdits) ReadEditLists();
    return true;
}

void CTraceDocument::ReadWidthTable(std::uint32_t typeSet) {
    constexpr std::uint32_t kLastWithoutLength = 7;
    constexpr std::uint32_t kLongTypeSet = 1;
    const bool hasLength = m_version > kLastWithoutLength;
    const std::int8_t implied = typeSet == kLongTypeSet ? 28 : 27;
    m_typeCount = std::int32_t{hasLength ? ReadInt8(m_stream, 0, true) : implied};
    const auto count = static_cast<std::uint32_t>(std::max(m_typeCount, 0));
    m_typeSizes.assign(count + 1, 0);
    m_stream.Read(m_typeSizes.data(), count, true);
}

void CTraceDocument::ReadEditLists() {
    // A count is believed only as far as the file goes on.
    const auto ended = [this] { return m_stream.Tell() >= m_stream.GetSize(); };
    CEditList& edits = m_store->Edits();
    const std::int32_t disabledCount = ReadInt32(m_stream, 0, true);
    for (std::int32_t i = 0; i < disabledCount && !ended(); ++i) {
        edits.AddDisabled(ReadUInt32(m_stream, 0, true));
    }
    const std::int32_t overrideCount = ReadInt32(m_stream, 0, true);
    for (std::int32_t i = 0; i < overrideCount && !ended(); ++i) {
        const std::uint32_t number = ReadUInt32(m_stream, 0, true);
        const std::uint32_t length = ReadUInt32(m_stream, 0, true);
        edits.AddOverride(number, ReadText(length));
    }
}

std::vector<std::uint8_t> CTraceDocument::ReadText(std::uint32_t length) {
    // No more is made room for than the file holds, and reading in pieces moves past all of it, so
    // that the texts together are no larger than the file.
    constexpr std::size_t kPiece = std::size_t{1024} * 1024;
    const std::uint32_t position = std::min(m_stream.Tell(), m_stream.GetSize());
    std::vector<std::uint8_t> text(std::min(length, m_stream.GetSize() - position));
    for (std::size_t done = 0; done < text.size(); done += kPiece) {
        const std::size_t piece = std::min(kPiece, text.size() - done);
        m_stream.Read(text.data() + done, static_cast<std::uint32_t>(piece), true);
    }
    return text;
}

void CTraceDocument::ReadFooter() {
    constexpr std::int8_t kFirstMark = 19;
    constexpr std::int8_t kSecondMark = 16;
    const auto backToRecords = [this] {
        // A header alone has no records to go back to.
        if (m_firstRecordOffset == m_stream.GetSize()) return;
        m_stream.Seek(static_cast<std::int32_t>(m_firstRecordOffset), SEEK_SET);
    };
    m_stream.Seek(kFooterSize, SEEK_END);
    if (ReadInt8(m_stream, 0, true) != kFirstMark) {
        // Kept: spelled like that twice, and the footer loads as a record; readers match the lines.
        m_diagnostics.Tell(EDiagnostic::kMessage,
                           "The footer is currupted, no valid Render State Data.");
        return backToRecords();
    }
    if (ReadInt8(m_stream, 0, true) != kSecondMark) {
        m_diagnostics.Tell(EDiagnostic::kMessage,
                           "The footer is currupted (Check 2), no valid Render State Data.");
        return backToRecords();
    }
    m_stateOffset = ReadUInt64(m_stream, 0, true);
    if (m_stateOffset == 0) return backToRecords();
    // Kept: left behind the footer, where a stream finds no call; damaged recordings end so.
    if (m_stateOffset == kNoFooter) return;
    // Kept: the low half, where loading compares all of it; damaged recordings end by that.
    m_stream.Seek(static_cast<std::int32_t>(m_stateOffset), SEEK_SET);
}

}  // namespace kestrail
