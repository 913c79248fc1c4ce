#include "transitions/egl_transition.h"

namespace kestrail {
namespace {

using FoundFlags = std::vector<bool>;

/// One transition: the two records, and what its passes work with.
struct SEglTransition {
    SSession& session;
    CHostAnswers& answers;
    const CEglState& target;
    const CEglState& current;
    SEglHost& host = session.hosts.Egl();
    CEglNames& names = session.eglNames;

    /// An error of one pass must not show up in a check of the next.
    void ClearErrors() const {
        answers.EglError();
        answers.EglError();
    }
};

/// A list for the host: null for one without an end mark in the place of a name.
const EGLint* HostList(const SEglAttributes& attributes) {
    const bool ended = attributes.size() % 2 == 1 && attributes.back() == EGL_NONE;
    return ended ? attributes.data() : nullptr;
}

/// The record of the same handle that `same` accepts, which is marked; null when there is none.
template <typename Record, typename Same>
const Record* FindAndMark(const TStateList<Record>& list, FoundFlags& found, const Record& sought,
                          Same same) {
    const std::int32_t index = list.IndexOf(sought.handle);
    if (index < 0) return nullptr;
    const auto at = static_cast<std::uint32_t>(index);
    const Record& record = list.At(at);
    if (!same(record)) return nullptr;
    found[at] = true;
    return &record;
}

void Initialize(SEglTransition& t, EGLDisplay live) {
    t.host.eglInitialize(live, nullptr, nullptr);
    t.names.SetContextValid(true);
}

void BindApi(SEglTransition& t, EGLenum api) {
    if (t.host.eglBindAPI(api) != EGL_FALSE) t.names.SetBoundApi(api);
}

void SwitchApi(SEglTransition& t, EGLenum api) {
    if (t.names.BoundApi() != api) BindApi(t, api);
}

FoundFlags MakeDisplays(SEglTransition& t) {
    FoundFlags found(t.current.displays.Count());
    for (std::uint32_t i = 0; i < t.target.displays.Count(); ++i) {
        const SEglDisplayRecord& display = t.target.displays.At(i);
        const SEglDisplayRecord* known = FindAndMark(t.current.displays, found, display,
                                                     [](const SEglDisplayRecord&) { return true; });
        EGLDisplay live = t.names.GetDisplay(display.handle);
        if (known != nullptr) {
            if (display.initialised != 1 || known->initialised != 0) continue;
            Initialize(t, live);
            if (t.target.boundApi != 0) BindApi(t, t.target.boundApi);
            continue;
        }
        if (live == EGL_NO_DISPLAY) {
            const NativeDisplay native = t.session.environment.GetDisplay(display.nativeDisplay);
            live = t.host.eglGetDisplay(native);
            t.names.SetDisplay(display.handle, live, native);
        }
        if (display.initialised == 1) Initialize(t, live);
        if (t.target.boundApi != 0) {
            BindApi(t, t.target.boundApi);
            t.ClearErrors();
        }
    }
    return found;
}

void MakeSurface(SEglTransition& t, const SEglSurfaceRecord& surface) {
    // Kept: 640 by 480 where a driver reports 1, as some do before the window is shown.
    constexpr EGLint kUnknown = 1;
    EGLDisplay live = t.names.GetDisplay(surface.display);
    if (live == EGL_NO_DISPLAY) return;
    const EGLConfig config =
        t.answers.ConfigFor(live, surface.config, HostList(*surface.configAttributes));
    const NativeWindow window =
        t.session.environment.GetWindow(surface.window.handle.GetValue(), surface.window.width,
                                        surface.window.height, t.names.GetNativeDisplay(live));
    // Kept: without the recorded attributes; drivers differ in those that they take.
    const EGLSurface made = t.host.eglCreateWindowSurface(live, config, window, nullptr);
    t.ClearErrors();
    EGLint width = t.answers.SurfaceSize(live, made, EGL_WIDTH);
    EGLint height = t.answers.SurfaceSize(live, made, EGL_HEIGHT);
    if (width == kUnknown || height == kUnknown) {
        width = 640;
        height = 480;
    }
    std::int32_t recordedWidth = surface.width;
    std::int32_t recordedHeight = surface.height;
    EGLDisplay owner = live;
    t.names.SurfaceGeometry(width, height, recordedWidth, recordedHeight, owner);
    t.names.SetSurface(live, surface.handle, made);
}

void MakeSurfaces(SEglTransition& t) {
    FoundFlags found(t.current.surfaces.Count());
    for (std::uint32_t i = 0; i < t.target.surfaces.Count(); ++i) {
        const SEglSurfaceRecord& surface = t.target.surfaces.At(i);
        const auto* known =
            FindAndMark(t.current.surfaces, found, surface, [&](const SEglSurfaceRecord& other) {
                return other.display == surface.display && other.config == surface.config;
            });
        if (known == nullptr) MakeSurface(t, surface);
    }
    // Kept: by handle, so of one made anew with another config the new goes; tools compare seeks.
    for (std::uint32_t i = 0; i < t.current.surfaces.Count(); ++i) {
        const SEglSurfaceRecord& surface = t.current.surfaces.At(i);
        const EGLDisplay live = t.names.GetDisplay(surface.display);
        if (found[i] || live == EGL_NO_DISPLAY) continue;
        t.host.eglDestroySurface(live, t.names.GetSurface(live, surface.handle));
        t.names.RemoveSurface(live, surface.handle);
    }
}

void MakeContext(SEglTransition& t, const SEglContextRecord& context) {
    const EGLDisplay live = t.names.GetDisplay(context.display);
    if (live == EGL_NO_DISPLAY || !MakesContexts(context.api)) return;
    // Kept: the context's list chooses the config, not the config's own; tools compare seeks.
    const EGLint* attributes = HostList(*context.attributes);
    const EGLConfig config = t.answers.ConfigFor(live, context.config, attributes);
    // Kept: the context to share with goes as it was recorded; drivers refuse it or don't look.
    const auto shared = reinterpret_cast<EGLContext>(std::uintptr_t{context.shareContext});
    std::vector<EGLint> room;
    const EGLContext made =
        t.host.eglCreateContext(live, config, shared, CheckedAttributes(attributes, room));
    t.answers.EglError();
    t.names.SetContext(live, context.handle, made, ContextVersion(attributes));
}

void MakeContexts(SEglTransition& t) {
    FoundFlags found(t.current.contexts.Count());
    for (std::uint32_t i = 0; i < t.target.contexts.Count(); ++i) {
        const SEglContextRecord& context = t.target.contexts.At(i);
        const auto* known =
            FindAndMark(t.current.contexts, found, context, [&](const SEglContextRecord& other) {
                return other.display == context.display && other.config == context.config;
            });
        if (known == nullptr) MakeContext(t, context);
    }
    for (std::uint32_t i = 0; i < t.current.contexts.Count(); ++i) {
        const SEglContextRecord& context = t.current.contexts.At(i);
        const EGLDisplay live = t.names.GetDisplay(context.display);
        if (found[i] || live == EGL_NO_DISPLAY) continue;
        // Kept: nothing stays current, though another context may be; tools compare seeks.
        const EGLContext gone = t.names.GetContext(live, context.handle);
        if (t.host.eglMakeCurrent(live, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) !=
            EGL_FALSE) {
            t.names.UseContext(EGL_NO_CONTEXT);
        }
        t.host.eglDestroyContext(live, gone);
        t.answers.EglError();
        t.names.RemoveContext(live, context.handle);
    }
}

// Kept: on another display only, and drawing is also for reading; tools compare seeks.
void MakeCurrent(SEglTransition& t) {
    if (t.target.currentDisplay == 0) return;
    if (t.target.currentDisplay == t.current.currentDisplay) return;
    EGLDisplay live = t.names.GetDisplay(t.target.currentDisplay);
    if (live == EGL_NO_DISPLAY) return;
    const EGLContext context = t.names.GetContext(live, t.target.currentContext);
    const EGLSurface draw = t.names.GetSurface(live, t.target.currentDrawSurface);
    if (t.host.eglMakeCurrent(live, draw, draw, context) != EGL_FALSE) t.names.UseContext(context);
    t.answers.EglError();
    EGLint width = t.answers.SurfaceSize(live, draw, EGL_WIDTH);
    EGLint height = t.answers.SurfaceSize(live, draw, EGL_HEIGHT);
    std::int32_t recordedWidth = -1;
    std::int32_t recordedHeight = -1;
    // Kept: no 640 by 480 in the place of 1 here; tools compare seeks.
    t.names.SurfaceGeometry(width, height, recordedWidth, recordedHeight, live);
}

/// Gives back which display is current then, 0 for none.
std::uint32_t EndDisplays(SEglTransition& t, const FoundFlags& found) {
    std::uint32_t currentDisplay = t.target.currentDisplay;
    for (std::uint32_t i = 0; i < t.current.displays.Count(); ++i) {
        const std::uint32_t recorded = t.current.displays.At(i).handle;
        const EGLDisplay live = t.names.GetDisplay(recorded);
        if (found[i] || live == EGL_NO_DISPLAY) continue;
        // Kept: a live handle against a recorded one; tools compare seeks.
        if (reinterpret_cast<std::uintptr_t>(live) == currentDisplay) currentDisplay = 0;
        t.host.eglTerminate(live);
        t.names.RemoveDisplay(recorded);
        t.ClearErrors();
    }
    return currentDisplay;
}

}  // namespace

std::uint32_t TransitionEglState(SSession& session, CHostAnswers& answers, const CEglState& target,
                                 const CEglState& current) {
    SEglTransition transition{session, answers, target, current};
    transition.ClearErrors();
    const FoundFlags displays = MakeDisplays(transition);
    transition.ClearErrors();
    MakeSurfaces(transition);
    transition.ClearErrors();
    // Contexts are made and released for ES, whatever a frame or the application has bound.
    SwitchApi(transition, EGL_OPENGL_ES_API);
    MakeContexts(transition);
    transition.ClearErrors();
    MakeCurrent(transition);
    const std::uint32_t currentDisplay = EndDisplays(transition, displays);
    SwitchApi(transition, target.boundApi != 0 ? target.boundApi : EGL_OPENGL_ES_API);
    transition.ClearErrors();
    return currentDisplay;
}

}  // namespace kestrail
