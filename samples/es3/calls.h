// The calls that ES3 adds to ES2.
#pragma once

#include <GLES3/gl3.h>

#include <vector>

#include "samples/es2/calls.h"

namespace kestrail::samples {

class CEs3Calls : public CEs2Calls {
public:
    explicit CEs3Calls(IBackEnd& backEnd) : CEs2Calls(backEnd, 3) {}

    void BindBufferBase(GLenum target, GLuint index, GLuint buffer);
    void BindBufferRange(GLenum target, GLuint index, GLuint buffer, GLintptr offset,
                         GLsizeiptr size);
    void BindSampler(GLuint unit, GLuint sampler) {
        Do(5225, "glBindSampler", Uint{unit}, Uint{sampler});
    }
    void BindVertexArray(GLuint array) {
        UseVertexArray(array);
        Do(5171, "glBindVertexArray", Uint{array});
    }
    void BlitFramebuffer(const std::vector<GLint>& source, const std::vector<GLint>& destination,
                         GLbitfield mask, GLenum filter) {
        Do(5166, "glBlitFramebuffer", Int{source[0]}, Int{source[1]}, Int{source[2]},
           Int{source[3]}, Int{destination[0]}, Int{destination[1]}, Int{destination[2]},
           Int{destination[3]}, Bitfield{mask}, Enum{filter});
    }
    void ClearBufferfi(GLenum buffer, GLint drawBuffer, GLfloat depth, GLint stencil) {
        Do(5202, "glClearBufferfi", Enum{buffer}, Int{drawBuffer}, Float{depth}, Int{stencil});
    }
    void ClearBufferfv(GLenum buffer, GLint drawBuffer, const std::vector<GLfloat>& value) {
        Do(5201, "glClearBufferfv", Enum{buffer}, Int{drawBuffer},
           Floats{value.data(), value.size()});
    }
    void ClearBufferiv(GLenum buffer, GLint drawBuffer, const std::vector<GLint>& value) {
        Do(5199, "glClearBufferiv", Enum{buffer}, Int{drawBuffer},
           Ints{value.data(), value.size()});
    }
    void ClearBufferuiv(GLenum buffer, GLint drawBuffer, const std::vector<GLuint>& value) {
        Do(5200, "glClearBufferuiv", Enum{buffer}, Int{drawBuffer},
           Uints{value.data(), value.size()});
    }
    void ClientWaitSync(GLsync sync, GLbitfield flags, GLuint64 timeout) {
        Ask(5216, "glClientWaitSync", Enum{GL_CONDITION_SATISFIED}, Sync{sync}, Bitfield{flags},
            Uint64{timeout});
    }
    void CopyBufferSubData(GLenum readTarget, GLenum writeTarget, GLintptr readOffset,
                           GLintptr writeOffset, GLsizeiptr size) {
        Do(5204, "glCopyBufferSubData", Enum{readTarget}, Enum{writeTarget}, Intptr{readOffset},
           Intptr{writeOffset}, Sizeiptr{size});
    }
    void CopyTexSubImage3D(GLenum target, GLint level, GLint xoffset, GLint yoffset, GLint zoffset,
                           GLint x, GLint y, GLsizei width, GLsizei height) {
        Do(5147, "glCopyTexSubImage3D", Enum{target}, Int{level}, Int{xoffset}, Int{yoffset},
           Int{zoffset}, Int{x}, Int{y}, Sizei{width}, Sizei{height});
    }
    void DeleteSamplers(GLsizei n, const GLuint* names) {
        Delete(5223, "glDeleteSamplers", EObject::Samplers, n, names);
    }
    void DeleteSync(GLsync sync) { Do(5215, "glDeleteSync", Sync{sync}); }
    void DeleteVertexArrays(GLsizei n, const GLuint* names) {
        Delete(5172, "glDeleteVertexArrays", EObject::VertexArrays, n, names);
    }
    void DrawArraysInstanced(GLenum mode, GLint first, GLsizei count, GLsizei instances) {
        Do(5211, "glDrawArraysInstanced", Enum{mode}, Int{first}, Sizei{count}, Sizei{instances});
    }
    void DrawBuffers(const std::vector<GLenum>& buffers) {
        Do(5159, "glDrawBuffers", Sizei{static_cast<GLsizei>(buffers.size())},
           Enums{buffers.data(), buffers.size()});
    }
    /// `indices` is an offset while an element buffer is bound.
    void DrawElementsInstanced(GLenum mode, GLsizei count, GLenum type, const void* indices,
                               GLsizei instances);
    /// `indices` is an offset while an element buffer is bound.
    void DrawRangeElements(GLenum mode, GLuint start, GLuint end, GLsizei count, GLenum type,
                           const void* indices);
    GLsync FenceSync(GLenum condition, GLbitfield flags);
    void RenderbufferStorageMultisample(GLenum target, GLsizei samples, GLenum format,
                                        GLsizei width, GLsizei height) {
        Do(5167, "glRenderbufferStorageMultisample", Enum{target}, Sizei{samples}, Enum{format},
           Sizei{width}, Sizei{height});
    }
    void GenSamplers(GLsizei n, GLuint* names) {
        Generate(5222, "glGenSamplers", EObject::Samplers, n, names);
    }
    void GenVertexArrays(GLsizei n, GLuint* names) {
        Generate(5173, "glGenVertexArrays", EObject::VertexArrays, n, names);
    }
    /// Blocks aren't translated by the player, so a program may have only the one, of index 0.
    GLuint GetUniformBlockIndex(GLuint program, const char* name) {
        return Ask(5207, "glGetUniformBlockIndex", Uint{0}, Uint{program}, Text{name});
    }
    void InvalidateFramebuffer(GLenum target, const std::vector<GLenum>& attachments) {
        Do(5242, "glInvalidateFramebuffer", Enum{target},
           Sizei{static_cast<GLsizei>(attachments.size())},
           Enums{attachments.data(), attachments.size()});
    }
    void ReadBuffer(GLenum source) { Do(5143, "glReadBuffer", Enum{source}); }
    void SamplerParameterf(GLuint sampler, GLenum name, GLfloat value) {
        Do(5228, "glSamplerParameterf", Uint{sampler}, Enum{name}, Float{value});
    }
    void SamplerParameteri(GLuint sampler, GLenum name, GLint value) {
        Do(5226, "glSamplerParameteri", Uint{sampler}, Enum{name}, Int{value});
    }
    void TexImage3D(GLenum target, GLint level, GLenum internalFormat, GLsizei width,
                    GLsizei height, GLsizei depth, GLenum format, GLenum type, const void* pixels);
    void TexStorage2D(GLenum target, GLsizei levels, GLenum format, GLsizei width, GLsizei height) {
        Do(5244, "glTexStorage2D", Enum{target}, Sizei{levels}, Enum{format}, Sizei{width},
           Sizei{height});
    }
    void TexStorage3D(GLenum target, GLsizei levels, GLenum format, GLsizei width, GLsizei height,
                      GLsizei depth) {
        Do(5245, "glTexStorage3D", Enum{target}, Sizei{levels}, Enum{format}, Sizei{width},
           Sizei{height}, Sizei{depth});
    }
    void Uniform1ui(GLint location, GLuint v0) {
        Do(5191, "glUniform1ui", Int{location}, Uint{v0});
    }
    void Uniform2ui(GLint location, GLuint v0, GLuint v1) {
        Do(5192, "glUniform2ui", Int{location}, Uint{v0}, Uint{v1});
    }
    void Uniform4uiv(GLint location, const std::vector<GLuint>& values) {
        Do(5198, "glUniform4uiv", Int{location}, Sizei{static_cast<GLsizei>(values.size() / 4)},
           Uints{values.data(), values.size()});
    }
    void UniformBlockBinding(GLuint program, GLuint block, GLuint binding) {
        Do(5210, "glUniformBlockBinding", Uint{program}, Uint{block}, Uint{binding});
    }
    // One matrix each, in columns.
    void UniformMatrix2x3fv(GLint location, const std::vector<GLfloat>& values) {
        Do(5160, "glUniformMatrix2x3fv", Int{location}, Sizei{1}, Boolean{false},
           Floats{values.data(), values.size()});
    }
    void UniformMatrix3x2fv(GLint location, const std::vector<GLfloat>& values) {
        Do(5161, "glUniformMatrix3x2fv", Int{location}, Sizei{1}, Boolean{false},
           Floats{values.data(), values.size()});
    }
    void UniformMatrix2x4fv(GLint location, const std::vector<GLfloat>& values) {
        Do(5162, "glUniformMatrix2x4fv", Int{location}, Sizei{1}, Boolean{false},
           Floats{values.data(), values.size()});
    }
    void UniformMatrix4x3fv(GLint location, const std::vector<GLfloat>& values) {
        Do(5165, "glUniformMatrix4x3fv", Int{location}, Sizei{1}, Boolean{false},
           Floats{values.data(), values.size()});
    }
    void VertexAttribDivisor(GLuint index, GLuint divisor) {
        Do(5232, "glVertexAttribDivisor", Uint{index}, Uint{divisor});
    }
    void VertexAttribI4i(GLuint index, GLint x, GLint y, GLint z, GLint w) {
        Do(5185, "glVertexAttribI4i", Uint{index}, Int{x}, Int{y}, Int{z}, Int{w});
    }
    void VertexAttribI4iv(GLuint index, const std::vector<GLint>& values) {
        Do(5187, "glVertexAttribI4iv", Uint{index}, Ints{values.data(), values.size()});
    }
    void VertexAttribI4ui(GLuint index, GLuint x, GLuint y, GLuint z, GLuint w) {
        Do(5186, "glVertexAttribI4ui", Uint{index}, Uint{x}, Uint{y}, Uint{z}, Uint{w});
    }
    /// `pointer` is an offset while a vertex buffer is bound.
    void VertexAttribIPointer(GLuint index, GLint size, GLenum type, GLsizei stride,
                              const void* pointer) {
        const Place place = SetArray(index, size, type, stride, pointer);
        Do(5182, "glVertexAttribIPointer", Uint{index}, Int{size}, Enum{type}, Sizei{stride},
           place);
    }

private:
    struct Sync {
        GLsync value;

        GLsync Live() const { return value; }
        void Append(CRecordBuilder& record) const {
            record.Pointer(reinterpret_cast<std::uintptr_t>(value));
        }
    };

    std::uintptr_t m_nextSync = 0x7000;
};

}  // namespace kestrail::samples
