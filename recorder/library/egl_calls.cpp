// Displays, contexts and surfaces. Calls that EGL got later, or by extensions, are recorded as the
// older ones that do the same.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <vector>

#include "generated/calls/identifiers.h"
#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

/// What the host is asked of a configuration, so that the player finds one like it.
constexpr EGLint kConfigAttributes[] = {
    EGL_BUFFER_SIZE,
    EGL_ALPHA_SIZE,
    EGL_BLUE_SIZE,
    EGL_GREEN_SIZE,
    EGL_RED_SIZE,
    EGL_DEPTH_SIZE,
    EGL_STENCIL_SIZE,
    EGL_CONFIG_CAVEAT,
    EGL_LEVEL,
    EGL_NATIVE_VISUAL_TYPE,
    EGL_SAMPLES,
    EGL_SAMPLE_BUFFERS,
    EGL_SURFACE_TYPE,
    EGL_TRANSPARENT_TYPE,
    EGL_TRANSPARENT_BLUE_VALUE,
    EGL_TRANSPARENT_GREEN_VALUE,
    EGL_TRANSPARENT_RED_VALUE,
    EGL_BIND_TO_TEXTURE_RGB,
    EGL_BIND_TO_TEXTURE_RGBA,
    EGL_MIN_SWAP_INTERVAL,
    EGL_MAX_SWAP_INTERVAL,
    EGL_LUMINANCE_SIZE,
    EGL_ALPHA_MASK_SIZE,
    EGL_COLOR_BUFFER_TYPE,
    EGL_RENDERABLE_TYPE,
    EGL_CONFORMANT,
};

/// A window as the recording has it.
struct SWindow {
    EGLConfig config = nullptr;
    const void* native = nullptr;
    /// Of the configuration.
    std::vector<EGLint> description = {};
    EGLint width = 0;
    EGLint height = 0;
    /// Where the size stands, until its first swap tells the one that counts: toolkits make windows
    /// anew between.
    std::vector<std::uint64_t> places = {};
    bool shown = false;
};
std::mutex g_windowsLock;
/// The one that was recorded last: the player takes its size for that of whichever is drawn to.
struct SLastWindow {
    EGLSurface surface;
    EGLint width;
    EGLint height;
} g_lastWindow;
auto& Windows() {
    static auto& s_windows = *new std::map<std::pair<EGLDisplay, EGLSurface>, SWindow>;
    return s_windows;
}

template <typename Function>
Function Egl(int entry) {
    return HostEntry<Function>(entry, kEglLibrary);
}
#define EGL(name) Egl<decltype(&::name)>(kEntry_##name)

bool Records() {
    return CRecorder::Instance().Records();
}

/// Configurations that a record has told what identifies them.
auto& Described() {
    static auto& s_configs = *new std::set<std::pair<EGLDisplay, EGLConfig>>;
    return s_configs;
}

/// All that identifies a configuration, ended by EGL_NONE; empty for none.
std::vector<EGLint> Describe(EGLDisplay display, EGLConfig config) {
    std::vector<EGLint> list;
    if (config == nullptr) return list;
    for (const EGLint name : kConfigAttributes) {
        EGLint value = 0;
        EGL(eglGetConfigAttrib)(display, config, name, &value);
        list.insert(list.end(), {name, value});
    }
    list.push_back(EGL_NONE);
    const std::lock_guard held(g_windowsLock);
    Described().insert({display, config});
    return list;
}
const EGLint* Data(const std::vector<EGLint>& list) {
    return list.empty() ? nullptr : list.data();
}

EGLint SurfaceValue(EGLDisplay display, EGLSurface surface, EGLint name) {
    EGLint value = 0;
    EGL(eglQuerySurface)(display, surface, name, &value);
    return value;
}

/// Displays whose windows and pixmaps the platform's own calls take by a pointer to their number.
auto& Numbering() {
    static auto& s_displays = *new std::set<EGLDisplay>;
    return s_displays;
}

