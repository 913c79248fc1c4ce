// Images as the unpack state has the host read them, and pictures of windows.
#include <algorithm>
#include <array>
#include <cstring>

#include "calls/pixels/pixel_layout.h"
#include "calls/reach/host_reach.h"
#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

/// A host whose context is lost doesn't answer.
GLint Alignment(CThread& thread, GLenum name) {
    return std::max(Integer(thread, name), 1);
}

bool IsBound(CThread& thread, GLenum binding) {
    return thread.Context()->version >= 3 && Integer(thread, binding) != 0;
}

}  // namespace

SPixelStore Unpacking(CThread& thread) {
    SPixelStore store;
    store.unpackAlignment = Alignment(thread, GL_UNPACK_ALIGNMENT);
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

void SImage::Put(CCallWriter& w) const {
    static constexpr std::uint8_t kZeros[8] = {};
    w.Put<TPointer>(pointer);
    w.UInt32(static_cast<std::uint32_t>(padded));
    w.Bytes(pointer, size);
    w.Bytes(kZeros, padded - size);
}

bool UnpackBufferBound(CThread& thread) {
    const bool bound = IsBound(thread, GL_PIXEL_UNPACK_BUFFER_BINDING);
    if (bound) RecordMapped(thread);
    return bound;
}

GLint UnpackAlignment(CThread& thread) {
    return Integer(thread, GL_UNPACK_ALIGNMENT);
}

SImage UnpackedImage(CThread& thread, GLenum error, std::optional<GLsizei> depth, GLsizei width,
                     GLsizei height, GLenum format, GLenum type, const void* pixels) {
    SImage image;
    image.pointer = pixels;
    if (error != GL_NO_ERROR || width <= 0 || height <= 0) return image;
    if (UnpackBufferBound(thread) || pixels == nullptr) return image;
    const SPixelStore store = Unpacking(thread);
    const std::int64_t bytes = depth ? ImageBytes(format, type, width, height, *depth, store)
                                     : ImageBytes(format, type, width, height, store);
    image.size = static_cast<std::size_t>(std::max<std::int64_t>(bytes, 0));
    const std::uint64_t row =
        std::uint64_t{GetPixelSize(format, type)} * static_cast<std::uint64_t>(width);
    const auto alignment = static_cast<std::uint64_t>(store.unpackAlignment);
    image.padded = image.size + (alignment - row % alignment) % alignment;
    return image;
}

std::int64_t PackedBytes(CThread& thread, GLenum error, GLsizei width, GLsizei height,
                         GLenum format, GLenum type) {
    if (error != GL_NO_ERROR || width <= 0 || height <= 0) return 0;
    if (IsBound(thread, GL_PIXEL_PACK_BUFFER_BINDING)) return 0;
    SPixelStore store;
    store.unpackAlignment = Alignment(thread, GL_PACK_ALIGNMENT);
    if (thread.Context()->version >= 3) {
        store.unpackRowLength = Integer(thread, GL_PACK_ROW_LENGTH);
        store.unpackSkipRows = Integer(thread, GL_PACK_SKIP_ROWS);
        store.unpackSkipPixels = Integer(thread, GL_PACK_SKIP_PIXELS);
    }
    return ImageBytes(format, type, width, height, store);
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
    // A window that has grown gets its larger buffer with the next swap: what lies outside of the
    // one that was drawn into isn't read.
    constexpr std::array<std::uint8_t, 4> kUnread = {0x5A, 0xA5, 0x3C, 0xC3};
    std::copy(kUnread.begin(), kUnread.end(), picture.pixels.end() - kUnread.size());
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
    const bool whole =
        !std::equal(kUnread.begin(), kUnread.end(), picture.pixels.end() - kUnread.size());
    if (HOST(thread, glGetError)() != GL_NO_ERROR || !whole) picture = {};
    return picture;
}

}  // namespace kestrail::recorder
