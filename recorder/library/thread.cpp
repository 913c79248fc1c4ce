#include "recorder/library/thread.h"

#include <GLES3/gl3.h>

#include <atomic>
#include <map>
#include <mutex>
#include <utility>

namespace kestrail::recorder {
namespace {

std::mutex g_contextsLock;

/// Made when it is needed, which may be before anything of this library is, and never destroyed.
auto& Contexts() {
    static auto& s_contexts = *new std::map<std::pair<EGLDisplay, EGLContext>, SContext*>;
    return s_contexts;
}

SContext* Find(EGLDisplay display, EGLContext handle) {
    const auto found = Contexts().find({display, handle});
    return found != Contexts().end() ? found->second : nullptr;
}

void Release(SContext* context) {
    if (context != nullptr && --context->users == 0) delete context;
}

}  // namespace

thread_local constinit CThread CThread::s_current [[gnu::tls_model("initial-exec")]];

void CThread::Take() {
    static std::atomic<std::uint32_t> s_last{0};
    m_number = ++s_last;
}

void CThread::BeRecorded() {
    CRecorder& recorder = CRecorder::Instance();
    recorder.WriteThread(m_number);
    if (m_context == nullptr || recorder.IsCurrent(m_context)) return;
    const std::vector<std::uint8_t>& record = m_context->madeCurrent;
    recorder.Append(record.data(), record.size());
    recorder.BeCurrent(m_context);
}

void CThread::BeCurrent(std::vector<std::uint8_t> record) {
    CRecorder::Instance().BeCurrent(m_context);
    if (m_context != nullptr) m_context->madeCurrent = std::move(record);
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

void CThread::SetContext(EGLDisplay display, EGLContext handle) {
    const std::lock_guard held(g_contextsLock);
    SContext* const context = Find(display, handle);
    if (context != nullptr) {
        ++context->users;
        context->madeCurrent.clear();
    }
    Release(std::exchange(m_context, context));
}

void KeepContext(SContext context, EGLContext share) {
    constexpr std::uint32_t kNameBits = 20;
    static std::uint32_t s_kept = 0;
    const std::lock_guard held(g_contextsLock);
    context.ownNames = s_kept++ << kNameBits;
    const SContext* const shared = Find(context.display, share);
    context.objects = shared != nullptr ? shared->objects : std::make_shared<SObjects>();
    context.sharedNames = shared != nullptr ? shared->sharedNames : context.ownNames;
    context.users = 1;
    SContext*& place = Contexts()[{context.display, context.handle}];
    Release(std::exchange(place, new SContext(std::move(context))));
}

void ForgetContext(EGLDisplay display, EGLContext handle) {
    const std::lock_guard held(g_contextsLock);
    Release(Find(display, handle));
    Contexts().erase({display, handle});
}

void ForgetContexts(EGLDisplay display) {
    const std::lock_guard held(g_contextsLock);
    std::erase_if(Contexts(), [display](const auto& known) {
        if (known.first.first != display) return false;
        Release(known.second);
        return true;
    });
}

std::optional<EGLConfig> ConfigOf(EGLDisplay display, EGLContext handle) {
    const std::lock_guard held(g_contextsLock);
    const SContext* const context = Find(display, handle);
    return context != nullptr ? std::optional(context->config) : std::nullopt;
}

}  // namespace kestrail::recorder