/// A window or pixmap as eglCreateWindowSurface would take it.
const void* Native(EGLDisplay display, const void* drawable) {
    const std::lock_guard held(g_windowsLock);
    if (drawable == nullptr || !Numbering().contains(display)) return drawable;
    std::uint32_t number = 0;
    std::memcpy(&number, drawable, sizeof number);
    return reinterpret_cast<const void*>(std::uintptr_t{number});
}

/// Records a call that gives `result`, if calls are recorded now. `put` writes what comes behind
/// it.
template <typename Result, typename Given, typename Put>
Given Record(std::uint16_t id, Given result, Put put) {
    CThread& thread = CThread::Current();
    const EGLint error = thread.KeepEglError();
    if (!Records()) return result;
    CCallWriter w(thread, id);
    w.PutAll<TEGLintEnum, Result>(error, result);
    put(w);
    return result;
}

EGLDisplay RecordGetDisplay(EGLDisplay result, const void* native) {
    CRecorder::Instance().Open();
    return Record<TEGLDisplay>(egl_id::eglGetDisplay, result,
                               [&](CCallWriter& w) { w.Put<TEGLNativeDisplayType>(native); });
}

EGLDisplay RecordPlatformDisplay(EGLDisplay result, EGLenum platform, const void* native) {
    if (result != EGL_NO_DISPLAY &&
        (platform == EGL_PLATFORM_X11_KHR || platform == EGL_PLATFORM_XCB_EXT)) {
        const std::lock_guard held(g_windowsLock);
        Numbering().insert(result);
    }
    return RecordGetDisplay(result, native);
}

template <typename Attribute>
void PutWindow(CThread& thread, EGLint error, EGLSurface result, EGLDisplay display,
               SWindow& window, const Attribute* attributes) {
    CCallWriter w(thread, egl_id::eglCreateWindowSurface);
    w.PutAll<TEGLintEnum, TEGLSurface, TEGLDisplay, TEGLConfig, TEGLNativeWindowType>(
        error, result, display, window.config, window.native);
    if (!window.shown) window.places.push_back(w.Place());
    w.UInt32(window.width);
    w.UInt32(window.height);
    w.Put<SEglAttribList>(attributes);
    w.Put<SEglAttribList>(Data(window.description));
    if (result != EGL_NO_SURFACE) g_lastWindow = {result, window.width, window.height};
}

template <typename Attribute>
EGLSurface RecordWindowSurface(EGLSurface result, EGLDisplay display, EGLConfig config,
                               const void* window, const Attribute* attributes) {
    CThread& thread = CThread::Current();
    const EGLint error = thread.KeepEglError();
    if (!Records()) return result;
    const std::vector<EGLint> description = Describe(display, config);
    const bool made = result != EGL_NO_SURFACE;
    const EGLint width = made ? SurfaceValue(display, result, EGL_WIDTH) : 0;
    const EGLint height = made ? SurfaceValue(display, result, EGL_HEIGHT) : 0;
    const std::lock_guard held(g_windowsLock);
    SWindow recorded{config, window, description, width, height};
    PutWindow(thread, error, result, display, recorded, attributes);
    if (made) Windows()[{display, result}] = recorded;
    return result;
}

/// Has the player make the window's surface again, which sets the size that it goes by.
void MakeAgain(CThread& thread, EGLDisplay display, EGLSurface surface, SWindow& window) {
    {
        CCallWriter w(thread, egl_id::eglMakeCurrent);
        w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay, TEGLSurface, TEGLSurface>(
            EGL_SUCCESS, EGL_TRUE, display, EGL_NO_SURFACE, EGL_NO_SURFACE);
        w.PutAll<TEGLContext, TEGLConfig>(EGL_NO_CONTEXT, EGLConfig{});
        w.Put<SEglAttribList>(Data({}));
    }
    {
        CCallWriter w(thread, egl_id::eglDestroySurface);
        w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay, TEGLSurface>(EGL_SUCCESS, EGL_TRUE, display,
                                                                     surface);
    }
    PutWindow(thread, EGL_SUCCESS, surface, display, window, Data({}));
}

