#include "host/headless.h"

#include <EGL/eglext.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace kestrail {
namespace {

/// A window is its size in pixels: both halves of a number. As window systems do, sizes are refused
/// that drivers would take for what they can draw on, and end the process with.
NativeWindow MakeWindow(std::int32_t width, std::int32_t height, const char*, NativeDisplay) {
    constexpr std::int32_t kMostSize = 1 << 14;
    constexpr std::int32_t kMostPixels = 1 << 26;
    if (width <= 0 || height <= 0) {
        width = 640;
        height = 480;
    }
    if (width > kMostSize || height > kMostSize || height > kMostPixels / width)
        return NativeWindow{};
    const auto packed =
        static_cast<std::uintptr_t>(width) << 16 | static_cast<std::uintptr_t>(height);
    return reinterpret_cast<NativeWindow>(reinterpret_cast<void*>(packed));
}

bool Knows(SEglHost& egl, std::string_view extension) {
    const char* const known = egl.eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    egl.eglGetError();
    return known != nullptr && std::string_view(known).find(extension) != std::string_view::npos;
}

template <typename Function>
Function Find(SEglHost& egl, const char* name) {
    return reinterpret_cast<Function>(egl.eglGetProcAddress(name));
}

/// Without any window system, else of the first device that there is.
EGLDisplay FindDisplay(SEglHost& egl) {
    const auto display = Find<PFNEGLGETPLATFORMDISPLAYEXTPROC>(egl, "eglGetPlatformDisplayEXT");
    if (display == nullptr) return EGL_NO_DISPLAY;
    if (Knows(egl, "EGL_MESA_platform_surfaceless")) {
        return display(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
    }
    const auto devices = Find<PFNEGLQUERYDEVICESEXTPROC>(egl, "eglQueryDevicesEXT");
    EGLDeviceEXT device = nullptr;
    EGLint count = 0;
    if (devices == nullptr || !Knows(egl, "EGL_EXT_platform_device") ||
        devices(1, &device, &count) != EGL_TRUE || count < 1) {
        return EGL_NO_DISPLAY;
    }
    return display(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
}

/// The attributes without what only windows have.
std::vector<EGLint> WithoutWindows(const EGLint* attributes) {
    std::vector<EGLint> list = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT};
    for (; attributes != nullptr && attributes[0] != EGL_NONE; attributes += 2) {
        switch (attributes[0]) {
            case EGL_SURFACE_TYPE:
            case EGL_CONFIG_ID:
            case EGL_NATIVE_RENDERABLE:
            case EGL_NATIVE_VISUAL_ID:
            case EGL_NATIVE_VISUAL_TYPE:
            case EGL_MATCH_NATIVE_PIXMAP:
                break;
            default:
                list.insert(list.end(), attributes, attributes + 2);
        }
    }
    list.push_back(EGL_NONE);
    return list;
}

/// Whether windows of the usual depth could have it.
bool HasBytesOfColor(SEglHost& egl, EGLDisplay display, EGLConfig config) {
    constexpr EGLint kColors[] = {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE};
    return std::all_of(std::begin(kColors), std::end(kColors), [&](EGLint color) {
        EGLint bits = 0;
        egl.eglGetConfigAttrib(display, config, color, &bits);
        return bits == 8;
    });
}

EGLDisplay EGLAPIENTRY GetDisplay(EGLNativeDisplayType) {
    static const EGLDisplay display = FindDisplay(*GetEglHost());
    return display;
}

/// Displays with windows have few formats; those with none all that a driver can draw. The same one
/// has to be found in both.
EGLBoolean EGLAPIENTRY ChooseConfig(EGLDisplay display, const EGLint* attributes,
                                    EGLConfig* configs, EGLint size, EGLint* count) {
    SEglHost& egl = *GetEglHost();
    const std::vector<EGLint> list = WithoutWindows(attributes);
    std::vector<EGLConfig> found(1024);
    EGLint all = 0;
    const EGLBoolean result = egl.eglChooseConfig(display, list.data(), found.data(),
                                                  static_cast<EGLint>(found.size()), &all);
    if (result != EGL_TRUE) return result;
    found.resize(static_cast<std::size_t>(std::max(all, EGLint{0})));
    std::stable_partition(found.begin(), found.end(),
                          [&](EGLConfig config) { return HasBytesOfColor(egl, display, config); });
    if (configs != nullptr) {
        all = std::min(all, size);
        std::copy_n(found.begin(), all, configs);
    }
    if (count != nullptr) *count = all;
    return EGL_TRUE;
}

EGLSurface EGLAPIENTRY CreateWindowSurface(EGLDisplay display, EGLConfig config,
                                           EGLNativeWindowType window, const EGLint*) {
    const auto packed = reinterpret_cast<std::uintptr_t>(reinterpret_cast<void*>(window));
    if (packed == 0) return EGL_NO_SURFACE;
    const EGLint attributes[] = {EGL_WIDTH, static_cast<EGLint>(packed >> 16), EGL_HEIGHT,
                                 static_cast<EGLint>(packed & 0xFFFF), EGL_NONE};
    return GetEglHost()->eglCreatePbufferSurface(display, config, attributes);
}

/// What a swap does to a buffer is asked of windows alone: those of pbuffers leave it as it is.
EGLBoolean EGLAPIENTRY SurfaceAttrib(EGLDisplay display, EGLSurface surface, EGLint attribute,
                                     EGLint value) {
    if (attribute == EGL_SWAP_BEHAVIOR) return EGL_TRUE;
    return GetEglHost()->eglSurfaceAttrib(display, surface, attribute, value);
}

}  // namespace

bool HasDisplay() {
#ifdef __QNX__
    return true;
#else
    const char* const display = std::getenv("DISPLAY");
    return display != nullptr && *display != '\0';
#endif
}

SEglHost& HostWithoutWindows() {
    static SEglHost host = [] {
        SEglHost made = *GetEglHost();
        made.eglGetDisplay = &GetDisplay;
        made.eglChooseConfig = &ChooseConfig;
        made.eglCreateWindowSurface = &CreateWindowSurface;
        made.eglSurfaceAttrib = &SurfaceAttrib;
        return made;
    }();
    return host;
}

void GiveNoWindows(COsEnvironment& environment) {
    environment.createDisplay = [] { return NativeDisplay{}; };
    environment.createWindow = &MakeWindow;
    environment.destroy = [](NativeWindow, NativeDisplay) {};
    environment.processEvents = [](NativeWindow, NativeDisplay) { return true; };
}

}  // namespace kestrail
