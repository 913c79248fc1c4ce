// What a transition has to know of the host that it sets: a driver is asked, or whoever takes the
// calls in its place knows. All else that a transition does is calls through the session's tables.
#pragma once

#include <array>
#include <cstdint>

#include "exec/egl_config.h"
#include "exec/extension_resolver.h"
#include "exec/session.h"

namespace kestrail {

/// What a program has attached, at most two shaders.
struct SAttachedShaders {
    std::array<GLuint, 2> live{};
    GLsizei count = 0;
};

class CHostAnswers {
public:
    virtual ~CHostAnswers() = default;

    /// The error of the calls before, which is none then.
    virtual EGLint EglError() = 0;
    virtual GLenum Es2Error() = 0;
    /// The configuration for a recorded one that had those attributes; may throw what FindEglConfig
    /// throws.
    virtual EGLConfig ConfigFor(EGLDisplay display, std::int64_t recorded,
                                const EGLint* attributes) = 0;
    /// EGL_WIDTH or EGL_HEIGHT of a surface, in pixels.
    virtual EGLint SurfaceSize(EGLDisplay display, EGLSurface surface, EGLint which) = 0;
    /// Fill the tables' entries of extensions.
    virtual void FindEs1Extensions() = 0;
    virtual void FindEs2Extensions() = 0;
    /// A limit of ES1.
    virtual GLint Es1Limit(GLenum name) = 0;
    /// GL_COMPILE_STATUS or GL_SHADER_TYPE; `unknown` without an answer.
    virtual GLint ShaderValue(GLuint shader, GLenum name, GLint unknown) = 0;
    virtual SAttachedShaders AttachedShaders(GLuint program) = 0;
    virtual bool IsProgram(GLuint program) = 0;
    /// -1 for a uniform that the program lacks.
    virtual GLint UniformLocation(GLuint program, const char* name) = 0;
};

/// Asks the driver behind the session's tables.
class CDriverAnswers final : public CHostAnswers {
public:
    explicit CDriverAnswers(SSession& session) : m_session(session), m_hosts(session.hosts) {}

    EGLint EglError() override { return m_hosts.Egl().eglGetError(); }
    GLenum Es2Error() override { return m_hosts.Es2().glGetError(); }
    EGLConfig ConfigFor(EGLDisplay display, std::int64_t recorded,
                        const EGLint* attributes) override {
        return FindEglConfig(m_session, display, recorded, attributes);
    }
    EGLint SurfaceSize(EGLDisplay display, EGLSurface surface, EGLint which) override {
        EGLint size = 0;
        m_hosts.Egl().eglQuerySurface(display, surface, which, &size);
        return size;
    }
    void FindEs1Extensions() override { EnsureEs1ExtensionResolver(m_session); }
    void FindEs2Extensions() override { EnsureEs2ExtensionResolver(m_session); }
    GLint Es1Limit(GLenum name) override {
        GLint limit = 0;
        m_hosts.Es1().glGetIntegerv(name, &limit);
        return limit;
    }
    GLint ShaderValue(GLuint shader, GLenum name, GLint unknown) override {
        m_hosts.Es2().glGetShaderiv(shader, name, &unknown);
        return unknown;
    }
    SAttachedShaders AttachedShaders(GLuint program) override {
        SAttachedShaders attached;
        m_hosts.Es2().glGetAttachedShaders(program, 2, &attached.count, attached.live.data());
        if (attached.count < 0 || attached.count > 2) attached.count = 0;
        return attached;
    }
    bool IsProgram(GLuint program) override {
        return m_hosts.Es2().glIsProgram(program) == GL_TRUE;
    }
    GLint UniformLocation(GLuint program, const char* name) override {
        return m_hosts.Es2().glGetUniformLocation(program, name);
    }

private:
    SSession& m_session;
    CHosts& m_hosts;
};

}  // namespace kestrail
