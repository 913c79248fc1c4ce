#include <algorithm>

#include "tests/program/program_test.h"
#include "tests/program/table_call.h"
#include "tests/support/call_notation.h"

// Walks every entry point: the record of each is played, and the host must have seen every value in
// its place. A wrong row, swapped parameters or the wrong table of names show as another value.

namespace kestrail {
namespace {

class CTable : public ::testing::TestWithParam<const SFamilyRows*> {};

TEST_P(CTable, NamesPublishedEntryPoints) {
    const SFamilyRows& rows = *GetParam();
    for (const std::string& entry : rows.entries) {
        EXPECT_NE(FindPrototype(rows.family, entry), nullptr) << entry;
    }
    for (const auto& [entry, played] : rows.played) {
        EXPECT_EQ(std::count(rows.entries.begin(), rows.entries.end(), entry), 1) << entry;
    }
}

TEST_P(CTable, EveryCallReachesTheHostByItsPrototype) {
    const SFamilyRows& rows = *GetParam();
    const SOpening opening = Open(rows);
    const SRunResult base = RunTrace(opening.trace);
    ASSERT_TRUE(base.Ok()) << base.Ending();
    for (std::size_t i = 0; i < rows.entries.size(); ++i) {
        const std::string& entry = rows.entries[i];
        const auto mark = rows.played.find(entry);
        const Played played = mark == rows.played.end() ? Played::Yes : mark->second;
        if (played == Played::ByHand) continue;
        const STableCall call = MakeTableCall(opening, rows, entry);
        CTraceBuilder trace = opening.trace;
        AddCall(trace, call.line);
        const SRunResult run = RunTrace(trace);
        EXPECT_TRUE(run.Ok()) << entry << ": " << run.Ending();
        EXPECT_EQ(run.CallLines().size(), trace.CallCount()) << entry;
        EXPECT_TRUE(run.Messages().empty())
            << entry << ": " << ::testing::PrintToString(run.Messages());
        ASSERT_GE(run.calls.size(), base.calls.size()) << entry;
        const Lines seen(run.calls.begin() + static_cast<std::ptrdiff_t>(base.calls.size()),
                         run.calls.end());
        const std::string check = rows.api == 1 ? "es1.glGetError() = 0" : "glGetError() = 0";
        if (played == Played::No) {
            EXPECT_EQ(seen, Lines{}) << entry;
        } else if (played == Played::Checked) {
            EXPECT_EQ(seen, Lines{check}) << entry;
        } else {
            Lines own;
            for (const std::string& line : seen) {
                if (line.rfind(rows.prefix + entry + "(", 0) == 0) {
                    own.push_back(line.substr(0, call.expected.size()));
                }
            }
            EXPECT_EQ(own, Lines{call.expected}) << ::testing::PrintToString(seen);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Es1, CTable, ::testing::Values(&Es1Rows()));
INSTANTIATE_TEST_SUITE_P(Es2, CTable, ::testing::Values(&Es2Rows()));
INSTANTIATE_TEST_SUITE_P(Es3, CTable, ::testing::Values(&Es3Rows()));
INSTANTIATE_TEST_SUITE_P(Ext, CTable, ::testing::Values(&ExtRows()));
INSTANTIATE_TEST_SUITE_P(Multisample, CTable, ::testing::Values(&MultisampleRows()));

}  // namespace
}  // namespace kestrail
