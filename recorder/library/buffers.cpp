// What buffers hold, and those that are written otherwise than by calls that are played: through a
// pointer, by transform feedback, by pixels that are read back. What was written there is recorded
// as glBufferSubData.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "generated/calls/identifiers.h"
#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

GLint BufferValue(CThread& thread, GLenum target, GLenum name) {
    GLint value = 0;
    HOST(thread, glGetBufferParameteriv)(target, name, &value);
    return value;
}

void RecordSubData(CThread& thread, GLenum target, GLintptr offset, GLsizeiptr size,
                   const void* data) {
    if (data == nullptr || size <= 0) return;
    Write_glBufferSubData(&thread, GL_NO_ERROR, target, offset, size, data);
}

/// The piece of the bound buffer that is mapped; nothing for one that isn't.
struct SMapped {
    const std::uint8_t* data = nullptr;
    GLintptr offset = 0;
    GLsizeiptr size = 0;
    GLbitfield access = 0;
};
SMapped Mapped(CThread& thread, GLenum target) {
    SMapped mapped;
    if (BufferValue(thread, target, GL_BUFFER_MAPPED) == GL_FALSE) return mapped;
    mapped.access = static_cast<GLbitfield>(BufferValue(thread, target, GL_BUFFER_ACCESS_FLAGS));
    mapped.offset = BufferValue(thread, target, GL_BUFFER_MAP_OFFSET);
    mapped.size = BufferValue(thread, target, GL_BUFFER_MAP_LENGTH);
    void* pointer = nullptr;
    HOST(thread, glGetBufferPointerv)(target, GL_BUFFER_MAP_POINTER, &pointer);
    mapped.data = static_cast<const std::uint8_t*>(pointer);
    return mapped;
}

/// What a piece of a buffer holds, as if the application had put it there. False where that can't
/// be read.
bool RecordContents(CThread& thread, GLuint buffer, GLintptr start, GLsizeiptr size) {
    const GLint before = Integer(thread, GL_COPY_READ_BUFFER_BINDING);
    HOST(thread, glBindBuffer)(GL_COPY_READ_BUFFER, buffer);
    if (size == 0) size = BufferValue(thread, GL_COPY_READ_BUFFER, GL_BUFFER_SIZE) - start;
    const void* const data =
        HOST(thread, glMapBufferRange)(GL_COPY_READ_BUFFER, start, size, GL_MAP_READ_BIT);
    if (data != nullptr) {
        Write_glBindBuffer(&thread, GL_NO_ERROR, GL_COPY_READ_BUFFER, buffer);
        RecordSubData(thread, GL_COPY_READ_BUFFER, start, size, data);
        Write_glBindBuffer(&thread, GL_NO_ERROR, GL_COPY_READ_BUFFER, static_cast<GLuint>(before));
        HOST(thread, glUnmapBuffer)(GL_COPY_READ_BUFFER);
    }
    HOST(thread, glBindBuffer)(GL_COPY_READ_BUFFER, static_cast<GLuint>(before));
    HOST(thread, glGetError)();
    return data != nullptr;
}

GLenum Binding(GLenum target) {
    switch (target) {
        case GL_ELEMENT_ARRAY_BUFFER:
            return GL_ELEMENT_ARRAY_BUFFER_BINDING;
        case GL_PIXEL_PACK_BUFFER:
            return GL_PIXEL_PACK_BUFFER_BINDING;
        case GL_PIXEL_UNPACK_BUFFER:
            return GL_PIXEL_UNPACK_BUFFER_BINDING;
        case GL_UNIFORM_BUFFER:
            return GL_UNIFORM_BUFFER_BINDING;
        case GL_TRANSFORM_FEEDBACK_BUFFER:
            return GL_TRANSFORM_FEEDBACK_BUFFER_BINDING;
        case GL_COPY_READ_BUFFER:
        case GL_COPY_WRITE_BUFFER:
            return target;
        default:
            return GL_ARRAY_BUFFER_BINDING;
    }
}
GLuint BoundBuffer(CThread& thread, GLenum target) {
    return static_cast<GLuint>(Integer(thread, Binding(target)));
}

std::vector<std::uint8_t> Bytes(const void* data, std::size_t size) {
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

/// The lock of the objects must be held.
void RecordWritten(CThread& thread, GLuint buffer, SStaysMapped& piece) {
    const auto changed = std::mismatch(piece.recorded.begin(), piece.recorded.end(), piece.data);
    const auto start = static_cast<std::size_t>(changed.first - piece.recorded.begin());
    std::size_t end = piece.recorded.size();
    if (start == end) return;
    while (piece.recorded[end - 1] == piece.data[end - 1]) --end;
    std::copy(piece.data + start, piece.data + end, changed.first);
    const auto before = static_cast<GLuint>(Integer(thread, GL_COPY_READ_BUFFER_BINDING));
    Write_glBindBuffer(&thread, GL_NO_ERROR, GL_COPY_READ_BUFFER, buffer);
    RecordSubData(thread, GL_COPY_READ_BUFFER, static_cast<GLintptr>(piece.offset + start),
                  static_cast<GLsizeiptr>(end - start), piece.recorded.data() + start);
    Write_glBindBuffer(&thread, GL_NO_ERROR, GL_COPY_READ_BUFFER, before);
}

bool StaysMapped(CThread& thread, GLenum target) {
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    return objects.anyStaysMapped && objects.stayMapped.count(BoundBuffer(thread, target)) != 0;
}

/// Records the rest of a buffer that stayed mapped and will be so no longer. False for another.
bool EndMapping(CThread& thread, GLuint buffer) {
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    const auto found = objects.stayMapped.find(buffer);
    if (found == objects.stayMapped.end()) return false;
    RecordWritten(thread, buffer, found->second);
    objects.stayMapped.erase(found);
    objects.anyStaysMapped = !objects.stayMapped.empty();
    return true;
}

}  // namespace