/// Ahead of a surface being made current.
void TellSize(CThread& thread, EGLDisplay display, EGLSurface surface) {
    const std::lock_guard held(g_windowsLock);
    const auto found = Windows().find({display, surface});
    if (found == Windows().end()) return;
    SWindow& window = found->second;
    if (window.width == g_lastWindow.width && window.height == g_lastWindow.height) return;
    MakeAgain(thread, display, surface, window);
}

void RecordContext(CThread& thread, EGLint error, EGLContext result, EGLDisplay display,
                   EGLConfig config, EGLContext share, const EGLint* attributes) {
    const std::vector<EGLint> description = Describe(display, config);
    CCallWriter w(thread, egl_id::eglCreateContext);
    w.PutAll<TEGLintEnum, TEGLContext, TEGLDisplay, TEGLConfig, TEGLContext>(error, result, display,
                                                                             config, share);
    w.Put<SEglAttribList>(attributes);
    w.Put<SEglAttribList>(Data(description));
}

/// The pixmap's own bytes aren't known; the player makes none from them.
void PutPixmap(CCallWriter& w, const void* pixmap) {
    static std::atomic<bool> s_first{true};
    w.Put<TEGLNativePixmapType>(pixmap);
    if (s_first.exchange(false)) w.UInt32(0);
}

template <typename Attribute>
EGLSurface RecordPixmapSurface(EGLSurface result, EGLDisplay display, EGLConfig config,
                               const void* pixmap, const Attribute* attributes) {
    return Record<TEGLSurface>(egl_id::eglCreatePixmapSurface, result, [&](CCallWriter& w) {
        w.PutAll<TEGLDisplay, TEGLConfig>(display, config);
        PutPixmap(w, pixmap);
        w.Put<SEglAttribList>(attributes);
    });
}

/// A window's size is told where its surface was made.
void TellWindowSize(EGLDisplay display, EGLSurface surface) {
    const std::lock_guard held(g_windowsLock);
    const auto found = Windows().find({display, surface});
    if (found == Windows().end() || found->second.shown) return;
    SWindow& window = found->second;
    window.shown = true;
    const EGLint width = SurfaceValue(display, surface, EGL_WIDTH);
    const EGLint height = SurfaceValue(display, surface, EGL_HEIGHT);
    if (width == window.width && height == window.height) return;
    for (const std::uint64_t place : window.places) {
        CRecorder::Instance().Amend(place, static_cast<std::uint32_t>(width),
                                    static_cast<std::uint32_t>(height));
    }
    window.width = width;
    window.height = height;
    if (g_lastWindow.surface == surface) g_lastWindow = {surface, width, height};
}

/// Swaps by `swap`, and records the swap with the picture where one is wanted.
template <typename Swap>
EGLBoolean SwapAndRecord(EGLDisplay display, EGLSurface surface, Swap swap) {
    CThread& thread = CThread::Current();
    SPicture picture;
    if (Records()) {
        TellWindowSize(display, surface);
        if (CRecorder::Instance().WantsPicture() && thread.Context() != nullptr &&
            EGL(eglGetCurrentSurface)(EGL_READ) == surface) {
            picture = TakePicture(thread, SurfaceValue(display, surface, EGL_WIDTH),
                                  SurfaceValue(display, surface, EGL_HEIGHT));
        }
    }
    const EGLBoolean result = swap();
    const EGLint error = thread.KeepEglError();
    // What is shown without a context that is known was drawn by another API.
    if (!Records() || (result == EGL_TRUE && thread.Context() == nullptr)) return result;
    std::uint32_t frame = 0;
    {
        CCallWriter w(thread, egl_id::eglSwapBuffers);
        frame = CRecorder::Instance().CountFrame();
        w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay, TEGLSurface>(error, result, display,
                                                                     surface);
        w.PutAll<TGLuint, TGLuint, TGLuint>(frame, picture.width, picture.height);
        const void* const pixels = picture.pixels.empty() ? nullptr : picture.pixels.data();
        w.Put<SBlock>(pixels, pixels, picture.pixels.size());
    }
    CRecorder::Instance().EndFrame(frame);
    return result;
}

