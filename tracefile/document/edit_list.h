// The edits that a trace's header carries: calls that are not to be played, and texts that replace
// the shader source of a call. Calls are named by their 1-based numbers.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace kestrail {

class CFrameStore;

class CEditList {
public:
    struct STextOverride {
        bool fromFile = false;
        std::vector<std::uint8_t> text;
    };

    void AddDisabled(std::uint32_t number) { m_disabled[number] = true; }
    /// A second text for the same call takes the place of the first.
    void AddOverride(std::uint32_t number, std::vector<std::uint8_t> text);
    void Clear();

    bool IsCallDisabled(std::uint32_t number) const {
        return !m_disabled.empty() && IsInDisabled(number);
    }
    /// False when the call has no text. `text` stays valid while the list does.
    bool GetTextOverride(std::uint32_t number, const std::uint8_t*& text, std::uint32_t& length,
                         bool& fromFile) const;
    /// Sets `m_edited` of every call that the lists name.
    void MarkCalls(CFrameStore& store) const;

    const std::map<std::uint32_t, bool>& Disabled() const { return m_disabled; }
    const std::map<std::uint32_t, STextOverride>& Overrides() const { return m_overrides; }

    bool enabled = true;

private:
    bool IsInDisabled(std::uint32_t number) const;

    std::map<std::uint32_t, bool> m_disabled;
    std::map<std::uint32_t, STextOverride> m_overrides;
};

}  // namespace kestrail
