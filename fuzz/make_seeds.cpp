// Writes small sound traces into a folder: every call that has a row, in every version.
#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/program/table_call.h"
#include "tests/support/call_notation.h"

namespace kestrail {
namespace {

/// Few calls make a small file, which the fuzzer is quick with.
constexpr std::size_t kCallsOfTrace = 8;

void WriteFamily(const SFamilyRows& rows, std::uint32_t version, const std::string& start) {
    const SOpening opening = Open(rows, version);
    for (std::size_t first = 0; first < rows.entries.size(); first += kCallsOfTrace) {
        CTraceBuilder trace = opening.trace;
        const std::size_t end = std::min(first + kCallsOfTrace, rows.entries.size());
        for (std::size_t i = first; i < end; ++i) {
            AddCall(trace, MakeTableCall(opening, rows, rows.entries[i]).line);
            if (i == first + kCallsOfTrace / 2) trace.SwapBuffers();
        }
        trace.SwapBuffers();
        trace.Write(start + "-" + std::to_string(first) + ".kstl");
    }
}

/// What stands beside the calls: edits, threads, a section of state, a picture.
void WriteFraming(std::uint32_t version, const std::string& start) {
    CTraceBuilder trace(version);
    trace.Disable(7).OverrideText(8, "void main() {}").Thread();
    trace.BeginState().Marker(2).StartUp(2, 300, 300).Marker(3).EndState();
    trace.Add(2046, trace.Gl()).Thread(2);
    trace.SwapBuffers(2, 1, Bytes(8, 0x7F));
    trace.Add(2046, trace.Gl()).SwapBuffers();
    trace.Write(start + ".kstl");
}

/// Numbers of eight bytes, with a sign and without, and pixmaps, whose length stands there once.
void WriteWide(const std::string& path) {
    CTraceBuilder trace;
    trace.settings.widths[tag::Int] = -8;
    trace.settings.widths[tag::Enum] = 8;
    AddCall(trace, "glTexParameteri GL_TEXTURE_2D GL_TEXTURE_MIN_FILTER -1");
    AddCall(trace, "egl.eglCopyBuffers DPY SRF 0x30 [03000000 010203]");
    AddCall(trace, "egl.eglCopyBuffers DPY SRF 0x31 [040506]");
    trace.Write(path);
}

}  // namespace
}  // namespace kestrail

int main(int count, char** arguments) {
    using namespace kestrail;
    if (count != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]);
        return 1;
    }
    const std::filesystem::path folder = arguments[1];
    std::filesystem::create_directories(folder);
    for (std::uint32_t version = 7; version <= 14; ++version) {
        const std::string name = std::string("v").append(std::to_string(version));
        for (const SFamilyRows* rows :
             {&Es1Rows(), &Es2Rows(), &Es3Rows(), &ExtRows(), &MultisampleRows()}) {
            std::string family = name + "-";
            family.append(rows->family).append(std::to_string(rows->first));
            WriteFamily(*rows, version, (folder / family).string());
        }
        WriteFraming(version, (folder / (name + "-framing")).string());
    }
    WriteWide((folder / "wide.kstl").string());
    return 0;
}