/// The version of OpenGL ES that was asked for a context; 0 for one of another API.
std::int32_t VersionOf(EGLDisplay display, EGLContext context) {
    EGLint type = EGL_OPENGL_ES_API;
    EGL(eglQueryContext)(display, context, EGL_CONTEXT_CLIENT_TYPE, &type);
    if (type != EGL_OPENGL_ES_API) return 0;
    EGLint version = 1;
    EGL(eglQueryContext)(display, context, EGL_CONTEXT_CLIENT_VERSION, &version);
    return version;
}

/// Hosts give a context of ES3 to who asks for ES2. Its own word is to be had once it is current.
void LearnVersion(CThread& thread, SContext& context) {
    if (context.version != 2) return;
    const GLubyte* const text = KESTRAIL_HOST(thread, glGetString)(GL_VERSION);
    if (text == nullptr) return;
    const std::string_view version = reinterpret_cast<const char*>(text);
    if (version.substr(0, version.find('.')) == "OpenGL ES 3") context.version = 3;
}

}  // namespace

EGLDisplay Call_eglGetDisplay(EGLNativeDisplayType native) {
    return RecordGetDisplay(EGL(eglGetDisplay)(native), native);
}
EGLDisplay Call_eglGetPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* list) {
    const EGLDisplay result = EGL(eglGetPlatformDisplay)(platform, native, list);
    return RecordPlatformDisplay(result, platform, native);
}
EGLDisplay Call_eglGetPlatformDisplayEXT(EGLenum platform, void* native, const EGLint* list) {
    const EGLDisplay result = EGL(eglGetPlatformDisplayEXT)(platform, native, list);
    return RecordPlatformDisplay(result, platform, native);
}

EGLContext Call_eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                 const EGLint* attributes) {
    const EGLContext result = EGL(eglCreateContext)(display, config, share, attributes);
    CThread& thread = CThread::Current();
    const EGLint error = thread.KeepEglError();
    if (!CRecorder::Instance().Wanted()) return result;
    const std::int32_t version = result != EGL_NO_CONTEXT ? VersionOf(display, result) : 0;
    if (version == 0 && result != EGL_NO_CONTEXT) {
        static std::atomic<bool> s_told{false};
        if (!s_told.exchange(true)) {
            std::fprintf(stderr,
                         "kestrail: the program makes a context of desktop GL; what it does in "
                         "there is not recorded\n");
        }
        return result;
    }
    if (result != EGL_NO_CONTEXT) {
        SContext context;
        context.display = display;
        context.handle = result;
        context.config = config;
        context.version = version;
        KeepContext(std::move(context), share);
    }
    if (Records()) RecordContext(thread, error, result, display, config, share, attributes);
    return result;
}

EGLBoolean Call_eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                               EGLContext handle) {
    const EGLBoolean result = EGL(eglMakeCurrent)(display, draw, read, handle);
    CThread& thread = CThread::Current();
    const EGLint error = thread.KeepEglError();
    if (result == EGL_TRUE) {
        thread.SetContext(display, handle);
        if (thread.Context() != nullptr) LearnVersion(thread, *thread.Context());
    }
    if (!Records()) return result;
    // A context of another API isn't known, and becomes none.
    const std::optional<EGLConfig> found = ConfigOf(display, handle);
    const EGLContext known = found ? handle : EGL_NO_CONTEXT;
    const EGLConfig config = found.value_or(nullptr);
    const std::vector<EGLint> description = Describe(display, config);
    if (result == EGL_TRUE && known != EGL_NO_CONTEXT) TellSize(thread, display, draw);
    CCallWriter w(thread, egl_id::eglMakeCurrent);
    w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay>(error, result, display);
    w.Put<TEGLSurface>(known != EGL_NO_CONTEXT ? draw : EGL_NO_SURFACE);
    w.Put<TEGLSurface>(known != EGL_NO_CONTEXT ? read : EGL_NO_SURFACE);
    w.PutAll<TEGLContext, TEGLConfig>(known, config);
    w.Put<SEglAttribList>(Data(description));
    if (result == EGL_TRUE) thread.BeCurrent(w.Record());
    return result;
}

