// What the EGL calls do to the record of displays, contexts and surfaces.
#include <utility>

#include "base/enumerants.h"
#include "generated/calls/egl_calls.h"
#include "state/egl/egl_state.h"

namespace kestrail {
namespace {

/// The pairs of a recorded list with an end mark, also where the record held none.
SSharedEglAttributes CopyAttributes(const SEglAttribList& list) {
    const std::uint32_t count = list.ItemCount();
    if (count == 0) return {};
    std::uint32_t end = 0;
    while (end + 1 < count && list.GetItem(end) != EGL_NONE) end += 2;
    SEglAttributes attributes(list.GetRawArray(), list.GetRawArray() + end);
    attributes.push_back(EGL_NONE);
    return SSharedEglAttributes(std::move(attributes));
}

}  // namespace

bool CEgl_eglGetDisplay_v6::UpdateState(CEglState& state, SUpdates&) {
    const std::uint32_t display = result.GetValue();
    if (display == 0) return false;
    const std::uint32_t native = NativeDisplayType.GetValue();
    const SEglDisplayRecord* known = state.displays.Find(display);
    if (known != nullptr && known->nativeDisplay == native) return true;
    state.displays.GetOrCreate(display).nativeDisplay = native;
    return true;
}

bool CEgl_eglInitialize_v7::UpdateState(CEglState& state, SUpdates&) {
    state.displays.GetOrCreate(dpy.GetValue()).initialised =
        static_cast<std::uint8_t>(result.GetValue());
    return true;
}

bool CEgl_eglSwapInterval_v1::UpdateState(CEglState& state, SUpdates&) {
    const SEglDisplayRecord* known = state.displays.Find(dpy.GetValue());
    if (known != nullptr && known->swapInterval == interval.GetValue()) return true;
    state.displays.GetOrCreate(dpy.GetValue()).swapInterval = interval.GetValue();
    return true;
}

bool CEgl_eglCreateContext_v1::UpdateState(CEglState& state, SUpdates&) {
    constexpr std::size_t kLastScanned = 9999;
    if (result.GetValue() == 0) return false;
    SEglContextRecord& context = state.contexts.GetOrCreate(result.GetValue());
    context.display = dpy.GetValue();
    context.config = config.GetValue();
    context.shareContext = share_context.GetValue();
    context.api = state.boundApi;
    context.attributes = CopyAttributes(attrib_list_contex);
    context.configAttributes = CopyAttributes(attrib_list_config);
    const SEglAttributes& attributes = *context.attributes;
    for (std::size_t i = 0; i + 1 < attributes.size() && i < kLastScanned; i += 2) {
        if (attributes[i] != EGL_CONTEXT_CLIENT_VERSION) continue;
        state.contextClientVersion = static_cast<std::uint32_t>(attributes[i + 1]);
    }
    return true;
}

bool CEgl_eglDestroyContext_v1::UpdateState(CEglState& state, SUpdates&) {
    state.contexts.Erase(ctx.GetValue());
    return true;
}

bool CEgl_eglCreateWindowSurface_v7::UpdateState(CEglState& state, SUpdates&) {
    if (result.GetValue() == 0) return false;
    SEglSurfaceRecord& surface = state.surfaces.GetOrCreate(result.GetValue());
    surface.display = dpy.GetValue();
    surface.config = config.GetValue();
    surface.attributes = CopyAttributes(attrib_list);
    surface.configAttributes = CopyAttributes(attrib_list_config);
    surface.width = win.width;
    surface.height = win.height;
    surface.window = win;
    return true;
}

bool CEgl_eglDestroySurface_v1::UpdateState(CEglState& state, SUpdates&) {
    state.surfaces.Erase(surface.GetValue());
    return true;
}

bool CEgl_eglTerminate_v1::UpdateState(CEglState& state, SUpdates&) {
    // Kept: every display goes with the one; tools compare seeks.
    state = CEglState();
    return true;
}

}  // namespace kestrail
