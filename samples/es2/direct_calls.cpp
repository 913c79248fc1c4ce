#include "samples/es2/direct_calls.h"

namespace kestrail::samples {

namespace {

GLboolean Flag(bool value) {
    return value ? GL_TRUE : GL_FALSE;
}

}  // namespace

bool CDirectCalls::Open(int width, int height) {
    m_display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (eglInitialize(m_display, nullptr, nullptr) == EGL_FALSE) return false;
    eglBindAPI(EGL_OPENGL_ES_API);
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(m_display, SceneConfigAttributes().data(), &config, 1, &count) ==
            EGL_FALSE ||
        count == 0) {
        return false;
    }
    const EGLint contextAttributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, contextAttributes);
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    m_surface = eglCreatePbufferSurface(m_display, config, size);
    return eglMakeCurrent(m_display, m_surface, m_surface, m_context) == EGL_TRUE;
}

void CDirectCalls::Swap() {
    m_atSwap();
    eglSwapBuffers(m_display, m_surface);
}

void CDirectCalls::Close() {
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroySurface(m_display, m_surface);
    eglDestroyContext(m_display, m_context);
    eglTerminate(m_display);
}

void CDirectCalls::ActiveTexture(GLenum unit) {
    glActiveTexture(unit);
}

void CDirectCalls::AttachShader(GLuint program, GLuint shader) {
    glAttachShader(program, shader);
}

void CDirectCalls::BindAttribLocation(GLuint program, GLuint index, const char* name) {
    glBindAttribLocation(program, index, name);
}

void CDirectCalls::BindBuffer(GLenum target, GLuint buffer) {
    glBindBuffer(target, buffer);
}

void CDirectCalls::BindFramebuffer(GLenum target, GLuint framebuffer) {
    glBindFramebuffer(target, framebuffer);
}

void CDirectCalls::BindRenderbuffer(GLenum target, GLuint renderbuffer) {
    glBindRenderbuffer(target, renderbuffer);
}

void CDirectCalls::BindTexture(GLenum target, GLuint texture) {
    glBindTexture(target, texture);
}

void CDirectCalls::BlendColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    glBlendColor(red, green, blue, alpha);
}

void CDirectCalls::BlendEquation(GLenum mode) {
    glBlendEquation(mode);
}

void CDirectCalls::BlendFunc(GLenum source, GLenum destination) {
    glBlendFunc(source, destination);
}

void CDirectCalls::BlendFuncSeparate(GLenum sourceRgb, GLenum destinationRgb, GLenum sourceAlpha,
                                     GLenum destinationAlpha) {
    glBlendFuncSeparate(sourceRgb, destinationRgb, sourceAlpha, destinationAlpha);
}

void CDirectCalls::BufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
    glBufferData(target, size, data, usage);
}

void CDirectCalls::BufferSubData(GLenum target, GLintptr offset, GLsizeiptr size,
                                 const void* data) {
    glBufferSubData(target, offset, size, data);
}

void CDirectCalls::Clear(GLbitfield mask) {
    glClear(mask);
}

void CDirectCalls::ClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    glClearColor(red, green, blue, alpha);
}

void CDirectCalls::ClearStencil(GLint value) {
    glClearStencil(value);
}

void CDirectCalls::CompileShader(GLuint shader) {
    glCompileShader(shader);
}

void CDirectCalls::CopyTexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset,
                                     GLint x, GLint y, GLsizei width, GLsizei height) {
    glCopyTexSubImage2D(target, level, xoffset, yoffset, x, y, width, height);
}

GLuint CDirectCalls::CreateProgram() {
    return glCreateProgram();
}

GLuint CDirectCalls::CreateShader(GLenum type) {
    return glCreateShader(type);
}

void CDirectCalls::CullFace(GLenum mode) {
    glCullFace(mode);
}

void CDirectCalls::DeleteBuffers(GLsizei n, const GLuint* names) {
    glDeleteBuffers(n, names);
}

