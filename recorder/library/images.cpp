// Images as the unpack state has the host read them, and pictures of windows.
#include <algorithm>
#include <cstring>
#include <optional>

#include "calls/pixels/pixel_layout.h"
#include "exec/host_data.h"
#include "generated/calls/identifiers.h"
#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

GLint Integer(CThread& thread, GLenum name) {
    GLint value = 0;
    HOST(thread, glGetIntegerv)(name, &value);
    return value;
}

bool IsBound(CThread& thread, GLenum binding) {
    return thread.Context()->version >= 3 && Integer(thread, binding) != 0;
}

SPixelStore Unpacking(CThread& thread) {
    SPixelStore store;
    store.unpackAlignment = Integer(thread, GL_UNPACK_ALIGNMENT);
    if (thread.Context()->IsEs1()) return store;
    store.unpackRowLength = Integer(thread, GL_UNPACK_ROW_LENGTH);
    store.unpackSkipRows = Integer(thread, GL_UNPACK_SKIP_ROWS);
    store.unpackSkipPixels = Integer(thread, GL_UNPACK_SKIP_PIXELS);
    if (thread.Context()->version >= 3) {
        store.unpackImageHeight = Integer(thread, GL_UNPACK_IMAGE_HEIGHT);
        store.unpackSkipImages = Integer(thread, GL_UNPACK_SKIP_IMAGES);
    }
    // An ES2 without the extension that has them knows none of these.
    HOST(thread, glGetError)();
    return store;
}

/// Puts an image: all that the host reads behind the pointer, and zeros up to the end of the last
/// row, which the application need not have. With a buffer bound the pointer is an offset.
struct SImage {
    const void* pointer = nullptr;
    std::size_t size = 0;
    std::size_t padded = 0;

    void Put(CCallWriter& w) const {
        w.Put<TPointer>(pointer);
        w.PutNumber<4>(padded);
        w.PutBytes(pointer, size);
        static constexpr std::uint8_t kZeros[8] = {};
        w.PutBytes(kZeros, padded - size);
    }
};

SImage Image(CThread& thread, GLenum error, std::optional<GLsizei> depth, GLsizei width,
             GLsizei height, GLenum format, GLenum type, const void* pixels) {
    SImage image;
    image.pointer = pixels;
    if (pixels == nullptr || error != GL_NO_ERROR || width <= 0 || height <= 0) return image;
    if (IsBound(thread, GL_PIXEL_UNPACK_BUFFER_BINDING)) return image;
    const SPixelStore store = Unpacking(thread);
    const std::int64_t bytes = depth ? ImageBytes(format, type, width, height, *depth, store)
                                     : ImageBytes(format, type, width, height, store);
    image.size = static_cast<std::size_t>(std::max<std::int64_t>(bytes, 0));
    const std::uint64_t row =
        std::uint64_t{GetPixelSize(format, type)} * static_cast<std::uint64_t>(width);
    const auto alignment = static_cast<std::uint64_t>(std::max(store.unpackAlignment, 1));
    image.padded = image.size + (alignment - row % alignment) % alignment;
    return image;
}

/// Compressed bytes, which no unpack state changes.
struct SCompressed {
    const void* bytes = nullptr;
    std::size_t size = 0;
};
SCompressed Compressed(CThread& thread, GLenum error, GLsizei size, const void* data) {
    if (error != GL_NO_ERROR || size < 0 || IsBound(thread, GL_PIXEL_UNPACK_BUFFER_BINDING)) {
        return {};
    }
    return {data, static_cast<std::size_t>(size)};
}

}  // namespace

