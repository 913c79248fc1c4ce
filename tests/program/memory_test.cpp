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

using Files = std::vector<SHostileFile>;
using Trace = CTraceBuilder;

template <typename Add>
void AddFile(Files& files, const char* name, Add add, const Trace& start = Es2Trace()) {
    files.push_back({name, FilledByNames(kMiB, add, start)});
}

Trace ProgramUsed() {
    Trace trace = Es2Trace();
    return trace.Add(2026, trace.Gl().Uint(1)).Add(2131, trace.Gl().Uint(1));
}

void BindTexture(Trace& t, std::uint32_t name) {
    t.Add(2007, t.Gl().Enum(3553).Uint(name));
}

void BindBuffer(Trace& t, std::uint32_t name) {
    t.Add(2004, t.Gl().Enum(34962).Uint(name));
}

/// Calls of a few bytes, each of which makes an object as large as it can in a model of the state.
void AddObjects(Files& files) {
    AddFile(files, "programs", [](Trace& t, std::uint32_t n) { t.Add(2026, t.Gl().Uint(n)); });
    AddFile(files, "shaders",
            [](Trace& t, std::uint32_t n) { t.Add(2027, t.Gl().Uint(n).Enum(35633)); });
    AddFile(files, "textures", [](Trace& t, std::uint32_t n) {
        BindTexture(t, n);
        t.Add(2109, t.Gl().Enum(3553).Enum(10240).Int(9728));
    });
    AddFile(files, "buffers", [](Trace& t, std::uint32_t n) {
        BindBuffer(t, n);
        t.Add(2013, t.Gl().Enum(34962).Sizeiptr(4).Data(0, Bytes()).Enum(35044));
    });
    AddFile(files, "framebuffers", [](Trace& t, std::uint32_t n) {
        t.Add(2005, t.Gl().Enum(36160).Uint(n));
        t.Add(2048, t.Gl().Enum(36160).Enum(36079).Enum(3553).Uint(1).Int(0));
    });
    AddFile(files, "vertex arrays", [](Trace& t, std::uint32_t n) {
        t.Add(5171, t.Gl().Uint(n)).Add(2044, t.Gl().Uint(31));
    });
    AddFile(files, "vertex arrays of ES1", [](Trace& t, std::uint32_t n) {
        t.Add(4007, t.Ext(0, 1).Uint(n)).Add(3039, t.Gl().Enum(32884));
    });
    AddFile(files, "contexts", [](Trace& t, std::uint32_t n) { t.CreateContext(2, n); });
    AddFile(files, "surfaces", [](Trace& t, std::uint32_t n) { t.CreateWindowSurface(30, 30, n); });
}

void AddValues(Files& files) {
    AddFile(
        files, "uniforms",
        [](Trace& t, std::uint32_t n) { t.Add(2077, t.Gl().Int(n).Uint(1).String(1, "u")); },
        ProgramUsed());
    AddFile(files, "uniforms of a program each", [](Trace& t, std::uint32_t n) {
        t.Add(2026, t.Gl().Uint(n)).Add(2077, t.Gl().Int(1).Uint(n).String(1, "u"));
    });
    AddFile(
        files, "attributes",
        [](Trace& t, std::uint32_t n) { t.Add(2133, t.Gl().Uint(n).Float(1)); }, ProgramUsed());
    AddFile(files, "bound attributes",
            [](Trace& t, std::uint32_t n) { t.Add(2003, t.Gl().Uint(n).Uint(1).String(1, "a")); });
    AddFile(files, "matrices", [](Trace& t, std::uint32_t n) {
        t.Add(3001, t.Gl().Enum(33984 + n % 32)).Add(3093, t.Gl().Enum(5890));
        t.Add(3113, t.Gl());
    });
}

/// Small parts of large contents.
void AddContents(Files& files) {
    Trace buffer = Es2Trace();
    BindBuffer(buffer, 1);
    buffer.Add(2013, buffer.Gl().Enum(34962).Sizeiptr(64 * kMiB).Data(0, Bytes()).Enum(35044));
    const auto putByte = [](Trace& t, std::uint32_t n) {
        const auto offset = n * std::int64_t{1500};
        t.Add(2014, t.Gl().Enum(34962).Intptr(offset).Sizeiptr(1).Data(1, Bytes(1)));
    };
    AddFile(files, "bytes of a buffer", putByte, buffer);
    AddFile(
        files, "bytes of a buffer, in a frame each",
        [&](Trace& t, std::uint32_t n) {
            putByte(t, n);
            t.Add(3084, t.Gl().Fixed(n)).SwapBuffers();
        },
        buffer);
    Trace image = Es2Trace();
    BindTexture(image, 1);
    image.Add(2106, image.Image(4096, 16384, 6409, {}, 1));
    AddFile(
        files, "columns of an image",
        [](Trace& t, std::uint32_t n) {
            t.Add(2111, t.ImagePart(n % 4096, 0, 1, 16384, 6409, Bytes(65536)));
        },
        image);
}

/// Something long stands beside what changes in every frame.
void AddLongNeighbours(Files& files) {
    Trace lists = Es2Trace();
    Trace names = ProgramUsed();
    Trace draws = Es2Trace();
    const std::vector<std::int64_t> list(4000, 0x3098);
    for (std::uint32_t i = 1; i <= 7; ++i) {
        CRecordBuilder context = lists.Egl().Context(i).Display(CTraceBuilder::display).Config(1);
        lists.Add(1003, context.Context(0).Attributes(list).Attributes(list));
        names.Add(2077, names.Gl().Int(i).Uint(1).String(1, std::string(20'000, 'u')));
        draws.Add(2005, draws.Gl().Enum(36160).Uint(i));
        draws.Add(5159, draws.Gl().Sizei(4000).Array(tag::Enum, 1, list));
    }
    AddFile(
        files, "contexts beside long lists",
        [](Trace& t, std::uint32_t n) { t.CreateContext(2, 8 + n % 2).SwapBuffers(); }, lists);
    AddFile(
        files, "uniforms beside long names",
        [](Trace& t, std::uint32_t n) {
            t.Add(2077, t.Gl().Int(8).Uint(1).String(1, n % 2 == 0 ? "a" : "b")).SwapBuffers();
        },
        names);
    AddFile(
        files, "framebuffers beside long lists",
        [](Trace& t, std::uint32_t n) {
            t.Add(2048, t.Gl().Enum(36160).Enum(36064).Enum(3553).Uint(n).Int(0)).SwapBuffers();
        },
        draws);
}

Files HostileFiles() {
    // Versions before 9 have records that are read without a look at their size.
    const CTraceBuilder old = Es2Trace(8);
    const CRecordBuilder none = old.Plain();
    Files files;
    AddObjects(files);
    AddValues(files);
    AddContents(files);
    AddLongNeighbours(files);
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
