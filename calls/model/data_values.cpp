#include "calls/model/data_values.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include "calls/model/array_values.h"
#include "tracefile/bytes/typed_reads.h"

namespace kestrail {
namespace {

constexpr int kFoldWidth = 70;

/// The place in `out` behind the last blank of the line being written, or npos when the line has
/// none within `width` characters.
std::size_t FoldPlace(const std::string& out, int width) {
    if (out.size() < 2) return std::string::npos;
    std::size_t at = out.size() - 2;
    for (int steps = 0; steps < width; ++steps) {
        if (out[at] == ' ' || out[at] == '\t') return at + 1;
        if (out[at] == '\n' || out[at] == '\r' || at == 0) break;
        --at;
    }
    return std::string::npos;
}

}  // namespace

void CheckRecordedSize(const CTrace& trace, std::uint32_t size) {
    // Kept: counts too are compared with bytes, and the text is spelled so; readers match it.
    if (size > trace.GetRecordSize()) {
        throw std::logic_error("Size readed from memmory is greater than blocksize");
    }
}

void SBlock::Read(CTrace& trace) {
    Release();
    trace >> pointer;
    size = ReadUInt32(trace.Stream(), 0, true);
    CheckRecordedSize(trace, size);
    // Kept: bytes behind a null pointer too, unlike strings and arrays; recordings hold them.
    if (size == 0) return;
    m_data = static_cast<std::uint8_t*>(StandsWithCall() ? trace.CallMemory().Take(size)
                                                         : std::malloc(size));
    if (trace.Stream().Read(m_data, size, true)) return;
    // Nothing arrived: the block reads as zeros, which calloc has ready without writing them.
    if (StandsWithCall()) {
        std::memset(m_data, 0, size);
    } else {
        std::free(m_data);
        m_data = static_cast<std::uint8_t*>(std::calloc(size, 1));
    }
}

void SBlock::Write(CRecordWriter& out) const {
    if (size <= MemoryManager::kBlockSize) return Put(out, pointer.value, m_data, size);
    out << pointer;
    out.UInt32(size);
    out.Claim(size);
}

void SBlock::Release() {
    if (m_data == nullptr) return;
    if (StandsWithCall()) {
        CObjectArena::GiveBack(m_data, size);
    } else {
        std::free(m_data);
    }
    m_data = nullptr;
}

void SDataPtr::AppendText(TextWriter& out) const {
    if (pointer.value == 0 || size == 0) return pointer.AppendText(out);
    out.Append("~Data(");
    out.AppendUnsigned(size);
    out.Append(" bytes)~");
}

void SImage2D::AppendText(TextWriter& out) const {
    if (pointer.value == 0 || size == 0) return pointer.AppendText(out);
    out.Append("~Image(");
    out.AppendUnsigned(size);
    out.Append(" bytes)~");
}

void SString::Read(CTrace& trace) {
    trace >> pointer;
    length = ReadUInt32(trace.Stream(), 0, true);
    CheckRecordedSize(trace, length);
    m_data.reset();
    // A longer one cannot be read at all, and of its claim nothing is kept.
    if (pointer.value == 0 || length == 0 || length > MemoryManager::kBlockSize) return;
    std::unique_ptr<char[]> text(new char[std::size_t{length} + 1]);
    text[length] = '\0';
    if (trace.Stream().Read(text.get(), length, true)) m_data = std::move(text);
}

void SString::Write(CRecordWriter& out) const {
    out << pointer;
    out.UInt32(length);
    if (pointer.value == 0 || length > MemoryManager::kBlockSize) return out.Claim(length);
    if (m_data) return out.Bytes(m_data.get(), length);
    out.Zeros(length);
}

void SString::Join(const SArrayPtr<SString, 1, 1>& parts) {
    std::size_t total = 0;
    for (std::uint32_t i = 0; i < parts.ElementCount(); ++i) {
        total += std::strlen(parts.GetItem(i).GetCString());
    }
    if (total == 0) return;
    m_data.reset(new char[total + 1]);
    length = static_cast<std::uint32_t>(total);
    char* end = m_data.get();
    for (std::uint32_t i = 0; i < parts.ElementCount(); ++i) {
        const char* part = parts.GetItem(i).GetCString();
        const std::size_t size = std::strlen(part);
        std::memcpy(end, part, size);
        end += size;
    }
    *end = '\0';
}

void SString::AppendText(TextWriter& out) const {
    constexpr std::uint32_t kShown = 24;
    constexpr std::uint32_t kLongest = 26;
    if (pointer.value == 0) return out.Append("NULL");
    const std::uint32_t room = length < kLongest ? CKSTLString::npos : kShown;
    std::uint32_t shown = 0;
    out.Append('"');
    for (const char* next = GetCString(); *next != '\0' && shown < room; ++next, ++shown) {
        switch (*next) {
            case '\t':
                // Two blanks stand for a tab, and the second counts as well.
                out.Append(' ');
                if (++shown < room) out.Append(' ');
                break;
            case '\r':
                out.Append(' ');
                break;
            case '\n':
                out.Append("\\n");
                break;
            default:
                out.Append(*next);
        }
    }
    if (length >= kLongest) out.Append("...");
    out.Append('"');
}

void SString::AppendNumericText(TextWriter& out) const {
    std::string clean;
    for (const char* next = GetCString(); *next != '\0'; ++next) {
        if (*next == '\t') {
            clean.append(2, ' ');
        } else {
            clean += *next == '\r' ? ' ' : *next;
        }
    }
    AppendFolded(out, clean, kFoldWidth, false);
}

void SString::AppendDetailText(TextWriter& out) const {
    for (const char* next = GetCString(); *next != '\0'; ++next) {
        if (*next != '\r') out.Append(*next);
    }
}

void AppendFolded(TextWriter& out, std::string_view text, int width, bool stop) {
    if (text.size() < static_cast<std::size_t>(width)) {
        out.Append('"');
        out.Append(text);
        return out.Append('"');
    }
    const int startWidth = width;
    std::string folded = "\n\"";
    int column = 0;
    int lines = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Kept: lines against the width, and begun again behind what stands; readers match it.
        if (lines > width) {
            if (stop || 3 * startWidth < lines) {
                folded += " ....";
                break;
            }
            width = static_cast<int>(width * 1.25);
            i = 0;
        }
        if (text[i] == '\n') {
            folded += '\n';
            column = 0;
            ++lines;
            if (i + 1 < text.size() && text[i + 1] == '\r') ++i;
            continue;
        }
        if (column >= width) {
            const std::size_t place = FoldPlace(folded, width);
            folded.insert(place == std::string::npos ? folded.size() : place, "\\\n");
            ++lines;
            column = 0;
        }
        folded += text[i];
        ++column;
    }
    folded += '"';
    out.Append(folded);
}

}  // namespace kestrail
