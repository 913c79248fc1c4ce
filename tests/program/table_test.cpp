#include <gtest/gtest.h>

#include <algorithm>

#include "tests/program/table_call.h"
#include "tests/support/call_notation.h"
#include "tests/support/program_run.h"

// Walks every entry point: the record of each is played, and the host must have seen every value in
// its place. A wrong row, swapped parameters or the wrong table of names show as another value.

namespace kestrail {
namespace {

using Lines = std::vector<std::string>;

class CTable : public ::testing::TestWithParam<const SFamilyRows*> {};

TEST_P(CTable, EveryCallReachesTheHostByItsPrototype) {
    const SFamilyRows& rows = *GetParam();
    const SOpening opening = Open(rows);
    const std::size_t opened = RunTrace(opening.trace).calls.size();
    for (const std::string& entry : rows.entries) {
        const Played played = rows.HowPlayed(entry);
        if (played == Played::ByHand) continue;
        const STableCall call = MakeTableCall(opening, rows, entry);
        SCOPED_TRACE(call.line);
        CTraceBuilder trace = opening.trace;
        AddCall(trace, call.line);
        const SRunResult run = RunTrace(trace);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(run.CallLines().size(), trace.CallCount());
        EXPECT_EQ(run.Messages(), Lines{});
        ASSERT_GE(run.calls.size(), opened);
        Lines seen(run.calls.begin() + static_cast<std::ptrdiff_t>(opened), run.calls.end());
        Lines expected;
        if (played == Played::Checked) {
            expected = {rows.api == 1 ? "es1.glGetError() = 0" : "glGetError() = 0"};
        }
        if (played == Played::Yes) {
            // The host is asked for errors as well, and logs its answers behind a call.
            expected = {call.expected};
            const std::string own = rows.prefix + entry + "(";
            std::erase_if(seen, [&](const std::string& line) { return line.rfind(own, 0) != 0; });
            for (std::string& line : seen) line.resize(std::min(line.size(), expected[0].size()));
        }
        EXPECT_EQ(seen, expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Es1, CTable, ::testing::Values(&Es1Rows()));
INSTANTIATE_TEST_SUITE_P(Es2, CTable, ::testing::Values(&Es2Rows()));
INSTANTIATE_TEST_SUITE_P(Es3, CTable, ::testing::Values(&Es3Rows()));
INSTANTIATE_TEST_SUITE_P(Ext, CTable, ::testing::Values(&ExtRows()));
INSTANTIATE_TEST_SUITE_P(Multisample, CTable, ::testing::Values(&MultisampleRows()));

}  // namespace
}  // namespace kestrail