void CDirectCalls::DeleteFramebuffers(GLsizei n, const GLuint* names) {
    glDeleteFramebuffers(n, names);
}

void CDirectCalls::DeleteProgram(GLuint program) {
    glDeleteProgram(program);
}

void CDirectCalls::DeleteRenderbuffers(GLsizei n, const GLuint* names) {
    glDeleteRenderbuffers(n, names);
}

void CDirectCalls::DeleteShader(GLuint shader) {
    glDeleteShader(shader);
}

void CDirectCalls::DeleteTextures(GLsizei n, const GLuint* names) {
    glDeleteTextures(n, names);
}

void CDirectCalls::DepthFunc(GLenum func) {
    glDepthFunc(func);
}

void CDirectCalls::Disable(GLenum cap) {
    glDisable(cap);
}

void CDirectCalls::DisableVertexAttribArray(GLuint index) {
    glDisableVertexAttribArray(index);
}

void CDirectCalls::DrawArrays(GLenum mode, GLint first, GLsizei count) {
    glDrawArrays(mode, first, count);
}

void CDirectCalls::DrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    glDrawElements(mode, count, type, indices);
}

void CDirectCalls::Enable(GLenum cap) {
    glEnable(cap);
}

void CDirectCalls::EnableVertexAttribArray(GLuint index) {
    glEnableVertexAttribArray(index);
}

void CDirectCalls::FramebufferRenderbuffer(GLenum target, GLenum attachment,
                                           GLenum renderbufferTarget, GLuint renderbuffer) {
    glFramebufferRenderbuffer(target, attachment, renderbufferTarget, renderbuffer);
}

void CDirectCalls::FramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget,
                                        GLuint texture, GLint level) {
    glFramebufferTexture2D(target, attachment, textureTarget, texture, level);
}

void CDirectCalls::FrontFace(GLenum mode) {
    glFrontFace(mode);
}

void CDirectCalls::GenBuffers(GLsizei n, GLuint* names) {
    glGenBuffers(n, names);
}

void CDirectCalls::GenFramebuffers(GLsizei n, GLuint* names) {
    glGenFramebuffers(n, names);
}

void CDirectCalls::GenRenderbuffers(GLsizei n, GLuint* names) {
    glGenRenderbuffers(n, names);
}

void CDirectCalls::GenTextures(GLsizei n, GLuint* names) {
    glGenTextures(n, names);
}

void CDirectCalls::GenerateMipmap(GLenum target) {
    glGenerateMipmap(target);
}

GLint CDirectCalls::GetAttribLocation(GLuint program, const char* name) {
    return glGetAttribLocation(program, name);
}

GLint CDirectCalls::GetUniformLocation(GLuint program, const char* name) {
    return glGetUniformLocation(program, name);
}

void CDirectCalls::LineWidth(GLfloat width) {
    glLineWidth(width);
}

void CDirectCalls::LinkProgram(GLuint program) {
    glLinkProgram(program);
}

void CDirectCalls::PixelStorei(GLenum name, GLint value) {
    glPixelStorei(name, value);
}

void CDirectCalls::PolygonOffset(GLfloat factor, GLfloat units) {
    glPolygonOffset(factor, units);
}

void CDirectCalls::RenderbufferStorage(GLenum target, GLenum format, GLsizei width,
                                       GLsizei height) {
    glRenderbufferStorage(target, format, width, height);
}

void CDirectCalls::Scissor(GLint x, GLint y, GLsizei width, GLsizei height) {
    glScissor(x, y, width, height);
}

void CDirectCalls::StencilFunc(GLenum func, GLint reference, GLuint mask) {
    glStencilFunc(func, reference, mask);
}

void CDirectCalls::StencilMask(GLuint mask) {
    glStencilMask(mask);
}

void CDirectCalls::StencilOp(GLenum fail, GLenum depthFail, GLenum pass) {
    glStencilOp(fail, depthFail, pass);
}

