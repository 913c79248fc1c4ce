#include "recorder/library/call_writer.h"

#include <algorithm>

namespace kestrail::recorder {

void CCallWriter::Grow(std::size_t size) {
    const auto held = static_cast<std::size_t>(m_at - m_start);
    const std::size_t wanted = held + size + kUsualRoom;
    if (m_elsewhere.empty() && wanted < CRecorder::kPieceLimit) {
        // What was written stays where it is: room ends at a fixed place only.
        if (std::uint8_t* const room = m_recorder.Room(wanted)) {
            m_start = room;
            m_at = room + held;
            m_limit = room + wanted;
            return;
        }
    }
    GoElsewhere(size);
}

void CCallWriter::GoElsewhere(std::size_t size) {
    const auto held = static_cast<std::size_t>(m_at - m_start);
    if (m_elsewhere.empty() && held != 0) {
        m_elsewhere.assign(m_start, m_at);
    }
    m_elsewhere.resize(std::max(held + size + kUsualRoom, m_elsewhere.size() * 2));
    m_start = m_elsewhere.data();
    m_at = m_start + held;
    m_limit = m_start + m_elsewhere.size();
}

}  // namespace kestrail::recorder
