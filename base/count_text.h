// The text of a number that is written again and again, and mostly stays or goes up by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/text_writer.h"

namespace kestrail {

class CCountText {
public:
    /// How many characters `Put` may touch.
    static constexpr std::size_t kRoom = 12;

    /// Writes "%d" at `to`; the end of what was written.
    char* Put(char* to, std::int32_t value) {
        if (value != m_value) Change(value);
        std::memcpy(to, m_text, kRoom);
        to[m_length - 1] = m_last;
        return to + m_length;
    }

private:
    void Change(std::int32_t value) {
        if (value > 0 && value - 1 == m_value && m_last != '9') {
            ++m_last;
        } else {
            m_length = PutSigned(m_text, value) - m_text;
            m_last = m_text[m_length - 1];
        }
        m_value = value;
    }

    char m_text[kRoom] = {'0'};
    /// Stands apart: a text that has just been written to in part is slow to copy.
    char m_last = '0';
    std::ptrdiff_t m_length = 1;
    std::int32_t m_value = 0;
};

}  // namespace kestrail
