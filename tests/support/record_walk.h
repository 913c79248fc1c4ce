// What a reader of a record can't keep, found by the published prototypes and without the reader.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/trace_builder.h"

namespace kestrail {

enum class Kept : char {
    All,
    /// Something in the record is in none of the values, or in one that is narrower.
    Less,
    /// The record ends before its values do.
    Cut,
    /// No prototype tells what is in it.
    Unknown,
};

/// What the table says and the first pixmap said.
struct SRecordTerms {
    std::uint32_t version = 14;
    WidthTable widths;
    std::optional<std::uint32_t> pixmapLength;
};

Kept WalkRecord(std::uint16_t id, const std::string& name, const Bytes& payload,
                SRecordTerms& terms);

}  // namespace kestrail
