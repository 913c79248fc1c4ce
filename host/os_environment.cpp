#include "host/os_environment.h"

#ifdef __QNX__
#include <screen/screen.h>
#else
#include "host/screen/screen.h"
#endif

#include <cstring>

#include "base/output.h"

namespace kestrail {
namespace {

// Shared by all environments, and left to the end of the process.
screen_context_t screenContext = nullptr;

NativeDisplay CreateScreenContext() {
    if (screenContext == nullptr && screen_create_context(&screenContext, 0) != 0) {
        output::SystemError("screen_create_context");
        screenContext = nullptr;
    }
    // Kept: never a display of its own; drivers take the default one.
    return NativeDisplay{};
}

bool PrepareWindow(screen_window_t window, std::int32_t width, std::int32_t height,
                   const char* name) {
    constexpr int kUsage = 38;  // may be drawn on by OpenGL ES
    constexpr int kBuffers = 2;
    if (name != nullptr) {
        screen_set_window_property_cv(window, SCREEN_PROPERTY_ID_STRING,
                                      static_cast<int>(std::strlen(name)), name);
    }
    const int size[2] = {width, height};
    if (width > 0 && height > 0 &&
        screen_set_window_property_iv(window, SCREEN_PROPERTY_SIZE, size) != 0) {
        output::SystemError("screen_set_window_property_iv(SCREEN_PROPERTY_SIZE)");
        return false;
    }
    if (screen_set_window_property_iv(window, SCREEN_PROPERTY_USAGE, &kUsage) != 0) {
        output::SystemError("screen_set_window_property_iv(SCREEN_PROPERTY_USAGE)");
        return false;
    }
    if (screen_create_window_buffers(window, kBuffers) != 0) {
        output::SystemError("screen_create_window_buffers");
        return false;
    }
    return true;
}

NativeWindow CreateScreenWindow(std::int32_t width, std::int32_t height, const char* name,
                                NativeDisplay) {
    screen_window_t window = nullptr;
    if (screen_create_window(&window, screenContext) != 0) {
        output::SystemError("screen_create_window");
        return NativeWindow{};
    }
    if (!PrepareWindow(window, width, height, name)) {
        screen_destroy_window(window);
        // The surface that is then made on it must fail with a message of its own. Of a window that
        // is gone some drivers do not ask whether it exists, and crash; of no window they do.
        return NativeWindow{};
    }
    return reinterpret_cast<NativeWindow>(window);
}

void DestroyScreenWindow(NativeWindow window, NativeDisplay) {
    if (window != NativeWindow{}) screen_destroy_window(reinterpret_cast<screen_window_t>(window));
}

bool ProcessScreenEvents(NativeWindow, NativeDisplay) {
    return true;
}

}  // namespace

COsEnvironment::COsEnvironment()
    : createDisplay(&CreateScreenContext),
      createWindow(&CreateScreenWindow),
      destroy(&DestroyScreenWindow),
      processEvents(&ProcessScreenEvents) {}

NativeDisplay COsEnvironment::GetDisplay(std::uint64_t recordedDisplay) {
    if (const NativeDisplay* known = m_displays.Find(recordedDisplay)) return *known;
    const NativeDisplay display = createDisplay();
    m_displays.GetOrCreate(recordedDisplay) = display;
    return display;
}

NativeWindow COsEnvironment::GetWindow(std::uint64_t recordedWindow, std::int32_t width,
                                       std::int32_t height, NativeDisplay display) {
    if (const NativeWindow* known = m_windows.Find(recordedWindow)) return *known;
    // Far more than any application has, and few enough for a display to bear.
    constexpr std::int32_t kMostWindows = 256;
    const bool room = m_windows.Count() < kMostWindows;
    const NativeWindow window =
        room ? createWindow(width, height, "KestrailPlayback", display) : NativeWindow{};
    m_windows.GetOrCreate(recordedWindow) = window;
    return window;
}

NativeWindow COsEnvironment::FindWindow(std::uint64_t recordedWindow) {
    if (m_windows.Count() == 0) return NativeWindow{};
    if (recordedWindow == ~std::uint64_t{0}) return *m_windows.ValueAt(0);
    return m_windows.GetOrCreate(recordedWindow);
}

bool COsEnvironment::PumpEvents() {
    // Kept: never turns false, whatever is answered; no platform here asks to quit.
    bool result = true;
    for (std::int32_t i = 0; i < m_windows.Count(); ++i) {
        result |= processEvents(*m_windows.ValueAt(i), NativeDisplay{});
    }
    result |= processEvents(NativeWindow{}, NativeDisplay{});
    return result;
}

void COsEnvironment::DestroyAll() {
    for (std::int32_t i = 0; i < m_windows.Count(); ++i) {
        destroy(*m_windows.ValueAt(i), NativeDisplay{});
    }
    m_windows.Clear();
    for (std::int32_t i = 0; i < m_displays.Count(); ++i) {
        destroy(NativeWindow{}, *m_displays.ValueAt(i));
    }
    m_displays.Clear();
}

void COsEnvironment::DestroyDisplay(std::uint64_t recordedDisplay) {
    const NativeDisplay* display = m_displays.Find(recordedDisplay);
    if (display == nullptr) return;
    destroy(NativeWindow{}, *display);
    m_displays.Erase(recordedDisplay);
}

void COsEnvironment::DestroyWindow(std::uint64_t recordedWindow) {
    const NativeWindow* window = m_windows.Find(recordedWindow);
    if (window == nullptr) return;
    destroy(*window, NativeDisplay{});
    m_windows.Erase(recordedWindow);
}

}  // namespace kestrail
