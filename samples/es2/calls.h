// The calls that the ES2 scene is drawn with. One back end draws them at once, the other writes
// them into a trace, so that the same scene exists as pixels and as a recording.
#pragma once

#include <GLES2/gl2.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kestrail::samples {

/// The configuration that both back ends ask for, ended by EGL_NONE: a window of 24 bits without
/// alpha, with depth and stencil.
const std::vector<std::int32_t>& SceneConfigAttributes();

class IEs2Calls {
public:
    virtual ~IEs2Calls() = default;

    /// Makes a context and a surface of that size current; false if that isn't to be had.
    virtual bool Open(int width, int height) = 0;
    virtual void Swap() = 0;
    virtual void Close() = 0;

    virtual void ActiveTexture(GLenum unit) = 0;
    virtual void AttachShader(GLuint program, GLuint shader) = 0;
    virtual void BindAttribLocation(GLuint program, GLuint index, const char* name) = 0;
    virtual void BindBuffer(GLenum target, GLuint buffer) = 0;
    virtual void BindFramebuffer(GLenum target, GLuint framebuffer) = 0;
    virtual void BindRenderbuffer(GLenum target, GLuint renderbuffer) = 0;
    virtual void BindTexture(GLenum target, GLuint texture) = 0;
    virtual void BlendColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) = 0;
    virtual void BlendEquation(GLenum mode) = 0;
    virtual void BlendFunc(GLenum source, GLenum destination) = 0;
    virtual void BlendFuncSeparate(GLenum sourceRgb, GLenum destinationRgb, GLenum sourceAlpha,
                                   GLenum destinationAlpha) = 0;
    virtual void BufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) = 0;
    virtual void BufferSubData(GLenum target, GLintptr offset, GLsizeiptr size,
                               const void* data) = 0;
    virtual void CheckFramebufferStatus(GLenum target) = 0;
    virtual void Clear(GLbitfield mask) = 0;
    virtual void ClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) = 0;
    virtual void ClearStencil(GLint value) = 0;
    virtual void ColorMask(bool red, bool green, bool blue, bool alpha) = 0;
    virtual void CompileShader(GLuint shader) = 0;
    virtual void CopyTexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset,
                                   GLint x, GLint y, GLsizei width, GLsizei height) = 0;
    virtual GLuint CreateProgram() = 0;
    virtual GLuint CreateShader(GLenum type) = 0;
    virtual void CullFace(GLenum mode) = 0;
    virtual void DeleteBuffers(GLsizei n, const GLuint* names) = 0;
    virtual void DeleteFramebuffers(GLsizei n, const GLuint* names) = 0;
    virtual void DeleteProgram(GLuint program) = 0;
    virtual void DeleteRenderbuffers(GLsizei n, const GLuint* names) = 0;
    virtual void DeleteShader(GLuint shader) = 0;
    virtual void DeleteTextures(GLsizei n, const GLuint* names) = 0;
    virtual void DepthFunc(GLenum func) = 0;
    virtual void DepthMask(bool flag) = 0;
    virtual void Disable(GLenum cap) = 0;
    virtual void DisableVertexAttribArray(GLuint index) = 0;
    virtual void DrawArrays(GLenum mode, GLint first, GLsizei count) = 0;
    /// `indices` is an offset while an element buffer is bound.
    virtual void DrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) = 0;
    virtual void Enable(GLenum cap) = 0;
    virtual void EnableVertexAttribArray(GLuint index) = 0;
    virtual void FramebufferRenderbuffer(GLenum target, GLenum attachment,
                                         GLenum renderbufferTarget, GLuint renderbuffer) = 0;
    virtual void FramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget,
                                      GLuint texture, GLint level) = 0;
    virtual void FrontFace(GLenum mode) = 0;
    virtual void GenBuffers(GLsizei n, GLuint* names) = 0;
    virtual void GenFramebuffers(GLsizei n, GLuint* names) = 0;
    virtual void GenRenderbuffers(GLsizei n, GLuint* names) = 0;
    virtual void GenTextures(GLsizei n, GLuint* names) = 0;
    virtual void GenerateMipmap(GLenum target) = 0;
    virtual GLint GetAttribLocation(GLuint program, const char* name) = 0;
    virtual GLint GetUniformLocation(GLuint program, const char* name) = 0;
    virtual void LineWidth(GLfloat width) = 0;
    virtual void LinkProgram(GLuint program) = 0;
    virtual void PixelStorei(GLenum name, GLint value) = 0;
    virtual void PolygonOffset(GLfloat factor, GLfloat units) = 0;
    virtual void RenderbufferStorage(GLenum target, GLenum format, GLsizei width,
                                     GLsizei height) = 0;
    virtual void Scissor(GLint x, GLint y, GLsizei width, GLsizei height) = 0;
    virtual void ShaderSource(GLuint shader, const std::vector<std::string>& texts) = 0;
    virtual void StencilFunc(GLenum func, GLint reference, GLuint mask) = 0;
    virtual void StencilMask(GLuint mask) = 0;
    virtual void StencilOp(GLenum fail, GLenum depthFail, GLenum pass) = 0;
    virtual void TexImage2D(GLenum target, GLint level, GLenum internalFormat, GLsizei width,
                            GLsizei height, GLenum format, GLenum type, const void* pixels) = 0;
    virtual void TexParameterf(GLenum target, GLenum name, GLfloat value) = 0;
    virtual void TexParameteri(GLenum target, GLenum name, GLint value) = 0;
    virtual void TexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset,
                               GLsizei width, GLsizei height, GLenum format, GLenum type,
                               const void* pixels) = 0;
    virtual void Uniform1f(GLint location, GLfloat v0) = 0;
    virtual void Uniform1i(GLint location, GLint v0) = 0;
    virtual void Uniform2f(GLint location, GLfloat v0, GLfloat v1) = 0;
    virtual void Uniform2i(GLint location, GLint v0, GLint v1) = 0;
    virtual void Uniform3fv(GLint location, GLsizei count, const GLfloat* values) = 0;
    virtual void Uniform4f(GLint location, GLfloat v0, GLfloat v1, GLfloat v2, GLfloat v3) = 0;
    virtual void Uniform4fv(GLint location, GLsizei count, const GLfloat* values) = 0;
    virtual void UniformMatrix2fv(GLint location, GLsizei count, const GLfloat* values) = 0;
    virtual void UniformMatrix3fv(GLint location, GLsizei count, const GLfloat* values) = 0;
    virtual void UniformMatrix4fv(GLint location, GLsizei count, const GLfloat* values) = 0;
    virtual void UseProgram(GLuint program) = 0;
    virtual void VertexAttrib3fv(GLuint index, const GLfloat* values) = 0;
    virtual void VertexAttrib4f(GLuint index, GLfloat x, GLfloat y, GLfloat z, GLfloat w) = 0;
    /// `pointer` is an offset while a vertex buffer is bound.
    virtual void VertexAttribPointer(GLuint index, GLint size, GLenum type, bool normalized,
                                     GLsizei stride, const void* pointer) = 0;
    virtual void Viewport(GLint x, GLint y, GLsizei width, GLsizei height) = 0;
};

}  // namespace kestrail::samples
