// Host tables whose entry points write down how they were called and answer by script.
#pragma once

#include <GLES2/gl2.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/egl_host.h"
#include "host/es1_host.h"
#include "host/es2_host.h"
#include "host/es3_host.h"
#include "host/host_config.h"

namespace kestrail {

struct SRecordingHost {
    std::vector<std::string> calls;
    /// What pointers are written as.
    std::map<const void*, std::string> pointerNames;
    /// The next name that the host gives to an object.
    std::uint32_t nextName = 100;
    std::deque<GLenum> errors;
    /// What queries answer, by entry point and last enumerant.
    std::map<std::pair<std::string, std::int64_t>, GLint> answers;
    std::map<std::string, GLint> uniformLocations;
    std::vector<GLuint> attachedShaders;

    static SRecordingHost& Get() {
        static SRecordingHost host;
        return host;
    }

    GLint Answer(const std::string& entry, std::int64_t about) const {
        const auto found = answers.find({entry, about});
        return found != answers.end() ? found->second : 0;
    }
};

/// Writes one call down, argument by argument.
class CCallText {
public:
    explicit CCallText(const char* entry) : m_entry(entry), m_text(std::string(entry) + "(") {}

    template <typename Integer>
    requires std::is_integral_v<Integer>
    void Add(Integer value) {
        m_about = static_cast<std::int64_t>(value);
        Part(std::to_string(+value));
    }
    void Add(float value) {
        char text[32];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
        Part(text);
    }
    void Add(const char* text) { Part(text); }
    void Add(const char* const* sources) { Part(sources[0]); }
    void Add(const float* values) { Part("{" + Number(values[0]) + "}"); }
    void Add(const std::int32_t* values) {
        Part(values != nullptr ? "{" + std::to_string(values[0]) + "}" : "null");
    }
    void Add(const std::uint32_t* values) { Part("{" + std::to_string(values[0]) + "}"); }
    void Add(std::int32_t* out) {
        if (out != nullptr) *out = SRecordingHost::Get().Answer(m_entry, m_about);
        Part("out");
    }
    void Add(std::uint32_t* out) {
        *out = SRecordingHost::Get().nextName++;
        Part("out");
    }
    void Add(void** out) {
        *out = reinterpret_cast<void*>(std::uintptr_t{777});
        Part("out");
    }
    void Add(const void* pointer) {
        const auto& names = SRecordingHost::Get().pointerNames;
        const auto known = names.find(pointer);
        const auto number = reinterpret_cast<std::uintptr_t>(pointer);
        if (known != names.end()) return Part(known->second);
        Part(pointer == nullptr ? "null" : "@" + std::to_string(number));
    }
    void Add(void* pointer) { Add(static_cast<const void*>(pointer)); }

    void Done() { SRecordingHost::Get().calls.push_back(m_text + ")"); }

private:
    static std::string Number(float value) {
        char text[32];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
        return text;
    }
    void Part(const std::string& text) {
        if (m_text.back() != '(') m_text += ",";
        m_text += text;
    }

    std::string m_entry;
    std::string m_text;
    std::int64_t m_about = 0;
};

template <std::size_t Size>
struct TEntryName {
    // NOLINTNEXTLINE(google-explicit-constructor): a literal is a template's argument by it.
    constexpr TEntryName(const char (&name)[Size]) { std::copy_n(name, Size, text); }
    char text[Size];
};

template <typename Result>
Result ScriptedResult(const std::string& entry) {
    SRecordingHost& host = SRecordingHost::Get();
    if constexpr (std::is_pointer_v<Result>) {
        if (entry == "glGetString") return nullptr;
        return reinterpret_cast<Result>(std::uintptr_t{host.nextName++});
    } else {
        if (entry == "glCreateShader" || entry == "glCreateProgram") {
            return static_cast<Result>(host.nextName++);
        }
        if (entry == "eglGetError") return static_cast<Result>(EGL_SUCCESS);
        if (entry != "glGetError") return static_cast<Result>(1);
        if (host.errors.empty()) return Result{};
        const GLenum error = host.errors.front();
        host.errors.pop_front();
        return static_cast<Result>(error);
    }
}

template <TEntryName Name, typename Result, typename... Args>
Result RecordCall(Args... args) {
    CCallText text(Name.text);
    (text.Add(args), ...);
    text.Done();
    if constexpr (!std::is_void_v<Result>) return ScriptedResult<Result>(Name.text);
}

template <TEntryName Name, typename Result, typename... Args>
void RecordInto(Result (*&entry)(Args...)) {
    entry = &RecordCall<Name, Result, Args...>;
}

[[noreturn]] inline void UnexpectedCall() {
    throw std::logic_error("a call that no transition makes");
}

/// Every other entry point fails the test.
template <typename Entries, std::size_t Count>
void Forbid(Entries& entries, const SEntryPlace (&places)[Count]) {
    for (const SEntryPlace& place : places) SetEntry(&entries, place, &UnexpectedCall);
}

inline GLint ScriptedUniformLocation(GLuint program, const GLchar* name) {
    SRecordingHost& host = SRecordingHost::Get();
    host.calls.push_back("glGetUniformLocation(" + std::to_string(program) + "," + name + ")");
    const auto found = host.uniformLocations.find(name);
    return found != host.uniformLocations.end() ? found->second : -1;
}

inline void ScriptedAttachedShaders(GLuint program, GLsizei, GLsizei* count, GLuint* shaders) {
    SRecordingHost& host = SRecordingHost::Get();
    host.calls.push_back("glGetAttachedShaders(" + std::to_string(program) + ")");
    *count = static_cast<GLsizei>(host.attachedShaders.size());
    std::copy(host.attachedShaders.begin(), host.attachedShaders.end(), shaders);
}

inline EGLBoolean ScriptedChooseConfig(EGLDisplay, const EGLint* attributes, EGLConfig* configs,
                                       EGLint, EGLint* count) {
    SRecordingHost::Get().calls.push_back("eglChooseConfig({" + std::to_string(attributes[0]) +
                                          "})");
    *configs = reinterpret_cast<EGLConfig>(std::uintptr_t{55});
    *count = 1;
    return EGL_TRUE;
}

}  // namespace kestrail
