// What the entries that are made from the tables leave to be written by hand: for an entry,
//   Call_<entry>    all of it
//   Record_<entry>  its record, where that doesn't follow from the row
//   Note_<entry>    what comes behind the record of a call that succeeded
// and Write_<entry>, which is made: the record of a call that the application didn't make, as a
// part of words that the player plays for those that it leaves out.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "calls/reach/host_reach.h"
#include "recorder/library/call_writer.h"
#include "recorder/library/host.h"
#include "recorder/library/recorder.h"
#include "recorder/library/thread.h"

#define KESTRAIL_ENTRY __attribute__((visibility("default")))

namespace kestrail::recorder {

/// A call without a row was made.
inline void CountLeftOut(int entry) {
    CRecorder::Instance().CountLeftOut(kEntries[entry].name);
}

/// What a window shows: rows of R, G, B, A bytes from the bottom on, tightly packed.
struct SPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels;
};
/// The back buffer of the surface that is current, of this size in pixels. Changes nothing that the
/// application could see.
SPicture TakePicture(CThread& thread, std::int32_t width, std::int32_t height);

// Displays, contexts, surfaces.
EGLDisplay Call_eglGetDisplay(EGLNativeDisplayType native);
EGLDisplay Call_eglGetPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* list);
EGLDisplay Call_eglGetPlatformDisplayEXT(EGLenum platform, void* native, const EGLint* list);
EGLContext Call_eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                 const EGLint* attributes);
EGLBoolean Call_eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                               EGLContext handle);
void Note_eglDestroyContext(CThread& thread, EGLBoolean result, EGLDisplay display,
                            EGLContext handle);
void Note_eglTerminate(CThread& thread, EGLBoolean result, EGLDisplay display);
void Note_eglReleaseThread(CThread& thread, EGLBoolean result);
EGLSurface Call_eglCreateWindowSurface(EGLDisplay display, EGLConfig config,
                                       EGLNativeWindowType window, const EGLint* list);
EGLSurface Call_eglCreatePlatformWindowSurface(EGLDisplay display, EGLConfig config, void* window,
                                               const EGLAttrib* list);
EGLSurface Call_eglCreatePlatformWindowSurfaceEXT(EGLDisplay display, EGLConfig config,
                                                  void* window, const EGLint* list);
EGLSurface Call_eglCreatePixmapSurface(EGLDisplay display, EGLConfig config,
                                       EGLNativePixmapType pixmap, const EGLint* list);
EGLSurface Call_eglCreatePlatformPixmapSurface(EGLDisplay display, EGLConfig config, void* pixmap,
                                               const EGLAttrib* list);
EGLSurface Call_eglCreatePlatformPixmapSurfaceEXT(EGLDisplay display, EGLConfig config,
                                                  void* pixmap, const EGLint* list);
void Record_eglCreatePbufferSurface(CThread& thread, EGLint error, EGLSurface result,
                                    EGLDisplay display, EGLConfig config, const EGLint* list);
void Note_eglDestroySurface(CThread& thread, EGLBoolean result, EGLDisplay display,
                            EGLSurface surface);
void Record_eglCopyBuffers(CThread& thread, EGLint error, EGLBoolean result, EGLDisplay display,
                           EGLSurface surface, EGLNativePixmapType pixmap);
void Record_eglReleaseTexImage(CThread& thread, EGLint error, EGLBoolean result, EGLDisplay display,
                               EGLSurface surface, EGLint buffer);
EGLBoolean Call_eglSwapBuffers(EGLDisplay display, EGLSurface surface);
EGLBoolean Call_eglSwapBuffersWithDamageEXT(EGLDisplay display, EGLSurface surface,
                                            const EGLint* rects, EGLint count);
EGLBoolean Call_eglSwapBuffersWithDamageKHR(EGLDisplay display, EGLSurface surface,
                                            const EGLint* rects, EGLint count);
EGLImage Call_eglCreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                             EGLClientBuffer buffer, const EGLAttrib* list);
EGLBoolean Call_eglDestroyImage(EGLDisplay display, EGLImage image);
EGLint Call_eglGetError();
__eglMustCastToProperFunctionPointerType Call_eglGetProcAddress(const char* name);

// What the application is told.
const char* Call_eglQueryString(EGLDisplay display, EGLint name);
const GLubyte* Call_glGetString(GLenum name);
const GLubyte* Call_glGetStringi(GLenum name, GLuint index);
void Call_glGetIntegerv(GLenum name, GLint* values);
GLenum Call_glGetError();

// Programs and shaders.

