// How verbs read their arguments.
#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <optional>

#include "companion/exit_status.h"
#include "companion/verbs.h"

namespace kestrail {

/// Has `app`, whose name is the command's with the verb, parse the arguments, and then `take` look
/// at what they are, which throws what CLI throws. The status to exit with when there is nothing to
/// do.
template <typename Take>
std::optional<int> ParseArguments(CLI::App& app, Arguments arguments, Take take) {
    // CLI takes them from the back.
    std::reverse(arguments.begin(), arguments.end());
    try {
        app.parse(arguments);
        take();
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        return kExitDone;
    } catch (const CLI::ParseError& wrong) {
        const char* const name = app.get_name().c_str();
        std::fprintf(stderr, "%s: %s\nSee %s --help\n", name, wrong.what(), name);
        return kExitUsage;
    }
    return {};
}

}  // namespace kestrail
