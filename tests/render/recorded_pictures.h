// The pictures that a recorder left in a trace. They are taken from the file by hand, so that a
// fault of the reader can't make the player and its measure wrong in the same way.
#pragma once

#include "tests/render/player_run.h"

namespace kestrail {

/// The recordings that are there, by name without extension, sorted.
std::vector<std::string> TraceNames();
std::string TracePath(const std::string& name);

/// A recording's name as the name of a test.
std::string TraceTestName(const testing::TestParamInfo<std::string>& tested);

/// By number of the swap, from 1 on; swaps without a picture are left out. Throws
/// std::runtime_error for a file that isn't of version 14 with 4-byte values.
Pictures RecordedPictures(const std::string& trace);

}  // namespace kestrail
