// The cases of the ES1 executor. The table of calls gives most of them; those declared here are
// played by hand.
#pragma once

#include "calls/model/array_values.h"
#include "exec/es1_names.h"
#include "exec/host_data.h"
#include "exec/name_calls.h"
#include "exec/play_context.h"
#include "exec/played.h"
#include "host/es1_host.h"

namespace kestrail {

using SEs1Play = TPlayContext<SEs1Host, CEs1Names>;

/// Plays the call by its identifier; fails for one without a case.
EPlayed PlayEs1Case(SEs1Play& c);
/// Whether the call is one that is never played, for which the host's library need not be there.
bool LeavesOutEs1Call(std::uint16_t id);

EPlayed PlayGlDeleteBuffers(SEs1Play& c);
EPlayed PlayGlPixelStorei(SEs1Play& c);
EPlayed PlayGlPointSizePointerOES(SEs1Play& c);
EPlayed PlayGlReadPixels(SEs1Play& c);
EPlayed PlayGlTexImage2D(SEs1Play& c);
EPlayed PlayGlTexSubImage2D(SEs1Play& c);
EPlayed PlayGlVertexPointer(SEs1Play& c);
EPlayed PlayGlViewport(SEs1Play& c);

// Draws from client memory.
EPlayed PlayGlDrawArrays(SEs1Play& c);
EPlayed PlayGlDrawElements(SEs1Play& c);

}  // namespace kestrail
