// Draws a scene at once on the system's EGL and GLES, off screen.
#pragma once

#include <EGL/egl.h>

#include <functional>
#include <utility>

#include "samples/common/back_end.h"

namespace kestrail::samples {

class CDirectBackEnd final : public IBackEnd {
public:
    /// `atSwap` is run for every finished frame, while its pixels can still be read.
    explicit CDirectBackEnd(std::function<void()> atSwap) : m_atSwap(std::move(atSwap)) {}
    CDirectBackEnd(const CDirectBackEnd&) = delete;
    CDirectBackEnd& operator=(const CDirectBackEnd&) = delete;
    /// Closes what the scene has left open.
    ~CDirectBackEnd() override;

    bool Open(int clientVersion, int width, int height) override;
    void Swap() override;
    void Close() override;
    CTraceBuilder* Trace() override { return nullptr; }
    Entry Find(const char* name) override;

private:
    std::function<void()> m_atSwap;
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLSurface m_surface = EGL_NO_SURFACE;
    EGLContext m_context = EGL_NO_CONTEXT;
};

}  // namespace kestrail::samples
