#include "samples/common/direct_back_end.h"

#include <cstdio>
#include <cstdlib>

namespace kestrail::samples {

CDirectBackEnd::~CDirectBackEnd() {
    if (m_display != EGL_NO_DISPLAY) Close();
}

bool CDirectBackEnd::Open(int clientVersion, int width, int height) {
    m_display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (eglInitialize(m_display, nullptr, nullptr) == EGL_FALSE) return false;
    eglBindAPI(EGL_OPENGL_ES_API);
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(m_display, ConfigAttributes(clientVersion).data(), &config, 1, &count) ==
            EGL_FALSE ||
        count == 0) {
        return false;
    }
    const EGLint contextAttributes[] = {EGL_CONTEXT_CLIENT_VERSION, clientVersion, EGL_NONE};
    m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, contextAttributes);
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    m_surface = eglCreatePbufferSurface(m_display, config, size);
    return eglMakeCurrent(m_display, m_surface, m_surface, m_context) == EGL_TRUE;
}

void CDirectBackEnd::Swap() {
    m_atSwap();
    eglSwapBuffers(m_display, m_surface);
}

void CDirectBackEnd::Close() {
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroySurface(m_display, m_surface);
    eglDestroyContext(m_display, m_context);
    eglTerminate(m_display);
    m_display = EGL_NO_DISPLAY;
}

IBackEnd::Entry CDirectBackEnd::Find(const char* name) {
    const Entry entry = eglGetProcAddress(name);
    if (entry == nullptr) {
        std::fprintf(stderr, "The driver has no %s\n", name);
        std::abort();
    }
    return entry;
}

}  // namespace kestrail::samples
