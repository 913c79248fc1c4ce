// What the application is told of the host. By default that is only what a trace can hold and the
// player plays, so that it takes a way that can be recorded.
#include <algorithm>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "generated/calls/identifiers.h"
#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

bool Limits() {
    const CRecorder& recorder = CRecorder::Instance();
    return recorder.Wanted() && recorder.Settings().limit;
}

/// A text that is changed for the application stays where it is.
const char* Keep(std::string text) {
    static std::mutex s_lock;
    static auto& s_texts = *new std::map<std::string, int>;
    const std::lock_guard held(s_lock);
    return s_texts.try_emplace(std::move(text)).first->first.c_str();
}

bool IsHeld(std::string_view extension) {
    return std::binary_search(kHeldExtensions, kHeldExtensions + kHeldExtensionCount, extension);
}

/// The extensions of a list that can be told of.
std::vector<std::string_view> Held(std::string_view list) {
    std::vector<std::string_view> held;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(' '), list.size());
        if (IsHeld(list.substr(0, end))) held.push_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return held;
}

std::string Joined(const std::vector<std::string_view>& names) {
    std::string text;
    for (const std::string_view name : names) {
        if (!text.empty()) text += ' ';
        text += name;
    }
    return text;
}

/// "OpenGL ES 3.2 more" says 3.0.
std::string Lowered(std::string text, std::string_view before, std::string_view three) {
    const std::size_t at = text.find(before);
    if (at == std::string::npos) return text;
    const std::size_t number = at + before.size();
    if (number + 2 < text.size() && text[number] == '3') {
        const std::size_t end = std::min(text.find(' ', number), text.size());
        text.replace(number, end - number, three);
    }
    return text;
}

/// Found out once: applications go through all of them for each that they want to know of.
const std::vector<std::string_view>& Es3Extensions(CThread& thread) {
    std::vector<std::string_view>& held = thread.Context()->toldExtensions;
    if (!held.empty()) return held;
    const auto ask = HOST(thread, glGetStringi);
    GLint count = 0;
    HOST(thread, glGetIntegerv)(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i) {
        const GLubyte* const name = ask(GL_EXTENSIONS, static_cast<GLuint>(i));
        if (name == nullptr) continue;
        const auto* const text = reinterpret_cast<const char*>(name);
        if (IsHeld(text)) held.emplace_back(text);
    }
    return held;
}

const char* TellString(CThread& thread, GLenum name, const char* text) {
    if (text == nullptr || !Limits() || thread.Context() == nullptr) return text;
    switch (name) {
        case GL_EXTENSIONS:
            return Keep(Joined(Held(text)));
        case GL_VERSION:
            return Keep(Lowered(text, "OpenGL ES ", "3.0"));
        case GL_SHADING_LANGUAGE_VERSION:
            return Keep(Lowered(text, "OpenGL ES GLSL ES ", "3.00"));
        default:
            return text;
    }
}

}  // namespace

const char* Call_eglQueryString(EGLDisplay display, EGLint name) {
    const char* result =
        HostEntry<decltype(&::eglQueryString)>(kEntry_eglQueryString, kEglLibrary)(display, name);
    CThread& thread = CThread::Current();
    const EGLint error = thread.KeepEglError();
    if (result != nullptr && name == EGL_EXTENSIONS && Limits()) {
        result = Keep(Joined(Held(result)));
    }
    if (!CRecorder::Instance().Records()) return result;
    CCallWriter w(thread, egl_id::eglQueryString);
    w.Put<TEGLintEnum>(error);
    w.Put<SString>(result);
    w.Put<TEGLDisplay>(display);
    w.Put<TEGLintEnum>(name);
    return result;
}

const GLubyte* Call_glGetString(GLenum name) {
    CThread& thread = CThread::Current();
    const GLubyte* const plain = HOST(thread, glGetString)(name);
    const char* const told = TellString(thread, name, reinterpret_cast<const char*>(plain));
    const auto* const result = reinterpret_cast<const GLubyte*>(told);
    if (CThread::Recording() == nullptr) return result;
    const std::uint32_t error = thread.KeepGlError();
    CCallWriter w(thread, thread.Context()->IsEs1() ? es1_id::glGetString : es2_id::glGetString);
    w.Put<TGLError>(error);
    w.Put<SString>(result);
    w.Put<TGLenum>(name);
    return result;
}

