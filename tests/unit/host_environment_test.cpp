#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/os_environment.h"

namespace kestrail {
namespace {

using Log = std::vector<std::string>;
Log g_log;
std::uintptr_t g_next;

std::string Text(NativeWindow window, NativeDisplay display) {
    return std::to_string(window) + "," + std::to_string(reinterpret_cast<std::uintptr_t>(display));
}

class Environment : public testing::Test {
protected:
    void SetUp() override {
        g_next = std::uintptr_t{1} << (sizeof(std::uintptr_t) * 8 - 8);
        m_environment.createDisplay = [] {
            g_log.emplace_back("display");
            return reinterpret_cast<NativeDisplay>(++g_next);
        };
        m_environment.createWindow = [](std::int32_t width, std::int32_t height, const char* name,
                                        NativeDisplay display) {
            g_log.push_back(std::string(name) + " " + std::to_string(width) + "x" +
                            std::to_string(height) + " " + Text({}, display));
            return NativeWindow{++g_next};
        };
        m_environment.destroy = [](NativeWindow window, NativeDisplay display) {
            g_log.push_back("destroy " + Text(window, display));
        };
        m_environment.processEvents = [](NativeWindow window, NativeDisplay display) {
            g_log.push_back("events " + Text(window, display));
            return false;
        };
        g_log.clear();
    }

    COsEnvironment m_environment;
};

TEST_F(Environment, ARecordedValueStandsForOneObject) {
    constexpr std::uint64_t kHigh = 0x500000001, kFirst = ~0ULL;
    EXPECT_EQ(m_environment.FindWindow(1), NativeWindow{});
    EXPECT_EQ(m_environment.FindWindow(kFirst), NativeWindow{});
    const NativeDisplay display = m_environment.GetDisplay(kHigh);
    const NativeDisplay other = m_environment.GetDisplay(1);
    const NativeWindow window = m_environment.GetWindow(kHigh, 320, 200, display);
    const NativeWindow second = m_environment.GetWindow(1, 0, -1, other);
    EXPECT_NE(display, other);
    EXPECT_NE(window, second);
    // The first use has set the size.
    EXPECT_EQ(m_environment.GetDisplay(kHigh), display);
    EXPECT_EQ(m_environment.GetWindow(kHigh, 64, 64, other), window);
    EXPECT_EQ(m_environment.FindWindow(kFirst), window);
    EXPECT_EQ(m_environment.FindWindow(1), second);
    EXPECT_TRUE(m_environment.PumpEvents());
    EXPECT_EQ(m_environment.FindWindow(9), NativeWindow{});
    EXPECT_EQ(g_log, (Log{"display", "display", "KestrailPlayback 320x200 " + Text({}, display),
                          "KestrailPlayback 0x-1 " + Text({}, other), "events " + Text(window, {}),
                          "events " + Text(second, {}), "events " + Text({}, {})}));
}

TEST_F(Environment, DestroysWindowsBeforeDisplaysAndForgetsThem) {
    const NativeDisplay display = m_environment.GetDisplay(1);
    const NativeDisplay display2 = m_environment.GetDisplay(2);
    const NativeWindow window = m_environment.GetWindow(7, 1, 1, display);
    const NativeWindow window2 = m_environment.GetWindow(8, 1, 1, display);
    g_log.clear();
    for (int twice = 0; twice < 2; ++twice) {
        m_environment.DestroyWindow(7);
        m_environment.DestroyDisplay(2);
    }
    m_environment.DestroyAll();
    m_environment.DestroyAll();
    EXPECT_EQ(g_log, (Log{"destroy " + Text(window, {}), "destroy " + Text({}, display2),
                          "destroy " + Text(window2, {}), "destroy " + Text({}, display)}));
    EXPECT_NE(m_environment.GetWindow(8, 1, 1, display), window2);
}

}  // namespace
}  // namespace kestrail
