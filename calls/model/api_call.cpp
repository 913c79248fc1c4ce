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

}  // namespace kestrail
