// Windows, pbuffers, and presenting them.
#include "exec/egl_config.h"
#include "exec/egl_executor.h"
#include "exec/surface_size.h"
#include "generated/exec/egl_cases.h"

namespace kestrail {

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

EPlayed PlayEglBindTexImage(SEglPlay& c, SEgl_eglBindTexImage call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglBindTexImage(display, c.names.GetSurface(display, call.surface()), call.buffer());
    return EPlayed::kPlayed;
}

EPlayed PlayEglReleaseTexImage(SEglPlay& c, SEgl_eglReleaseTexImage call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglReleaseTexImage(display, c.names.GetSurface(display, call.surface()), call.buffer());
    return EPlayed::kPlayed;
}

EPlayed PlayEglCopyBuffers(SEglPlay& c, SEgl_eglCopyBuffers) {
    c.player.diagnostics.Tell(EDiagnostic::kWarning,
                              "Not Implemented. Call using pixmap, skipping");
    return EPlayed::kLeftOut;
}

EPlayed PlayEglCreatePixmapSurface(SEglPlay& c, SEgl_eglCreatePixmapSurface) {
    c.player.diagnostics.Tell(EDiagnostic::kWarning, "Pixmaps not supported in playback");
    return EPlayed::kLeftOut;
}

EPlayed PlayEglCreatePbufferFromClientBuffer(SEglPlay& c, SEgl_eglCreatePbufferFromClientBuffer) {
    c.player.diagnostics.Tell(EDiagnostic::kWarning, "Pbuffers not supported in playback (client)");
    return EPlayed::kLeftOut;
}

EPlayed PlayEglCreatePbufferSurface(SEglPlay& c, SEgl_eglCreatePbufferSurface call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    // Kept: by a list that no recording holds: a config found before, or none.
    const EGLConfig config =
        FindEglConfig(c.player, display, call.config(), call.SurfaceDesc().GetRawArray());
    const EGLSurface surface =
        c.host.eglCreatePbufferSurface(display, config, call.attrib_list().GetRawArray());
    c.names.SetSurface(display, call.result(), surface);
    return EPlayed::kPlayed;
}

EPlayed PlayEglCreateWindowSurface(SEglPlay& c, SEgl_eglCreateWindowSurface call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglInitialize(display, nullptr, nullptr);
    c.names.SetContextValid(true);
    const std::uint32_t recorded = call.result();
    if (c.names.GetSurface(display, recorded) != EGL_NO_SURFACE) return EPlayed::kLeftOut;

    const EGLConfig config =
        FindEglConfig(c.player, display, call.config(), call.attrib_list_config().GetRawArray());
    const auto& window = call.win();
    const NativeWindow native = c.player.environment.GetWindow(
        window.handle.GetValue(), window.width, window.height, c.names.GetNativeDisplay(display));
    c.player.lastError = static_cast<std::uint32_t>(c.host.eglGetError());
    // Kept: without the recorded attributes; drivers differ in those that they take.
    const EGLSurface surface = c.host.eglCreateWindowSurface(display, config, native, nullptr);
    c.player.lastError = static_cast<std::uint32_t>(c.host.eglGetError());
    // Kept: told, and played all the same; readers match it.
    if (c.player.lastError != EGL_SUCCESS) {
        c.player.diagnostics.Tell(EDiagnostic::kError,
                                  "eglCreateWindowSurface EGL Error Code: 0x%lx, CallID = %d\n",
                                  static_cast<unsigned long>(c.player.lastError), c.id);
    }
    LearnSurfaceSize(c, display, surface, false, window.width, window.height);
    c.names.SetSurface(display, recorded, surface);
    return EPlayed::kLeftOut;
}

EPlayed PlayEglDestroySurface(SEglPlay& c, SEgl_eglDestroySurface call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglDestroySurface(display, c.names.GetSurface(display, call.surface()));
    c.names.RemoveSurface(display, call.surface());
    return EPlayed::kPlayed;
}

EPlayed PlayEglQuerySurface(SEglPlay& c, SEgl_eglQuerySurface call) {
    std::int32_t liveWidth = -1, liveHeight = -1, recordedWidth = -1, recordedHeight = -1;
    EGLDisplay display = EGL_NO_DISPLAY;
    c.names.SurfaceGeometry(liveWidth, liveHeight, recordedWidth, recordedHeight, display);
    const bool unknownSize = recordedWidth == 1 || recordedHeight == 1;
    if (display != c.names.GetDisplay(call.dpy()) || !unknownSize) return EPlayed::kPlayed;

    // Kept: said for any attribute that is asked; readers match it.
    c.player.diagnostics.Message("Invalid Screen Size (Android bug). Fixing...");
    const EGLint attribute = call.attribute();
    const auto& answer = call.value();
    if (answer.ItemCount() == 0) return EPlayed::kPlayed;
    if (attribute == EGL_WIDTH) recordedWidth = answer.GetItem(0);
    if (attribute == EGL_HEIGHT) recordedHeight = answer.GetItem(0);
    c.names.SurfaceGeometry(liveWidth, liveHeight, recordedWidth, recordedHeight, display);
    return EPlayed::kPlayed;
}

EPlayed PlayEglSurfaceAttrib(SEglPlay& c, SEgl_eglSurfaceAttrib call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglSurfaceAttrib(display, c.names.GetSurface(display, call.surface()), call.attribute(),
                            call.value());
    return EPlayed::kPlayed;
}

EPlayed PlayEglSwapBuffers(SEglPlay& c, SEgl_eglSwapBuffers call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglSwapBuffers(display, c.names.GetSurface(display, call.surface()));
    return EPlayed::kPlayed;
}

EPlayed PlayEglSwapInterval(SEglPlay& c, SEgl_eglSwapInterval call) {
    // With `sync`, the interval of 0 that was set with the context stays.
    if (c.player.sync) return EPlayed::kPlayed;
    c.host.eglSwapInterval(c.names.GetDisplay(call.dpy()), call.interval());
    return EPlayed::kPlayed;
}

}  // namespace kestrail
