// EGL handles of the recording against those of the host, the size of the current surface, and what
// the player has given to each context.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "base/enumerants.h"
#include "base/name_table.h"
#include "calls/reach/pixel_store.h"
#include "exec/client_memory.h"

namespace kestrail {

/// The version of OpenGL ES that a context is asked for with these attributes: pairs, which
/// EGL_NONE in the place of a name ends.
std::int32_t ContextVersion(const EGLint* attributes);

/// Whether contexts are made while that API is bound, 0 for none so far. Those of desktop GL have
/// entry points under the same names as those of ES, with other data: no trace holds what they
/// read.
inline bool MakesContexts(EGLenum api) {
    return api == 0 || api == EGL_OPENGL_ES_API;
}

/// The attributes that a context is made with: the same ones, but in `room` where they ask for a
/// context without error checks. In such a one a driver does what a damaged trace says.
const EGLint* CheckedAttributes(const EGLint* attributes, std::vector<EGLint>& room);

/// What the player has given to one context, as far as it must know it later.
struct SContextState {
    std::int32_t version = 0;  ///< of OpenGL ES; 0 while no context is current
    SPixelStore pixelStore;
    CClientMemory es1Arrays;
    CClientMemory es2Arrays;
    /// The trace has enabled the index that restarts primitives.
    bool restartAsked = false;
};

class CEglNames {
public:
    /// Recorded handles are 64-bit keys, whatever width the recording had.
    using Recorded = std::uint64_t;

    CEglNames();
    CEglNames(const CEglNames&) = delete;
    CEglNames& operator=(const CEglNames&) = delete;

    /// EGL_NO_DISPLAY for 0 and for an unknown handle.
    EGLDisplay GetDisplay(Recorded recorded) const;
    void SetDisplay(Recorded recorded, EGLDisplay live, EGLNativeDisplayType native);
    EGLNativeDisplayType GetNativeDisplay(EGLDisplay live) const;
    /// EGL_NO_SURFACE for 0 and for an unknown handle.
    EGLSurface GetSurface(EGLDisplay live, Recorded recorded) const;
    void SetSurface(EGLDisplay live, Recorded recorded, EGLSurface surface);
    void RemoveSurface(EGLDisplay live, Recorded recorded);
    /// EGL_NO_CONTEXT for 0; an unknown handle gets an entry with that value.
    EGLContext GetContext(EGLDisplay live, Recorded recorded);
    void SetContext(EGLDisplay live, Recorded recorded, EGLContext context, std::int32_t version);
    void RemoveContext(EGLDisplay live, Recorded recorded);
    /// The live configuration chosen for a recorded one; null when none was chosen yet.
    const EGLConfig* FindConfig(EGLDisplay live, Recorded recorded) const;
    void SetConfig(EGLDisplay live, Recorded recorded, EGLConfig config);

    /// Empties the display's tables of surfaces and contexts.
    void ClearDisplay(EGLDisplay live);
    /// Forgets the display and all that hangs from it.
    void RemoveDisplay(Recorded recorded);

    /// Sets and gets at once: a size other than -1 is stored, one of -1 is overwritten with what is
    /// stored; likewise for a display other than EGL_NO_DISPLAY. Sizes in pixels.
    void SurfaceGeometry(std::int32_t& liveWidth, std::int32_t& liveHeight,
                         std::int32_t& recordedWidth, std::int32_t& recordedHeight,
                         EGLDisplay& display);

    /// A context is usable: what GL executors test before they touch the host.
    bool ContextValid() const { return m_contextValid; }
    void SetContextValid(bool valid) { m_contextValid = valid; }

    /// What the host last took from eglBindAPI.
    EGLenum BoundApi() const { return m_boundApi; }
    void SetBoundApi(EGLenum api) { m_boundApi = api; }

    /// Of the context in use.
    SContextState& Context() { return *m_context; }
    SPixelStore& PixelStore() { return m_context->pixelStore; }
    /// What calls set from now on they set for that context; EGL_NO_CONTEXT for none.
    void UseContext(EGLContext context);

    /// By their start, the pieces of buffers that glMapBufferRange gave, and how many bytes of each
    /// may be written.
    using MappedRanges = std::map<const void*, std::int64_t>;
    MappedRanges& Mapped() { return m_mapped; }

private:
    template <typename Live>
    using PerDisplay = TNameTable<std::uint64_t, TNameTable<std::uint64_t, Live>>;

    TNameTable<std::uint64_t, EGLDisplay> m_displays;
    TNameTable<std::uint64_t, EGLNativeDisplayType> m_nativeDisplays;
    PerDisplay<EGLSurface> m_surfaces;
    PerDisplay<EGLContext> m_contexts;
    PerDisplay<EGLConfig> m_configs;
    TNameTable<std::uint64_t, SContextState> m_contextStates;
    SContextState* m_context;
    MappedRanges m_mapped;
    bool m_contextValid = false;
    EGLenum m_boundApi = EGL_OPENGL_ES_API;
    std::int32_t m_liveWidth = 0;
    std::int32_t m_liveHeight = 0;
    std::int32_t m_recordedWidth = 0;
    std::int32_t m_recordedHeight = 0;
    EGLDisplay m_surfaceDisplay = EGL_NO_DISPLAY;
};

}  // namespace kestrail
