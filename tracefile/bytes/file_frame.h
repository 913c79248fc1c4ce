// What stands around the records of a trace file, in the version that is written.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace kestrail {

/// Widths of the type tags in files of the written version; negative for signed types.
inline constexpr std::array<std::int8_t, 33> kWrittenWidths = {
    4,  -4, 4, 4, 4, 4, 4, 4,  4,  4,  4,  4, 4,  1,  4,  -1, -2,
    -4, -4, 1, 2, 4, 4, 4, -4, -4, -4, -4, 0, -4, -4, -8, -8};

/// The header up to the lists of edits: version 14, with the usual widths of each type.
std::vector<std::uint8_t> TraceFileStart(bool dataFlag, bool secondFlag);
/// The whole header of a file with data and without edits.
std::vector<std::uint8_t> TraceFileHeader();
/// The end of a file whose block of state begins at that offset; without one at 0.
std::vector<std::uint8_t> TraceFileFooter(std::uint64_t stateOffset = 0);

}  // namespace kestrail
