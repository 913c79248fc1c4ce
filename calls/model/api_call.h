// A recorded call. It reads itself from its record and writes itself into one; in between executors
// walk its parameter list, and the line of the call is printed from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/enumerants.h"
#include "calls/model/api_type.h"
#include "calls/model/call_info.h"

namespace kestrail {

class CEffects;
// What calls change, which they only name: their `UpdateState` is written in the room state/.
class CEglState;
class CEs1State;
class CEs2State;
struct SUpdates;

/// Which state record a call belongs to.
enum CallGroup : std::uint8_t {
    kGroupNone = 0,
    kGroupEgl = 1,
    kGroupEs1 = 2,
    kGroupExtEs1 = 3,
    kGroupEs2 = 4,
    kGroupExtEs2 = 5,
};

class CApiCall {
public:
    virtual ~CApiCall() = default;
    CApiCall(const CApiCall&) = delete;
    CApiCall& operator=(const CApiCall&) = delete;

    /// Calls stand in the memory of the trace, with the small things that they hold.
    static void* operator new(std::size_t size, const CTrace& trace) {
        return trace.CallMemory().Take(size);
    }
    static void operator delete(void*, const CTrace&) {}
    static void operator delete(void* call, std::size_t size) {
        CObjectArena::GiveBack(call, size);
    }

    /// Appends what its class reads from a record.
    virtual void Write(CRecordWriter& out) const = 0;
    /// What its class is.
    virtual const SClassLayout& Layout() const = 0;
    /// Lists the call's values in `info`; the hidden ones only with `withPlayback`.
    void FillCallInfo(CGenCallInfo& info, bool withPlayback) {
        info.SetCall(*this, Layout(), withPlayback);
    }
    /// The entry point's name, of static lifetime.
    const char* GetName() const { return Layout().name.data(); }
    std::uint16_t GetCallId() const { return Layout().id; }
    const char* GetCategory() const { return Layout().category; }
    /// Whether the call had failed when it was recorded, by the error that its family keeps.
    bool HadFailed() const;

    /// Tells what the call reads and changes of what the driver holds, by calls/effects.rules.
    virtual void ListEffects(CEffects& effects) const = 0;

    // There are millions of calls: what follows the error stands in the room that it leaves.
    /// What glGetError gave after the call when it was recorded; stays 0 for EGL and extension
    /// calls, which keep their own.
    [[no_unique_address]] TGLError m_error;
    /// The identifier of the record; 0 until the dispatcher has written it.
    std::uint16_t m_id = 0;
    std::uint8_t m_group;
    /// The header's edit lists name this call.
    bool m_edited : 1 = false;
    /// The class has an `UpdateState` of its own.
    bool m_updatesState : 1 = false;

protected:
    explicit CApiCall(std::uint8_t group) : m_group(group) {}
};

/// What the calls of a family have in common: the state record that they change.
template <typename State, CallGroup kGroup>
class TFamilyCall : public CApiCall {
public:
    /// Applies the call to a state record, without touching the host. False when it did not.
    virtual bool UpdateState(State&, SUpdates&) { return false; }
    void Read(CTrace& trace) { ReadRun(trace, m_error); }
    void Write(CRecordWriter& out) const override { out << m_error; }

protected:
    TFamilyCall() : CApiCall(kGroup) {}
};

using CEs1Call = TFamilyCall<CEs1State, kGroupEs1>;
using CEs2Call = TFamilyCall<CEs2State, kGroupEs2>;
using CEs3Call = CEs2Call;

class CEglCall : public TFamilyCall<CEglState, kGroupEgl> {
public:
    void Read(CTrace& trace) { ReadRun(trace, m_eglError); }
    void Write(CRecordWriter& out) const override { out << m_eglError; }

    /// What eglGetError gave after the call when it was recorded.
    TEGLintEnum m_eglError;
};

/// Of ES1, ES2 or EGL. Those of ES2 leave no trace in its state record.
class CExtCall : public TFamilyCall<CEs1State, kGroupNone> {
public:
    void Read(CTrace& trace) {
        ReadRun(trace, m_extError, m_api);
        if (m_api.value == 1) m_group = kGroupExtEs1;
        if (m_api.value == 2) m_group = kGroupExtEs2;
    }
    void Write(CRecordWriter& out) const override { out << m_extError << m_api; }

    TGLError m_extError;
    /// The API that was current: 1 is ES1, 2 is ES2, anything else counts as EGL.
    TGLubyte m_api;
};

inline bool CApiCall::HadFailed() const {
    switch (m_group) {
        case kGroupEgl:
            return static_cast<const CEglCall*>(this)->m_eglError.GetValue() != EGL_SUCCESS;
        case kGroupEs1:
        case kGroupEs2:
            return m_error.GetValue() != GL_NO_ERROR;
        default:
            return static_cast<const CExtCall*>(this)->m_extError.GetValue() != GL_NO_ERROR;
    }
}

/// Second base of the calls that set a client array's pointer: what was recorded, and what the
/// player passes.
class XXXYYYPointer {
public:
    TPointer pointerPlayback;
    TPointer pointer;
};

}  // namespace kestrail