void RecordStillMapped(CThread& thread) {
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    for (auto& [buffer, piece] : objects.stayMapped) RecordWritten(thread, buffer, piece);
}

void Call_glBufferStorageEXT(GLenum target, GLsizeiptr size, const void* data, GLbitfield flags) {
    CThread& thread = CThread::Current();
    HOST(thread, glBufferStorageEXT)(target, size, data, flags);
    if (CThread::Recording() == nullptr) return;
    Write_glBufferData(&thread, thread.KeepGlError(), target, size, data, GL_DYNAMIC_DRAW);
}

bool ReadsBuffers(CThread& thread) {
    SContext& context = *thread.Context();
    if (context.version >= 3) return true;
    if (!context.readsBuffers) {
        const GLubyte* const text = HOST(thread, glGetString)(GL_EXTENSIONS);
        const std::string_view extensions =
            text != nullptr ? reinterpret_cast<const char*>(text) : "";
        context.readsBuffers =
            extensions.find("GL_EXT_map_buffer_range") != std::string_view::npos &&
            HOST(thread, glMapBufferRangeEXT) != nullptr;
    }
    return *context.readsBuffers;
}

std::vector<std::uint8_t> ReadBuffer(CThread& thread, GLenum target, GLintptr offset,
                                     std::size_t size) {
    if (!ReadsBuffers(thread)) {
        SObjects& objects = *thread.Context()->objects;
        const std::lock_guard held(objects.lock);
        const std::vector<std::uint8_t>& all = objects.contents[BoundBuffer(thread, target)];
        const auto start = static_cast<std::size_t>(offset);
        if (start > all.size() || size > all.size() - start) return {};
        return Bytes(all.data() + start, size);
    }
    const bool es3 = thread.Context()->version >= 3;
    const auto map = es3 ? HOST(thread, glMapBufferRange) : HOST(thread, glMapBufferRangeEXT);
    const void* const mapped = map(target, offset, static_cast<GLsizeiptr>(size), GL_MAP_READ_BIT);
    std::vector<std::uint8_t> bytes;
    if (mapped != nullptr) {
        bytes = Bytes(mapped, size);
        (es3 ? HOST(thread, glUnmapBuffer) : HOST(thread, glUnmapBufferOES))(target);
    }
    HOST(thread, glGetError)();
    return bytes;
}

void Note_glBufferData(CThread& thread, GLenum target, GLsizeiptr size, const void* data, GLenum) {
    if (ReadsBuffers(thread)) return;
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    const auto room = static_cast<std::size_t>(size);
    objects.contents[BoundBuffer(thread, target)] =
        data != nullptr ? Bytes(data, room) : std::vector<std::uint8_t>(room);
}

void Note_glBufferSubData(CThread& thread, GLenum target, GLintptr offset, GLsizeiptr size,
                          const void* data) {
    if (ReadsBuffers(thread) || data == nullptr) return;
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    std::vector<std::uint8_t>& all = objects.contents[BoundBuffer(thread, target)];
    const auto start = static_cast<std::size_t>(offset);
    const auto length = static_cast<std::size_t>(size);
    if (start > all.size() || length > all.size() - start) return;
    std::memcpy(all.data() + start, data, length);
}

void Note_glDeleteBuffers(CThread& thread, GLsizei n, const GLuint* buffers) {
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    for (GLsizei i = 0; i < n; ++i) {
        objects.contents.erase(buffers[i]);
        objects.stayMapped.erase(buffers[i]);
        thread.Context()->readBack.erase(buffers[i]);
    }
}

void Note_glReadPixels(CThread& thread, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, void*) {
    if (thread.Context()->version < 3) return;
    const GLint buffer = Integer(thread, GL_PIXEL_PACK_BUFFER_BINDING);
    if (buffer != 0) thread.Context()->readBack.insert(static_cast<GLuint>(buffer));
}

void RecordReadBack(CThread& thread, GLenum target, GLuint buffer) {
    auto& readBack = thread.Context()->readBack;
    if (target == GL_PIXEL_PACK_BUFFER || readBack.count(buffer) == 0) return;
    if (RecordContents(thread, buffer, 0, 0)) readBack.erase(buffer);
}

