// The cases of the ES3 executor. The table of calls gives most of them; those declared here are
// played by hand. Names are those of ES2, which ES3 shares.
#pragma once

#include "calls/model/array_values.h"
#include "exec/es2_names.h"
#include "exec/host_data.h"
#include "exec/name_calls.h"
#include "exec/play_context.h"
#include "exec/played.h"
#include "host/es3_host.h"

namespace kestrail {

using SEs3Play = TPlayContext<SEs3Host, CEs2Names>;

/// Plays the call by its identifier; fails for one without a case.
EPlayed PlayEs3Case(SEs3Play& c);

EPlayed PlayGlDrawRangeElements(SEs3Play& c);
EPlayed PlayGlDrawArraysInstanced(SEs3Play& c);
EPlayed PlayGlDrawElementsInstanced(SEs3Play& c);
EPlayed PlayGlMapBufferRange(SEs3Play& c);

// Sync objects.
EPlayed PlayGlFenceSync(SEs3Play& c);
EPlayed PlayGlDeleteSync(SEs3Play& c);
EPlayed PlayGlClientWaitSync(SEs3Play& c);
EPlayed PlayGlWaitSync(SEs3Play& c);

}  // namespace kestrail
