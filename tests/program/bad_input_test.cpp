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
    add("a texture whose pixels are short", 2106, t.Image(4096, 4096, 6408, Bytes(4)));
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

struct SBadCalls {
    std::vector<SBadCase> cases;

    void Add(const char* name, std::uint16_t id, const CRecordBuilder& record) {
        CTraceBuilder trace = Es2Trace();
        // Client arrays of ES1, so that draws look for their bytes.
        for (const std::uint32_t array : {32884U, 32886U, 32888U}) {
            trace.Add(3039, trace.Gl().Enum(array));
        }
        trace.Add(3143, trace.Gl().Int(3).Enum(5126).Sizei(0).Pointer(0x30));
        trace.Add(3022, trace.Gl().Int(4).Enum(5121).Sizei(0).Pointer(0x10));
        trace.Add(3126, trace.Gl().Int(2).Enum(5126).Sizei(0).Pointer(0x40));
        trace.Add(id, record);
        trace.Add(2016, trace.Gl().Bitfield(1));
        cases.push_back({name, trace});
    }
};

constexpr std::int64_t most = 0x7FFFFFFF;

/// A count of names with one of them.
CRecordBuilder OneName(std::int64_t count) {
    return CTraceBuilder().Gl().Sizei(count).Array(tag::Uint, 0x10, {7});
}

void AddEs1Cases(SBadCalls& bad) {
    const CTraceBuilder t;
    bad.Add("buffers deleted one by one", 3028, OneName(most));
    bad.Add("textures deleted", 3029, OneName(most));
    bad.Add("buffers made", 3053, OneName(2));
    bad.Add("textures without an array", 3054, t.Gl().Sizei(2).Array(tag::Uint, 0, {}));
    bad.Add("no equation", 3016, t.Gl().Enum(12288).RealItem(tag::Float, 0, {}));
    bad.Add("no fixed equation", 3017, t.Gl().Enum(12288).Item(tag::Fixed, 0, {}));
    bad.Add("a fog colour of one", 3043, t.Gl().Enum(2918).Reals(tag::Float, 0x10, {1}));
    bad.Add("no matrix", 3086, t.Gl().RealItem(tag::Float, 0, {}));
    const auto pixels = [&](std::int64_t size) {
        return t.Gl().Int(0).Int(0).Sizei(size).Sizei(size).Enum(6408).Enum(5121);
    };
    bad.Add("pixels read into less", 3114, pixels(4).Data(0x10, Bytes(63)));
    bad.Add("pixels read into nothing", 3114, pixels(4).Data(0));
    bad.Add("pixels beyond any size", 3114, pixels(most).Data(0x10, Bytes(4)));
    const CRecordBuilder image = t.Gl().Enum(3553).Int(0).Int(0).Int(0).Sizei(4).Sizei(4);
    bad.Add("a part of an image", 3140,
            CRecordBuilder(image).Enum(6408).Enum(5121).Data(0x10, Bytes(63)));
    bad.Add("no part of an image", 3140, CRecordBuilder(image).Enum(6408).Enum(5121).Data(0));
    const auto draw = [&](std::int64_t first, std::int64_t count) {
        return t.Gl().Enum(4).Int(first).Sizei(count);
    };
    bad.Add("vertices behind the bytes", 3036, draw(0, 3).ClientArray(2, 0x10, Bytes(35)));
    bad.Add("a first vertex behind them", 3036, draw(most, most).ClientArray(2, 0x10, Bytes(36)));
    bad.Add("an array without bytes", 3036, draw(0, 1).ClientArray(2, 0x10, {}));
    bad.Add("an array of null", 3036, draw(0, 1).ClientArray(2, 0, {}));
    const auto elements = [&](std::int64_t count, const Bytes& indices) {
        return t.Gl().Enum(4).Sizei(count).Enum(5125).Data(0x70, indices).Pointer(0x70);
    };
    bad.Add("an index behind the bytes", 3037,
            elements(1, {255, 255, 255, 255}).ClientArray(2, 0x10, Bytes(36)));
    bad.Add("indices fewer than drawn", 3037, elements(most, Bytes(4)));
    bad.Add("no indices", 3037, t.Gl().Enum(4).Sizei(3).Enum(5121).Data(0).Pointer(0));
}

void AddEs3Cases(SBadCalls& bad) {
    const CTraceBuilder t;
    const CRecordBuilder range = t.Gl().Enum(4).Uint(0).Uint(9);
    bad.Add("range indices fewer than drawn", 5144,
            CRecordBuilder(range).Sizei(most).Enum(5123).Data(0x70, Bytes(4)));
    bad.Add("no range indices", 5144, CRecordBuilder(range).Sizei(3).Enum(5123).Data(0));
    bad.Add("instanced indices fewer than drawn", 5212,
            t.Gl().Enum(4).Sizei(most).Enum(5125).Sizei(2).Data(0x70, Bytes(4)).Pointer(0x70));
    bad.Add("three-dimensional pixels", 5145,
            t.Gl()
                .Enum(32879)
                .Int(0)
                .Int(6408)
                .Sizei(9)
                .Sizei(9)
                .Sizei(9)
                .Int(0)
                .Enum(6408)
                .Enum(5121)
                .Data(0x10, Bytes(4)));
    bad.Add("draw buffers", 5159, t.Gl().Sizei(most).Array(tag::Enum, 0x10, {1029}));
    bad.Add("a matrix of two by three", 5160,
            t.Gl().Int(-1).Sizei(most).Boolean(false).Reals(tag::Float, 0x10, {1, 2, 3, 4, 5}));
    bad.Add("vertex arrays made", 5173, OneName(most));
    bad.Add("vertex arrays deleted", 5172, OneName(most));
    bad.Add("samplers deleted", 5223, OneName(2));
    bad.Add("an integer attribute", 5187, t.Gl().Uint(0).Array(tag::Int, 0x10, {1, 2, 3}));
    bad.Add("no integer attribute", 5187, t.Gl().Uint(0).Array(tag::Int, 0, {}));
    bad.Add("a clear colour of three", 5201,
            t.Gl().Enum(0x1800).Int(0).Reals(tag::Float, 0x10, {1, 2, 3}));
    bad.Add("no clear colour", 5199, t.Gl().Enum(0x1800).Int(0).Array(tag::Int, 0, {}));
    bad.Add("a program without a record", 5210, t.Gl().Uint(77).Uint(0).Uint(0));
    bad.Add("a program's binary", 5240, t.Gl().Uint(7).Enum(1).Data(0x10, Bytes(4)).Sizei(most));
}