void* Call_glMapBufferRange(GLenum target, GLintptr offset, GLsizeiptr length, GLbitfield access) {
    CThread& thread = CThread::Current();
    void* const result = HOST(thread, glMapBufferRange)(target, offset, length, access);
    if (CThread::Recording() == nullptr) return result;
    thread.KeepGlError();
    constexpr GLbitfield kStays = GL_MAP_WRITE_BIT | GL_MAP_PERSISTENT_BIT_EXT;
    if (result != nullptr && (access & kStays) == kStays) {
        SObjects& objects = *thread.Context()->objects;
        const std::lock_guard held(objects.lock);
        objects.stayMapped[BoundBuffer(thread, target)] = {
            static_cast<const std::uint8_t*>(result), static_cast<std::size_t>(offset),
            Bytes(result, static_cast<std::size_t>(length))};
        objects.anyStaysMapped = true;
    }
    return result;
}

void Call_glFlushMappedBufferRange(GLenum target, GLintptr offset, GLsizeiptr length) {
    CThread& thread = CThread::Current();
    HOST(thread, glFlushMappedBufferRange)(target, offset, length);
    if (CThread::Recording() == nullptr || thread.KeepGlError() != GL_NO_ERROR) return;
    const SMapped mapped = Mapped(thread, target);
    RecordMapped(thread);
    if (mapped.data == nullptr || StaysMapped(thread, target)) return;
    RecordSubData(thread, target, mapped.offset + offset, length, mapped.data + offset);
}

GLboolean Call_glUnmapBuffer(GLenum target) {
    CThread& thread = CThread::Current();
    if (CThread::Recording() != nullptr) {
        const SMapped mapped = Mapped(thread, target);
        const bool written = (mapped.access & GL_MAP_WRITE_BIT) != 0 &&
                             (mapped.access & GL_MAP_FLUSH_EXPLICIT_BIT) == 0;
        // A question about a target that isn't one fails as the call does.
        HOST(thread, glGetError)();
        const bool stayed =
            mapped.data != nullptr && EndMapping(thread, BoundBuffer(thread, target));
        if (written && !stayed) {
            RecordSubData(thread, target, mapped.offset, mapped.size, mapped.data);
        }
    }
    const GLboolean result = HOST(thread, glUnmapBuffer)(target);
    if (CThread::Recording() != nullptr) thread.KeepGlError();
    return result;
}

GLboolean Call_glUnmapBufferOES(GLenum target) {
    CThread& thread = CThread::Current();
    std::vector<std::uint8_t> written;
    void* pointer = nullptr;
    if (CThread::Recording() != nullptr) {
        HOST(thread, glGetBufferPointervOES)(target, GL_BUFFER_MAP_POINTER_OES, &pointer);
        const GLint size = BufferValue(thread, target, GL_BUFFER_SIZE);
        HOST(thread, glGetError)();
        if (pointer != nullptr && size > 0) {
            written = Bytes(pointer, static_cast<std::size_t>(size));
            Note_glBufferSubData(thread, target, 0, size, pointer);
        }
    }
    const GLboolean result = HOST(thread, glUnmapBufferOES)(target);
    if (CThread::Recording() == nullptr) return result;
    const std::uint32_t error = thread.KeepGlError();
    CCallWriter w(thread, ext_id::glUnmapBufferOES);
    w.Put<TGLError>(error);
    w.Put<TGLubyte>(thread.Context()->IsEs1() ? 1 : 2);
    w.Put<TGLboolean>(result);
    w.Put<TGLenum>(target);
    w.Put<SBlock>(pointer, written.data(), written.size());
    return result;
}

void Record_glEndTransformFeedback(CThread& thread, GLenum error) {
    {
        CCallWriter w(thread, es3_id::glEndTransformFeedback);
        w.Put<TGLError>(error);
        w.Put<SBlock>(nullptr, 0);
    }
    if (error != GL_NO_ERROR) return;
    const GLint targets = Integer(thread, GL_MAX_TRANSFORM_FEEDBACK_SEPARATE_ATTRIBS);
    for (GLuint i = 0; i < static_cast<GLuint>(targets); ++i) {
        GLint buffer = 0;
        GLint64 start = 0;
        GLint64 size = 0;
        HOST(thread, glGetIntegeri_v)(GL_TRANSFORM_FEEDBACK_BUFFER_BINDING, i, &buffer);
        HOST(thread, glGetInteger64i_v)(GL_TRANSFORM_FEEDBACK_BUFFER_START, i, &start);
        HOST(thread, glGetInteger64i_v)(GL_TRANSFORM_FEEDBACK_BUFFER_SIZE, i, &size);
        if (buffer != 0) RecordContents(thread, static_cast<GLuint>(buffer), start, size);
    }
}

void Call_glWaitSync(GLsync sync, GLbitfield flags, GLuint64 timeout) {
    CThread& thread = CThread::Current();
    HOST(thread, glWaitSync)(sync, flags, timeout);
    if (CThread::Recording() != nullptr) thread.KeepGlError();
}

}  // namespace kestrail::recorder
