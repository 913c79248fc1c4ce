#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

/// A small trace with a value of every kind that has a length on file.
CTraceBuilder RichTrace(std::uint32_t version = 14) {
    CTraceBuilder trace = Es2Trace(version);
    trace.Add(2054, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {7, 8}));
    trace.Add(2027, trace.Gl().Uint(3).Enum(35633));
    trace.Add(2099,
              trace.Gl().Uint(3).Sizei(2).Strings(0x10, {"ab", "c"}).Array(tag::Int, 0x10, {2, 1}));
    trace.Add(2013, trace.Gl().Enum(34962).Sizeiptr(4).Data(0x10, Bytes{1, 2, 3, 4}).Enum(35044));
    trace.Add(2044, trace.Gl().Uint(1));
    trace.Add(2141, trace.Gl().Uint(1).Int(1).Enum(5121).Boolean(false).Sizei(0).Pointer(0x99));
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(4).ClientArray(1, 0x10, Bytes{1, 2, 3, 4}));
    trace.Add(2031, trace.Gl().Sizei(1).Array(tag::Uint, 0x10, {7}));
    trace.SwapBuffers(1, 1, Bytes(4));
    return trace;
}

/// No signal but the one text that may leave the load.
void ExpectBounded(const SRunResult& run, const std::string& what) {
    EXPECT_FALSE(run.timedOut) << what;
    if (run.signal == SIGABRT && run.Printed("Exception processing trace file")) return;
    EXPECT_EQ(run.signal, 0) << what << ": " << run.Ending();
    EXPECT_EQ(run.status, 0) << what << ": " << run.Ending();
}

TEST(BadInput, ATraceCutAtAnyByteIsBounded) {
    const Bytes whole = RichTrace().Build();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const Lines arguments = length % 2 == 0 ? Lines{} : Lines{"--noMemory"};
        ExpectBounded(RunBytes(cut, arguments), "cut at " + std::to_string(length));
    }
}

TEST(BadInput, AnyHostileWordIsBounded) {
    const Bytes whole = RichTrace().Build();
    // Every word of the file in turn: sizes, counts, lengths, names and identifiers among them.
    const std::uint32_t hostile[] = {0xFFFFFFFFU, 0x7FFFFFFFU, 0x80000000U};
    std::size_t turn = 0;
    for (std::size_t at = 12; at + 4 <= whole.size(); at += 2) {
        Bytes bytes = whole;
        const std::uint32_t value = hostile[turn++ % std::size(hostile)];
        for (unsigned i = 0; i < 4; ++i) {
            bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
        const Lines arguments = turn % 4 < 2 ? Lines{} : Lines{"--noMemory"};
        ExpectBounded(RunBytes(bytes, arguments), "word at " + std::to_string(at));
    }
}

struct SBadCase {
    const char* name;
    CTraceBuilder trace;
};

std::vector<SBadCase> BadRecords() {
    std::vector<SBadCase> cases;
    const auto add = [&](const char* name, std::uint16_t id, const CRecordBuilder& record) {
        CTraceBuilder trace = Es2Trace();
        trace.Add(id, record);
        trace.Add(2016, trace.Gl().Bitfield(1));
        cases.push_back({name, trace});
    };
    const CTraceBuilder t;
    add("names fewer than their count", 2054, t.Gl().Sizei(1000).Array(tag::Uint, 0x10, {7}));
    add("a negative count of names", 2054, t.Gl().Sizei(-1).Array(tag::Uint, 0x10, {7}));
    add("names without an array", 2050, t.Gl().Sizei(3).Array(tag::Uint, 0, {}));
    add("deletes more than their array", 2029, t.Gl().Sizei(100000).Array(tag::Uint, 0x10, {7}));
    add("deletes a negative count", 2031, t.Gl().Sizei(-5).Array(tag::Uint, 0x10, {7}));
    add("a huge count of deletes", 2031, t.Gl().Sizei(0x7FFFFFFF).Array(tag::Uint, 0x10, {7}));
    add("a uniform with fewer values", 2125,
        t.Gl().Int(0).Sizei(50).Reals(tag::Float, 0x10, {1, 2, 3, 4}, 4));
    add("a uniform without values", 2125, t.Gl().Int(0).Sizei(50).Reals(tag::Float, 0, {}, 4));
    add("a null vector", 2140, t.Gl().Uint(0).RealItem(tag::Float, 0, {}));
    add("a null name", 2077, t.Gl().Int(0).Uint(0).String(0, "x"));
    add("an unknown program", 2077, t.Gl().Int(0).Uint(99).String(0x10, "x"));
    add("a source without strings", 2099,
        t.Gl().Uint(0).Sizei(2).Strings(0, {}).Array(tag::Int, 0, {}));
    add("a buffer smaller than its size", 2013,
        t.Gl().Enum(34962).Sizeiptr(1 << 20).Data(0x10, Bytes{1}).Enum(35044));
    add("a buffer of a negative size", 2013,
        t.Gl().Enum(34962).Sizeiptr(-4).Data(0x10, Bytes{1}).Enum(35044));
    add("shaders fewer than their count", 2098,
        t.Gl().Sizei(9).Array(tag::Uint, 0x10, {3}).Enum(1).Data(0x10, Bytes{1}).Sizei(1000));
    add("a null parameter list", 2110, t.Gl().Enum(1).Enum(2).Array(tag::Int, 0, {}));
    add("a null attribute answer", 1021,
        t.Egl().EglBoolean(true).Display(0x100).Surface(0x400).EglInt(12375).Array(tag::EglInt, 0,
                                                                                   {}));
    add("a config list without an end", 1004,
        t.Egl().Surface(9).Display(0x100).Config(77).Attributes({0x3024, 8, 0x3025}));
    add("a record without a payload", 2106, t.Plain());
    add("a draw without a payload", 2041, t.Plain());
    add("a texture whose pixels are short", 2106,
        t.Gl()
            .Enum(3553)
            .Int(0)
            .Int(6408)
            .Sizei(4096)
            .Sizei(4096)
            .Int(0)
            .Enum(6408)
            .Enum(5121)
            .Data(0x10, Bytes(4))
            .Int(4));
    return cases;
}

TEST(BadInput, RecordsThatContradictThemselvesAreBounded) {
    for (const SBadCase& one : BadRecords()) {
        for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
            const SRunResult run = RunTrace(one.trace, arguments);
            ExpectBounded(run, one.name);
        }
    }
}

