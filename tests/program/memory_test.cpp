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

/// Every name is another one.
Bytes FilledByNames(std::size_t size, std::uint16_t id) {
    CTraceBuilder trace = Es2Trace();
    constexpr std::size_t kRecord = 14;
    for (std::uint32_t name = 1; name * kRecord < size; ++name)
        trace.Add(id, trace.Gl().Uint(name));
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

std::vector<SHostileFile> HostileFiles() {
    // Versions before 9 have records that are read without a look at their size.
    const CTraceBuilder old = Es2Trace(8);
    const CRecordBuilder none = old.Plain();
    std::vector<SHostileFile> files;
    files.push_back({"large calls", Filled(4 * kMiB, {{5149, none}}, old)});
    files.push_back({"usual calls", Filled(4 * kMiB, {{2043, none}})});
    files.push_back({"frames", Filled(4 * kMiB, {{1022, none}}, old)});
    files.push_back({"programs", FilledByNames(kMiB, 2026)});
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
