// Renderbuffers, then the framebuffers that attach them.

#include "base/enumerants.h"
#include "exec/es2_names.h"
#include "exec/name_calls.h"
#include "host/es2_host.h"
#include "host/es3_host.h"
#include "transitions/es2_transition_steps.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

/// False when the place is empty.
bool Attach(SEs2Host& host, CEs2Names& names, GLenum place, const SAttachmentState& attachment) {
    if (attachment.kind == GL_RENDERBUFFER) {
        host.glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER,
                                       names.Renderbuffers().Get(attachment.name));
        return true;
    }
    if (attachment.kind != GL_TEXTURE) return false;
    const GLuint texture = names.Textures().Get(attachment.name);
    const GLenum target = attachment.cubeFace != 0 ? attachment.cubeFace : GL_TEXTURE_2D;
    host.glFramebufferTexture2D(GL_FRAMEBUFFER, place, target, texture, attachment.level);
    return true;
}

void AttachAll(SEs2Host& host, CEs2Names& names, const SFramebufferState& framebuffer) {
    for (std::uint32_t i = 0; i < framebuffer.colors->size(); ++i) {
        Attach(host, names, GL_COLOR_ATTACHMENT0 + i, (*framebuffer.colors)[i]);
    }
    if (!Attach(host, names, GL_DEPTH_STENCIL_ATTACHMENT, framebuffer.depthStencil)) {
        Attach(host, names, GL_DEPTH_ATTACHMENT, framebuffer.depth);
        Attach(host, names, GL_STENCIL_ATTACHMENT, framebuffer.stencil);
    }
    if (!framebuffer.drawBuffers->empty()) {
        GetEs3Host()->glDrawBuffers(static_cast<GLsizei>(framebuffer.drawBuffers->size()),
                                    framebuffer.drawBuffers->data());
    }
}

}  // namespace

void TransitionFramebuffers(CEs2State& target, const CEs2State& current) {
    SEs2Host& host = *GetEs2Host();
    CEs2Names names;
    const auto& renderbuffers = *target.renderbuffers;
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

    const auto& framebuffers = *target.framebuffers;
    const auto& before = *current.framebuffers;
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
        AttachAll(host, names, framebuffer);
    }
    for (std::int32_t i = 0; i < before.Count(); ++i) {
        if (kept[static_cast<std::size_t>(i)]) continue;
        const std::uint32_t name = before.KeyAt(i);
        const GLuint live = names.Framebuffers().Get(name);
        // The translation stays: a bind makes the framebuffer of that name anew.
        host.glDeleteFramebuffers(1, &live);
        if (name == target.boundFramebuffer) target.boundFramebuffer = 0;
    }
    const GLuint bound = names.Framebuffers().Get(target.boundFramebuffer);
    host.glBindFramebuffer(GL_FRAMEBUFFER, bound);
    if (bound != 0) {
        host.glBindRenderbuffer(GL_RENDERBUFFER,
                                names.Renderbuffers().Get(target.boundRenderbuffer));
    }
}

}  // namespace kestrail
