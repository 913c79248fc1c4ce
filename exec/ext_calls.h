// The cases of the extension executor, for the two APIs that an extension call may have been made
// in. The table of calls gives most of them; those declared here are played by hand.
#pragma once

#include <algorithm>
#include <cstring>

#include "exec/es1_calls.h"
#include "exec/es2_calls.h"

namespace kestrail {

/// Play the call through the entries of one API. kMissing: the host lacks the entry; kElsewhere:
/// the API has no part in this call.
EPlayed PlayExtEs1Case(SEs1Play& c);
EPlayed PlayExtEs2Case(SEs2Play& c);
/// What becomes of a call that neither of them plays.
EPlayed PlayExtElsewhere(std::uint16_t id);

EPlayed PlayGlBindRenderbufferOES(SEs1Play& c);
EPlayed PlayGlRenderbufferStorageMultisampleQVA(SEs2Play& c);
EPlayed PlayGlFramebufferTexture2DMultisampleQVA(SEs2Play& c);

/// Maps all of the buffer. What glMapBufferRange gave at that place is gone by then.
template <typename Context>
EPlayed PlayGlMapBufferOES(Context& c) {
    if (c.host.glMapBufferOES == nullptr) return EPlayed::kMissing;
    const void* const mapped =
        c.host.glMapBufferOES(c.template Value<TGLenum>(0), c.template Value<TGLenum>(1));
    c.player.eglNames.Mapped().erase(mapped);
    return EPlayed::kPlayed;
}

/// Copies what the application wrote while the buffer was mapped, then unmaps it: also when there
/// was no room for the bytes, since no draw may read a mapped buffer. One that is not mapped is
/// left alone.
template <typename Context>
EPlayed PlayGlUnmapBufferOES(Context& c) {
    constexpr std::uint32_t kBufferSize = 34660;
    constexpr std::uint32_t kBufferMapped = 35004;
    constexpr std::uint32_t kBufferMapPointer = 35005;
    if (c.host.glUnmapBufferOES == nullptr || c.host.glGetBufferPointervOES == nullptr) {
        return EPlayed::kMissing;
    }
    const std::uint32_t target = c.template Value<TGLenum>(0);
    const auto& data = c.template At<SDataPtr>(1);
    std::int32_t mapped = 0;
    c.host.glGetBufferParameteriv(target, kBufferMapped, &mapped);
    if (mapped == 0) return EPlayed::kPlayed;
    std::int32_t size = 0;
    if (data.GetData() != nullptr) c.host.glGetBufferParameteriv(target, kBufferSize, &size);
    void* pointer = nullptr;
    c.host.glGetBufferPointervOES(target, kBufferMapPointer, &pointer);
    EPlayed played = EPlayed::kPlayed;
    if (data.GetData() != nullptr && pointer != nullptr) {
        const auto& ranges = c.player.eglNames.Mapped();
        const auto range = ranges.find(pointer);
        std::int64_t room = size;
        if (range != ranges.end()) room = std::min(room, range->second);
        if (std::int64_t{data.GetSize()} <= room) {
            std::memcpy(pointer, data.GetData(), data.GetSize());
        } else {
            played = EPlayed::kFailed;
        }
    }
    c.host.glUnmapBufferOES(target);
    c.player.eglNames.Mapped().erase(pointer);
    return played;
}

}  // namespace kestrail
