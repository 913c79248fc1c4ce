#include "tests/support/record_walk.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/call_notation.h"

namespace kestrail {
namespace {

const char* const families[] = {"egl", "es2", "es1", "ext", "es3"};

/// Draws that end with captured arrays.
bool HasArrays(std::uint16_t id) {
    return id == 2041 || id == 2042 || id == 3036 || id == 3037;
}

class CWalk {
public:
    CWalk(const Bytes& payload, SRecordTerms& terms) : m_payload(payload), m_terms(terms) {}

    Kept Result() const {
        if (m_cut) return Kept::Cut;
        return m_lost || m_at < m_payload.size() ? Kept::Less : Kept::All;
    }
    void Number(unsigned typeTag) {
        const std::size_t width = Width(typeTag);
        const std::uint64_t low = Take(std::min<std::size_t>(width, 4));
        const bool isSigned =
            typeTag == 1 || typeTag == 17 || typeTag == 18 || (typeTag >= 24 && typeTag <= 27);
        const std::uint8_t fill = isSigned && (low & 0x80000000U) != 0 ? 0xFF : 0;
        for (std::size_t i = 4; i < width; ++i) m_lost = Take(1) != fill || m_lost;
    }
    void Slot(const std::string& slot) {
        if (slot == "data") return Data();
        if (slot == "raw") return Pixmap();
        if (slot == "string") return Text();
        if (slot == "attributes") return Items("EglInt", 1);
        if (slot == "strings") {
            if (const std::uint64_t count = Head()) {
                for (std::uint64_t i = 0; i < count && !m_cut; ++i) Text();
            }
        } else if (slot == "window") {
            Number(tag::EglNativeWindow);
            Take(4);
            Take(4);
        } else if (slot[0] == '[' || slot[0] == '(') {
            const std::size_t star = slot.find('*');
            const std::string scalar = slot.substr(1, std::min(star, slot.size() - 1) - 1);
            const auto each = static_cast<std::uint64_t>(
                star == std::string::npos ? 1 : std::stoul(slot.substr(star + 1)));
            if (slot[0] == '[') return Items(scalar, each);
            if (Pointer() != 0) Scalars(scalar, each);
        } else {
            Number(TagOf(slot));
        }
    }
    void Arrays() {
        // Other widths count other arrays.
        if (Width(tag::Enum) != 4 || m_terms.widths.at(tag::Int) != -4 ||
            m_terms.widths.at(tag::Pointer) <= 0) {
            m_lost = true;
            m_at = m_payload.size();
        }
        while (m_payload.size() - m_at >= Width(tag::Pointer) + 4 && !m_cut) {
            if (m_terms.version >= 14) Number(tag::Int);
            Data();
        }
    }

private:
    std::size_t Width(unsigned typeTag) const {
        const int width = typeTag < m_terms.widths.size() ? m_terms.widths[typeTag] : 0;
        return width == 0 ? 4 : static_cast<std::size_t>(std::abs(width));
    }
    std::uint64_t Take(std::size_t size) {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            if (m_at == m_payload.size()) {
                m_cut = true;
                return 0;
            }
            value |= std::uint64_t{m_payload[m_at++]} << (8 * i);
        }
        return value;
    }
    void Skip(std::uint64_t size) {
        m_cut = m_cut || size > m_payload.size() - m_at;
        m_at = m_cut ? m_payload.size() : m_at + size;
    }
    /// As far as it is kept.
    std::uint64_t Pointer() {
        const std::size_t start = m_at;
        Number(tag::Pointer);
        std::uint64_t value = 0;
        for (std::size_t i = start; i < std::min(m_at, start + 4); ++i) value |= m_payload[i];
        return value;
    }
    void Data() {
        Pointer();
        Skip(Take(4));
    }
    void Text() {
        const bool there = Pointer() != 0;
        const std::uint64_t length = Take(4);
        if (there) Skip(length);
    }
    void Pixmap() {
        if (!m_terms.pixmapLength) m_terms.pixmapLength = static_cast<std::uint32_t>(Take(4));
        Skip(*m_terms.pixmapLength);
    }
    /// How many items follow.
    std::uint64_t Head() {
        const bool there = Pointer() != 0;
        const std::uint64_t count = Take(4);
        if (there && count == 0) m_lost = true;
        return there ? count : 0;
    }
    void Items(const std::string& scalar, std::uint64_t each) { Scalars(scalar, Head() * each); }
    void Scalars(const std::string& scalar, std::uint64_t count) {
        for (std::uint64_t i = 0; i < count && !m_cut; ++i) Number(TagOf(scalar));
    }

    const Bytes& m_payload;
    SRecordTerms& m_terms;
    std::size_t m_at = 0;
    bool m_lost = false;
    bool m_cut = false;
};

const SCallLayout* Layout(std::uint16_t id, const std::string& name) {
    try {
        return &FindLayout(name, families[id / 1000 - 1]);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

}  // namespace

Kept WalkRecord(std::uint16_t id, const std::string& name, const Bytes& payload,
                SRecordTerms& terms) {
    const SCallLayout* const layout = Layout(id, name);
    if (layout == nullptr || layout->id != id) return Kept::Unknown;
    CWalk walk(payload, terms);
    walk.Number(id < 2000 ? tag::EglInt : tag::Enum);
    if (id / 1000 == 4) walk.Number(tag::Ubyte);
    if (!layout->result.empty()) walk.Slot(layout->result);
    for (const std::string& slot : layout->slots) {
        const std::size_t at = slot.find('@');
        if (at != std::string::npos && terms.version < std::stoul(slot.substr(at + 1))) continue;
        walk.Slot(slot.substr(0, at));
    }
    if (HasArrays(id)) walk.Arrays();
    return walk.Result();
}

}  // namespace kestrail
