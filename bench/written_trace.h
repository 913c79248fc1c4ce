// Traces that are written once a process, however often a benchmark is run.
#pragma once

#include <functional>
#include <string>

#include "bench/bench_traces.h"

namespace kestrail {

SBenchTrace WrittenTrace(const std::string& name, const std::function<CTraceBuilder()>& make);

}  // namespace kestrail
