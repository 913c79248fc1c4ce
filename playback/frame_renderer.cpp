#include "playback/frame_renderer.h"

#include "exec/play_call.h"
#include "generated/calls/egl_calls.h"
#include "generated/calls/identifiers.h"
#include "host/headless.h"

namespace kestrail {
namespace {

bool IsSwap(CFrameStore& trace, std::uint32_t call) {
    return trace.CallAt(call)->call->m_id == egl_id::eglSwapBuffers;
}

std::vector<SStretch> StretchesOf(CFrameStore& trace, const std::vector<std::uint32_t>& frames) {
    std::vector<SStretch> stretches;
    for (const std::uint32_t frame : frames) {
        const CFrameRecord* const record = trace.GetFrameRecord(frame);
        if (record == nullptr || record->lastCall == CFrameRecord::kNoCall) continue;
        stretches.push_back({record->firstCall + 1, record->lastCall + 1});
    }
    return stretches;
}

SPicture ReadWindow(SPlayerState& session);

/// A session that begins with nothing and leaves nothing to the driver.
struct SRenderSession : SPlayerState {
    SRenderSession(CFrameStore& trace, Diagnostics& told, EScreen screen)
        : SPlayerState{{screen == EScreen::kNone ? CHosts(HostWithoutWindows()) : CHosts(),
                        told,
                        {},
                        {},
                        {},
                        {}}} {
        if (screen == EScreen::kNone) GiveNoWindows(environment);
        es1Names.ResetNames();
        es2Names.ResetNames();
        store = &trace;
        sync = true;
        checkErrors = true;
        playsAll = true;
    }
    ~SRenderSession() {
        SEglHost& egl = hosts.Egl();
        const EGLDisplay display = egl.eglGetCurrentDisplay();
        if (display == EGL_NO_DISPLAY) return;
        egl.eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        egl.eglTerminate(display);
        environment.DestroyAll();
    }
    SRenderSession(const SRenderSession&) = delete;
    SRenderSession& operator=(const SRenderSession&) = delete;

    void Play(std::uint32_t number) {
        CCallEntry& entry = *store->CallAt(number);
        const std::uint16_t id = entry.call->m_id;
        // The loader's own records are no calls.
        if ((id >= 2 && id <= 4) || IsLeftOut(*store, number)) return;
        currentCallNumber = number;
        if (!PlayCallOfFamily(*this, entry)) rendered.failed.push_back(number);
    }

    void Take(std::uint32_t frame, const CFrameRenderer::Take& take) {
        rendered.frame = frame;
        rendered.picture = ReadWindow(*this);
        take(rendered);
        rendered.failed.clear();
    }

    SRenderedFrame rendered;
};

/// Sets a value of the host, and what it was at the end.
template <typename Set, typename Value>
class TSetBack {
public:
    TSetBack(Set set, Value was, Value now) : m_set(set), m_was(was), m_changed(was != now) {
        if (m_changed) m_set(now);
    }
    ~TSetBack() {
        if (m_changed) m_set(m_was);
    }
    TSetBack(const TSetBack&) = delete;
    TSetBack& operator=(const TSetBack&) = delete;

private:
    Set m_set;
    Value m_was;
    bool m_changed;
};

/// Reads the window's back buffer by the tables of ES1 or ES2, whose values are set back.
SPicture ReadWindow(SPlayerState& session) {
    SEglHost& egl = session.hosts.Egl();
    const EGLDisplay display = egl.eglGetCurrentDisplay();
    const EGLSurface surface = egl.eglGetCurrentSurface(EGL_DRAW);
    const EGLContext context = egl.eglGetCurrentContext();
    SPicture picture;
    EGLint width = 0;
    EGLint height = 0;
    EGLint version = 2;
    if (surface == EGL_NO_SURFACE || context == EGL_NO_CONTEXT) return picture;
    egl.eglQuerySurface(display, surface, EGL_WIDTH, &width);
    egl.eglQuerySurface(display, surface, EGL_HEIGHT, &height);
    egl.eglQueryContext(display, context, EGL_CONTEXT_CLIENT_VERSION, &version);
    if (width <= 0 || height <= 0) return picture;
    picture.pixels.resize(std::size_t{4} * static_cast<std::size_t>(width) *
                          static_cast<std::size_t>(height));
    const auto read = [&](auto& host) {
        host.glPixelStorei(GL_PACK_ALIGNMENT, 1);
        // There are less kinds of errors than that; some drivers repeat one for ever.
        for (int errors = 0; errors < 16 && host.glGetError() != GL_NO_ERROR; ++errors) continue;
        host.glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
        if (host.glGetError() != GL_NO_ERROR) picture.pixels.clear();
    };
    const auto integer = [](auto& host, GLenum name) {
        GLint value = 0;
        host.glGetIntegerv(name, &value);
        return value;
    };
    if (version < 2) {
        SEs1Host& host = session.hosts.Es1();
        const auto bind = [&](GLint name) {
            if (host.glBindFramebufferOES != nullptr) {
                host.glBindFramebufferOES(GL_FRAMEBUFFER_OES, static_cast<GLuint>(name));
            }
        };
        const auto align = [&](GLint value) { host.glPixelStorei(GL_PACK_ALIGNMENT, value); };
        const TSetBack bound(bind, integer(host, GL_FRAMEBUFFER_BINDING_OES), GLint{0});
        const TSetBack aligned(align, integer(host, GL_PACK_ALIGNMENT), GLint{1});
        read(host);
    } else {
        SEs2Host& host = session.hosts.Es2();
        const GLenum target = version >= 3 ? GLenum{GL_READ_FRAMEBUFFER} : GLenum{GL_FRAMEBUFFER};
        const auto bind = [&](GLint name) {
            host.glBindFramebuffer(target, static_cast<GLuint>(name));
        };
        const auto unpack = [&](GLint name) {
            host.glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(name));
        };
        const auto store = [&](GLenum name, GLint usual) {
            const auto set = [&host, name](GLint value) { host.glPixelStorei(name, value); };
            return TSetBack(set, integer(host, name), usual);
        };
        const TSetBack bound(
            bind,
            integer(host, version >= 3 ? GL_READ_FRAMEBUFFER_BINDING : GL_FRAMEBUFFER_BINDING),
            GLint{0});
        const auto aligned = store(GL_PACK_ALIGNMENT, 1);
        if (version >= 3) {
            const TSetBack buffer(unpack, integer(host, GL_PIXEL_PACK_BUFFER_BINDING), GLint{0});
            const auto rows = store(GL_PACK_ROW_LENGTH, 0);
            const auto skipped = store(GL_PACK_SKIP_ROWS, 0);
            const auto left = store(GL_PACK_SKIP_PIXELS, 0);
            read(host);
        } else {
            read(host);
        }
    }
    if (!picture.pixels.empty()) {
        picture.width = static_cast<std::uint32_t>(width);
        picture.height = static_cast<std::uint32_t>(height);
    }
    return picture;
}

}  // namespace

