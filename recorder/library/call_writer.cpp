#include "recorder/library/call_writer.h"

#include <algorithm>
#include <limits>

namespace kestrail::recorder {

bool CCallWriter::Grow(std::size_t size, const void* bytes) {
    const auto held = static_cast<std::size_t>(m_at - m_start);
    const std::size_t wanted = held + size + kUsualRoom;
    if (m_elsewhere == nullptr && wanted < CRecorder::kPieceLimit) {
        // What was written stays where it is: room ends at a fixed place only.
        if (std::uint8_t* const room = m_recorder.Room(wanted)) {
            m_start = room;
            m_at = room + held;
            m_limit = room + wanted;
            return true;
        }
    }
    const bool large = bytes != nullptr && size >= CRecorder::kPieceLimit / 2;
    GoElsewhere(large ? 0 : size);
    if (large) m_elsewhere->large.push_back({held, static_cast<const std::uint8_t*>(bytes), size});
    return !large;
}

void CCallWriter::GoElsewhere(std::size_t size, bool dropped) {
    const auto held = static_cast<std::size_t>(m_at - m_start);
    if (m_elsewhere == nullptr) {
        m_elsewhere = std::make_unique<SElsewhere>();
        m_elsewhere->bytes.assign(m_start, m_at);
        m_elsewhere->dropped = dropped;
    }
    std::vector<std::uint8_t>& bytes = m_elsewhere->bytes;
    bytes.resize(std::max(held + size + kUsualRoom, bytes.size() * 2));
    m_start = bytes.data();
    m_at = m_start + held;
    m_limit = m_start + bytes.size();
}

void CCallWriter::AppendElsewhere() {
    if (m_elsewhere->dropped) return;
    const auto held = static_cast<std::size_t>(m_at - m_start);
    std::size_t payload = held - kFrameBytes;
    for (const SLarge& large : m_elsewhere->large) payload += large.size;
    if (m_recorder.Records() && payload <= std::numeric_limits<std::uint32_t>::max()) {
        const auto size = static_cast<std::uint32_t>(payload);
        std::memcpy(m_start, &size, sizeof size);
        std::size_t done = 0;
        for (const SLarge& large : m_elsewhere->large) {
            m_recorder.Append(m_start + done, large.before - done);
            m_recorder.Append(large.bytes, large.size);
            done = large.before;
        }
        m_recorder.Append(m_start + done, held - done);
    }
    m_recorder.Lock().Release();
}

}  // namespace kestrail::recorder
