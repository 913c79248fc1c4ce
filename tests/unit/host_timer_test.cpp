#include <gtest/gtest.h>

#include <chrono>

#include "host/timer.h"

namespace kestrail {
namespace {

TEST(Timer, CountsTheMicrosecondsOfTheDayModulo32Bits) {
    using std::chrono::duration_cast, std::chrono::microseconds, std::chrono::system_clock;
    const auto clock = [] {
        const auto now = system_clock::now().time_since_epoch();
        return static_cast<std::uint32_t>(duration_cast<microseconds>(now).count());
    };
    CTimer timer;
    EXPECT_EQ(timer.start + timer.stop, 0U);
    const std::uint32_t before = clock();
    timer.Start();
    timer.Stop();
    EXPECT_LE(timer.start - before, timer.stop - before);
    EXPECT_LE(timer.stop - before, clock() - before);
    // Started before the clock last went round.
    timer.start = before + 1000000;
    EXPECT_GT(timer.Elapsed(), 0x80000000U);
    timer.start = before;
    const std::uint32_t elapsed = timer.Elapsed();
    EXPECT_LE(elapsed, clock() - before);
}

}  // namespace
}  // namespace kestrail
