#include "exec/es1_names.h"

namespace kestrail {

CEs1Names::SState CEs1Names::s_state;

CEs1Names::SState::SState() {
    buffers.Set(0, 0);
    renderbuffers.Set(0, 0);
    framebuffers.Set(0, 0);
}

void CEs1Names::ResetNames() {
    s_state.vertexArrays.Clear();
    s_state.buffers.Clear();
    s_state.textures.Clear();
    s_state.extensionsResolved = false;
    s_state.buffers.Set(0, 0);
}

}  // namespace kestrail
