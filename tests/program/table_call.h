// A record for every row of a family, made by the published prototype with values that differ from
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
    explicit SOpening(std::uint32_t version) : trace(version) { trace.StartUp(2, 300, 300); }

    CTraceBuilder trace;
    /// Table, recorded name, live name.
    std::map<std::string, std::pair<std::uint32_t, std::string>> names;
    int made = 100;

    void Gen(const std::string& table, std::uint32_t name, std::uint16_t id,
             const CRecordBuilder& head);
    std::string NextLive() const { return std::to_string(made + 1); }
};

SOpening Open(const SFamilyRows& rows, std::uint32_t version = 14);

struct STableCall {
    CRecordBuilder record;
    /// The host's line.
    std::string expected;
};

/// Throws for a type of the prototype that no tag is known for.
STableCall MakeTableCall(const SOpening& opening, const SPrototype& prototype,
                         const SFamilyRows& rows);

}  // namespace kestrail