TEST(BadInput, UnknownIdentifiersAreDroppedSilently) {
    CTraceBuilder trace = Es2Trace();
    for (int id : {0, 6, 999, 1000, 1035, 1099, 1106, 1200, 2000, 3000, 3146, 4000, 4081, 4240,
                   5001, 5142, 5247, 6000, 65535}) {
        trace.Add(static_cast<std::uint16_t>(id), trace.Gl().Uint(1));
    }
    trace.Add(2016, trace.Gl().Bitfield(1));
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.CallLines().size(), 6U) << run.out;
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"glClear"}).size(), 1U);
}

TEST(BadInput, LengthsAreCheckedAgainstTheRecord) {
    CTraceBuilder trace(11);
    trace.GetDisplay();
    CRecordBuilder record = trace.Gl().Enum(34962).Sizeiptr(4);
    record.Pointer(0x10).U32(0x10000000).Enum(35044);
    trace.Add(2013, record);
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.err.substr(0, 22), "An exception occurred\n");
    EXPECT_EQ(run.CallLines().size(), 1U) << "what was loaded is played: " << run.out;
}

TEST(BadInput, ShortWidthTablesAndOddFloatsEndTheLoad) {
    CTraceBuilder shortTable(11);
    shortTable.SetWidths(WidthTable(5, 4)).GetDisplay();
    const SRunResult tooShort = RunTrace(shortTable);
    EXPECT_TRUE(tooShort.Ok()) << tooShort.Ending();
    EXPECT_TRUE(tooShort.Printed("Exception: Undefined Es Type in record library\n"))
        << tooShort.out;
    EXPECT_EQ(tooShort.err, "Undefined Es Type in record library\n");
    EXPECT_TRUE(tooShort.Printed(message + "*** Error loading file ***\n"));

    WidthTable widths = StandardWidths();
    widths[22] = 8;
    CTraceBuilder odd(11);
    odd.SetWidths(widths);
    odd.Add(2112, odd.Gl().Int(0).Float(1));
    const SRunResult run = RunTrace(odd);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.err, "An exception occurred\n");
}

