// How wide the values of each type are in a file.
#pragma once

#include <cstdint>

namespace kestrail {

class CWidthTable {
public:
    /// `widths` holds one signed width for each type tag and one spare entry behind them, which the
    /// tag equal to `count` has. It is not owned.
    CWidthTable(const std::int8_t* widths, std::int8_t count)
        : m_widths(widths), m_count(count), m_usual(AreUsual(widths, count)) {}

    /// The width in bytes of a type tag; negative for a signed type, 0 for the reader's own width.
    /// Throws the text "Undefined Es Type in record library" for a tag beyond the table.
    std::int32_t operator[](std::uint16_t tag) const {
        // Kept: the tag just behind the table passes; old recordings lack that entry.
        if (static_cast<std::int32_t>(tag) > m_count) [[unlikely]]
            ThrowUndefinedType();
        return m_widths[tag];
    }

    /// How wide a value of a tag usually is: 4 bytes, flags and bytes 1. 0 for tags that are not
    /// read that way.
    static constexpr std::uint32_t Usual(std::uint16_t tag) {
        if (tag >= kUsualTags) return 0;
        return tag == kBooleanTag || tag == kUbyteTag ? 1 : 4;
    }
    /// All tags that have a usual width have it here.
    bool IsUsual() const { return m_usual; }

private:
    static constexpr std::uint16_t kUsualTags = 28;
    static constexpr std::uint16_t kBooleanTag = 13;
    static constexpr std::uint16_t kUbyteTag = 19;

    [[noreturn]] static void ThrowUndefinedType();
    static bool AreUsual(const std::int8_t* widths, std::int8_t count);

    const std::int8_t* m_widths;
    std::int8_t m_count;
    bool m_usual;
};

}  // namespace kestrail
