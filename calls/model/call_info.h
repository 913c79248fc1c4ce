// A call's parameter list as players see it: values by position, none of them owned. Executors know
// them by their names, which the build makes positions of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "calls/model/api_type.h"

namespace kestrail {

class CApiCall;

/// A parameter of a class of calls.
struct SParameterPlace {
    const char* name;
    std::uint16_t offset;  ///< of its value in the call's object
};

/// What all calls of a class have in common, and where their values stand. Made with the class from
/// its row.
struct SClassLayout {
    std::string_view name;  ///< of the entry point
    const char* api;        ///< "EGL", "ES1", "ES2", "ES3"; null where each call says it
    const char* category;
    std::uint16_t id;
    std::uint16_t error;   ///< the recorded error's offset
    std::uint16_t result;  ///< the return value's, 0 where there is none
    std::uint8_t visible;  ///< parameters that are the entry point's; the player's own are behind
    std::uint8_t count;
    const SParameterPlace* parameters;
};

/// A view of the values of one call.
class CGenCallInfo {
public:
    class Parameters {
    public:
        std::uint32_t size() const { return m_count; }
        SApiTypeBase* operator[](std::uint32_t index) const {
            return ValueAt(m_call, m_layout->parameters[index].offset);
        }

    private:
        friend class CGenCallInfo;
        CApiCall* m_call = nullptr;
        const SClassLayout* m_layout = nullptr;
        std::uint32_t m_count = 0;
    };

    CGenCallInfo() = default;

    void Clear() { m_parameters = {}; }
    /// Lists the call's values; the hidden ones only with `withPlayback`.
    void SetCall(CApiCall& call, const SClassLayout& layout, bool withPlayback) {
        m_parameters.m_call = &call;
        m_parameters.m_layout = &layout;
        m_parameters.m_count = withPlayback ? layout.count : layout.visible;
    }

    std::string_view GetCallName() const { return m_parameters.m_layout->name; }
    const char* GetApiName() const;
    /// Null for a call without parameters.
    const Parameters* GetParameters() const {
        return m_parameters.m_count != 0 ? &m_parameters : nullptr;
    }
    const char* GetParameterName(std::uint32_t index) const {
        return m_parameters.m_layout->parameters[index].name;
    }
    std::uint32_t GetVisibleCount() const {
        return m_parameters.m_call != nullptr ? m_parameters.m_layout->visible : 0;
    }
    /// Null when the entry point returns nothing.
    SApiTypeBase* GetReturnValue() const {
        if (m_parameters.m_call == nullptr || m_parameters.m_layout->result == 0) return nullptr;
        return ValueAt(m_parameters.m_call, m_parameters.m_layout->result);
    }
    SApiTypeBase* GetErrorValue() const {
        if (m_parameters.m_call == nullptr) return nullptr;
        return ValueAt(m_parameters.m_call, m_parameters.m_layout->error);
    }

private:
    static SApiTypeBase* ValueAt(CApiCall* call, std::uint16_t offset) {
        return reinterpret_cast<SApiTypeBase*>(reinterpret_cast<std::byte*>(call) + offset);
    }

    Parameters m_parameters;
};

}  // namespace kestrail
