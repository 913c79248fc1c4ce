// Windows, pbuffers, and presenting them.
#include "base/output.h"
#include "exec/egl_calls.h"
#include "exec/egl_config.h"
#include "exec/egl_executor.h"
#include "exec/surface_size.h"

namespace kestrail {
namespace {

EGLDisplay LiveDisplay(SEglPlay& c) {
    return c.names.GetDisplay(c.Value<TEGLDisplay>(0));
}

EGLSurface LiveSurface(SEglPlay& c, EGLDisplay display) {
    return c.names.GetSurface(display, c.Value<TEGLSurface>(1));
}

}  // namespace

void LearnSurfaceSize(SEglPlay& c, EGLDisplay display, EGLSurface surface, bool check,
                      std::int32_t recordedWidth, std::int32_t recordedHeight) {
    // Kept: 640 by 480 where a driver reports 1, as some do before the window is shown.
    constexpr EGLint kUnknown = 1;
    EGLint width = 0;
    EGLint height = 0;
    c.host.eglQuerySurface(display, surface, EGL_WIDTH, &width);
    if (check) CheckEglError(c.player);
    c.host.eglQuerySurface(display, surface, EGL_HEIGHT, &height);
    if (check) CheckEglError(c.player);
    if (width == kUnknown || height == kUnknown) {
        width = 640;
        height = 480;
    }
    c.names.SurfaceGeometry(width, height, recordedWidth, recordedHeight, display);
}

EPlayed PlayEglBindTexImage(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    c.host.eglBindTexImage(display, LiveSurface(c, display), c.Value<TEGLintEnum>(2));
    return EPlayed::kPlayed;
}

EPlayed PlayEglReleaseTexImage(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    c.host.eglReleaseTexImage(display, LiveSurface(c, display), c.Value<TEGLintEnum>(3));
    return EPlayed::kPlayed;
}

EPlayed PlayEglCopyBuffers(SEglPlay&) {
    output::Warning("Not Implemented. Call using pixmap, skipping");
    return EPlayed::kLeftOut;
}

EPlayed PlayEglCreatePixmapSurface(SEglPlay&) {
    output::Warning("Pixmaps not supported in playback");
    return EPlayed::kLeftOut;
}

EPlayed PlayEglCreatePbufferFromClientBuffer(SEglPlay&) {
    output::Warning("Pbuffers not supported in playback (client)");
    return EPlayed::kLeftOut;
}

EPlayed PlayEglCreatePbufferSurface(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    // Kept: by a list that no recording holds: a config found before, or none.
    const EGLConfig config = FindEglConfig(c.names, display, c.Value<TEGLConfig>(1),
                                           c.At<SEglAttribList>(3).GetRawArray());
    const EGLSurface surface =
        c.host.eglCreatePbufferSurface(display, config, c.At<SEglAttribList>(2).GetRawArray());
    c.names.SetSurface(display, c.Returned<TEGLSurface>(), surface);
    return EPlayed::kPlayed;
}

EPlayed PlayEglCreateWindowSurface(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    c.host.eglInitialize(display, nullptr, nullptr);
    c.names.SetContextValid(true);
    const std::uint32_t recorded = c.Returned<TEGLSurface>();
    if (c.names.GetSurface(display, recorded) != EGL_NO_SURFACE) return EPlayed::kLeftOut;

    const EGLConfig config = FindEglConfig(c.names, display, c.Value<TEGLConfig>(1),
                                           c.At<SEglAttribList>(4).GetRawArray());
    const auto& window = c.At<SEglNativeWindowDesc>(2);
    const NativeWindow native = c.player.environment.GetWindow(
        window.handle.GetValue(), window.width, window.height, c.names.GetNativeDisplay(display));
    c.player.lastError = static_cast<std::uint32_t>(c.host.eglGetError());
    // Kept: without the recorded attributes; drivers differ in those that they take.
    const EGLSurface surface = c.host.eglCreateWindowSurface(display, config, native, nullptr);
    c.player.lastError = static_cast<std::uint32_t>(c.host.eglGetError());
    // Kept: told, and played all the same; readers match it.
    if (c.player.lastError != EGL_SUCCESS) {
        output::Error("eglCreateWindowSurface EGL Error Code: 0x%lx, CallID = %d\n",
                      static_cast<unsigned long>(c.player.lastError), c.id);
    }
    LearnSurfaceSize(c, display, surface, false, window.width, window.height);
    c.names.SetSurface(display, recorded, surface);
    return EPlayed::kLeftOut;
}

EPlayed PlayEglDestroySurface(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    c.host.eglDestroySurface(display, LiveSurface(c, display));
    c.names.RemoveSurface(display, c.Value<TEGLSurface>(1));
    return EPlayed::kPlayed;
}

EPlayed PlayEglQuerySurface(SEglPlay& c) {
    std::int32_t liveWidth = -1, liveHeight = -1, recordedWidth = -1, recordedHeight = -1;
    EGLDisplay display = EGL_NO_DISPLAY;
    c.names.SurfaceGeometry(liveWidth, liveHeight, recordedWidth, recordedHeight, display);
    const bool unknownSize = recordedWidth == 1 || recordedHeight == 1;
    if (display != LiveDisplay(c) || !unknownSize) return EPlayed::kPlayed;

    // Kept: said for any attribute that is asked; readers match it.
    output::Message("Invalid Screen Size (Android bug). Fixing...");
    const EGLint attribute = c.Value<TEGLintEnum>(2);
    const auto& answer = c.At<SArrayPtr<TEGLintEnum, 1, 1>>(3);
    if (answer.ItemCount() == 0) return EPlayed::kPlayed;
    if (attribute == EGL_WIDTH) recordedWidth = answer.GetItem(0);
    if (attribute == EGL_HEIGHT) recordedHeight = answer.GetItem(0);
    c.names.SurfaceGeometry(liveWidth, liveHeight, recordedWidth, recordedHeight, display);
    return EPlayed::kPlayed;
}

EPlayed PlayEglSurfaceAttrib(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    c.host.eglSurfaceAttrib(display, LiveSurface(c, display), c.Value<TEGLintEnum>(2),
                            c.Value<TEGLintEnum>(3));
    return EPlayed::kPlayed;
}

EPlayed PlayEglSwapBuffers(SEglPlay& c) {
    const EGLDisplay display = LiveDisplay(c);
    c.host.eglSwapBuffers(display, LiveSurface(c, display));
    return EPlayed::kPlayed;
}

EPlayed PlayEglSwapInterval(SEglPlay& c) {
    // With `sync`, the interval of 0 that was set with the context stays.
    if (c.player.sync) return EPlayed::kPlayed;
    c.host.eglSwapInterval(LiveDisplay(c), c.Value<TEGLint>(1));
    return EPlayed::kPlayed;
}

}  // namespace kestrail
