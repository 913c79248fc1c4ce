// How the ES2 scenes build their programs.
#pragma once

#include <vector>

#include "samples/es2/calls.h"

namespace kestrail::samples {

/// Compiles and links two shaders, which live as long as the program. The attributes named are
/// bound to the indices 0 and up: arrays that the recorded index and the live one have to agree on.
GLuint MakeProgram(CEs2Calls& gl, const char* vertex, const char* fragment,
                   const std::vector<const char*>& boundAttributes);

}  // namespace kestrail::samples
