// The native display and the native windows that EGL draws on. A trace names them by the values
// that the recorded application had; each such value stands for one live object. What the window
// system does stands behind four callbacks.
#pragma once

#include <EGL/egl.h>

#include <cstdint>

#include "base/name_table.h"

namespace kestrail {

using NativeDisplay = EGLNativeDisplayType;
using NativeWindow = EGLNativeWindowType;

/// Windows that aren't destroyed by name are left to the end of the process: drivers may draw on
/// them until then.
class COsEnvironment {
public:
    /// With the callbacks of this platform's window system.
    COsEnvironment();

    /// The live display of a recorded one, created on first use.
    NativeDisplay GetDisplay(std::uint64_t recordedDisplay);
    /// The live window of a recorded one, created on first use: that use sets its size, in pixels.
    /// Width or height of 0 or less leave the size to the platform.
    NativeWindow GetWindow(std::uint64_t recordedWindow, std::int32_t width, std::int32_t height,
                           NativeDisplay display);
    /// The live window of a recorded one, or 0; an identifier of all ones stands for the first
    /// window.
    NativeWindow FindWindow(std::uint64_t recordedWindow);

    /// Lets the window system handle what is pending. False when the user wants to quit.
    bool PumpEvents();

    void DestroyAll();
    void DestroyDisplay(std::uint64_t recordedDisplay);
    void DestroyWindow(std::uint64_t recordedWindow);

    NativeDisplay (*createDisplay)();
    NativeWindow (*createWindow)(std::int32_t width, std::int32_t height, const char* name,
                                 NativeDisplay display);
    void (*destroy)(NativeWindow window, NativeDisplay display);
    bool (*processEvents)(NativeWindow window, NativeDisplay display);

private:
    TNameTable<std::uint64_t, NativeDisplay> m_displays;
    TNameTable<std::uint64_t, NativeWindow> m_windows;
};

}  // namespace kestrail