void AddExtCases(SBadCalls& bad) {
    const CTraceBuilder t;
    const auto extNames = [&](std::int64_t count) {
        return t.Ext(0, 1).Sizei(count).Array(tag::Uint, 0x10, {7});
    };
    for (const std::uint16_t id : {std::uint16_t{4008}, std::uint16_t{4009}, std::uint16_t{4017},
                                   std::uint16_t{4018}, std::uint16_t{4023}, std::uint16_t{4024}}) {
        bad.Add("extension names", id, extNames(most));
        bad.Add("more extension names than a fixed array holds", id, extNames(201));
    }
    bad.Add("attachments", 4001,
            t.Ext(0, 2).Enum(36160).Sizei(most).Array(tag::Enum, 0x10, {36064}));
    bad.Add("an attachment's parameter", 4028,
            t.Ext(0, 1).Enum(36160).Enum(36064).Enum(36048).Array(tag::Int, 0, {}));
}

/// Each asks the host to read or write more than its record holds.
std::vector<SBadCase> ShortRecords() {
    SBadCalls bad;
    AddEs1Cases(bad);
    AddEs3Cases(bad);
    AddExtCases(bad);
    return bad.cases;
}

TEST(BadInput, CallsThatReachBehindTheirRecordFailAndPlaybackGoesOn) {
    for (const SBadCase& one : ShortRecords()) {
        for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
            const SRunResult run = RunTrace(one.trace, arguments);
            ExpectBounded(run, one.name);
            EXPECT_TRUE(run.Printed(message + "Error call:")) << one.name << "\n" << run.out;
            EXPECT_EQ(run.CallsOf({"glClear"}).size(), 1U) << one.name;
        }
    }
}

TEST(BadInput, ADrawWithoutArraysBehindOneThatIsGoneIsBounded) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(3039, trace.Gl().Enum(32884));
    trace.Add(3143, trace.Gl().Int(3).Enum(5126).Sizei(0).Pointer(0x30));
    trace.Add(2044, trace.Gl().Uint(0));
    trace.Add(2141, trace.Gl().Uint(0).Int(3).Enum(5126).Boolean(false).Sizei(0).Pointer(0x30));
    const CRecordBuilder draw = trace.Gl().Enum(4).Int(0).Sizei(3);
    trace.Add(3036, CRecordBuilder(draw).ClientArray(2, 0x10, Bytes(36, 0x11)));
    trace.Add(2041, CRecordBuilder(draw).ClientArray(0, 0x10, Bytes(36, 0x11)));
    // While streaming, the bytes of the draws above are no longer there.
    trace.Add(3036, draw);
    trace.Add(2041, draw);
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(trace, arguments);
        ExpectBounded(run, "a draw without arrays");
        EXPECT_EQ(run.CallLines().size(), trace.CallCount()) << run.out;
        for (const std::string& call : run.CallsOf({"es1.glDrawArrays", "glDrawArrays"})) {
            const std::size_t start = call.find('<');
            if (start == std::string::npos) continue;
            EXPECT_EQ(call.find_first_not_of('1', start + 1), call.find(':'))
                << "the host read memory that is no array's: " << call;
        }
    }
}

TEST(BadInput, CountsBelowZeroReachTheHostWithNothingBehindThem) {
    CTraceBuilder trace = Es2Trace();
    for (const std::uint16_t id : {std::uint16_t{3028}, std::uint16_t{3029}, std::uint16_t{3053},
                                   std::uint16_t{5172}, std::uint16_t{5222}}) {
        trace.Add(id, trace.Gl().Sizei(-5).Array(tag::Uint, 0x10, {7}));
    }
    for (const std::uint16_t id : {std::uint16_t{4008}, std::uint16_t{4017}, std::uint16_t{4024}}) {
        trace.Add(id, trace.Ext(0, 1).Sizei(-5).Array(tag::Uint, 0x10, {7}));
    }
    trace.Add(3036, trace.Gl().Enum(4).Int(-5).Sizei(-5));
    trace.Add(3037, trace.Gl().Enum(4).Sizei(-5).Enum(5121).Data(0x10, Bytes(4)).Pointer(0x10));
    trace.Add(5144, trace.Gl().Enum(4).Uint(0).Uint(9).Sizei(-5).Enum(5123).Data(0));
    trace.Add(2016, trace.Gl().Bitfield(1));
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.CallsOf({"glClear"}).size(), 1U) << run.out;
}

TEST(BadInput, ExtensionCallsOfAnyApiWithAnyValuesAreBounded) {
    // Zeros; all ones; small counts in front of pointers without anything behind them.
    const Bytes patterns[] = {
        Bytes(96, 0), Bytes(96, 0xFF), [] {
            Bytes mixed;
            for (unsigned i = 0; i < 24; ++i) {
                mixed.insert(mixed.end(),
                             {i % 2 == 0 ? std::uint8_t{2} : std::uint8_t{0x70}, 0, 0, 0});
            }
            return mixed;
        }()};
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
