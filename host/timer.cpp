#include "host/timer.h"

#include <sys/time.h>

namespace kestrail {

std::uint32_t MicrosecondClock() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return static_cast<std::uint32_t>(now.tv_sec) * 1000000U +
           static_cast<std::uint32_t>(now.tv_usec);
}

}  // namespace kestrail
