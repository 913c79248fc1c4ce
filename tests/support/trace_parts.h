// A trace file taken apart without belief in what it says, to be changed and put together again.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/support/trace_builder.h"

namespace kestrail {

struct SRecordPart {
    std::uint32_t size = 0;  ///< as the record says
    std::uint16_t id = 0;
    Bytes payload;

    /// Makes the record say the truth.
    void TellSize() { size = static_cast<std::uint32_t>(payload.size()); }
};

struct STraceParts {
    Bytes start;   ///< up to the type set
    Bytes widths;  ///< with their number, where it is on file
    Bytes edits;   ///< both lists
    std::vector<SRecordPart> records;
    Bytes tail;  ///< the footer, or what no record holds

    std::uint32_t Version() const;
    void SetVersion(std::uint32_t version);
    /// The table, without its length.
    WidthTable Widths() const;
};

/// False for what is shorter than a header.
bool Split(const std::uint8_t* data, std::size_t size, STraceParts& parts);
Bytes Join(const STraceParts& parts);

}  // namespace kestrail
