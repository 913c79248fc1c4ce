// Runs the built player on a trace, on the display of this run, with the frames it swaps captured.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrail {

struct SPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels;  // RGBA, bottom row first
};

/// By number of the swap, from 1 on.
using Pictures = std::map<unsigned, SPicture>;

/// The lines that report a call that went wrong.
inline constexpr char complaint[] =
    "Error call:|Error Code|Error loading|Exception|No enought Data|dlopen failed|"
    "Playback Link Status|Aborting Playback|not available on this platform";

struct SPlayerRun {
    std::vector<std::string> lines;
    std::string captureFolder;

    /// Frame `number`, from 1 on; empty if it wasn't captured.
    SPicture Frame(unsigned number) const;
    /// The lines in which the pattern is found, but for those of calls, which may quote any text,
    /// and those in which `allowed` is found.
    std::vector<std::string> LinesWith(const std::string& pattern,
                                       const std::string& allowed = "") const;
};

/// Plays `trace`, which has to end well; an empty option is none. The frames go to this folder of
/// the tests' output, which is emptied first.
SPlayerRun RunPlayer(const std::string& trace, const std::vector<std::string>& options,
                     const std::string& folder);

/// How two pictures differ, in RGBA.
struct SDifference {
    bool sameSize = false;
    std::size_t pixels = 0;    // that differ at all
    unsigned largestStep = 0;  // in any channel

    bool None() const { return sameSize && pixels == 0; }
    /// No more than another processor, which rounds a few pixels differently, may make of it.
    bool WithinRounding(const SPicture& picture) const;
};

SDifference Compare(const SPicture& expected, const SPicture& actual);
std::ostream& operator<<(std::ostream& out, const SDifference& difference);

}  // namespace kestrail