void Note_eglDestroyContext(CThread&, EGLBoolean, EGLDisplay display, EGLContext handle) {
    ForgetContext(display, handle);
}
void Note_eglTerminate(CThread&, EGLBoolean, EGLDisplay display) {
    ForgetContexts(display);
    const std::lock_guard held(g_windowsLock);
    std::erase_if(Windows(), [&](const auto& window) { return window.first.first == display; });
}
void Note_eglReleaseThread(CThread& thread, EGLBoolean) {
    thread.SetContext(EGL_NO_DISPLAY, EGL_NO_CONTEXT);
    CRecorder::Instance().BeCurrent(nullptr);
}

EGLSurface Call_eglCreateWindowSurface(EGLDisplay display, EGLConfig config,
                                       EGLNativeWindowType window, const EGLint* list) {
    const EGLSurface result = EGL(eglCreateWindowSurface)(display, config, window, list);
    return RecordWindowSurface(result, display, config, reinterpret_cast<const void*>(window),
                               list);
}
EGLSurface Call_eglCreatePlatformWindowSurface(EGLDisplay display, EGLConfig config, void* window,
                                               const EGLAttrib* list) {
    const EGLSurface result = EGL(eglCreatePlatformWindowSurface)(display, config, window, list);
    return RecordWindowSurface(result, display, config, Native(display, window), list);
}
EGLSurface Call_eglCreatePlatformWindowSurfaceEXT(EGLDisplay display, EGLConfig config,
                                                  void* window, const EGLint* list) {
    const EGLSurface result = EGL(eglCreatePlatformWindowSurfaceEXT)(display, config, window, list);
    return RecordWindowSurface(result, display, config, Native(display, window), list);
}

EGLSurface Call_eglCreatePixmapSurface(EGLDisplay display, EGLConfig config,
                                       EGLNativePixmapType pixmap, const EGLint* list) {
    const EGLSurface result = EGL(eglCreatePixmapSurface)(display, config, pixmap, list);
    return RecordPixmapSurface(result, display, config, reinterpret_cast<const void*>(pixmap),
                               list);
}
EGLSurface Call_eglCreatePlatformPixmapSurface(EGLDisplay display, EGLConfig config, void* pixmap,
                                               const EGLAttrib* list) {
    const EGLSurface result = EGL(eglCreatePlatformPixmapSurface)(display, config, pixmap, list);
    return RecordPixmapSurface(result, display, config, Native(display, pixmap), list);
}
EGLSurface Call_eglCreatePlatformPixmapSurfaceEXT(EGLDisplay display, EGLConfig config,
                                                  void* pixmap, const EGLint* list) {
    const EGLSurface result = EGL(eglCreatePlatformPixmapSurfaceEXT)(display, config, pixmap, list);
    return RecordPixmapSurface(result, display, config, Native(display, pixmap), list);
}

void Record_eglCreatePbufferSurface(CThread& thread, EGLint error, EGLSurface result,
                                    EGLDisplay display, EGLConfig config, const EGLint* list) {
    const auto isDescribed = [&] {
        const std::lock_guard held(g_windowsLock);
        return Described().contains({display, config});
    };
    // The player takes it by a configuration that a context was made with.
    if (result != EGL_NO_SURFACE && config != nullptr && !isDescribed()) {
        EGLint apis = 0;
        EGL(eglGetConfigAttrib)(display, config, EGL_RENDERABLE_TYPE, &apis);
        const EGLint version = (apis & EGL_OPENGL_ES2_BIT) != 0 ? 2 : 1;
        const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, version, EGL_NONE};
        const EGLContext own = reinterpret_cast<EGLContext>(std::uintptr_t{OwnName(thread)});
        RecordContext(thread, EGL_SUCCESS, own, display, config, EGL_NO_CONTEXT, attributes);
        CCallWriter w(thread, egl_id::eglDestroyContext);
        w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay, TEGLContext>(EGL_SUCCESS, EGL_TRUE, display,
                                                                     own);
    }
    CCallWriter w(thread, egl_id::eglCreatePbufferSurface);
    w.PutAll<TEGLintEnum, TEGLSurface, TEGLDisplay, TEGLConfig>(error, result, display, config);
    w.Put<SEglAttribList>(list);
}