const GLubyte* Call_glGetStringi(GLenum name, GLuint index) {
    CThread& thread = CThread::Current();
    const GLubyte* result = nullptr;
    if (name == GL_EXTENSIONS && Limits() && thread.Context() != nullptr) {
        const std::vector<std::string_view>& held = Es3Extensions(thread);
        if (index < held.size()) {
            // Each ends where the host's own text does.
            result = reinterpret_cast<const GLubyte*>(held[index].data());
        } else {
            // Has the host say that there are fewer.
            HOST(thread, glGetStringi)(name, 0xFFFFFFFFu);
        }
    } else {
        result = HOST(thread, glGetStringi)(name, index);
    }
    if (CThread::Recording() == nullptr) return result;
    const std::uint32_t error = thread.KeepGlError();
    CCallWriter w(thread, es3_id::glGetStringi);
    w.Put<TGLError>(error);
    w.Put<SString>(result);
    w.Put<TGLenum>(name);
    w.Put<TGLuint>(index);
    return result;
}

void Call_glGetIntegerv(GLenum name, GLint* values) {
    CThread& thread = CThread::Current();
    HOST(thread, glGetIntegerv)(name, values);
    CThread* const recording = CThread::Recording();
    const std::uint32_t error = recording != nullptr ? thread.KeepGlError() : GL_NO_ERROR;
    if (error == GL_NO_ERROR && Limits() && thread.Context() != nullptr && values != nullptr) {
        if (name == GL_MINOR_VERSION && thread.Context()->version >= 3) *values = 0;
        if (name == GL_NUM_EXTENSIONS && thread.Context()->version >= 3) {
            *values = static_cast<GLint>(Es3Extensions(thread).size());
        }
        // Programs from elsewhere than their sources can't be played on another driver.
        if (name == GL_NUM_PROGRAM_BINARY_FORMATS || name == GL_NUM_SHADER_BINARY_FORMATS) {
            *values = 0;
        }
    }
    if (recording == nullptr) return;
    CCallWriter w(thread,
                  thread.Context()->IsEs1() ? es1_id::glGetIntegerv : es2_id::glGetIntegerv);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(name);
    w.Put<SArrayPtr<TGLint, 1, 1>>(values, error == GL_NO_ERROR ? ParameterCount(name) : 0);
}

GLenum Call_glGetError() {
    CThread& thread = CThread::Current();
    const GLenum result = thread.TakeGlError();
    if (CThread::Recording() == nullptr) return result;
    CCallWriter w(thread, thread.Context()->IsEs1() ? es1_id::glGetError : es2_id::glGetError);
    w.Put<TGLError>(GL_NO_ERROR);
    w.Put<TGLenum>(result);
    return result;
}

void TellProgram(CThread& thread) {
    GLint program = 0;
    HOST(thread, glGetIntegerv)(GL_CURRENT_PROGRAM, &program);
    if (program == 0) return;
    Write_glUseProgram(&thread, GL_NO_ERROR, static_cast<GLuint>(program));
    CRecorder::Instance().UsesProgram(thread.Context());
}

void Record_glShaderSource(CThread& thread, GLenum error, GLuint shader, GLsizei count,
                           const GLchar* const* strings, const GLint* lengths) {
    const auto parts = error == GL_NO_ERROR && strings != nullptr && count > 0
                           ? static_cast<std::uint32_t>(count)
                           : 0;
    CCallWriter w(thread, es2_id::glShaderSource);
    w.Put<TGLError>(error);
    w.Put<TGLuint>(Raised(shader, thread.Context()->sharedNames));
    w.Put<TGLsizei>(count);
    w.Put<TPointer>(strings);
    w.UInt32(parts);
    for (std::uint32_t i = 0; i < parts; ++i) {
        // A negative length is that of a text that ends by itself.
        const bool given = lengths != nullptr && lengths[i] >= 0;
        w.Put<SString>(strings[i],
                       given ? static_cast<std::size_t>(lengths[i]) : std::strlen(strings[i]));
    }
    w.Put<SArrayPtr<TGLint, 1, 1>>(lengths, parts);
}

}  // namespace kestrail::recorder
