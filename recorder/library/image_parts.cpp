// Parts of 3D images, which the player leaves out: layer by layer they are copied from an image of
// the recorder's own.
#include <cstring>

#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

GLenum Binding(GLenum target) {
    return target == GL_TEXTURE_3D ? GL_TEXTURE_BINDING_3D : GL_TEXTURE_BINDING_2D_ARRAY;
}

void KeepFormat(CThread& thread, GLenum target, GLenum format) {
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    objects.formats[static_cast<GLuint>(Integer(thread, Binding(target)))] = format;
}

GLenum FormatOf(CThread& thread, GLenum target) {
    SObjects& objects = *thread.Context()->objects;
    const std::lock_guard held(objects.lock);
    return objects.formats[static_cast<GLuint>(Integer(thread, Binding(target)))];
}

/// What an image of an internal format is copied from: one that can be attached to a framebuffer.
struct SSource {
    GLenum format = 0;     ///< 0 for none
    bool widened = false;  ///< has a fourth component
};
SSource SourceOf(GLenum format) {
    switch (format) {
        case GL_RGB:
        case GL_RGBA:
        case GL_R8:
        case GL_RG8:
        case GL_RGB8:
        case GL_RGBA8:
        case GL_RGB565:
        case GL_RGBA4:
        case GL_RGB5_A1:
        case GL_RGB10_A2:
        case GL_RGB10_A2UI:
        case GL_SRGB8_ALPHA8:
        case GL_R8I:
        case GL_R8UI:
        case GL_R16I:
        case GL_R16UI:
        case GL_R32I:
        case GL_R32UI:
        case GL_RG8I:
        case GL_RG8UI:
        case GL_RG16I:
        case GL_RG16UI:
        case GL_RG32I:
        case GL_RG32UI:
        case GL_RGBA8I:
        case GL_RGBA8UI:
        case GL_RGBA16I:
        case GL_RGBA16UI:
        case GL_RGBA32I:
        case GL_RGBA32UI:
        // By an extension that all hosts of ES3 have.
        case GL_R16F:
        case GL_R32F:
        case GL_RG16F:
        case GL_RG32F:
        case GL_RGBA16F:
        case GL_RGBA32F:
        case GL_R11F_G11F_B10F:
            return {format};
        case GL_SRGB8:
            return {GL_SRGB8_ALPHA8, true};
        case GL_RGB16F:
            return {GL_RGBA16F, true};
        case GL_RGB32F:
            return {GL_RGBA32F, true};
        case GL_RGB8I:
            return {GL_RGBA8I, true};
        case GL_RGB8UI:
            return {GL_RGBA8UI, true};
        case GL_RGB16I:
            return {GL_RGBA16I, true};
        case GL_RGB16UI:
            return {GL_RGBA16UI, true};
        case GL_RGB32I:
            return {GL_RGBA32I, true};
        case GL_RGB32UI:
            return {GL_RGBA32UI, true};
        default:
            return {};
    }
}

/// Pixels of three components, as the unpack state has them stand, with a fourth.
std::vector<std::uint8_t> Widened(const std::uint8_t* pixels, const SPixelStore& store,
                                  GLsizei width, GLsizei height, GLenum type) {
    const auto component = static_cast<std::size_t>(ComponentBytes(type));
    const auto step = [&](std::size_t components) {
        const auto pixelsOfRow =
            static_cast<std::size_t>(store.unpackRowLength != 0 ? store.unpackRowLength : width);
        const auto alignment = static_cast<std::size_t>(store.unpackAlignment);
        const std::size_t bytes = pixelsOfRow * components * component;
        return (bytes + alignment - 1) / alignment * alignment;
    };
    constexpr std::size_t kThree = 3;
    constexpr std::size_t kFour = 4;
    const auto firstRow = static_cast<std::size_t>(store.unpackSkipRows);
    const auto first = static_cast<std::size_t>(store.unpackSkipPixels);
    std::vector<std::uint8_t> wide((firstRow + static_cast<std::size_t>(height)) * step(kFour) +
                                   first * kFour * component);
    for (std::size_t y = firstRow; y < firstRow + static_cast<std::size_t>(height); ++y) {
        for (std::size_t x = first; x < first + static_cast<std::size_t>(width); ++x) {
            std::memcpy(wide.data() + y * step(kFour) + x * kFour * component,
                        pixels + y * step(kThree) + x * kThree * component, kThree * component);
        }
    }
    return wide;
}

