#include <utility>
#include <vector>

#include "tests/program/program_test.h"
#include "tracefile/document/trace_document.h"

// Files that are built to take as much memory as a file of their size can.

namespace kestrail {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

struct SHostileFile {
    const char* name;
    Bytes bytes;
    std::size_t perByte = kMemoryPerByte;
};

/// Records in turn until the file has that size. Those without a payload have their values read
/// from what follows them.
Bytes Filled(std::size_t size, const std::vector<std::pair<std::uint16_t, CRecordBuilder>>& turn,
             CTraceBuilder trace = Es2Trace()) {
    std::size_t taken = trace.Build().size();
    while (taken < size) {
        for (const auto& [id, record] : turn) {
            trace.Add(id, record);
            taken += 6 + record.Content().size();
        }
    }
    return trace.Build();
}

/// Calls that `add` makes, each time with another name, until the file has that size.
template <typename Add>
Bytes FilledByNames(std::size_t size, Add add, CTraceBuilder trace = Es2Trace()) {
    constexpr std::uint32_t kAtOnce = 200;
    const std::size_t before = trace.Build().size();
    std::uint32_t name = 0;
    for (; name < kAtOnce; ++name) add(trace, name + 1);
    const std::size_t turns = size * kAtOnce / (trace.Build().size() - before);
    for (; name < turns; ++name) add(trace, name + 1);
    return trace.Build();
}

Bytes FilledByEdits(std::size_t size, bool texts) {
    CTraceBuilder trace = Es2Trace();
    for (std::uint32_t number = 1; number * (texts ? std::size_t{8} : std::size_t{4}) < size;
         ++number) {
        texts ? trace.OverrideText(number, "") : trace.Disable(number);
    }
    return trace.Build();
}

/// Strings and matrices that claim as many items as the record has bytes.
Bytes FilledByClaims(std::size_t size) {
    constexpr std::uint32_t kClaim = 4096;
    const CTraceBuilder t;
    const auto claiming = [&](CRecordBuilder record) {
        record.ArrayHead(1, kClaim);
        // The strings end where the record does; the array behind them is the next record's head.
        return record.Raw(Bytes(kClaim + 4 - record.Content().size()));
    };
    return Filled(size, {{2099, claiming(t.Gl().Uint(1).Sizei(1))},
                         {2130, claiming(t.Gl().Int(1).Sizei(1).Boolean(false))}});
}

/// Calls of a few bytes that set as much as they can in the models of the state.
std::vector<SHostileFile> FilesOfState() {
    using Trace = CTraceBuilder;
    const auto texture = [](Trace& t, std::uint32_t name) {
        t.Add(2007, t.Gl().Enum(3553).Uint(name));
    };
    const auto buffer = [](Trace& t, std::uint32_t name) {
        t.Add(2004, t.Gl().Enum(34962).Uint(name));
    };
    const auto putByte = [](Trace& t, std::int64_t offset) {
        t.Add(2014, t.Gl().Enum(34962).Intptr(offset).Sizeiptr(1).Data(1, Bytes(1)));
    };
    Trace bufferBound = Es2Trace();
    buffer(bufferBound, 1);
    bufferBound.Add(2013,
                    bufferBound.Gl().Enum(34962).Sizeiptr(64 * kMiB).Data(0, Bytes()).Enum(35044));
    Trace imageBound = Es2Trace();
    texture(imageBound, 1);
    imageBound.Add(2106, imageBound.Image(4096, 16384, 6409, {}, 1));
    Trace programUsed = Es2Trace();
    programUsed.Add(2026, programUsed.Gl().Uint(1)).Add(2131, programUsed.Gl().Uint(1));

    std::vector<SHostileFile> files;
    const auto add = [&](const char* name, auto fill, const Trace& start = Es2Trace()) {
        files.push_back({name, FilledByNames(kMiB, fill, start)});
    };
    add("programs", [](Trace& t, std::uint32_t n) { t.Add(2026, t.Gl().Uint(n)); });
    add("shaders", [](Trace& t, std::uint32_t n) { t.Add(2027, t.Gl().Uint(n).Enum(35633)); });
    add("textures", [&](Trace& t, std::uint32_t n) {
        texture(t, n);
        t.Add(2109, t.Gl().Enum(3553).Enum(10240).Int(9728));
    });
    add("buffers", [&](Trace& t, std::uint32_t n) {
        buffer(t, n);
        t.Add(2013, t.Gl().Enum(34962).Sizeiptr(4).Data(0, Bytes()).Enum(35044));
    });
    add("framebuffers", [](Trace& t, std::uint32_t n) {
        t.Add(2005, t.Gl().Enum(36160).Uint(n));
        t.Add(2048, t.Gl().Enum(36160).Enum(36079).Enum(3553).Uint(1).Int(0));
    });
    add("vertex arrays",
        [](Trace& t, std::uint32_t n) { t.Add(5171, t.Gl().Uint(n)).Add(2044, t.Gl().Uint(31)); });
    add("vertex arrays of ES1", [](Trace& t, std::uint32_t n) {
        t.Add(4007, t.Ext(0, 1).Uint(n)).Add(3039, t.Gl().Enum(32884));
    });
    add(
        "uniforms",
        [](Trace& t, std::uint32_t n) {
            t.Add(2077, t.Gl().Int(static_cast<std::int32_t>(n)).Uint(1).String(1, "u"));
        },
        programUsed);
    add("uniforms of a program each", [](Trace& t, std::uint32_t n) {
        t.Add(2026, t.Gl().Uint(n)).Add(2077, t.Gl().Int(1).Uint(n).String(1, "u"));
    });
    add(
        "attributes", [](Trace& t, std::uint32_t n) { t.Add(2133, t.Gl().Uint(n).Float(1)); },
        programUsed);
    add("bound attributes",
        [](Trace& t, std::uint32_t n) { t.Add(2003, t.Gl().Uint(n).Uint(1).String(1, "a")); });
    add("contexts", [](Trace& t, std::uint32_t n) { t.CreateContext(2, n); });
    add("surfaces", [](Trace& t, std::uint32_t n) { t.CreateWindowSurface(30, 30, n); });
    add("matrices", [](Trace& t, std::uint32_t n) {
        t.Add(3001, t.Gl().Enum(33984 + n % 32)).Add(3093, t.Gl().Enum(5890));
        t.Add(3113, t.Gl());
    });
    add(
        "bytes of a buffer", [&](Trace& t, std::uint32_t n) { putByte(t, n * std::int64_t{1500}); },
        bufferBound);
    add(
        "bytes of a buffer, in a frame each",
        [&](Trace& t, std::uint32_t n) {
            putByte(t, n * std::int64_t{1500});
            t.Add(3084, t.Gl().Fixed(n)).SwapBuffers();
        },
        bufferBound);
    add(
        "columns of an image",
        [](Trace& t, std::uint32_t n) {
            t.Add(2111, t.ImagePart(n % 4096, 0, 1, 16384, 6409, Bytes(65536)));
        },
        imageBound);
    // Something long stands beside what changes in every frame.
    Trace longLists = Es2Trace();
    Trace longNames = programUsed;
    Trace longDraws = Es2Trace();
    const std::vector<std::int64_t> list(4000, 0x3098);
    const std::vector<std::int64_t> draws(4000, 36064);
    for (std::uint32_t i = 1; i <= 7; ++i) {
        longLists.Add(1003, longLists.Egl()
                                .Context(i)
                                .Display(CTraceBuilder::display)
                                .Config(1)
                                .Context(0)
                                .Attributes(list)
                                .Attributes(list));
        longNames.Add(2077, longNames.Gl().Int(i).Uint(1).String(1, std::string(20'000, 'u')));
        longDraws.Add(2005, longDraws.Gl().Enum(36160).Uint(i));
        longDraws.Add(5159, longDraws.Gl().Sizei(4000).Array(tag::Enum, 1, draws));
    }
    add(
        "contexts beside long lists",
        [](Trace& t, std::uint32_t n) { t.CreateContext(2, 8 + n % 2).SwapBuffers(); }, longLists);
    add(
        "uniforms beside long names",
        [](Trace& t, std::uint32_t n) {
            t.Add(2077, t.Gl().Int(8).Uint(1).String(1, n % 2 == 0 ? "a" : "b")).SwapBuffers();
        },
        longNames);
    add(
        "framebuffers beside long lists",
        [](Trace& t, std::uint32_t n) {
            t.Add(2048, t.Gl().Enum(36160).Enum(36064).Enum(3553).Uint(n).Int(0)).SwapBuffers();
        },
        longDraws);
    return files;
}

std::vector<SHostileFile> HostileFiles() {
    // Versions before 9 have records that are read without a look at their size.
    const CTraceBuilder old = Es2Trace(8);
    const CRecordBuilder none = old.Plain();
    std::vector<SHostileFile> files = FilesOfState();
    files.push_back({"large calls", Filled(4 * kMiB, {{5149, none}}, old)});
    files.push_back({"usual calls", Filled(4 * kMiB, {{2043, none}})});
    files.push_back({"frames", Filled(4 * kMiB, {{1022, none}}, old)});
    files.push_back({"calls left out", FilledByEdits(4 * kMiB, false)});
    files.push_back({"texts", FilledByEdits(4 * kMiB, true)});
    files.push_back({"claims", FilledByClaims(4 * kMiB), 8});
    return files;
}

SRunResult Measured(const Bytes& bytes, const Lines& arguments) {
    SRunOptions options;
    options.host = "idle";
    options.memoryLimit = 0;
    options.measureMemory = true;
    options.timeoutSeconds = 60;
    return RunBytes(bytes, arguments, options);
}

TEST(Memory, AWholeFileTakesNoMoreThanAMultipleOfItsSize) {
    if (IsSanitized()) GTEST_SKIP() << "what the sanitizer takes would count as well";
    for (const SHostileFile& file : HostileFiles()) {
        const SRunResult run = Measured(file.bytes, {});
        EXPECT_TRUE(run.Ok()) << file.name << ": " << run.Ending();
        EXPECT_TRUE(run.Printed("Processing File... Done\n")) << file.name;
        const std::size_t most = file.bytes.size() * file.perByte + kMemoryBeside;
        EXPECT_GT(run.maxResidentKilobytes, 0) << file.name;
        EXPECT_LE(static_cast<std::size_t>(run.maxResidentKilobytes), most / 1024) << file.name;
    }
}

TEST(Memory, AStreamTakesTheSameHoweverLongItIs) {
    if (IsSanitized()) GTEST_SKIP() << "what the sanitizer takes would count as well";
    constexpr long kMost = 64L * 1024;
    const CTraceBuilder old = Es2Trace(8);
    const CRecordBuilder none = old.Plain();
    const CRecordBuilder data =
        old.Gl().Enum(34962).Sizeiptr(kMiB).Data(1, Bytes(kMiB)).Enum(35044);
    const SHostileFile files[] = {{"calls", Filled(4 * kMiB, {{5149, none}}, old)},
                                  {"frames", Filled(4 * kMiB, {{1022, none}}, old)},
                                  {"data", Filled(64 * kMiB, {{2013, data}})},
                                  {"claims", FilledByClaims(32 * kMiB)}};
    for (const SHostileFile& file : files) {
        const SRunResult run = Measured(file.bytes, {"--noMemory"});
        EXPECT_TRUE(run.Ok()) << file.name << ": " << run.Ending();
        EXPECT_GT(run.maxResidentKilobytes, 0) << file.name;
        EXPECT_LE(run.maxResidentKilobytes, kMost) << file.name;
    }
}

}  // namespace
}  // namespace kestrail