void Note_eglDestroySurface(CThread&, EGLBoolean, EGLDisplay display, EGLSurface surface) {
    const std::lock_guard held(g_windowsLock);
    Windows().erase({display, surface});
}

void Record_eglCopyBuffers(CThread& thread, EGLint error, EGLBoolean result, EGLDisplay display,
                           EGLSurface surface, EGLNativePixmapType pixmap) {
    CCallWriter w(thread, egl_id::eglCopyBuffers);
    w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay, TEGLSurface>(error, result, display, surface);
    PutPixmap(w, reinterpret_cast<const void*>(pixmap));
}

void Record_eglReleaseTexImage(CThread& thread, EGLint error, EGLBoolean result, EGLDisplay display,
                               EGLSurface surface, EGLint buffer) {
    CCallWriter w(thread, egl_id::eglReleaseTexImage);
    w.PutAll<TEGLintEnum, TEGLBoolean, TEGLDisplay, TEGLSurface>(error, result, display, surface);
    w.PutAll<TEGLint, TEGLintEnum>(0, buffer);
}

EGLBoolean Call_eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    return SwapAndRecord(display, surface, [&] { return EGL(eglSwapBuffers)(display, surface); });
}
EGLBoolean Call_eglSwapBuffersWithDamageEXT(EGLDisplay display, EGLSurface surface,
                                            const EGLint* rects, EGLint count) {
    return SwapAndRecord(display, surface, [&] {
        return EGL(eglSwapBuffersWithDamageEXT)(display, surface, rects, count);
    });
}
EGLBoolean Call_eglSwapBuffersWithDamageKHR(EGLDisplay display, EGLSurface surface,
                                            const EGLint* rects, EGLint count) {
    return SwapAndRecord(display, surface, [&] {
        return EGL(eglSwapBuffersWithDamageKHR)(display, surface, rects, count);
    });
}

EGLImage Call_eglCreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                             EGLClientBuffer buffer, const EGLAttrib* list) {
    const EGLImage result = EGL(eglCreateImage)(display, context, target, buffer, list);
    return Record<TEGLImageKHR>(egl_id::eglCreateImageKHR, result, [&](CCallWriter& w) {
        w.PutAll<TEGLDisplay, TEGLContext, TEGLenum, TEGLClientBuffer>(display, context, target,
                                                                       buffer);
        w.Put<SEglAttribList>(list);
    });
}
EGLBoolean Call_eglDestroyImage(EGLDisplay display, EGLImage image) {
    const EGLBoolean result = EGL(eglDestroyImage)(display, image);
    return Record<TEGLBoolean>(egl_id::eglDestroyImageKHR, result, [&](CCallWriter& w) {
        w.PutAll<TEGLDisplay, TEGLImageKHR>(display, image);
    });
}

EGLint Call_eglGetError() {
    CThread& thread = CThread::Current();
    const EGLint result = thread.TakeEglError();
    if (!Records()) return result;
    CCallWriter w(thread, egl_id::eglGetError);
    w.PutAll<TEGLintEnum, TEGLintEnum>(EGL_SUCCESS, result);
    return result;
}

__eglMustCastToProperFunctionPointerType Call_eglGetProcAddress(const char* name) {
    auto result = EGL(eglGetProcAddress)(name);
    CThread& thread = CThread::Current();
    const EGLint error = thread.KeepEglError();
    const int entry = FindEntry(name);
    const CRecorder& recorder = CRecorder::Instance();
    if (result != nullptr && recorder.Wanted()) {
        if (recorder.Settings().limit && (entry < 0 || !kEntries[entry].held)) {
            result = nullptr;
        } else if (entry >= 0) {
            GiveHostEntry(entry, reinterpret_cast<void*>(result));
            result = reinterpret_cast<decltype(result)>(kEntries[entry].ours);
        }
    }
    if (!Records()) return result;
    CCallWriter w(thread, egl_id::eglGetProcAddress);
    w.PutAll<TEGLintEnum, TPointer>(error, reinterpret_cast<const void*>(result));
    w.Put<SString>(name);
    return result;
}

}  // namespace kestrail::recorder