TEST(BadInput, WidthsOfEveryKindAreBounded) {
    for (int width : {0, 1, 2, 3, 8, 9, 100, 127, -128}) {
        WidthTable widths(33, static_cast<std::int8_t>(width));
        for (int count : {33, 0, 127, -1, -128}) {
            CTraceBuilder trace = RichTrace();
            trace.SetWidths(widths).SetWidthCount(static_cast<std::int8_t>(count));
            ExpectBounded(RunTrace(trace),
                          "width " + std::to_string(width) + " count " + std::to_string(count));
        }
    }
}

TEST(BadInput, HostileListsOfTheHeaderAreBounded) {
    Bytes bytes = RichTrace().Disable(1).OverrideText(2, "abc").Build();
    // The two counts stand right behind the width table.
    const std::size_t disabled = 8 + 4 + 4 + 1 + 1 + 4 + 1 + StandardWidths().size();
    for (const std::size_t at : {disabled, disabled + 8, disabled + 16}) {
        for (const std::uint32_t value : {0x7FFFFFFFU, 0xFFFFFFFFU, 0x01000000U}) {
            Bytes hostile = bytes;
            for (unsigned i = 0; i < 4; ++i) {
                hostile[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
            }
            ExpectBounded(RunBytes(hostile), "list word at " + std::to_string(at));
        }
    }
}

TEST(BadInput, RecordsAboveTheBlockKeepWhatCameBefore) {
    const CTempFolder folder;
    const std::string path = folder.File("large.kstl");
    CTraceBuilder head(11);
    head.GetDisplay();
    const std::uint32_t size = 21U << 20;
    CRecordBuilder record = head.Gl().Enum(34962).Sizeiptr(size).Pointer(0x10).U32(size);
    head.AddSized(static_cast<std::uint32_t>(record.Content().size()) + size + 4, 2013,
                  record.Content());
    ASSERT_TRUE(head.Write(path));
    const off_t length = static_cast<off_t>(head.Build().size()) + size + 4;
    ASSERT_EQ(truncate(path.c_str(), length), 0);
    for (const Lines& arguments : {Lines{path}, Lines{path, "--noMemory"}}) {
        const SRunResult run = RunProgram(arguments);
        ExpectBounded(run, "a record above the block");
        EXPECT_GE(run.CallLines().size(), 1U) << run.out;
    }
}

TEST(BadInput, SparseFilesOfTwoGigabytesAndMoreAreBounded) {
    const CTempFolder folder;
    for (const off_t length : {off_t{0x7FFFFFFF}, off_t{0x80000000}, off_t{0x180000000}}) {
        const std::string path = folder.File("sparse.kstl");
        ASSERT_TRUE(CTraceBuilder(11).GetDisplay().Write(path));
        ASSERT_EQ(truncate(path.c_str(), length), 0);
        SRunOptions options;
        options.timeoutSeconds = 60;
        ExpectBounded(RunProgram({path, "--noMemory"}, options), std::to_string(length));
    }
}

TEST(BadInput, WhatIsNoTraceFileIsBounded) {
    const CTempFolder folder;
    const std::string empty = folder.File("empty");
    std::ofstream(empty).close();
    const std::string locked = folder.File("locked");
    std::ofstream(locked) << "x";
    chmod(locked.c_str(), 0);
    for (const std::string& path :
         {empty, locked, folder.Path(), std::string("/dev/null"), std::string("")}) {
        for (const Lines& arguments : {Lines{path}, Lines{path, "--noMemory"}}) {
            const SRunResult run = RunProgram(arguments);
            EXPECT_TRUE(run.Ok()) << path << ": " << run.Ending();
            EXPECT_TRUE(run.calls.empty());
        }
    }
}

TEST(BadInput, OldVersionsEndWithinTheFile) {
    for (std::uint32_t version : {7U, 8U, 9U, 10U, 11U, 12U, 13U, 14U, 1000U}) {
        for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
            CTraceBuilder trace = RichTrace(version);
            const SRunResult run = RunTrace(trace, arguments);
            EXPECT_TRUE(run.Ok()) << version << ": " << run.Ending();
            const std::size_t all = trace.CallCount();
            const std::size_t lines = run.CallLines().size();
            // Without a footer the seek behind the last record ends the streaming one call early.
            const bool early = version < 12 && !arguments.empty();
            EXPECT_EQ(lines, early ? all - 1 : all) << version << "\n" << run.out;
            EXPECT_EQ(run.Printed("Exception drawing call"), early) << version;
        }
    }
}

}  // namespace
}  // namespace kestrail
