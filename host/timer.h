// A timer of microseconds in 32 bits, which go round after 71 minutes; differences hold across it.
#pragma once

#include <cstdint>

namespace kestrail {

/// The time of day in microseconds, modulo 2^32.
std::uint32_t MicrosecondClock();

class CTimer {
public:
    void Start() { start = MicrosecondClock(); }
    void Stop() { stop = MicrosecondClock(); }
    /// Microseconds since the start, whether stopped or not.
    std::uint32_t Elapsed() const { return MicrosecondClock() - start; }

    std::uint32_t start = 0;
    std::uint32_t stop = 0;
};

}  // namespace kestrail
