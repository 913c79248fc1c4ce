// The command line of the program.
#pragma once

#include <cstdint>

namespace kestrail {

struct SOptions {
    const char* tracePath = "";
    bool wholeFile = true;  ///< false: the trace is streamed
    bool sync = false;
    bool skipCallOnError = true;
    bool skipRangeGiven = false;
    std::int32_t skipRangeStart = 0;
    std::int32_t skipRangeEnd = 0;
    std::int32_t frame = -1;  ///< -1: all frames
    std::int32_t iterations = 10000;
    bool random = false;
    bool advanced = false;  ///< frames are sought, not played in sequence
};

/// The first argument is the trace's path, whatever it looks like. In each later one, the first
/// option word that occurs anywhere in it counts; its value is what follows the first "=".
SOptions ParseOptions(int argumentCount, const char* const* arguments);

void PrintUsage(const char* program);

}  // namespace kestrail