/// Where another context has used a program since: records this one's again, for its uniforms.
void TellProgram(CThread& thread);
void Write_glUseProgram(CThread* thread, GLenum error, GLuint program);
inline void Note_glUseProgram(CThread& thread, GLuint) {
    CRecorder::Instance().UsesProgram(thread.Context());
}
void Record_glShaderSource(CThread& thread, GLenum error, GLuint shader, GLsizei count,
                           const GLchar* const* strings, const GLint* lengths);

// Images, whose bytes go by the unpack or the pack state; a failed call has none.

/// What a record has of an image: all that the host reads behind the pointer, and zeros up to the
/// end of the last row, which the application need not have. Nothing with a buffer bound, where the
/// pointer is an offset.
struct SImage {
    const void* pointer = nullptr;
    std::size_t size = 0;
    std::size_t padded = 0;

    void Put(CCallWriter& w) const;
};
/// `depth`: of a 3D image.
SImage UnpackedImage(CThread& thread, GLenum error, std::optional<GLsizei> depth, GLsizei width,
                     GLsizei height, GLenum format, GLenum type, const void* pixels);
/// Bytes that the host writes of an image that is read back; 0 with a buffer bound.
std::int64_t PackedBytes(CThread& thread, GLenum error, GLsizei width, GLsizei height,
                         GLenum format, GLenum type);
/// Ahead of the record of a call that reads from it, if so.
bool UnpackBufferBound(CThread& thread);
SPixelStore Unpacking(CThread& thread);
GLint UnpackAlignment(CThread& thread);

// Parts of 3D images, which the player leaves out.
void Note_glTexImage3D(CThread& thread, GLenum target, GLint level, GLint internalformat,
                       GLsizei width, GLsizei height, GLsizei depth, GLint border, GLenum format,
                       GLenum type, const void* pixels);
void Note_glTexStorage3D(CThread& thread, GLenum target, GLsizei levels, GLenum internalformat,
                         GLsizei width, GLsizei height, GLsizei depth);
void Record_glTexSubImage3D(CThread& thread, GLenum error, GLenum target, GLint level,
                            GLint xoffset, GLint yoffset, GLint zoffset, GLsizei width,
                            GLsizei height, GLsizei depth, GLenum format, GLenum type,
                            const void* pixels);
void Write_glTexSubImage3D(CThread* thread, GLenum error, GLenum target, GLint level, GLint xoffset,
                           GLint yoffset, GLint zoffset, GLsizei width, GLsizei height,
                           GLsizei depth, GLenum format, GLenum type, const void* pixels);
void Write_glBindTexture(CThread* thread, GLenum error, GLenum target, GLuint texture);
void Write_glBindFramebuffer(CThread* thread, GLenum error, GLenum target, GLuint framebuffer);
void Write_glTexImage2D(CThread* thread, GLenum error, GLenum target, GLint level,
                        GLint internalformat, GLsizei width, GLsizei height, GLint border,
                        GLenum format, GLenum type, const void* pixels);
void Write_glFramebufferTexture2D(CThread* thread, GLenum error, GLenum target, GLenum attachment,
                                  GLenum textarget, GLuint texture, GLint level);
void Write_glCopyTexSubImage3D(CThread* thread, GLenum error, GLenum target, GLint level,
                               GLint xoffset, GLint yoffset, GLint zoffset, GLint x, GLint y,
                               GLsizei width, GLsizei height);
void Write_glDeleteTextures(CThread* thread, GLenum error, GLsizei n, const GLuint* textures);
void Write_glDeleteFramebuffers(CThread* thread, GLenum error, GLsizei n,
                                const GLuint* framebuffers);

// What buffers hold. Where the host doesn't give it back, as ES2's without an extension, what the
// application puts there is kept.
bool ReadsBuffers(CThread& thread);
/// A piece of the bound buffer; empty where it isn't known.
std::vector<std::uint8_t> ReadBuffer(CThread& thread, GLenum target, GLintptr offset,
                                     std::size_t size);
void Note_glBufferData(CThread& thread, GLenum target, GLsizeiptr size, const void* data,
                       GLenum usage);
void Note_glBufferSubData(CThread& thread, GLenum target, GLintptr offset, GLsizeiptr size,
                          const void* data);
void Note_glDeleteBuffers(CThread& thread, GLsizei n, const GLuint* buffers);

// Pixels that are read back into a buffer; the player reads none in ES2 and ES3. They are recorded
// as the buffer's data once it is bound for anything else.
void Note_glReadPixels(CThread& thread, GLint x, GLint y, GLsizei width, GLsizei height,
                       GLenum format, GLenum type, void* pixels);
