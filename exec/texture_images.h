// The image calls that ES1 and ES2 play alike.
#pragma once

#include "base/enumerants.h"
#include "exec/host_data.h"
#include "exec/play_context.h"
#include "exec/played.h"

namespace kestrail {

template <typename Context, typename Call>
EPlayed PlayPixelStorei(Context& c, Call call) {
    const std::uint32_t name = call.pname();
    std::int32_t value = call.param();
    c.host.glPixelStorei(name, value);
    const std::int32_t* const held = c.Pixels().Find(name);
    if (held == nullptr) return EPlayed::kPlayed;
    if (name != GL_UNPACK_ALIGNMENT && name != GL_PACK_ALIGNMENT) {
        // All but the alignments are unknown to some context or other.
        value = *held;
        c.host.glGetIntegerv(name, &value);
    }
    c.Pixels().Set(name, value);
    return EPlayed::kPlayed;
}

template <typename Context, typename Call>
EPlayed PlayTexImage2D(Context& c, Call call) {
    SPixelStore& store = c.Pixels();
    // The alignment that the image was captured with, which the application may have set before the
    // recording began.
    const std::int32_t alignment = call.alignment();
    SPixelStore captured = store;
    captured.Set(GL_UNPACK_ALIGNMENT, alignment);
    if (captured.unpackAlignment != store.unpackAlignment) {
        c.host.glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
        store = captured;
    }
    const std::int32_t width = call.width();
    const std::int32_t height = call.height();
    const std::uint32_t format = call.format();
    const std::uint32_t type = call.type();
    const SHostData pixels = HostData(call.pixels(), ImageBytes(format, type, width, height, store),
                                      true, UnpackBufferBound(c));
    if (!pixels.sound) return EPlayed::kFailed;
    c.host.glTexImage2D(call.target(), call.level(), call.internalformat(), width, height,
                        call.border(), format, type, pixels.pointer);
    return EPlayed::kPlayed;
}

}  // namespace kestrail
