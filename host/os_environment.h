// The native display and the native windows that EGL draws on. A trace names them by the values
// that the recorded application had; each such value stands for one live object for the life of the
// process. What the window system does stands behind four callbacks.
#pragma once

#include <EGL/egl.h>

#include <cstdint>

namespace kestrail {

using NativeDisplay = EGLNativeDisplayType;
using NativeWindow = EGLNativeWindowType;

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
};

}  // namespace kestrail
