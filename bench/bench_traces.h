// Traces of known make-up for the benchmarks, built at run time in a temporary folder, and the
// means to keep what the player prints out of the way.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/program_run.h"

namespace kestrail {

struct SBenchTrace {
    std::string path;
    std::int64_t calls = 0;
    std::int64_t bytes = 0;
};

/// State changes, uniforms and small draws from buffers in `frames` frames.
SBenchTrace SmallCallsTrace(std::int64_t calls, std::int64_t frames);
/// The same of fixed functions.
SBenchTrace SmallEs1CallsTrace(std::int64_t calls, std::int64_t frames);
/// The same of the entries that ES3 adds: objects, block bindings and instanced draws.
SBenchTrace SmallEs3CallsTrace(std::int64_t calls, std::int64_t frames);
/// Calls as applications make them: many small draws from client memory and what leads up to them,
/// some 200 calls a frame, behind a frame that makes the objects.
SBenchTrace RealMixTrace(std::int64_t frames);
/// `records` buffers of `size` bytes each.
SBenchTrace DataTrace(std::int64_t records, std::int64_t size);
/// `binds` binds that go through `names` textures in a scattered order.
SBenchTrace NamesTrace(std::int64_t names, std::int64_t binds);

/// Sends standard output to /dev/null while it lives.
class CSilence {
public:
    CSilence();
    ~CSilence();
    CSilence(const CSilence&) = delete;
    CSilence& operator=(const CSilence&) = delete;

private:
    int m_saved = -1;
};

}  // namespace kestrail