void CDirectCalls::TexParameterf(GLenum target, GLenum name, GLfloat value) {
    glTexParameterf(target, name, value);
}

void CDirectCalls::TexParameteri(GLenum target, GLenum name, GLint value) {
    glTexParameteri(target, name, value);
}

void CDirectCalls::TexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset,
                                 GLsizei width, GLsizei height, GLenum format, GLenum type,
                                 const void* pixels) {
    glTexSubImage2D(target, level, xoffset, yoffset, width, height, format, type, pixels);
}

void CDirectCalls::Uniform1f(GLint location, GLfloat v0) {
    glUniform1f(location, v0);
}

void CDirectCalls::Uniform1i(GLint location, GLint v0) {
    glUniform1i(location, v0);
}

void CDirectCalls::Uniform2f(GLint location, GLfloat v0, GLfloat v1) {
    glUniform2f(location, v0, v1);
}

void CDirectCalls::Uniform2i(GLint location, GLint v0, GLint v1) {
    glUniform2i(location, v0, v1);
}

void CDirectCalls::Uniform3fv(GLint location, GLsizei count, const GLfloat* values) {
    glUniform3fv(location, count, values);
}

void CDirectCalls::Uniform4f(GLint location, GLfloat v0, GLfloat v1, GLfloat v2, GLfloat v3) {
    glUniform4f(location, v0, v1, v2, v3);
}

void CDirectCalls::Uniform4fv(GLint location, GLsizei count, const GLfloat* values) {
    glUniform4fv(location, count, values);
}

void CDirectCalls::UseProgram(GLuint program) {
    glUseProgram(program);
}

void CDirectCalls::VertexAttrib3fv(GLuint index, const GLfloat* values) {
    glVertexAttrib3fv(index, values);
}

void CDirectCalls::VertexAttrib4f(GLuint index, GLfloat x, GLfloat y, GLfloat z, GLfloat w) {
    glVertexAttrib4f(index, x, y, z, w);
}

void CDirectCalls::Viewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    glViewport(x, y, width, height);
}

void CDirectCalls::CheckFramebufferStatus(GLenum target) {
    glCheckFramebufferStatus(target);
}

void CDirectCalls::ColorMask(bool red, bool green, bool blue, bool alpha) {
    glColorMask(Flag(red), Flag(green), Flag(blue), Flag(alpha));
}

void CDirectCalls::DepthMask(bool flag) {
    glDepthMask(Flag(flag));
}

void CDirectCalls::ShaderSource(GLuint shader, const std::vector<std::string>& texts) {
    std::vector<const char*> strings;
    for (const std::string& text : texts) strings.push_back(text.c_str());
    glShaderSource(shader, static_cast<GLsizei>(strings.size()), strings.data(), nullptr);
}

void CDirectCalls::TexImage2D(GLenum target, GLint level, GLenum internalFormat, GLsizei width,
                              GLsizei height, GLenum format, GLenum type, const void* pixels) {
    glTexImage2D(target, level, static_cast<GLint>(internalFormat), width, height, 0, format, type,
                 pixels);
}

void CDirectCalls::UniformMatrix2fv(GLint location, GLsizei count, const GLfloat* values) {
    glUniformMatrix2fv(location, count, GL_FALSE, values);
}

void CDirectCalls::UniformMatrix3fv(GLint location, GLsizei count, const GLfloat* values) {
    glUniformMatrix3fv(location, count, GL_FALSE, values);
}

void CDirectCalls::UniformMatrix4fv(GLint location, GLsizei count, const GLfloat* values) {
    glUniformMatrix4fv(location, count, GL_FALSE, values);
}

void CDirectCalls::VertexAttribPointer(GLuint index, GLint size, GLenum type, bool normalized,
                                       GLsizei stride, const void* pointer) {
    glVertexAttribPointer(index, size, type, Flag(normalized), stride, pointer);
}

}  // namespace kestrail::samples
