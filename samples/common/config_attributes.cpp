#include "samples/common/back_end.h"

namespace kestrail::samples {

std::vector<std::int32_t> ConfigAttributes(int clientVersion) {
    // EGL_OPENGL_ES_BIT, EGL_OPENGL_ES2_BIT, EGL_OPENGL_ES3_BIT
    const std::int32_t renderable = clientVersion == 1 ? 0x01 : clientVersion == 2 ? 0x04 : 0x40;
    return {0x3020, 24,          // EGL_BUFFER_SIZE
            0x3021, 0,           // EGL_ALPHA_SIZE
            0x3022, 8,           // EGL_BLUE_SIZE
            0x3023, 8,           // EGL_GREEN_SIZE
            0x3024, 8,           // EGL_RED_SIZE
            0x3025, 24,          // EGL_DEPTH_SIZE
            0x3026, 8,           // EGL_STENCIL_SIZE
            0x3031, 0,           // EGL_SAMPLES
            0x3033, 5,           // EGL_SURFACE_TYPE: window and pbuffer
            0x3040, renderable,  // EGL_RENDERABLE_TYPE
            0x3038};
}

}  // namespace kestrail::samples
