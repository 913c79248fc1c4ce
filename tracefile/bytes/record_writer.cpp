#include "tracefile/bytes/record_writer.h"

#include <algorithm>
#include <cstdlib>

namespace kestrail {

std::span<const std::uint8_t> CRecordWriter::Finish() {
    DropStarved();
    if (m_payload.size() < m_least) m_payload.resize(m_least);
    return m_payload;
}

void CRecordWriter::Starve(std::ptrdiff_t start) {
    DropStarved();
    m_starved = start;
    m_starvedEnd = Size();
}

void CRecordWriter::DropStarved() {
    if (m_starvedEnd == 0 || m_starvedEnd == Size()) return;
    std::fill(m_payload.begin() + m_starved, m_payload.begin() + m_starvedEnd, 0);
}

void CRecordWriter::Number(std::int32_t width, std::int64_t value) {
    constexpr std::int32_t kOwn = 4;
    constexpr std::int32_t kSignBit = 63;
    const std::int32_t bytes = width == 0 ? kOwn : std::abs(width);
    for (std::int32_t i = 0; i < bytes; ++i) {
        m_payload.push_back(static_cast<std::uint8_t>(value >> std::min(8 * i, kSignBit)));
    }
}

}  // namespace kestrail
