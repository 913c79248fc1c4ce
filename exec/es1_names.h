// Names of ES1 objects, like CEs2Names for the other API.
#pragma once

#include <cstdint>

#include "exec/name_map.h"

namespace kestrail {

class CEs1Names {
public:
    using Names = TNameMap<std::uint32_t>;
    static constexpr std::uint32_t kUnknown = 0xFFFFFFFFu;

    CEs1Names();

    Names& Buffers() { return m_buffers; }
    Names& Textures() { return m_textures; }
    Names& Framebuffers() { return m_framebuffers; }
    Names& Renderbuffers() { return m_renderbuffers; }
    Names& VertexArrays() { return m_vertexArrays; }

    bool& ViewportDirty() { return m_viewportDirty; }
    /// The extension entries of this API's host table are filled for the context.
    bool& ExtensionsResolved() { return m_extensionsResolved; }

    /// Forgets vertex arrays, buffers and textures; the buffer 0 stays 0.
    void ResetNames();

private:
    Names m_buffers{kUnknown};
    Names m_textures{0};
    Names m_framebuffers{kUnknown};
    Names m_renderbuffers{kUnknown};
    Names m_vertexArrays{0};
    bool m_viewportDirty = false;
    bool m_extensionsResolved = false;
};

}  // namespace kestrail
