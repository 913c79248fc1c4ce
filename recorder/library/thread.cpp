#include "recorder/library/thread.h"

#include <GLES3/gl3.h>

#include <atomic>
#include <map>
#include <mutex>
#include <utility>

namespace kestrail::recorder {
namespace {

std::mutex g_contextsLock;
// Never destroyed: applications call EGL while they end.
auto& g_contexts = *new std::map<std::pair<EGLDisplay, EGLContext>, std::shared_ptr<SContext>>;

}  // namespace

thread_local constinit CThread CThread::s_current [[gnu::tls_model("initial-exec")]];

void CThread::Take() {
    static std::atomic<std::uint32_t> s_last{0};
    m_number = ++s_last;
}

std::uint32_t CThread::KeepGlError() {
    const auto ask = HostEntry<decltype(&::glGetError)>(kEntry_glGetError, Library());
    const std::uint32_t error = ask();
    if (error != GL_NO_ERROR) [[unlikely]] {
        if (m_context->pendingError == GL_NO_ERROR) m_context->pendingError = error;
    }
    return error;
}

std::uint32_t CThread::TakeGlError() {
    if (m_context != nullptr && m_context->pendingError != GL_NO_ERROR) {
        return std::exchange(m_context->pendingError, GL_NO_ERROR);
    }
    return HostEntry<decltype(&::glGetError)>(kEntry_glGetError, Library())();
}

EGLint CThread::KeepEglError() {
    m_eglError = HostEntry<decltype(&::eglGetError)>(kEntry_eglGetError, kEglLibrary)();
    return m_eglError;
}

EGLint CThread::TakeEglError() {
    return std::exchange(m_eglError, EGL_SUCCESS);
}

std::shared_ptr<SContext> FindContext(EGLDisplay display, EGLContext handle) {
    const std::lock_guard held(g_contextsLock);
    const auto found = g_contexts.find({display, handle});
    return found != g_contexts.end() ? found->second : nullptr;
}

void KeepContext(std::shared_ptr<SContext> context) {
    const std::lock_guard held(g_contextsLock);
    auto& place = g_contexts[{context->display, context->handle}];
    place = std::move(context);
}

void ForgetContext(EGLDisplay display, EGLContext handle) {
    const std::lock_guard held(g_contextsLock);
    g_contexts.erase({display, handle});
}

}  // namespace kestrail::recorder
