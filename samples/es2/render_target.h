// A texture with a depth buffer that the ES2 scenes render to.
#pragma once

#include "samples/es2/calls.h"

namespace kestrail::samples {

struct SRenderTarget {
    static constexpr GLsizei size = 32;

    GLuint texture = 0;
    GLuint depth = 0;
    GLuint framebuffer = 0;

    void Make(CEs2Calls& gl);
    void Delete(CEs2Calls& gl) const;
};

}  // namespace kestrail::samples