/// The unpack buffer, out of the way for as long as this lives, and its bytes in its place.
class CUnpackBuffer {
public:
    CUnpackBuffer(CThread& thread, const void* offset, std::int64_t size) : m_thread(thread) {
        m_buffer = static_cast<GLuint>(Integer(thread, GL_PIXEL_UNPACK_BUFFER_BINDING));
        if (m_buffer == 0) return;
        m_bytes = ReadBuffer(thread, GL_PIXEL_UNPACK_BUFFER, reinterpret_cast<GLintptr>(offset),
                             static_cast<std::size_t>(size));
        Bind(0);
    }
    ~CUnpackBuffer() {
        if (m_buffer != 0) Bind(m_buffer);
    }
    CUnpackBuffer(const CUnpackBuffer&) = delete;
    CUnpackBuffer& operator=(const CUnpackBuffer&) = delete;

    const void* Pixels(const void* pixels) const { return m_buffer != 0 ? m_bytes.data() : pixels; }

private:
    void Bind(GLuint buffer) {
        HOST(m_thread, glBindBuffer)(GL_PIXEL_UNPACK_BUFFER, buffer);
        Write_glBindBuffer(&m_thread, GL_NO_ERROR, GL_PIXEL_UNPACK_BUFFER, buffer);
    }

    CThread& m_thread;
    GLuint m_buffer = 0;
    std::vector<std::uint8_t> m_bytes;
};

}  // namespace

void Note_glTexImage3D(CThread& thread, GLenum target, GLint, GLint internalformat, GLsizei,
                       GLsizei, GLsizei, GLint, GLenum, GLenum, const void*) {
    KeepFormat(thread, target, static_cast<GLenum>(internalformat));
}
void Note_glTexStorage3D(CThread& thread, GLenum target, GLsizei, GLenum internalformat, GLsizei,
                         GLsizei, GLsizei) {
    KeepFormat(thread, target, internalformat);
}

void Record_glTexSubImage3D(CThread& thread, GLenum error, GLenum target, GLint level,
                            GLint xoffset, GLint yoffset, GLint zoffset, GLsizei width,
                            GLsizei height, GLsizei depth, GLenum format, GLenum type,
                            const void* pixels) {
    const SSource source = SourceOf(FormatOf(thread, target));
    const bool any = error == GL_NO_ERROR && width > 0 && height > 0 && depth > 0;
    if (!any || source.format == 0) {
        if (any) CRecorder::Instance().CountLeftOut("glTexSubImage3D");
        return Write_glTexSubImage3D(&thread, error, target, level, xoffset, yoffset, zoffset,
                                     width, height, depth, format, type, pixels);
    }
    const SPixelStore store = Unpacking(thread);
    SPixelStore next = store;
    ++next.unpackSkipImages;
    const std::int64_t layer = ImageBytes(format, type, width, height, 1, next) -
                               ImageBytes(format, type, width, height, 1, store);
    std::optional<CUnpackBuffer> buffer;
    if (source.widened) {
        buffer.emplace(thread, pixels, ImageBytes(format, type, width, height, depth, store));
        pixels = buffer->Pixels(pixels);
        if (pixels == nullptr) return CRecorder::Instance().CountLeftOut("glTexSubImage3D");
        format = format == GL_RGB_INTEGER ? GL_RGBA_INTEGER : GL_RGBA;
    }
    const auto* from = static_cast<const std::uint8_t*>(pixels) + layer * store.unpackSkipImages;
    const GLuint own = OwnName(thread);
    const auto texture = static_cast<GLuint>(Integer(thread, GL_TEXTURE_BINDING_2D));
    const auto framebuffer = static_cast<GLuint>(Integer(thread, GL_READ_FRAMEBUFFER_BINDING));
    constexpr GLenum kGood = GL_NO_ERROR;
    Write_glBindTexture(&thread, kGood, GL_TEXTURE_2D, own);
    Write_glBindFramebuffer(&thread, kGood, GL_READ_FRAMEBUFFER, own);
    for (GLsizei z = 0; z < depth; ++z, from += layer) {
        std::vector<std::uint8_t> wide;
        if (source.widened) wide = Widened(from, store, width, height, type);
        Write_glTexImage2D(&thread, kGood, GL_TEXTURE_2D, 0, static_cast<GLint>(source.format),
                           width, height, 0, format, type, source.widened ? wide.data() : from);
        Write_glFramebufferTexture2D(&thread, kGood, GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                     GL_TEXTURE_2D, own, 0);
        Write_glCopyTexSubImage3D(&thread, kGood, target, level, xoffset, yoffset, zoffset + z, 0,
                                  0, width, height);
    }
    Write_glDeleteFramebuffers(&thread, kGood, 1, &own);
    Write_glDeleteTextures(&thread, kGood, 1, &own);
    Write_glBindFramebuffer(&thread, kGood, GL_READ_FRAMEBUFFER, framebuffer);
    Write_glBindTexture(&thread, kGood, GL_TEXTURE_2D, texture);
}

}  // namespace kestrail::recorder
