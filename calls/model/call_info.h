// A call's parameter list as players see it: values by position, none of them owned. The order of a
// class's parameters is an interface between the call classes and the executors.
#pragma once

#include <cstdint>

#include "calls/model/api_type.h"

namespace kestrail {

class CApiCall;

class CCallInfo {
public:
    virtual ~CCallInfo() = default;

    virtual void Clear() = 0;
    virtual void SetCall(const CApiCall& call, bool flag) = 0;
    virtual void SetApiName(const char* name) = 0;
    virtual void SetErrorValue(SApiTypeBase* value) = 0;
    /// `name` has static lifetime.
    virtual void AddParameter(const char* name, SApiTypeBase* value, bool hidden) = 0;
    virtual void SetReturnValue(SApiTypeBase* value) = 0;
};

/// The values of a call without any storage of its own: made and dropped for every played call.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what was added is read.
class CGenCallInfo final : public CCallInfo {
public:
    /// More parameters than any row has; the generator of the classes holds to it.
    static constexpr std::uint32_t kCapacity = 16;

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only the first m_count are read.
    class Parameters {
    public:
        std::uint32_t size() const { return m_count; }
        SApiTypeBase* operator[](std::uint32_t index) const { return m_values[index]; }
        SApiTypeBase* const* begin() const { return m_values; }
        SApiTypeBase* const* end() const { return m_values + m_count; }

    private:
        friend class CGenCallInfo;
        std::uint32_t m_count = 0;
        SApiTypeBase* m_values[kCapacity];
    };

    void Clear() override;
    void SetCall(const CApiCall& call, bool flag) override;
    void SetApiName(const char* name) override { m_apiName = name; }
    void SetErrorValue(SApiTypeBase* value) override { m_errorValue = value; }
    void AddParameter(const char* name, SApiTypeBase* value, bool hidden) override {
        if (m_parameters.m_count == kCapacity) return;
        m_names[m_parameters.m_count] = name;
        m_parameters.m_values[m_parameters.m_count++] = value;
        if (!hidden) ++m_visibleCount;
    }
    void SetReturnValue(SApiTypeBase* value) override { m_returnValue = value; }

    const char* GetCallName() const { return m_callName; }
    /// "EGL", "ES1" or "ES2", "ES3".
    const char* GetApiName() const { return m_apiName; }
    /// Null for a call without parameters.
    const Parameters* GetParameters() const {
        return m_parameters.m_count != 0 ? &m_parameters : nullptr;
    }
    const char* GetParameterName(std::uint32_t index) const { return m_names[index]; }
    std::uint32_t GetVisibleCount() const { return m_visibleCount; }
    /// Null when the entry point returns nothing.
    SApiTypeBase* GetReturnValue() const { return m_returnValue; }
    SApiTypeBase* GetErrorValue() const { return m_errorValue; }

private:
    const char* m_callName = "";
    const char* m_apiName = "";
    SApiTypeBase* m_returnValue = nullptr;
    SApiTypeBase* m_errorValue = nullptr;
    std::uint32_t m_visibleCount = 0;
    Parameters m_parameters;
    const char* m_names[kCapacity];
};

}  // namespace kestrail
