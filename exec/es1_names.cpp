#include "exec/es1_names.h"

namespace kestrail {

CEs1Names::CEs1Names() {
    m_buffers.Set(0, 0);
    m_renderbuffers.Set(0, 0);
    m_framebuffers.Set(0, 0);
}

void CEs1Names::ResetNames() {
    m_vertexArrays.Clear();
    m_buffers.Clear();
    m_textures.Clear();
    m_extensionsResolved = false;
    m_buffers.Set(0, 0);
}

}  // namespace kestrail
