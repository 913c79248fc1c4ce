#include "playback/options.h"

#include <cstdlib>
#include <cstring>

#include "base/output.h"

namespace kestrail {
namespace {

/// The value behind the argument's first "=" into `value`; false without one.
bool TakeValue(const char* argument, std::int32_t& value) {
    const char* equals = std::strchr(argument, '=');
    if (equals == nullptr) return false;
    // Kept: never the next argument, and 0 for what is no number; scripts are written for it.
    value = std::atoi(equals + 1);
    return true;
}

void ParseOption(const char* argument, SOptions& options) {
    // Kept: anywhere in the argument, the first of the chain counts; scripts are written for it.
    const auto has = [argument](const char* word) {
        return std::strstr(argument, word) != nullptr;
    };
    if (has("--noMemory")) {
        options.wholeFile = false;
    } else if (has("--sync")) {
        options.sync = true;
    } else if (has("--noSkipCallOnError")) {
        options.skipCallOnError = false;
    } else if (has("--skipFramesRangeStart")) {
        if (TakeValue(argument, options.skipRangeStart)) options.skipRangeGiven = true;
    } else if (has("--skipFramesRangeEnd")) {
        if (TakeValue(argument, options.skipRangeEnd)) options.skipRangeGiven = true;
    } else if (has("--frame")) {
        options.advanced = true;
        TakeValue(argument, options.frame);
    } else if (has("--random")) {
        options.advanced = true;
        options.random = true;
    } else if (has("--iterations")) {
        options.advanced = true;
        TakeValue(argument, options.iterations);
    }
}

}  // namespace

SOptions ParseOptions(int argumentCount, const char* const* arguments) {
    SOptions options;
    options.tracePath = arguments[1];
    for (int i = 2; i < argumentCount; ++i) ParseOption(arguments[i], options);
    return options;
}

void PrintUsage(const char* program) {
    output::Print("Usage: %s <tracefile> [--args]\n\n", program);
    // Kept: with its open brackets and its grammar; tools compare the text.
    output::Print(
        "%s",
        "\t--noMemory:\t\t\t\tAvoid to load the whole trace in memory. Only a fixed amount of "
        "memory "
        "is used (~20MB).\n"
        "\t--sync:\t\t\t\t\tEnable Sync.\n"
        "\t--noSkipCallOnError:\tThe playback will not skip call which failed on recording.\n"
        "\t--skipFramesRangeStart:\tSkip Frame Range Start\n"
        "\t--skipFramesRangeEnd:\tSkip Frame Range End\n"
        "\t\n"
        "Advance options (--noMemory option is incompatible\n"
        "\t--frame:\t\t\t  Render specified frames.\n"
        "\t--random:\t\t\t  Play --iterations in a random order.\n"
        "\t--iterations:\t\t  Number of renders to play back. (Default=10000.\n");
}

}  // namespace kestrail
