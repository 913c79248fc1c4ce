// A line for every row of a family, made by the published prototype with values that differ from
// one another, and what the host must see of it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "tests/support/table_rows.h"
#include "tests/support/trace_builder.h"

namespace kestrail {

/// What a family's trace begins with, and the names that it makes.
struct SOpening {
    CTraceBuilder trace;
    /// Table, recorded name, live name; under "new" what the next one gets.
    std::map<std::string, std::pair<std::string, std::string>> names;
};

SOpening Open(const SFamilyRows& rows, std::uint32_t version = 14);

struct STableCall {
    /// For AddCall.
    std::string line;
    /// The host's line.
    std::string expected;
};

/// Throws std::runtime_error for an entry that has no prototype.
STableCall MakeTableCall(const SOpening& opening, const SFamilyRows& rows,
                         const std::string& entry);

}  // namespace kestrail
