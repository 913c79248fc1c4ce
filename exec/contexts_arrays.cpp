#include "exec/contexts_arrays.h"

#include "exec/es1_client_arrays.h"
#include "exec/es2_client_arrays.h"
#include "generated/exec/es2_cases.h"

namespace kestrail {

bool Es1ArraysReach(SPlayerState& player, CCallEntry& entry, SVertices vertices) {
    static CapturedArrays s_noArrays;
    static const CapturedIndices kNoIndices;
    SEs1Play c{player,         entry, entry.GetInfo(), entry.call->m_id, player.hosts.Es1(),
               player.es1Names};
    return CEs1ClientArrays(c, s_noArrays, kNoIndices, vertices, nullptr).Point();
}

bool Es2ArraysReach(SPlayerState& player, CCallEntry& entry, SVertices vertices) {
    static CapturedArrays s_noArrays;
    static const CapturedIndices kNoIndices;
    SEs2Play c{player,         entry, entry.GetInfo(), entry.call->m_id, player.hosts.Es2(),
               player.es2Names};
    return TClientArrays<SEs2Play>(c, s_noArrays, kNoIndices, vertices).Measure();
}

}  // namespace kestrail
