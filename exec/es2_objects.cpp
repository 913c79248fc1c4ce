// Buffers, framebuffers, textures and the viewport.
#include "base/enumerants.h"
#include "exec/texture_images.h"
#include "generated/exec/es2_cases.h"

namespace kestrail {
EPlayed PlayGlBindBuffer(SEs2Play& c, SEs2_glBindBuffer call) {
    const GLenum target = call.target();
    const GLuint live = LiveOrGenerated(c.names.Buffers(), call.buffer(), c.host.glGenBuffers);
    c.host.glBindBuffer(target, live);
    if (target == GL_PIXEL_UNPACK_BUFFER) c.Pixels().unpackBuffer = live;
    return EPlayed::kPlayed;
}

EPlayed PlayGlDeleteBuffers(SEs2Play& c, SEs2_glDeleteBuffers call) {
    const GLsizei count = call.n();
    const auto& recorded = call.buffers();
    // A deleted buffer is no longer bound.
    std::uint32_t& unpackBuffer = c.Pixels().unpackBuffer;
    for (std::uint32_t i = 0; i < recorded.ItemCount() && unpackBuffer != 0; ++i) {
        if (c.names.Buffers().Get(recorded.GetItem(i)) == unpackBuffer) unpackBuffer = 0;
    }
    return DeleteNames(c.names.Buffers(), count, recorded, c.host.glDeleteBuffers);
}

EPlayed PlayGlBindFramebuffer(SEs2Play& c, SEs2_glBindFramebuffer call) {
    constexpr std::uint32_t kSurface = 0xFFFFFFFFu;
    const std::uint32_t recorded = call.framebuffer();
    const GLuint live = recorded == kSurface ? c.player.defaultFramebuffer
                                             : LiveOrGenerated(c.names.Framebuffers(), recorded,
                                                               c.host.glGenFramebuffers);
    c.host.glBindFramebuffer(call.target(), live);
    c.names.ViewportDirty() = true;
    return EPlayed::kPlayed;
}

EPlayed PlayGlEnable(SEs2Play& c, SEs2_glEnable call) {
    const GLenum capability = call.cap();
    c.host.glEnable(capability);
    if (capability == GL_PRIMITIVE_RESTART_FIXED_INDEX) {
        c.player.eglNames.Context().restartAsked = true;
    }
    return EPlayed::kPlayed;
}

EPlayed PlayGlPixelStorei(SEs2Play& c, SEs2_glPixelStorei call) {
    return PlayPixelStorei(c, call);
}

EPlayed PlayGlTexImage2D(SEs2Play& c, SEs2_glTexImage2D call) {
    return PlayTexImage2D(c, call);
}

EPlayed PlayGlViewport(SEs2Play& c, SEs2_glViewport call) {
    c.names.ViewportDirty() = true;
    c.host.glViewport(call.x(), call.y(), call.width(), call.height());
    return EPlayed::kPlayed;
}

}  // namespace kestrail
