// The cases of the EGL executor. The table of calls gives those that are left out; all others are
// played by hand.
#pragma once

#include "calls/model/egl_values.h"
#include "exec/play_context.h"
#include "exec/played.h"
#include "host/egl_host.h"

namespace kestrail {

using SEglPlay = TPlayContext<SEglHost, CEglNames>;

/// Plays the call by its identifier; fails for one without a case.
EPlayed PlayEglCase(SEglPlay& c);
/// Whether the call is one that is never played, for which the host's library need not be there.
bool LeavesOutEglCall(std::uint16_t id);

// Displays and contexts.
EPlayed PlayEglBindAPI(SEglPlay& c);
EPlayed PlayEglCreateContext(SEglPlay& c);
EPlayed PlayEglDestroyContext(SEglPlay& c);
EPlayed PlayEglGetDisplay(SEglPlay& c);
EPlayed PlayEglInitialize(SEglPlay& c);
EPlayed PlayEglMakeCurrent(SEglPlay& c);
EPlayed PlayEglReleaseThread(SEglPlay& c);
EPlayed PlayEglTerminate(SEglPlay& c);

// Surfaces.
EPlayed PlayEglBindTexImage(SEglPlay& c);
EPlayed PlayEglCopyBuffers(SEglPlay& c);
EPlayed PlayEglCreatePbufferFromClientBuffer(SEglPlay& c);
EPlayed PlayEglCreatePbufferSurface(SEglPlay& c);
EPlayed PlayEglCreatePixmapSurface(SEglPlay& c);
EPlayed PlayEglCreateWindowSurface(SEglPlay& c);
EPlayed PlayEglDestroySurface(SEglPlay& c);
EPlayed PlayEglQuerySurface(SEglPlay& c);
EPlayed PlayEglReleaseTexImage(SEglPlay& c);
EPlayed PlayEglSurfaceAttrib(SEglPlay& c);
EPlayed PlayEglSwapBuffers(SEglPlay& c);
EPlayed PlayEglSwapInterval(SEglPlay& c);

// Waiting.
EPlayed PlayEglWaitClient(SEglPlay& c);
EPlayed PlayEglWaitGL(SEglPlay& c);
EPlayed PlayEglWaitNative(SEglPlay& c);

}  // namespace kestrail
