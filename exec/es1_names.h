// Names of ES1 objects, like CEs2Names for the other API.
#pragma once

#include <cstdint>

#include "exec/name_map.h"

namespace kestrail {

class CEs1Names {
public:
    using Names = TNameMap<std::uint32_t>;
    static constexpr std::uint32_t kUnknown = 0xFFFFFFFFu;

    Names& Buffers() { return s_state.buffers; }
    Names& Textures() { return s_state.textures; }
    Names& Framebuffers() { return s_state.framebuffers; }
    Names& Renderbuffers() { return s_state.renderbuffers; }
    Names& VertexArrays() { return s_state.vertexArrays; }

    bool& ViewportDirty() { return s_state.viewportDirty; }
    /// The extension entries of this API's host table are filled for the context.
    bool& ExtensionsResolved() { return s_state.extensionsResolved; }

    /// Forgets vertex arrays, buffers and textures; the buffer 0 stays 0.
    void ResetNames();

private:
    struct SState {
        SState();
        Names buffers{kUnknown};
        Names textures{0};
        Names framebuffers{kUnknown};
        Names renderbuffers{kUnknown};
        Names vertexArrays{0};
        bool viewportDirty = false;
        bool extensionsResolved = false;
    };

    static SState s_state;
};

}  // namespace kestrail
