// The size of a live surface, against that of the application's window.
#pragma once

#include "generated/exec/egl_cases.h"

namespace kestrail {

/// Asks the host for the size of `surface` and stores it with the recorded size, in pixels; a
/// recorded size of -1 leaves the stored one. With `check`, the host's error is read after each
/// question.
void LearnSurfaceSize(SEglPlay& c, EGLDisplay display, EGLSurface surface, bool check,
                      std::int32_t recordedWidth, std::int32_t recordedHeight);

}  // namespace kestrail
