#include "calls/model/api_call.h"

namespace kestrail {

constinit CObjectArena CApiCall::s_arena;

void CGenCallInfo::Clear() {
    m_returnValue = nullptr;
    m_errorValue = nullptr;
    m_visibleCount = 0;
    m_parameters.m_count = 0;
}

void CGenCallInfo::SetCall(const CApiCall& call, bool /*flag*/) {
    m_callName = call.GetName();
}

void CApiCall::FillCallInfo(CCallInfo& info, bool withPlayback) {
    info.SetCall(*this, withPlayback);
}

bool CEglCall::UpdateState(CEglState&) {
    return false;
}
bool CEs1Call::UpdateState(CEs1State&) {
    return false;
}
bool CEs2Call::UpdateState(CEs2State&) {
    return false;
}
bool CEs3Call::UpdateState(CEs2State&) {
    return false;
}
bool CExtCall::UpdateState(CEs1State&) {
    return false;
}

CEglCall::CEglCall(CTrace& trace) : CApiCall(kGroupEgl) {
    trace >> m_eglError;
}
CEs1Call::CEs1Call(CTrace& trace) : CApiCall(kGroupEs1) {
    trace >> m_error;
}
CEs2Call::CEs2Call(CTrace& trace) : CApiCall(kGroupEs2) {
    trace >> m_error;
}
CEs3Call::CEs3Call(CTrace& trace) : CApiCall(kGroupEs2) {
    trace >> m_error;
}

CExtCall::CExtCall(CTrace& trace) : CApiCall(kGroupNone) {
    trace >> m_extError >> m_api;
    if (m_api.value == 1) m_group = kGroupExtEs1;
    if (m_api.value == 2) m_group = kGroupExtEs2;
}

void CEglCall::FillCallInfo(CCallInfo& info, bool /*withPlayback*/) {
    CApiCall::FillCallInfo(info, false);
    info.SetApiName("EGL");
    info.SetErrorValue(&m_eglError);
}

void CEs1Call::FillCallInfo(CCallInfo& info, bool /*withPlayback*/) {
    CApiCall::FillCallInfo(info, false);
    info.SetApiName("ES1");
    info.SetErrorValue(&m_error);
}

void CEs2Call::FillCallInfo(CCallInfo& info, bool /*withPlayback*/) {
    CApiCall::FillCallInfo(info, false);
    info.SetApiName("ES2");
    info.SetErrorValue(&m_error);
}

void CEs3Call::FillCallInfo(CCallInfo& info, bool /*withPlayback*/) {
    CApiCall::FillCallInfo(info, false);
    info.SetApiName("ES3");
    info.SetErrorValue(&m_error);
}

void CExtCall::FillCallInfo(CCallInfo& info, bool /*withPlayback*/) {
    CApiCall::FillCallInfo(info, false);
    info.SetApiName(m_api.value == 1 ? "ES1" : m_api.value == 2 ? "ES2" : "EGL");
    info.SetErrorValue(&m_extError);
}

}  // namespace kestrail
