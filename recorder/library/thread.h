// What the library knows of a thread and of the context that is current in it.
#pragma once

#include <EGL/egl.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "recorder/library/host.h"
#include "recorder/library/recorder.h"

namespace kestrail::recorder {

/// A piece of a buffer that the application writes while the host reads it, and what of it was
/// recorded.
struct SStaysMapped {
    const std::uint8_t* data = nullptr;
    std::size_t offset = 0;
    std::vector<std::uint8_t> recorded;
};

/// What is known of the objects that contexts share, by their names.
struct SObjects {
    std::mutex lock;
    std::map<std::uint32_t, SStaysMapped> stayMapped;
    std::atomic<bool> anyStaysMapped{false};
    /// What buffers hold, for hosts that don't give it back.
    std::map<std::uint32_t, std::vector<std::uint8_t>> contents;
    /// The internal formats of 3D images.
    std::map<std::uint32_t, std::uint32_t> formats;
};

struct SContext {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLContext handle = EGL_NO_CONTEXT;
    EGLConfig config = nullptr;
    std::int32_t version = 0;  ///< of OpenGL ES: 1, 2 or 3
    /// What the host said after a call, kept until the application asks for it.
    std::uint32_t pendingError = 0;
    /// The state of client arrays may have changed since `clientArrays` was found out.
    bool arraysChanged = true;
    /// An enabled array stands in the application's memory.
    bool clientArrays = false;
    std::shared_ptr<SObjects> objects;
    /// The host lets buffers be read, once that was asked.
    std::optional<bool> readsBuffers;
    /// Buffers into which pixels were read back, which the player leaves out.
    std::set<std::uint32_t> readBack;
    /// Of ES3, in the texts of the host.
    std::vector<std::string_view> toldExtensions;
    /// Threads in which it is current, and one for as long as its handle is known.
    int users = 0;

    /// The record that made it current.
    std::vector<std::uint8_t> madeCurrent;
    /// What the names of its objects are raised by in the recording, of those that contexts share
    /// and of its own: the player has one table of names for all contexts.
    std::uint32_t sharedNames = 0;
    std::uint32_t ownNames = 0;

    bool IsEs1() const { return version == 1; }
    ELibrary Library() const { return IsEs1() ? kEs1Library : kEs2Library; }
};

class CThread {
public:
    /// The calling one.
    static CThread& Current() { return s_current; }
    /// The calling one where calls of GL are recorded now, else null.
    static CThread* Recording() {
        CThread& thread = s_current;
        return CRecorder::Instance().Records() && thread.m_context != nullptr ? &thread : nullptr;
    }

    /// Identifies the thread in the trace; from 1.
    std::uint32_t Number() {
        if (m_number == 0) Take();
        return m_number;
    }
    /// Null without one, or with one that isn't of OpenGL ES.
    SContext* Context() const { return m_context; }
    /// Makes the context behind a handle the one that is current: null for one that isn't known.
    void SetContext(EGLDisplay display, EGLContext handle);
    /// Has what is recorded next be of this thread, with its context current again. The lock of the
    /// recording must be held.
    void BeRecorded();
    /// The context was made current, or none, by the call with this record. The lock of the
    /// recording must be held.
    void BeCurrent(std::vector<std::uint8_t> record);
    ELibrary Library() const { return m_context != nullptr ? m_context->Library() : kEs2Library; }

    /// The host's error after a call of GL, which stays to be asked for.
    std::uint32_t KeepGlError();
    /// What glGetError gives the application.
    std::uint32_t TakeGlError();
    /// The same of EGL. Each call of EGL replaces the error of the one before.
    EGLint KeepEglError();
    EGLint TakeEglError();

private:
    void Take();

    // Needs no check of whether it was made, and is never destroyed: threads call while they end.
    static thread_local constinit CThread s_current [[gnu::tls_model("initial-exec")]];

    std::uint32_t m_number = 0;
    EGLint m_eglError = EGL_SUCCESS;
    SContext* m_context = nullptr;
};

/// The host's entry for the API that is current in the thread.
#define KESTRAIL_HOST(thread, name) HostEntry<decltype(&::name)>(kEntry_##name, (thread).Library())

/// Keeps what is known of a context that was made, as long as its handle lives or it is current.
void KeepContext(SContext context, EGLContext share);
void ForgetContext(EGLDisplay display, EGLContext handle);
void ForgetContexts(EGLDisplay display);
/// The configuration of a context; nothing for one that isn't known.
std::optional<EGLConfig> ConfigOf(EGLDisplay display, EGLContext handle);

}  // namespace kestrail::recorder
