// The calls that ES2 and later have and ES1 has not, or has under another name.
#pragma once

#include <GLES2/gl2.h>

#include <map>
#include <string>
#include <vector>

#include "samples/common/common_calls.h"

namespace kestrail::samples {

class CEs2Calls : public CCommonCalls {
public:
    explicit CEs2Calls(IBackEnd& backEnd, int clientVersion = 2)
        : CCommonCalls(backEnd, clientVersion) {}

    void AttachShader(GLuint program, GLuint shader) {
        Do(2002, "glAttachShader", Uint{program}, Uint{shader});
    }
    void BindAttribLocation(GLuint program, GLuint index, const char* name);
    void BindFramebuffer(GLenum target, GLuint framebuffer) {
        Do(2005, "glBindFramebuffer", Enum{target}, Uint{framebuffer});
    }
    void BindRenderbuffer(GLenum target, GLuint renderbuffer) {
        Do(2006, "glBindRenderbuffer", Enum{target}, Uint{renderbuffer});
    }
    void BlendColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
        Do(2008, "glBlendColor", Clampf{red}, Clampf{green}, Clampf{blue}, Clampf{alpha});
    }
    void BlendEquation(GLenum mode) { Do(2009, "glBlendEquation", Enum{mode}); }
    void BlendEquationSeparate(GLenum modeRgb, GLenum modeAlpha) {
        Do(2010, "glBlendEquationSeparate", Enum{modeRgb}, Enum{modeAlpha});
    }
    void BlendFuncSeparate(GLenum sourceRgb, GLenum destinationRgb, GLenum sourceAlpha,
                           GLenum destinationAlpha) {
        Do(2012, "glBlendFuncSeparate", Enum{sourceRgb}, Enum{destinationRgb}, Enum{sourceAlpha},
           Enum{destinationAlpha});
    }
    void CheckFramebufferStatus(GLenum target) {
        Ask(2015, "glCheckFramebufferStatus", Enum{GL_FRAMEBUFFER_COMPLETE}, Enum{target});
    }
    void CompileShader(GLuint shader) { Do(2021, "glCompileShader", Uint{shader}); }
    GLuint CreateProgram();
    GLuint CreateShader(GLenum type);
    void DeleteFramebuffers(GLsizei n, const GLuint* names) {
        Delete(2030, "glDeleteFramebuffers", EObject::Framebuffers, n, names);
    }
    void DeleteProgram(GLuint program);
    void DeleteRenderbuffers(GLsizei n, const GLuint* names) {
        Delete(2033, "glDeleteRenderbuffers", EObject::Renderbuffers, n, names);
    }
    /// The name isn't handed out again: the shader lives as long as its program.
    void DeleteShader(GLuint shader) { Do(2034, "glDeleteShader", Uint{shader}); }
    void DisableVertexAttribArray(GLuint index);
    void EnableVertexAttribArray(GLuint index);
    void FramebufferRenderbuffer(GLenum target, GLenum attachment, GLenum renderbufferTarget,
                                 GLuint renderbuffer) {
        Do(2047, "glFramebufferRenderbuffer", Enum{target}, Enum{attachment},
           Enum{renderbufferTarget}, Uint{renderbuffer});
    }
    void FramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget,
                              GLuint texture, GLint level) {
        Do(2048, "glFramebufferTexture2D", Enum{target}, Enum{attachment}, Enum{textureTarget},
           Uint{texture}, Int{level});
    }
    void GenFramebuffers(GLsizei n, GLuint* names) {
        Generate(2052, "glGenFramebuffers", EObject::Framebuffers, n, names);
    }
    void GenRenderbuffers(GLsizei n, GLuint* names) {
        Generate(2053, "glGenRenderbuffers", EObject::Renderbuffers, n, names);
    }
    void GenerateMipmap(GLenum target) { Do(2051, "glGenerateMipmap", Enum{target}); }
    GLint GetAttribLocation(GLuint program, const char* name);
    GLint GetUniformLocation(GLuint program, const char* name);
    void LinkProgram(GLuint program);
    void RenderbufferStorage(GLenum target, GLenum format, GLsizei width, GLsizei height) {
        Do(2095, "glRenderbufferStorage", Enum{target}, Enum{format}, Sizei{width}, Sizei{height});
    }
    void ShaderSource(GLuint shader, const std::vector<std::string>& texts);
    void Uniform1f(GLint location, GLfloat v0) {
        Do(2112, "glUniform1f", Int{location}, Float{v0});
    }
    void Uniform1i(GLint location, GLint v0) { Do(2114, "glUniform1i", Int{location}, Int{v0}); }
    void Uniform2f(GLint location, GLfloat v0, GLfloat v1) {
        Do(2116, "glUniform2f", Int{location}, Float{v0}, Float{v1});
    }
    void Uniform2i(GLint location, GLint v0, GLint v1) {
        Do(2118, "glUniform2i", Int{location}, Int{v0}, Int{v1});
    }
    void Uniform3fv(GLint location, GLsizei count, const GLfloat* values) {
        Do(2121, "glUniform3fv", Int{location}, Sizei{count}, Items(3, count, values));
    }
    void Uniform4f(GLint location, GLfloat v0, GLfloat v1, GLfloat v2, GLfloat v3) {
        Do(2124, "glUniform4f", Int{location}, Float{v0}, Float{v1}, Float{v2}, Float{v3});
    }
    void Uniform4fv(GLint location, GLsizei count, const GLfloat* values) {
        Do(2125, "glUniform4fv", Int{location}, Sizei{count}, Items(4, count, values));
    }
    void UniformMatrix2fv(GLint location, GLsizei count, const GLfloat* values) {
        Do(2128, "glUniformMatrix2fv", Int{location}, Sizei{count}, Boolean{false},
           Items(4, count, values));
    }
    void UniformMatrix3fv(GLint location, GLsizei count, const GLfloat* values) {
        Do(2129, "glUniformMatrix3fv", Int{location}, Sizei{count}, Boolean{false},
           Items(9, count, values));
    }
    void UniformMatrix4fv(GLint location, GLsizei count, const GLfloat* values) {
        Do(2130, "glUniformMatrix4fv", Int{location}, Sizei{count}, Boolean{false},
           Items(16, count, values));
    }
    void UseProgram(GLuint program) { Do(2131, "glUseProgram", Uint{program}); }
    void VertexAttrib3fv(GLuint index, const GLfloat* values) {
        Do(2138, "glVertexAttrib3fv", Uint{index}, FloatItem{values, 3});
    }
    void VertexAttrib4f(GLuint index, GLfloat x, GLfloat y, GLfloat z, GLfloat w) {
        Do(2139, "glVertexAttrib4f", Uint{index}, Float{x}, Float{y}, Float{z}, Float{w});
    }
    /// `pointer` is an offset while a vertex buffer is bound.
    void VertexAttribPointer(GLuint index, GLint size, GLenum type, bool normalized, GLsizei stride,
                             const void* pointer) {
        const Place place = SetArray(index, size, type, stride, pointer);
        Do(2141, "glVertexAttribPointer", Uint{index}, Int{size}, Enum{type}, Boolean{normalized},
           Sizei{stride}, place);
    }

private:
    struct SProgram {
        std::map<std::string, GLint> attributes;
        std::map<std::string, GLint> uniforms;
    };

    static Floats Items(std::size_t perItem, GLsizei count, const GLfloat* values) {
        return {values, perItem * static_cast<std::size_t>(count), perItem};
    }

    std::map<GLuint, SProgram> m_programs;
};

}  // namespace kestrail::samples
