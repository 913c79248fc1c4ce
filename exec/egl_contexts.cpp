// Displays, contexts, and what binds them to the thread.
#include <vector>

#include "exec/egl_config.h"
#include "exec/egl_executor.h"
#include "exec/surface_size.h"
#include "generated/exec/egl_cases.h"

namespace kestrail {
namespace {

/// Also for a recording that began after the application had initialised EGL.
void Initialize(SEglPlay& c, EGLDisplay display) {
    c.host.eglInitialize(display, nullptr, nullptr);
    c.names.SetContextValid(true);
}

}  // namespace

EPlayed PlayEglBindAPI(SEglPlay& c, SEgl_eglBindAPI call) {
    const EGLenum api = call.api();
    if (c.host.eglBindAPI(api) != EGL_FALSE) c.names.SetBoundApi(api);
    return EPlayed::kPlayed;
}

EPlayed PlayEglCreateContext(SEglPlay& c, SEgl_eglCreateContext call) {
    if (!MakesContexts(c.names.BoundApi())) return EPlayed::kFailed;
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    const EGLConfig config =
        FindEglConfig(c.player, display, call.config(), call.attrib_list_config().GetRawArray());
    const EGLContext shared = c.names.GetContext(display, call.share_context());
    Initialize(c, display);
    const EGLint* const attributes = call.attrib_list_contex().GetRawArray();
    std::vector<EGLint> room;
    const EGLContext context =
        c.host.eglCreateContext(display, config, shared, CheckedAttributes(attributes, room));
    c.player.lastError = static_cast<std::uint32_t>(c.host.eglGetError());
    c.names.SetContext(display, call.result(), context, ContextVersion(attributes));
    return EPlayed::kPlayed;
}

EPlayed PlayEglDestroyContext(SEglPlay& c, SEgl_eglDestroyContext call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    const std::uint32_t recorded = call.ctx();
    c.host.eglDestroyContext(display, c.names.GetContext(display, recorded));
    c.names.RemoveContext(display, recorded);
    return EPlayed::kPlayed;
}

EPlayed PlayEglGetDisplay(SEglPlay& c, SEgl_eglGetDisplay call) {
    const EGLNativeDisplayType native = c.player.environment.GetDisplay(call.NativeDisplayType());
    c.names.SetDisplay(call.result(), c.host.eglGetDisplay(native), native);
    return EPlayed::kPlayed;
}

EPlayed PlayEglInitialize(SEglPlay& c, SEgl_eglInitialize call) {
    Initialize(c, c.names.GetDisplay(call.dpy()));
    return EPlayed::kPlayed;
}

EPlayed PlayEglMakeCurrent(SEglPlay& c, SEgl_eglMakeCurrent call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    const EGLSurface draw = c.names.GetSurface(display, call.draw());
    const EGLSurface read = c.names.GetSurface(display, call.read());
    const EGLContext context = c.names.GetContext(display, call.ctx());
    const EGLBoolean made = c.host.eglMakeCurrent(display, draw, read, context);
    // With OpenVG bound, a release leaves the context of ES current.
    const bool kept = context == EGL_NO_CONTEXT && c.names.BoundApi() == EGL_OPENVG_API;
    if (made != EGL_FALSE && !kept) c.names.UseContext(context);
    if (context == EGL_NO_CONTEXT) return EPlayed::kPlayed;
    if (CheckEglError(c.player) && c.player.sync) c.host.eglSwapInterval(display, 0);
    CheckEglError(c.player);
    // Kept: of the surface to read from, not to draw on; tools compare host calls.
    LearnSurfaceSize(c, display, read, true, -1, -1);
    return EPlayed::kPlayed;
}

EPlayed PlayEglReleaseThread(SEglPlay& c, SEgl_eglReleaseThread) {
    if (c.host.eglReleaseThread() == EGL_FALSE) return EPlayed::kPlayed;
    c.names.UseContext(EGL_NO_CONTEXT);
    c.names.SetBoundApi(EGL_OPENGL_ES_API);
    return EPlayed::kPlayed;
}

EPlayed PlayEglTerminate(SEglPlay& c, SEgl_eglTerminate call) {
    const EGLDisplay display = c.names.GetDisplay(call.dpy());
    c.host.eglTerminate(display);
    c.names.ClearDisplay(display);
    // Kept: by the live handle, so the display stays known; recordings go on with it.
    c.names.RemoveDisplay(reinterpret_cast<std::uintptr_t>(display));
    c.names.SetContextValid(false);
    // Kept: of all displays, not of this one; tools compare host calls.
    c.player.es2Names.ResetNames();
    c.player.es1Names.ResetNames();
    return EPlayed::kPlayed;
}

EPlayed PlayEglWaitClient(SEglPlay& c, SEgl_eglWaitClient) {
    c.host.eglWaitClient();
    return EPlayed::kPlayed;
}

EPlayed PlayEglWaitGL(SEglPlay& c, SEgl_eglWaitGL) {
    c.host.eglWaitGL();
    return EPlayed::kPlayed;
}

EPlayed PlayEglWaitNative(SEglPlay& c, SEgl_eglWaitNative) {
    // Kept: the core engine, whatever was recorded; drivers here have no other.
    c.host.eglWaitNative(EGL_CORE_NATIVE_ENGINE);
    return EPlayed::kLeftOut;
}

}  // namespace kestrail