void RecordReadBack(CThread& thread, GLenum target, GLuint buffer);
inline void Note_glBindBuffer(CThread& thread, GLenum target, GLuint buffer) {
    if (!thread.Context()->readBack.empty()) [[unlikely]]
        RecordReadBack(thread, target, buffer);
}
inline void Note_glBindBufferBase(CThread& thread, GLenum target, GLuint, GLuint buffer) {
    Note_glBindBuffer(thread, target, buffer);
}
inline void Note_glBindBufferRange(CThread& thread, GLenum target, GLuint, GLuint buffer, GLintptr,
                                   GLsizeiptr) {
    Note_glBindBuffer(thread, target, buffer);
}
void Write_glBindBuffer(CThread* thread, GLenum error, GLenum target, GLuint buffer);
void Write_glBufferData(CThread* thread, GLenum error, GLenum target, GLsizeiptr size,
                        const void* data, GLenum usage);
void Write_glBufferSubData(CThread* thread, GLenum error, GLenum target, GLintptr offset,
                           GLsizeiptr size, const void* data);
void Write_glDeleteBuffers(CThread* thread, GLenum error, GLsizei n, const GLuint* buffers);

// Buffers that the application writes through a pointer.
void Call_glBufferStorageEXT(GLenum target, GLsizeiptr size, const void* data, GLbitfield flags);
void RecordStillMapped(CThread& thread);
/// Ahead of the record of a call that reads buffers: what the application wrote to those that stay
/// mapped.
inline void RecordMapped(CThread& thread) {
    if (thread.Context()->objects->anyStaysMapped.load(std::memory_order_relaxed)) [[unlikely]]
        RecordStillMapped(thread);
}
GLboolean Call_glUnmapBufferOES(GLenum target);
void* Call_glMapBufferRange(GLenum target, GLintptr offset, GLsizeiptr length, GLbitfield access);
void Call_glFlushMappedBufferRange(GLenum target, GLintptr offset, GLsizeiptr length);
GLboolean Call_glUnmapBuffer(GLenum target);
void Record_glEndTransformFeedback(CThread& thread, GLenum error);
/// Not recorded: a wait of the host's own, without effect on what is drawn, whose length the player
/// would cut.
void Call_glWaitSync(GLsync sync, GLbitfield flags, GLuint64 timeout);

// Draws, which may read the application's memory.
void Record_glDrawArrays(CThread& thread, GLenum error, GLenum mode, GLint first, GLsizei count);
void Record_glDrawElements(CThread& thread, GLenum error, GLenum mode, GLsizei count, GLenum type,
                           const void* indices);
void Record_glDrawRangeElements(CThread& thread, GLenum error, GLenum mode, GLuint start,
                                GLuint end, GLsizei count, GLenum type, const void* indices);
void Record_glDrawArraysInstanced(CThread& thread, GLenum error, GLenum mode, GLint first,
                                  GLsizei count, GLsizei instances);
void Record_glDrawElementsInstanced(CThread& thread, GLenum error, GLenum mode, GLsizei count,
                                    GLenum type, const void* indices, GLsizei instances);

// The player draws none of these itself.
void Record_glMultiDrawArraysEXT(CThread& thread, GLenum error, GLenum mode, const GLint* first,
                                 const GLsizei* count, GLsizei draws);
void Record_glMultiDrawElementsEXT(CThread& thread, GLenum error, GLenum mode, const GLsizei* count,
                                   GLenum type, const void* const* indices, GLsizei draws);
void Write_glDrawArraysInstanced(CThread* thread, GLenum error, GLenum mode, GLint first,
                                 GLsizei count, GLsizei instances);
void Write_glVertexAttribPointer(CThread* thread, GLenum error, GLuint index, GLint size,
                                 GLenum type, GLboolean normalized, GLsizei stride,
                                 const void* pointer);
void Write_glVertexAttribIPointer(CThread* thread, GLenum error, GLuint index, GLint size,
                                  GLenum type, GLsizei stride, const void* pointer);
/// The player leaves out this one of its kin.
void Record_glVertexAttribI4uiv(CThread& thread, GLenum error, GLuint index, const GLuint* values);
void Write_glVertexAttribI4ui(CThread* thread, GLenum error, GLuint index, GLuint x, GLuint y,
                              GLuint z, GLuint w);

/// What the host's glGetIntegerv says; 0 where it says nothing.
inline GLint Integer(CThread& thread, GLenum name) {
    GLint value = 0;
    KESTRAIL_HOST(thread, glGetIntegerv)(name, &value);
    return value;
}

/// A name that the application doesn't have, for an object of the recorder's own.
inline GLuint OwnName(CThread& thread) {
    return 0xF0000u + thread.Number();
}

}  // namespace kestrail::recorder
