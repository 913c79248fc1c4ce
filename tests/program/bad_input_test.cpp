#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "tests/support/call_notation.h"
#include "tests/support/program_run.h"

namespace kestrail {
namespace {

using Lines = std::vector<std::string>;

CTraceBuilder Es2Trace() {
    return CTraceBuilder().StartUp(2, 300, 300);
}

/// A small trace with a value of every kind that has a length on file, and with everything that may
/// stand in front of the calls and between them.
CTraceBuilder RichTrace() {
    CTraceBuilder trace = Es2Trace();
    trace.Disable(3).OverrideText(8, "void main() {}").Thread();
    for (const char* call :
         {"glGenTextures 2 {7 8}", "glCreateShader GL_VERTEX_SHADER = 3",
          "glShaderSource 3 2 {\"ab\" \"c\"} {2 1}",
          "glBufferData GL_ARRAY_BUFFER 4 [01020304] GL_STATIC_DRAW", "glEnableVertexAttribArray 1",
          "glVertexAttribPointer 1 1 GL_UNSIGNED_BYTE 0 0 0x99",
          "glDrawArrays GL_TRIANGLES 0 4 1:[01020304]", "glDeleteTextures 1 {7}"}) {
        AddCall(trace, call);
    }
    return trace.SwapBuffers(1, 1, Bytes(4));
}

/// No signal but the one text that may leave the load.
void ExpectBounded(const SRunResult& run, const std::string& what) {
    EXPECT_FALSE(run.timedOut) << what;
    if (run.signal == SIGABRT && run.Printed("Exception processing trace file")) return;
    EXPECT_EQ(run.signal, 0) << what << ": " << run.Ending();
    EXPECT_EQ(run.status, 0) << what << ": " << run.Ending();
}

TEST(BadInput, ATraceCutAtAnyByteIsBounded) {
    CTraceBuilder trace = RichTrace();
    const std::size_t whole = trace.Build().size();
    for (std::size_t length = 0; length < whole; ++length) {
        const Lines arguments = length % 2 == 0 ? Lines{} : Lines{"--noMemory"};
        ExpectBounded(RunTrace(trace.CutAt(length), arguments), std::to_string(length));
    }
}

TEST(BadInput, AnyHostileWordIsBounded) {
    const CTraceBuilder streamed = RichTrace();
    CTraceBuilder held = RichTrace();
    held.BeginState().Marker(2).Add(2045, held.Gl()).Marker(3);
    const std::size_t whole = streamed.Build().size();
    // Every word of the file in turn: sizes, counts, lengths, names and identifiers among them.
    const std::uint32_t hostile[] = {0xFFFFFFFFU, 0x7FFFFFFFU, 0x80000000U};
    std::size_t turn = 0;
    for (std::size_t at = 12; at + 4 <= whole; at += 2) {
        const std::uint32_t value = hostile[turn++ % std::size(hostile)];
        const bool stream = turn % 4 >= 2;
        CTraceBuilder trace = stream ? streamed : held;
        const Lines arguments = stream ? Lines{"--noMemory"} : Lines{};
        ExpectBounded(RunTrace(trace.Patch(at, value), arguments), std::to_string(at));
    }
}

TEST(BadInput, ExtensionCallsOfAnyApiWithAnyValuesAreBounded) {
    // Zeros; all ones; small counts in front of pointers without anything behind them.
    Bytes patterns[] = {Bytes(96, 0), Bytes(96, 0xFF), Bytes(96, 0)};
    for (std::size_t i = 0; i < 96; i += 4) patterns[2][i] = i % 8 == 0 ? 2 : 0x70;
    for (std::uint16_t id = 4001; id <= 4090; ++id) {
        if (id > 4032 && id < 4089) continue;
        for (const Bytes& pattern : patterns) {
            CTraceBuilder trace = Es2Trace();
            for (const unsigned api : {0U, 1U, 2U, 3U, 77U, 127U, 128U, 255U}) {
                trace.Add(id, trace.Ext(0, static_cast<std::uint8_t>(api)).Raw(pattern));
            }
            ExpectBounded(RunTrace(trace), std::to_string(id));
        }
    }
}

TEST(BadInput, WidthsOfEveryKindAreBounded) {
    for (const int width : {0, 1, 2, 3, 8, 9, 100, 127, -128}) {
        for (const int count : {33, 0, 127, -1, -128}) {
            CTraceBuilder trace = RichTrace();
            trace.settings.widths = WidthTable(33, static_cast<std::int8_t>(width));
            trace.settings.widthCount = static_cast<std::int8_t>(count);
            ExpectBounded(RunTrace(trace), std::to_string(width) + ", " + std::to_string(count));
        }
    }
}

/// Files whose end is a hole. Those of two gigabytes are the largest that a trace's offsets reach.
TEST(BadInput, LargeFilesAreBounded) {
    const CTempFolder folder;
    const std::string path = folder.File("large.kstl");
    ASSERT_TRUE(CTraceBuilder(11).GetDisplay().Write(path));
    SRunOptions options;
    options.timeoutSeconds = 60;
    for (const off_t length : {off_t{0x7FFFFFFF}, off_t{0x80000000}, off_t{0x180000000}}) {
        ASSERT_EQ(truncate(path.c_str(), length), 0);
        ExpectBounded(RunProgram({path, "--noMemory"}, options), std::to_string(length));
    }
}

}  // namespace
}  // namespace kestrail
