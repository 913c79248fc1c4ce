#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <string>

#include "companion/exit_status.h"
#include "companion/verbs.h"

namespace kestrail {

std::span<const SVerb> Verbs() {
    static constexpr std::array kVerbs = {
        SVerb{"frames", "render frames of a trace, alone and right", RunFrames},
        SVerb{"record", "run a program and record its calls into a trace", RunRecord},
        SVerb{"trim", "cut frames out of a trace, with all that they stand on", RunTrim},
    };
    return kVerbs;
}

namespace {

void PrintHelp(std::FILE* to) {
    std::fputs("Usage: kestrail VERB [OPTIONS]\n\nVerbs:\n", to);
    for (const SVerb& verb : Verbs()) std::fprintf(to, "  %-10s %s\n", verb.name, verb.summary);
    std::fputs("\n`kestrail VERB --help` tells a verb's options.\n", to);
}

int Run(Arguments arguments) {
    if (arguments.empty()) {
        PrintHelp(stderr);
        return kExitUsage;
    }
    const std::string word = arguments.front();
    arguments.erase(arguments.begin());
    if (word == "--help" || word == "-h" || (word == "help" && arguments.empty())) {
        PrintHelp(stdout);
        return kExitDone;
    }
    if (word == "--version") {
        std::puts("kestrail " KESTRAIL_VERSION);
        return kExitDone;
    }
    const std::string& name = word == "help" ? arguments.front() : word;
    const auto verb = std::find_if(Verbs().begin(), Verbs().end(),
                                   [&](const SVerb& known) { return name == known.name; });
    if (verb == Verbs().end()) {
        std::fprintf(stderr, "kestrail: there is no verb '%s'; see kestrail --help\n",
                     name.c_str());
        return kExitUsage;
    }
    if (word == "help") return verb->run({"--help"});
    return verb->run(std::move(arguments));
}

}  // namespace
}  // namespace kestrail

int main(int count, char** words) {
    try {
        return kestrail::Run({words + 1, words + count});
    } catch (const std::exception& reason) {
        std::fprintf(stderr, "kestrail: %s\n", reason.what());
        return kestrail::kExitOutput;
    }
}