void Record_glTexImage2D(CThread& thread, GLenum error, GLenum target, GLint level,
                         GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                         GLenum format, GLenum type, const void* pixels) {
    const SImage image = Image(thread, error, {}, width, height, format, type, pixels);
    const GLint alignment = Integer(thread, GL_UNPACK_ALIGNMENT);
    const bool es1 = thread.Context()->IsEs1();
    CCallWriter w(thread, es1 ? es1_id::glTexImage2D : es2_id::glTexImage2D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLint>(internalFormat);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLint>(border);
    w.Put<TGLenum>(format);
    w.Put<TGLenum>(type);
    image.Put(w);
    w.Put<TGLint>(alignment);
}

void Record_glTexSubImage2D(CThread& thread, GLenum error, GLenum target, GLint level, GLint x,
                            GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type,
                            const void* pixels) {
    const SImage image = Image(thread, error, {}, width, height, format, type, pixels);
    const bool es1 = thread.Context()->IsEs1();
    CCallWriter w(thread, es1 ? es1_id::glTexSubImage2D : es2_id::glTexSubImage2D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLint>(x);
    w.Put<TGLint>(y);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLenum>(format);
    w.Put<TGLenum>(type);
    image.Put(w);
}

void Record_glTexImage3D(CThread& thread, GLenum error, GLenum target, GLint level,
                         GLint internalFormat, GLsizei width, GLsizei height, GLsizei depth,
                         GLint border, GLenum format, GLenum type, const void* pixels) {
    const SImage image = Image(thread, error, depth, width, height, format, type, pixels);
    CCallWriter w(thread, es3_id::glTexImage3D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLint>(internalFormat);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLsizei>(depth);
    w.Put<TGLint>(border);
    w.Put<TGLenum>(format);
    w.Put<TGLenum>(type);
    image.Put(w);
}

void Record_glTexSubImage3D(CThread& thread, GLenum error, GLenum target, GLint level, GLint x,
                            GLint y, GLint z, GLsizei width, GLsizei height, GLsizei depth,
                            GLenum format, GLenum type, const void* pixels) {
    const SImage image = Image(thread, error, depth, width, height, format, type, pixels);
    CCallWriter w(thread, es3_id::glTexSubImage3D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLint>(x);
    w.Put<TGLint>(y);
    w.Put<TGLint>(z);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLsizei>(depth);
    w.Put<TGLenum>(format);
    w.Put<TGLenum>(type);
    image.Put(w);
}

void Record_glReadPixels(CThread& thread, GLenum error, GLint x, GLint y, GLsizei width,
                         GLsizei height, GLenum format, GLenum type, void* pixels) {
    const bool es1 = thread.Context()->IsEs1();
    std::size_t size = 0;
    if (error == GL_NO_ERROR && width > 0 && height > 0 &&
        !IsBound(thread, GL_PIXEL_PACK_BUFFER_BINDING)) {
        SPixelStore store;
        store.unpackAlignment = Integer(thread, GL_PACK_ALIGNMENT);
        if (thread.Context()->version >= 3) {
            store.unpackRowLength = Integer(thread, GL_PACK_ROW_LENGTH);
            store.unpackSkipRows = Integer(thread, GL_PACK_SKIP_ROWS);
            store.unpackSkipPixels = Integer(thread, GL_PACK_SKIP_PIXELS);
        }
        size = static_cast<std::size_t>(
            std::max<std::int64_t>(ImageBytes(format, type, width, height, store), 0));
    }
    CCallWriter w(thread, es1 ? es1_id::glReadPixels : es2_id::glReadPixels);
    w.Put<TGLError>(error);
    w.Put<TGLint>(x);
    w.Put<TGLint>(y);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLenum>(format);
    w.Put<TGLenum>(type);
    w.PutBlock(pixels, pixels, size);
}

void Record_glCompressedTexImage2D(CThread& thread, GLenum error, GLenum target, GLint level,
                                   GLenum internalFormat, GLsizei width, GLsizei height,
                                   GLint border, GLsizei size, const void* data) {
    const SCompressed image = Compressed(thread, error, size, data);
    const bool es1 = thread.Context()->IsEs1();
    CCallWriter w(thread, es1 ? es1_id::glCompressedTexImage2D : es2_id::glCompressedTexImage2D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLenum>(internalFormat);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLint>(border);
    w.Put<TGLsizei>(size);
    w.PutBlock(data, image.bytes, image.size);
}

void Record_glCompressedTexSubImage2D(CThread& thread, GLenum error, GLenum target, GLint level,
                                      GLint x, GLint y, GLsizei width, GLsizei height,
                                      GLenum format, GLsizei size, const void* data) {
    const SCompressed image = Compressed(thread, error, size, data);
    const bool es1 = thread.Context()->IsEs1();
    CCallWriter w(thread,
                  es1 ? es1_id::glCompressedTexSubImage2D : es2_id::glCompressedTexSubImage2D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLint>(x);
    w.Put<TGLint>(y);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLenum>(format);
    w.Put<TGLsizei>(size);
    w.PutBlock(data, image.bytes, image.size);
}

void Record_glCompressedTexImage3D(CThread& thread, GLenum error, GLenum target, GLint level,
                                   GLenum internalFormat, GLsizei width, GLsizei height,
                                   GLsizei depth, GLint border, GLsizei size, const void* data) {
    const SCompressed image = Compressed(thread, error, size, data);
    CCallWriter w(thread, es3_id::glCompressedTexImage3D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLenum>(internalFormat);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLsizei>(depth);
    w.Put<TGLint>(border);
    w.Put<TGLsizei>(size);
    w.PutBlock(data, image.bytes, image.size);
}

void Record_glCompressedTexSubImage3D(CThread& thread, GLenum error, GLenum target, GLint level,
                                      GLint x, GLint y, GLint z, GLsizei width, GLsizei height,
                                      GLsizei depth, GLenum format, GLsizei size,
                                      const void* data) {
    const SCompressed image = Compressed(thread, error, size, data);
    CCallWriter w(thread, es3_id::glCompressedTexSubImage3D);
    w.Put<TGLError>(error);
    w.Put<TGLenum>(target);
    w.Put<TGLint>(level);
    w.Put<TGLint>(x);
    w.Put<TGLint>(y);
    w.Put<TGLint>(z);
    w.Put<TGLsizei>(width);
    w.Put<TGLsizei>(height);
    w.Put<TGLsizei>(depth);
    w.Put<TGLenum>(format);
    w.Put<TGLsizei>(size);
    w.PutBlock(data, image.bytes, image.size);
}

SPicture TakePicture(CThread& thread, std::int32_t width, std::int32_t height) {
    SPicture picture;
    if (width <= 0 || height <= 0) return picture;
    const SContext& context = *thread.Context();
    // What the application has set stays set: its errors, its bindings, its pack state.
    thread.KeepGlError();
    const GLint alignment = Integer(thread, GL_PACK_ALIGNMENT);
    struct SSaved {
        GLenum name;
        GLint value;
    };
    std::vector<SSaved> pack;
    GLint buffer = 0;
    GLint framebuffer = 0;
    GLint source = GL_BACK;
    const auto store = HOST(thread, glPixelStorei);
    if (context.version >= 3) {
        for (const GLenum name : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS}) {
            pack.push_back({name, Integer(thread, name)});
            store(name, 0);
        }
        buffer = Integer(thread, GL_PIXEL_PACK_BUFFER_BINDING);
        framebuffer = Integer(thread, GL_READ_FRAMEBUFFER_BINDING);
        if (buffer != 0) HOST(thread, glBindBuffer)(GL_PIXEL_PACK_BUFFER, 0);
        if (framebuffer != 0) HOST(thread, glBindFramebuffer)(GL_READ_FRAMEBUFFER, 0);
        source = Integer(thread, GL_READ_BUFFER);
        if (source != GL_BACK) HOST(thread, glReadBuffer)(GL_BACK);
    } else if (!context.IsEs1()) {
        framebuffer = Integer(thread, GL_FRAMEBUFFER_BINDING);
        if (framebuffer != 0) HOST(thread, glBindFramebuffer)(GL_FRAMEBUFFER, 0);
    } else {
        framebuffer = Integer(thread, GL_FRAMEBUFFER_BINDING_OES);
        HOST(thread, glGetError)();
        if (framebuffer != 0) HOST(thread, glBindFramebufferOES)(GL_FRAMEBUFFER_OES, 0);
    }
    store(GL_PACK_ALIGNMENT, 1);
    picture.width = static_cast<std::uint32_t>(width);
    picture.height = static_cast<std::uint32_t>(height);
    picture.pixels.resize(std::size_t{4} * picture.width * picture.height);
    HOST(thread, glReadPixels)
    (0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    store(GL_PACK_ALIGNMENT, alignment);
    for (const SSaved& saved : pack) store(saved.name, saved.value);
    const auto live = static_cast<GLuint>(framebuffer);
    if (context.version >= 3) {
        if (source != GL_BACK) HOST(thread, glReadBuffer)(static_cast<GLenum>(source));
        if (framebuffer != 0) HOST(thread, glBindFramebuffer)(GL_READ_FRAMEBUFFER, live);
        if (buffer != 0)
            HOST(thread, glBindBuffer)(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(buffer));
    } else if (framebuffer != 0 && !context.IsEs1()) {
        HOST(thread, glBindFramebuffer)(GL_FRAMEBUFFER, live);
    } else if (framebuffer != 0) {
        HOST(thread, glBindFramebufferOES)(GL_FRAMEBUFFER_OES, live);
    }
    if (HOST(thread, glGetError)() != GL_NO_ERROR) picture = {};
    return picture;
}

}  // namespace kestrail::recorder
