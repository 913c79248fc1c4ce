// Renderbuffers, then the framebuffers that attach them.

#include "base/enumerants.h"
#include "exec/name_calls.h"
#include "transitions/es2_transition_steps.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

/// False when the place is empty.
bool Attach(SEs2Transition& t, GLenum place, const SAttachmentState& attachment) {
    SEs2Host& host = t.host;
    if (attachment.kind == GL_RENDERBUFFER) {
        host.glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER,
                                       t.names.Renderbuffers().Get(attachment.name));
        return true;
    }
    if (attachment.kind != GL_TEXTURE) return false;
    const GLuint texture = t.names.Textures().Get(attachment.name);
    const GLenum target = attachment.cubeFace != 0 ? attachment.cubeFace : GL_TEXTURE_2D;
    host.glFramebufferTexture2D(GL_FRAMEBUFFER, place, target, texture, attachment.level);
    return true;
}

void AttachAll(SEs2Transition& t, const SFramebufferState& framebuffer) {
    for (std::uint32_t i = 0; i < framebuffer.colors->size(); ++i) {
        Attach(t, GL_COLOR_ATTACHMENT0 + i, (*framebuffer.colors)[i]);
    }
    if (!Attach(t, GL_DEPTH_STENCIL_ATTACHMENT, framebuffer.depthStencil)) {
        Attach(t, GL_DEPTH_ATTACHMENT, framebuffer.depth);
        Attach(t, GL_STENCIL_ATTACHMENT, framebuffer.stencil);
    }
    if (!framebuffer.drawBuffers->empty()) {
        t.session.hosts.Es3().glDrawBuffers(static_cast<GLsizei>(framebuffer.drawBuffers->size()),
                                            framebuffer.drawBuffers->data());
    }
}

}  // namespace

void TransitionFramebuffers(SEs2Transition& t) {
    SEs2Host& host = t.host;
    CEs2Names& names = t.names;
    const auto& renderbuffers = *t.target.renderbuffers;
    // Kept: none is deleted that the frame lacks; tools compare seeks.
    for (std::int32_t i = 0; i < renderbuffers.Count(); ++i) {
        const SRenderbufferState& buffer = ValueAt(renderbuffers, i);
        const GLuint live =
            LiveOrGenerated(names.Renderbuffers(), renderbuffers.KeyAt(i), host.glGenRenderbuffers);
        if (buffer.everBound == 0) continue;
        host.glBindRenderbuffer(GL_RENDERBUFFER, live);
        if (buffer.internalFormat != 0) {
            host.glRenderbufferStorage(GL_RENDERBUFFER, buffer.internalFormat, buffer.width,
                                       buffer.height);
        }
    }

    const auto& framebuffers = *t.target.framebuffers;
    const auto& before = *t.current.framebuffers;
    TKeyIndex<SFramebufferState> known(before);
    std::vector<bool> kept(static_cast<std::size_t>(before.Count()));
    for (std::int32_t i = 0; i < framebuffers.Count(); ++i) {
        const std::uint32_t name = framebuffers.KeyAt(i);
        const std::int32_t place = known.Find(name, i);
        if (place >= 0) kept[static_cast<std::size_t>(place)] = true;
        const GLuint live = LiveOrGenerated(names.Framebuffers(), name, host.glGenFramebuffers);
        const SFramebufferState& framebuffer = ValueAt(framebuffers, i);
        if (name == 0 || framebuffer.everBound == 0) continue;
        host.glBindFramebuffer(GL_FRAMEBUFFER, live);
        AttachAll(t, framebuffer);
    }
    for (std::int32_t i = 0; i < before.Count(); ++i) {
        if (kept[static_cast<std::size_t>(i)]) continue;
        const std::uint32_t name = before.KeyAt(i);
        const GLuint live = names.Framebuffers().Get(name);
        // The translation stays: a bind makes the framebuffer of that name anew.
        host.glDeleteFramebuffers(1, &live);
        if (name == t.boundFramebuffer) t.boundFramebuffer = 0;
    }
    const GLuint bound = names.Framebuffers().Get(t.boundFramebuffer);
    host.glBindFramebuffer(GL_FRAMEBUFFER, bound);
    if (bound != 0) {
        host.glBindRenderbuffer(GL_RENDERBUFFER,
                                names.Renderbuffers().Get(t.target.boundRenderbuffer));
    }
}

}  // namespace kestrail
