#include "exec/es1_executor.h"

#include "exec/es1_calls.h"
#include "exec/extension_resolver.h"
#include "exec/texture_images.h"

namespace kestrail {

bool CheckEs1Error(SPlayerState& player) {
    player.lastError = GetEs1Host()->glGetError();
    // Kept: without a message of its own, unlike ES2; readers match what follows.
    return player.lastError == GL_NO_ERROR;
}

bool PlayEs1Call(SPlayerState& player, CCallEntry& entry) {
    const CApiCall& call = *entry.call;
    // Kept: in silence, whatever is asked of failed calls; readers know each family's way.
    if (call.m_error.GetValue() != GL_NO_ERROR) return true;
    if (LeavesOutEs1Call(call.m_id)) return true;
    // Kept: no test for a context, unlike ES2 and ES3; tools compare host calls.
    SEs1Play c{player, entry, entry.GetInfo(), call.m_id, *GetEs1Host(), player.es1Names};
    const EPlayed played = PlayEs1Case(c);
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    return player.checkErrors ? CheckEs1Error(player) : true;
}

EPlayed PlayGlDeleteBuffers(SEs1Play& c) {
    const GLsizei count = c.Value<TGLsizei>(0);
    const auto& recorded = c.At<SNameArray>(1);
    if (recorded.ItemCount() < std::int64_t{count}) return EPlayed::kFailed;
    // Kept: one call a name, and translations stay for later binds; tools compare host calls.
    for (GLsizei i = 0; i < count; ++i) {
        const GLuint live = c.names.Buffers().Get(recorded.GetItem(static_cast<std::uint32_t>(i)));
        c.host.glDeleteBuffers(1, &live);
    }
    return EPlayed::kPlayed;
}

EPlayed PlayGlPixelStorei(SEs1Play& c) {
    return PlayPixelStorei(c);
}

EPlayed PlayGlTexImage2D(SEs1Play& c) {
    return PlayTexImage2D(c);
}

EPlayed PlayGlPointSizePointerOES(SEs1Play& c) {
    EnsureExtensionResolver(c.names);
    c.host.glPointSizePointerOES(c.Value<TGLenum>(0), c.Value<TGLsizei>(1),
                                 AsPointer(c.Value<TPointer>(3)));
    return EPlayed::kPlayed;
}

// Kept: played, which ES2's is not; drivers finish the frame for it.
EPlayed PlayGlReadPixels(SEs1Play& c) {
    const GLsizei width = c.Value<TGLsizei>(2);
    const GLsizei height = c.Value<TGLsizei>(3);
    const GLenum format = c.Value<TGLenum>(4);
    const GLenum type = c.Value<TGLenum>(5);
    auto& pixels = c.At<SDataPtr>(6);
    const SPixelStore& store = c.Pixels();
    // Backwards, a host skips rows ahead of the block.
    if (store.packReversed != 0 && store.packSkipRows != 0) return EPlayed::kFailed;
    if (pixels.GetSize() < ImageBytes(format, type, width, height, store.Packing())) {
        return EPlayed::kFailed;
    }
    c.host.glReadPixels(c.Value<TGLint>(0), c.Value<TGLint>(1), width, height, format, type,
                        pixels.GetData());
    return EPlayed::kPlayed;
}

EPlayed PlayGlTexSubImage2D(SEs1Play& c) {
    // Whatever error is pending is not this call's.
    c.player.lastError = c.host.glGetError();
    const GLsizei width = c.Value<TGLsizei>(4);
    const GLsizei height = c.Value<TGLsizei>(5);
    const GLenum format = c.Value<TGLenum>(6);
    const GLenum type = c.Value<TGLenum>(7);
    const SHostData pixels = HostData(
        c.At<SImage2D>(8), ImageBytes(format, type, width, height, c.Pixels()), false, false);
    if (!pixels.sound) return EPlayed::kFailed;
    c.host.glTexSubImage2D(c.Value<TGLenum>(0), c.Value<TGLint>(1), c.Value<TGLint>(2),
                           c.Value<TGLint>(3), width, height, format, type, pixels.pointer);
    return EPlayed::kPlayed;
}

EPlayed PlayGlVertexPointer(SEs1Play& c) {
    // Kept: both looks are for nothing but to drop an error; drivers hold one until asked.
    CheckEs1Error(c.player);
    c.host.glVertexPointer(c.Value<TGLint>(0), c.Value<TGLenum>(1), c.Value<TGLsizei>(2),
                           AsPointer(c.Value<TPointer>(4)));
    CheckEs1Error(c.player);
    return EPlayed::kPlayed;
}

EPlayed PlayGlViewport(SEs1Play& c) {
    c.names.ViewportDirty() = true;
    c.host.glViewport(c.Value<TGLint>(0), c.Value<TGLint>(1), c.Value<TGLsizei>(2),
                      c.Value<TGLsizei>(3));
    return EPlayed::kPlayed;
}

}  // namespace kestrail
