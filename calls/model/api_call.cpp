#include "calls/model/api_call.h"

namespace kestrail {

static_assert(sizeof(CApiCall) == 24);
static_assert(alignof(CApiCall) <= CObjectArena::kAlignment);

const char* CGenCallInfo::GetApiName() const {
    if (m_parameters.m_layout->api != nullptr) return m_parameters.m_layout->api;
    switch (m_parameters.m_call->m_group) {
        case kGroupExtEs1:
            return "ES1";
        case kGroupExtEs2:
            return "ES2";
        default:
            return "EGL";
    }
}

bool CEglCall::UpdateState(CEglState&, SUpdates&) {
    return false;
}
bool CEs1Call::UpdateState(CEs1State&, SUpdates&) {
    return false;
}
bool CEs2Call::UpdateState(CEs2State&, SUpdates&) {
    return false;
}
bool CEs3Call::UpdateState(CEs2State&, SUpdates&) {
    return false;
}
bool CExtCall::UpdateState(CEs1State&, SUpdates&) {
    return false;
}

CEglCall::CEglCall(CTrace& trace) : CApiCall(kGroupEgl) {
    ReadRun(trace, m_eglError);
}
CEs1Call::CEs1Call(CTrace& trace) : CApiCall(kGroupEs1) {
    ReadRun(trace, m_error);
}
CEs2Call::CEs2Call(CTrace& trace) : CApiCall(kGroupEs2) {
    ReadRun(trace, m_error);
}
CEs3Call::CEs3Call(CTrace& trace) : CApiCall(kGroupEs2) {
    ReadRun(trace, m_error);
}

CExtCall::CExtCall(CTrace& trace) : CApiCall(kGroupNone) {
    ReadRun(trace, m_extError, m_api);
    if (m_api.value == 1) m_group = kGroupExtEs1;
    if (m_api.value == 2) m_group = kGroupExtEs2;
}

}  // namespace kestrail
