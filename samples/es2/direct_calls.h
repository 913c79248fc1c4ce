// Draws the scene at once on the system's EGL and GLES, off screen.
#pragma once

#include <EGL/egl.h>

#include <functional>
#include <utility>

#include "samples/es2/calls.h"

namespace kestrail::samples {

class CDirectCalls : public IEs2Calls {
public:
    /// `atSwap` is run for every finished frame, while its pixels can still be read.
    explicit CDirectCalls(std::function<void()> atSwap) : m_atSwap(std::move(atSwap)) {}

    bool Open(int width, int height) override;
    void Swap() override;
    void Close() override;
    void ActiveTexture(GLenum unit) override;
    void AttachShader(GLuint program, GLuint shader) override;
    void BindAttribLocation(GLuint program, GLuint index, const char* name) override;
    void BindBuffer(GLenum target, GLuint buffer) override;
    void BindFramebuffer(GLenum target, GLuint framebuffer) override;
    void BindRenderbuffer(GLenum target, GLuint renderbuffer) override;
    void BindTexture(GLenum target, GLuint texture) override;
    void BlendColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) override;
    void BlendEquation(GLenum mode) override;
    void BlendFunc(GLenum source, GLenum destination) override;
    void BlendFuncSeparate(GLenum sourceRgb, GLenum destinationRgb, GLenum sourceAlpha,
                           GLenum destinationAlpha) override;
    void BufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) override;
    void BufferSubData(GLenum target, GLintptr offset, GLsizeiptr size, const void* data) override;
    void CheckFramebufferStatus(GLenum target) override;
    void Clear(GLbitfield mask) override;
    void ClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) override;
    void ClearStencil(GLint value) override;
    void ColorMask(bool red, bool green, bool blue, bool alpha) override;
    void CompileShader(GLuint shader) override;
    void CopyTexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset, GLint x,
                           GLint y, GLsizei width, GLsizei height) override;
    GLuint CreateProgram() override;
    GLuint CreateShader(GLenum type) override;
    void CullFace(GLenum mode) override;
    void DeleteBuffers(GLsizei n, const GLuint* names) override;
    void DeleteFramebuffers(GLsizei n, const GLuint* names) override;
    void DeleteProgram(GLuint program) override;
    void DeleteRenderbuffers(GLsizei n, const GLuint* names) override;
    void DeleteShader(GLuint shader) override;
    void DeleteTextures(GLsizei n, const GLuint* names) override;
    void DepthFunc(GLenum func) override;
    void DepthMask(bool flag) override;
    void Disable(GLenum cap) override;
    void DisableVertexAttribArray(GLuint index) override;
    void DrawArrays(GLenum mode, GLint first, GLsizei count) override;
    void DrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) override;
    void Enable(GLenum cap) override;
    void EnableVertexAttribArray(GLuint index) override;
    void FramebufferRenderbuffer(GLenum target, GLenum attachment, GLenum renderbufferTarget,
                                 GLuint renderbuffer) override;
    void FramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget,
                              GLuint texture, GLint level) override;
    void FrontFace(GLenum mode) override;
    void GenBuffers(GLsizei n, GLuint* names) override;
    void GenFramebuffers(GLsizei n, GLuint* names) override;
    void GenRenderbuffers(GLsizei n, GLuint* names) override;
    void GenTextures(GLsizei n, GLuint* names) override;
    void GenerateMipmap(GLenum target) override;
    GLint GetAttribLocation(GLuint program, const char* name) override;
    GLint GetUniformLocation(GLuint program, const char* name) override;
    void LineWidth(GLfloat width) override;
    void LinkProgram(GLuint program) override;
    void PixelStorei(GLenum name, GLint value) override;
    void PolygonOffset(GLfloat factor, GLfloat units) override;
    void RenderbufferStorage(GLenum target, GLenum format, GLsizei width, GLsizei height) override;
    void Scissor(GLint x, GLint y, GLsizei width, GLsizei height) override;
    void ShaderSource(GLuint shader, const std::vector<std::string>& texts) override;
    void StencilFunc(GLenum func, GLint reference, GLuint mask) override;
    void StencilMask(GLuint mask) override;
    void StencilOp(GLenum fail, GLenum depthFail, GLenum pass) override;
    void TexImage2D(GLenum target, GLint level, GLenum internalFormat, GLsizei width,
                    GLsizei height, GLenum format, GLenum type, const void* pixels) override;
    void TexParameterf(GLenum target, GLenum name, GLfloat value) override;
    void TexParameteri(GLenum target, GLenum name, GLint value) override;
    void TexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset, GLsizei width,
                       GLsizei height, GLenum format, GLenum type, const void* pixels) override;
    void Uniform1f(GLint location, GLfloat v0) override;
    void Uniform1i(GLint location, GLint v0) override;
    void Uniform2f(GLint location, GLfloat v0, GLfloat v1) override;
    void Uniform2i(GLint location, GLint v0, GLint v1) override;
    void Uniform3fv(GLint location, GLsizei count, const GLfloat* values) override;
    void Uniform4f(GLint location, GLfloat v0, GLfloat v1, GLfloat v2, GLfloat v3) override;
    void Uniform4fv(GLint location, GLsizei count, const GLfloat* values) override;
    void UniformMatrix2fv(GLint location, GLsizei count, const GLfloat* values) override;
    void UniformMatrix3fv(GLint location, GLsizei count, const GLfloat* values) override;
    void UniformMatrix4fv(GLint location, GLsizei count, const GLfloat* values) override;
    void UseProgram(GLuint program) override;
    void VertexAttrib3fv(GLuint index, const GLfloat* values) override;
    void VertexAttrib4f(GLuint index, GLfloat x, GLfloat y, GLfloat z, GLfloat w) override;
    void VertexAttribPointer(GLuint index, GLint size, GLenum type, bool normalized, GLsizei stride,
                             const void* pointer) override;
    void Viewport(GLint x, GLint y, GLsizei width, GLsizei height) override;

private:
    std::function<void()> m_atSwap;
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLSurface m_surface = EGL_NO_SURFACE;
    EGLContext m_context = EGL_NO_CONTEXT;
};

}  // namespace kestrail::samples
