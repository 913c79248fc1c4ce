#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/os_environment.h"

namespace kestrail {
namespace {

using Log = std::vector<std::string>;
Log g_log;
std::uintptr_t g_next;
bool g_answer;

template <typename Handle>
Handle Made(std::uintptr_t value) {
    return reinterpret_cast<Handle>(value);
}
template <>
NativeWindow Made<NativeWindow>(std::uintptr_t value) {
    return NativeWindow{value};
}

std::string Text(NativeWindow window, NativeDisplay display) {
    return std::to_string(window) + "," + std::to_string(reinterpret_cast<std::uintptr_t>(display));
}

class Environment : public testing::Test {
protected:
    void SetUp() override {
        g_answer = true;
        g_next = std::uintptr_t{1} << (sizeof(std::uintptr_t) * 8 - 8);
        m_environment.createDisplay = [] {
            g_log.emplace_back("display");
            return Made<NativeDisplay>(++g_next);
        };
        m_environment.createWindow = [](std::int32_t width, std::int32_t height, const char* name,
                                        NativeDisplay display) {
            g_log.push_back(std::string(name) + " " + std::to_string(width) + "x" +
                            std::to_string(height) + " " + Text({}, display));
            return Made<NativeWindow>(++g_next);
        };
        m_environment.destroy = [](NativeWindow window, NativeDisplay display) {
            g_log.push_back("destroy " + Text(window, display));
        };
        m_environment.processEvents = [](NativeWindow window, NativeDisplay display) {
            g_log.push_back("events " + Text(window, display));
            return g_answer;
        };
        m_environment.DestroyAll();
        g_log.clear();
    }

    COsEnvironment m_environment;
};

TEST_F(Environment, ARecordedValueStandsForOneObject) {
    const std::uint64_t high = 0x500000001;
    const NativeDisplay display = m_environment.GetDisplay(high);
    const NativeDisplay other = m_environment.GetDisplay(1);
    EXPECT_NE(display, other);
    const NativeWindow window = m_environment.GetWindow(high, 320, 200, display);
    const NativeWindow second = m_environment.GetWindow(1, 0, -1, other);
    EXPECT_NE(window, second);
    EXPECT_EQ(g_log, (Log{"display", "display", "KestrailPlayback 320x200 " + Text({}, display),
                          "KestrailPlayback 0x-1 " + Text({}, other)}));

    // All environments see the same objects, and the first use has set the size.
    COsEnvironment another = m_environment;
    EXPECT_EQ(another.GetDisplay(high), display);
    EXPECT_EQ(another.GetWindow(high, 64, 64, other), window);
    EXPECT_EQ(g_log.size(), 4U);
}

TEST_F(Environment, FindsWindowsWithoutCreatingThem) {
    EXPECT_EQ(m_environment.FindWindow(7), NativeWindow{});
    EXPECT_EQ(m_environment.FindWindow(~0ULL), NativeWindow{});
    const NativeWindow first = m_environment.GetWindow(7, 1, 1, {});
    const NativeWindow second = m_environment.GetWindow(8, 1, 1, {});
    EXPECT_EQ(m_environment.FindWindow(~0ULL), first);
    EXPECT_EQ(m_environment.FindWindow(8), second);
    EXPECT_EQ(m_environment.FindWindow(9), NativeWindow{});
    EXPECT_EQ(g_log.size(), 2U);
}

TEST_F(Environment, EventsArePumpedForEachWindowAndOnceWithout) {
    const NativeWindow window = m_environment.GetWindow(7, 1, 1, {});
    const NativeWindow second = m_environment.GetWindow(8, 1, 1, {});
    g_log.clear();
    g_answer = false;
    EXPECT_TRUE(m_environment.PumpEvents());
    EXPECT_EQ(g_log, (Log{"events " + Text(window, {}), "events " + Text(second, {}),
                          "events " + Text({}, {})}));
}

TEST_F(Environment, DestroysWindowsBeforeDisplaysAndForgetsThem) {
    const NativeDisplay display = m_environment.GetDisplay(1);
    const NativeDisplay display2 = m_environment.GetDisplay(2);
    const NativeWindow window = m_environment.GetWindow(7, 1, 1, display);
    const NativeWindow window2 = m_environment.GetWindow(8, 1, 1, display);
    g_log.clear();
    m_environment.DestroyWindow(7);
    m_environment.DestroyDisplay(2);
    m_environment.DestroyWindow(7);
    m_environment.DestroyDisplay(3);
    EXPECT_EQ(g_log, (Log{"destroy " + Text(window, {}), "destroy " + Text({}, display2)}));
    g_log.clear();
    m_environment.DestroyAll();
    m_environment.DestroyAll();
    EXPECT_EQ(g_log, (Log{"destroy " + Text(window2, {}), "destroy " + Text({}, display)}));
    EXPECT_NE(m_environment.GetWindow(8, 1, 1, display), window2);
}

}  // namespace
}  // namespace kestrail
