// The cases of the ES2 executor. The table of calls gives most of them; those declared here are
// played by hand.
#pragma once

#include "calls/model/array_values.h"
#include "exec/es2_names.h"
#include "exec/host_data.h"
#include "exec/name_calls.h"
#include "exec/play_context.h"
#include "exec/played.h"
#include "host/es2_host.h"

namespace kestrail {

using SEs2Play = TPlayContext<SEs2Host, CEs2Names>;

/// Plays the call by its identifier; fails for one without a case.
EPlayed PlayEs2Case(SEs2Play& c);

// Buffers, framebuffers, textures, and what later calls are measured by.
EPlayed PlayGlBindBuffer(SEs2Play& c);
EPlayed PlayGlBindFramebuffer(SEs2Play& c);
EPlayed PlayGlDeleteBuffers(SEs2Play& c);
EPlayed PlayGlEnable(SEs2Play& c);
EPlayed PlayGlPixelStorei(SEs2Play& c);
EPlayed PlayGlTexImage2D(SEs2Play& c);
EPlayed PlayGlViewport(SEs2Play& c);

// Shaders and programs.
EPlayed PlayGlAttachShader(SEs2Play& c);
EPlayed PlayGlCreateProgram(SEs2Play& c);
EPlayed PlayGlCreateShader(SEs2Play& c);
EPlayed PlayGlDeleteProgram(SEs2Play& c);
EPlayed PlayGlDeleteShader(SEs2Play& c);
EPlayed PlayGlDetachShader(SEs2Play& c);
EPlayed PlayGlGetAttribLocation(SEs2Play& c);
EPlayed PlayGlGetProgramiv(SEs2Play& c);
EPlayed PlayGlGetUniformLocation(SEs2Play& c);
EPlayed PlayGlLinkProgram(SEs2Play& c);
EPlayed PlayGlReleaseShaderCompiler(SEs2Play& c);
EPlayed PlayGlShaderBinary(SEs2Play& c);
EPlayed PlayGlShaderSource(SEs2Play& c);
EPlayed PlayGlUseProgram(SEs2Play& c);

// Draws from client memory.
EPlayed PlayGlDrawArrays(SEs2Play& c);
EPlayed PlayGlDrawElements(SEs2Play& c);

}  // namespace kestrail