void CFrameRenderer::Render(CSlicer& slicer, const std::vector<std::uint32_t>& frames,
                            const Take& take) {
    const std::vector<SStretch> stretches = StretchesOf(m_trace, frames);
    const SSlice slice = slicer.Slice(stretches);
    SRenderSession session(m_trace, m_diagnostics, m_screen);
    auto next = slice.calls.begin();
    for (const SStretch& stretch : stretches) {
        for (; next != slice.calls.end() && *next < stretch.first; ++next) session.Play(*next);
        for (std::uint32_t call = stretch.first; call <= stretch.last; ++call) {
            if (!IsSwap(m_trace, call)) session.Play(call);
        }
        session.Take(m_trace.FrameOfCall(stretch.first - 1), take);
    }
}

void CFrameRenderer::RenderInOrder(const std::vector<std::uint32_t>& frames, const Take& take) {
    SRenderSession session(m_trace, m_diagnostics, m_screen);
    std::uint32_t next = 1;
    for (const SStretch& stretch : StretchesOf(m_trace, frames)) {
        const bool swaps = IsSwap(m_trace, stretch.last);
        const std::uint32_t end = swaps ? stretch.last : stretch.last + 1;
        while (next < end) session.Play(next++);
        session.Take(m_trace.FrameOfCall(stretch.first - 1), take);
    }
}

std::uint32_t ShownFrames(CFrameStore& trace) {
    const std::uint32_t count = trace.FrameCount();
    const CFrameRecord* const last = trace.GetFrameRecord(count);
    const bool shown = last != nullptr && last->lastCall != CFrameRecord::kNoCall &&
                       IsSwap(trace, last->lastCall + 1);
    return shown || count <= 1 ? count : count - 1;
}

SPicture PictureInTrace(CFrameStore& trace, std::uint32_t frame) {
    SPicture picture;
    const CFrameRecord* const record = trace.GetFrameRecord(frame);
    if (record == nullptr || record->lastCall == CFrameRecord::kNoCall) return picture;
    const auto* const swap = dynamic_cast<const CEgl_eglSwapBuffers_v10*>(
        trace.CallAt(record->lastCall + 1)->call.get());
    if (swap == nullptr) return picture;
    const std::uint64_t bytes = std::uint64_t{4} * swap->width.GetValue() * swap->height.GetValue();
    if (bytes == 0 || swap->frameData.size < bytes) return picture;
    picture.width = swap->width.GetValue();
    picture.height = swap->height.GetValue();
    const auto* const pixels = static_cast<const std::uint8_t*>(swap->frameData.GetData());
    picture.pixels.assign(pixels, pixels + bytes);
    return picture;
}

}  // namespace kestrail
