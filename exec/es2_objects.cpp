// Buffers, framebuffers, textures and the viewport.
#include "exec/es2_calls.h"
#include "exec/texture_images.h"

namespace kestrail {
namespace {

constexpr GLenum kPixelUnpackBuffer = 0x88EC;

}  // namespace

EPlayed PlayGlBindBuffer(SEs2Play& c) {
    const GLenum target = c.Value<TGLenum>(0);
    const GLuint live =
        LiveOrGenerated(c.names.Buffers(), c.Value<TGLuint>(1), c.host.glGenBuffers);
    c.host.glBindBuffer(target, live);
    if (target == kPixelUnpackBuffer) c.Pixels().unpackBuffer = live;
    return EPlayed::kPlayed;
}

EPlayed PlayGlDeleteBuffers(SEs2Play& c) {
    const GLsizei count = c.Value<TGLsizei>(0);
    const auto& recorded = c.At<SNameArray>(1);
    // A deleted buffer is no longer bound.
    std::uint32_t& unpackBuffer = c.Pixels().unpackBuffer;
    for (std::uint32_t i = 0; i < recorded.ItemCount() && unpackBuffer != 0; ++i) {
        if (c.names.Buffers().Get(recorded.GetItem(i)) == unpackBuffer) unpackBuffer = 0;
    }
    return DeleteNames(c.names.Buffers(), count, recorded, c.host.glDeleteBuffers);
}

EPlayed PlayGlBindFramebuffer(SEs2Play& c) {
    constexpr std::uint32_t kSurface = 0xFFFFFFFFu;
    const std::uint32_t recorded = c.Value<TGLuint>(1);
    const GLuint live = recorded == kSurface ? c.player.defaultFramebuffer
                                             : LiveOrGenerated(c.names.Framebuffers(), recorded,
                                                               c.host.glGenFramebuffers);
    c.host.glBindFramebuffer(c.Value<TGLenum>(0), live);
    c.names.ViewportDirty() = true;
    return EPlayed::kPlayed;
}

EPlayed PlayGlEnable(SEs2Play& c) {
    constexpr GLenum kPrimitiveRestartFixedIndex = 0x8D69;
    const GLenum capability = c.Value<TGLenum>(0);
    c.host.glEnable(capability);
    if (capability == kPrimitiveRestartFixedIndex) c.player.eglNames.Context().restartAsked = true;
    return EPlayed::kPlayed;
}

EPlayed PlayGlPixelStorei(SEs2Play& c) {
    return PlayPixelStorei(c);
}

EPlayed PlayGlTexImage2D(SEs2Play& c) {
    return PlayTexImage2D(c);
}

EPlayed PlayGlViewport(SEs2Play& c) {
    c.names.ViewportDirty() = true;
    c.host.glViewport(c.Value<TGLint>(0), c.Value<TGLint>(1), c.Value<TGLsizei>(2),
                      c.Value<TGLsizei>(3));
    return EPlayed::kPlayed;
}

}  // namespace kestrail
