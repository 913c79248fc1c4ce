// Where the calls of a scene go: to the driver at once, or into a trace. So the same scene exists
// as pixels and as a recording.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/support/trace_builder.h"

namespace kestrail::samples {

/// The configuration that all back ends ask for, ended by EGL_NONE: 24 bits without alpha, with
/// depth and stencil, that contexts of that client version can draw to.
std::vector<std::int32_t> ConfigAttributes(int clientVersion);

class IBackEnd {
public:
    using Entry = void (*)();

    virtual ~IBackEnd() = default;

    /// Makes a context of that client version and a surface of that size current; false if that
    /// isn't to be had.
    virtual bool Open(int clientVersion, int width, int height) = 0;
    virtual void Swap() = 0;
    virtual void Close() = 0;

    /// The trace that calls are written into; null for a back end that issues them.
    virtual CTraceBuilder* Trace() = 0;
    /// The driver's entry point of that name; null for a back end that records.
    virtual Entry Find(const char* name) = 0;
};

}  // namespace kestrail::samples
