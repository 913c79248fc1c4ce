#include "exec/es1_executor.h"

#include "exec/extension_resolver.h"
#include "exec/texture_images.h"
#include "generated/exec/es1_cases.h"

namespace kestrail {

bool CheckEs1Error(SPlayerState& player) {
    player.lastError = player.hosts.Es1().glGetError();
    // Kept: without a message of its own, unlike ES2; readers match what follows.
    return player.lastError == GL_NO_ERROR;
}

bool PlayEs1Call(SPlayerState& player, CCallEntry& entry) {
    const CApiCall& call = *entry.call;
    // Kept: in silence, whatever is asked of failed calls; readers know each family's way.
    if (call.HadFailed()) return true;
    if (LeavesOutEs1Call(call.m_id)) return true;
    // Kept: no test for a context, unlike ES2 and ES3; tools compare host calls.
    SEs1Play c{player, entry, entry.GetInfo(), call.m_id, player.hosts.Es1(), player.es1Names};
    const EPlayed played = PlayEs1Case(c);
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    return player.checkErrors ? CheckEs1Error(player) : true;
}

EPlayed PlayGlDeleteBuffers(SEs1Play& c, SEs1_glDeleteBuffers call) {
    const GLsizei count = call.n();
    const auto& recorded = call.buffers();
    if (recorded.ItemCount() < std::int64_t{count}) return EPlayed::kFailed;
    // Kept: one call a name, and translations stay for later binds; tools compare host calls.
    for (GLsizei i = 0; i < count; ++i) {
        const GLuint live = c.names.Buffers().Get(recorded.GetItem(static_cast<std::uint32_t>(i)));
        c.host.glDeleteBuffers(1, &live);
    }
    return EPlayed::kPlayed;
}

EPlayed PlayGlPixelStorei(SEs1Play& c, SEs1_glPixelStorei call) {
    return PlayPixelStorei(c, call);
}

EPlayed PlayGlTexImage2D(SEs1Play& c, SEs1_glTexImage2D call) {
    return PlayTexImage2D(c, call);
}

EPlayed PlayGlPointSizePointerOES(SEs1Play& c, SEs1_glPointSizePointerOES call) {
    EnsureEs1ExtensionResolver(c.player);
    c.host.glPointSizePointerOES(call.type(), call.stride(), AsPointer(call.pointerPlayback()));
    return EPlayed::kPlayed;
}

// Kept: played, which ES2's is not; drivers finish the frame for it.
EPlayed PlayGlReadPixels(SEs1Play& c, SEs1_glReadPixels call) {
    const GLsizei width = call.width();
    const GLsizei height = call.height();
    const GLenum format = call.format();
    const GLenum type = call.type();
    auto& pixels = call.pixels();
    const SPixelStore& store = c.Pixels();
    // Backwards, a host skips rows ahead of the block.
    if (store.packReversed != 0 && store.packSkipRows != 0) return EPlayed::kFailed;
    if (pixels.GetSize() < ImageBytes(format, type, width, height, store.Packing())) {
        return EPlayed::kFailed;
    }
    c.host.glReadPixels(call.x(), call.y(), width, height, format, type, pixels.GetData());
    return EPlayed::kPlayed;
}

EPlayed PlayGlTexSubImage2D(SEs1Play& c, SEs1_glTexSubImage2D call) {
    // Whatever error is pending is not this call's.
    c.player.lastError = c.host.glGetError();
    const GLsizei width = call.width();
    const GLsizei height = call.height();
    const GLenum format = call.format();
    const GLenum type = call.type();
    const SHostData pixels =
        HostData(call.pixels(), ImageBytes(format, type, width, height, c.Pixels()), false, false);
    if (!pixels.sound) return EPlayed::kFailed;
    c.host.glTexSubImage2D(call.target(), call.level(), call.xoffset(), call.yoffset(), width,
                           height, format, type, pixels.pointer);
    return EPlayed::kPlayed;
}

EPlayed PlayGlVertexPointer(SEs1Play& c, SEs1_glVertexPointer call) {
    // Kept: both looks are for nothing but to drop an error; drivers hold one until asked.
    CheckEs1Error(c.player);
    c.host.glVertexPointer(call.size(), call.type(), call.stride(),
                           AsPointer(call.pointerPlayback()));
    CheckEs1Error(c.player);
    return EPlayed::kPlayed;
}

EPlayed PlayGlViewport(SEs1Play& c, SEs1_glViewport call) {
    c.names.ViewportDirty() = true;
    c.host.glViewport(call.x(), call.y(), call.width(), call.height());
    return EPlayed::kPlayed;
}

}  // namespace kestrail
