#include "tracefile/document/edit_list.h"

#include <utility>

#include "tracefile/document/frame_store.h"

namespace kestrail {

void CEditList::AddOverride(std::uint32_t number, std::vector<std::uint8_t> text) {
    m_overrides[number] = {true, std::move(text)};
}

void CEditList::Clear() {
    m_disabled.clear();
    m_overrides.clear();
}

bool CEditList::IsInDisabled(std::uint32_t number) const {
    if (!enabled) return false;
    const auto found = m_disabled.find(number);
    return found != m_disabled.end() && found->second;
}

bool CEditList::GetTextOverride(std::uint32_t number, const std::uint8_t*& text,
                                std::uint32_t& length, bool& fromFile) const {
    const auto found = m_overrides.find(number);
    if (found == m_overrides.end()) return false;
    text = found->second.text.data();
    length = static_cast<std::uint32_t>(found->second.text.size());
    fromFile = found->second.fromFile;
    return true;
}

void CEditList::MarkCalls(CFrameStore& store) const {
    const auto mark = [&store](std::uint32_t number) {
        if (CCallEntry* entry = store.CallAt(number)) entry->call->m_edited = true;
    };
    for (const auto& [number, disabled] : m_disabled) mark(number);
    for (const auto& [number, text] : m_overrides) mark(number);
}

}  // namespace kestrail
