// What the whole-program tests share: expected host lines, and the usual opening of a trace.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/program_run.h"

namespace kestrail {

using Lines = std::vector<std::string>;

template <typename Value>
std::string ArgumentText(const Value& value) {
    if constexpr (std::is_floating_point_v<Value>) {
        char buffer[48];
        std::snprintf(buffer, sizeof buffer, "%g", static_cast<double>(value));
        return buffer;
    } else if constexpr (std::is_arithmetic_v<Value>) {
        return std::to_string(value);
    } else {
        return value;
    }
}

/// A line of the host's log: the entry and its arguments; texts stand as they are.
template <typename... Values>
std::string Host(const std::string& entry, const Values&... values) {
    std::string line = entry + "(";
    bool first = true;
    ((line += (first ? "" : ", ") + ArgumentText(values), first = false), ...);
    return line + ")";
}

/// A trace that has a context current on a window of the size that the stand-in reports, so
/// that no viewport is corrected.
inline CTraceBuilder TraceOf(int clientVersion, std::uint32_t version = 14) {
    CTraceBuilder trace(version);
    trace.StartUp(clientVersion, 300, 300);
    return trace;
}
inline CTraceBuilder Es2Trace(std::uint32_t version = 14) {
    return TraceOf(2, version);
}

/// A trace in the making, with short forms of the records that many calls have.
class CTraceTest : public ::testing::Test {
protected:
    explicit CTraceTest(CTraceBuilder begun) : trace(std::move(begun)) {}

    void One(std::uint16_t id, std::uint32_t name) { trace.Add(id, trace.Gl().Uint(name)); }
    void Two(std::uint16_t id, std::uint32_t first, std::uint32_t second) {
        trace.Add(id, trace.Gl().Uint(first).Uint(second));
    }
    void Bind(std::uint16_t id, std::uint32_t target, std::uint32_t name) {
        trace.Add(id, trace.Gl().Enum(target).Uint(name));
    }
    void List(std::uint16_t id, const std::vector<std::int64_t>& names) {
        const auto count = static_cast<std::int64_t>(names.size());
        trace.Add(id, trace.Gl().Sizei(count).Array(tag::Uint, 0x10, names));
    }
    SRunResult Run(const Lines& arguments = {}, const SRunOptions& options = {}) const {
        SRunResult run = RunTrace(trace, arguments, options);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        return run;
    }
    SRunResult RunScripted(const std::string& script) const {
        SRunOptions options;
        options.script = script;
        return Run({}, options);
    }

    CTraceBuilder trace;
};

inline const std::string message = "KESTRAIL(M) ";
inline const std::string error = "KESTRAIL(W) ERROR: ";
inline const std::string warning = "KESTRAIL(W) WARNING: ";

}  // namespace kestrail
