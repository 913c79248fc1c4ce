#include "exec/play_call.h"

#include "exec/egl_executor.h"
#include "exec/es1_executor.h"
#include "exec/es2_executor.h"
#include "exec/es3_executor.h"
#include "exec/ext_executor.h"
#include "generated/calls/identifiers.h"

namespace kestrail {

bool PlayCallOfFamily(SPlayerState& player, CCallEntry& call) {
    // Kept: less than what loads; readers expect the rest to be printed and told as failed.
    switch (PlayedFamilyOf(call.call->m_id)) {
        case EFamily::kEgl:
            return PlayEglCall(player, call);
        case EFamily::kEs1:
            return PlayEs1Call(player, call);
        case EFamily::kEs2:
            return PlayEs2Call(player, call);
        case EFamily::kEs3:
            return PlayEs3Call(player, call);
        case EFamily::kExt:
            return PlayExtCall(player, call);
        case EFamily::kNone:
            break;
    }
    return false;
}

}  // namespace kestrail
