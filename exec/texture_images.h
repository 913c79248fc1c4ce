// The image calls that ES1 and ES2 play alike.
#pragma once

#include "exec/host_data.h"
#include "exec/play_context.h"
#include "exec/played.h"

namespace kestrail {

inline constexpr std::uint32_t kUnpackAlignment = 0x0CF5;
inline constexpr std::uint32_t kPackAlignment = 0x0D05;

template <typename Context>
EPlayed PlayPixelStorei(Context& c) {
    const std::uint32_t name = c.template Value<TGLenum>(0);
    std::int32_t value = c.template Value<TGLint>(1);
    c.host.glPixelStorei(name, value);
    const std::int32_t* const held = c.Pixels().Find(name);
    if (held == nullptr) return EPlayed::kPlayed;
    if (name != kUnpackAlignment && name != kPackAlignment) {
        // All but the alignments are unknown to some context or other.
        value = *held;
        c.host.glGetIntegerv(name, &value);
    }
    c.Pixels().Set(name, value);
    return EPlayed::kPlayed;
}

template <typename Context>
EPlayed PlayTexImage2D(Context& c) {
    SPixelStore& store = c.Pixels();
    // The alignment that the image was captured with, which the application may have set before the
    // recording began.
    const std::int32_t alignment = c.template Value<TGLint>(9);
    SPixelStore captured = store;
    captured.Set(kUnpackAlignment, alignment);
    if (captured.unpackAlignment != store.unpackAlignment) {
        c.host.glPixelStorei(kUnpackAlignment, alignment);
        store = captured;
    }
    const std::int32_t width = c.template Value<TGLsizei>(3);
    const std::int32_t height = c.template Value<TGLsizei>(4);
    const std::uint32_t format = c.template Value<TGLenum>(6);
    const std::uint32_t type = c.template Value<TGLenum>(7);
    const SHostData pixels =
        HostData(c.template At<SImage2D>(8), ImageBytes(format, type, width, height, store), true,
                 UnpackBufferBound(c));
    if (!pixels.sound) return EPlayed::kFailed;
    c.host.glTexImage2D(c.template Value<TGLenum>(0), c.template Value<TGLint>(1),
                        c.template Value<TGLint>(2), width, height, c.template Value<TGLint>(5),
                        format, type, pixels.pointer);
    return EPlayed::kPlayed;
}

}  // namespace kestrail
