// What the whole-program tests share: expected host lines, and the usual opening of a trace.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <type_traits>
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

/// A trace that has an ES 2 context current on a window of the size that the stand-in reports, so
/// that no viewport is corrected.
inline CTraceBuilder Es2Trace(std::uint32_t version = 14) {
    CTraceBuilder trace(version);
    trace.StartUp(2, 300, 300);
    return trace;
}

inline const std::string message = "KESTRAIL(M) ";
inline const std::string error = "KESTRAIL(W) ERROR: ";
inline const std::string warning = "KESTRAIL(W) WARNING: ";

}  // namespace kestrail
