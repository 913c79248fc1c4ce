#include "tests/support/trace_parts.h"

#include <algorithm>
#include <cstring>

namespace kestrail {
namespace {

constexpr std::size_t kVersionPlace = 12;
constexpr std::uint32_t kLastWithoutLength = 7;

/// Takes pieces off the front of the file.
class CCutter {
public:
    CCutter(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

    std::size_t Left() const { return m_left; }
    Bytes Take(std::size_t size) {
        const std::size_t taken = std::min(size, m_left);
        Bytes piece(m_data, m_data + taken);
        m_data += taken;
        m_left -= taken;
        return piece;
    }
    std::uint32_t Peek(std::size_t place, std::size_t width = 4) const {
        std::uint32_t value = 0;
        if (place + width <= m_left) std::memcpy(&value, m_data + place, width);
        return value;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

/// The length of both edit lists.
std::size_t EditsSize(const CCutter& cutter) {
    constexpr std::size_t kWord = 4;
    std::size_t size = kWord + kWord * std::size_t{cutter.Peek(0)};
    std::uint32_t texts = cutter.Peek(size);
    size += kWord;
    for (; texts > 0 && size < cutter.Left(); --texts) {
        size += 2 * kWord + cutter.Peek(size + kWord);
    }
    return size;
}

void Append(Bytes& out, const Bytes& bytes) {
    out.insert(out.end(), bytes.begin(), bytes.end());
}

}  // namespace

std::uint32_t STraceParts::Version() const {
    std::uint32_t version = 0;
    std::memcpy(&version, start.data() + kVersionPlace, sizeof version);
    return version;
}

WidthTable STraceParts::Widths() const {
    const std::size_t head = Version() > kLastWithoutLength && !widths.empty() ? 1 : 0;
    return WidthTable(widths.begin() + static_cast<std::ptrdiff_t>(head), widths.end());
}

void STraceParts::SetVersion(std::uint32_t version) {
    std::memcpy(start.data() + kVersionPlace, &version, sizeof version);
}

bool Split(const std::uint8_t* data, std::size_t size, STraceParts& parts) {
    constexpr std::size_t kStart = 21;
    constexpr std::size_t kRecordHead = 6;
    constexpr std::size_t kFooter = 10;
    CCutter cutter(data, size);
    if (size < kStart + 1) return false;
    const std::uint32_t version = cutter.Peek(kVersionPlace);
    parts.start = cutter.Take(version > 10 ? kStart + 1 : kStart);
    const auto told = static_cast<std::int8_t>(cutter.Peek(0, 1));
    const bool isLong = parts.start[version > 10 ? 18 : 17] == 1;
    const int widths = version > kLastWithoutLength ? 1 + std::max<int>(told, 0) : isLong ? 28 : 27;
    parts.widths = cutter.Take(static_cast<std::size_t>(widths));
    if (version > 12) parts.edits = cutter.Take(EditsSize(cutter));
    const std::size_t footer = version > 11 ? kFooter : 0;
    while (cutter.Left() >= footer + kRecordHead) {
        SRecordPart record;
        record.size = cutter.Peek(0);
        record.id = static_cast<std::uint16_t>(cutter.Peek(4, 2));
        cutter.Take(kRecordHead);
        const std::size_t most = cutter.Left() - footer;
        record.payload = cutter.Take(std::min<std::size_t>(record.size, most));
        parts.records.push_back(std::move(record));
    }
    parts.tail = cutter.Take(cutter.Left());
    return true;
}

Bytes Join(const STraceParts& parts) {
    Bytes out = parts.start;
    Append(out, parts.widths);
    Append(out, parts.edits);
    for (const SRecordPart& record : parts.records) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            out.push_back(static_cast<std::uint8_t>(record.size >> shift));
        }
        out.push_back(static_cast<std::uint8_t>(record.id));
        out.push_back(static_cast<std::uint8_t>(record.id >> 8));
        Append(out, record.payload);
    }
    Append(out, parts.tail);
    return out;
}

}  // namespace kestrail
