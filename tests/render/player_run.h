// Runs the built player on a trace, on the display of this run, with the frames it swaps captured.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrail {

struct SPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels;  // RGBA, bottom row first
};

struct SPlayerRun {
    bool exited = false;  // by itself, not by a signal
    int exitStatus = -1;
    std::vector<std::string> lines;
    std::string captureFolder;
};

/// Plays `trace`; the frames go to `captureFolder`, which is emptied first.
SPlayerRun RunPlayer(const std::string& trace, const std::vector<std::string>& options,
                     const std::string& captureFolder);

/// Frame `number` of a run, from 1 on; empty if it wasn't captured.
SPicture CapturedFrame(const SPlayerRun& run, unsigned number);

/// The lines that report a call that went wrong.
std::vector<std::string> Complaints(const SPlayerRun& run);

/// How two pictures differ, in RGBA.
struct SDifference {
    bool sameSize = false;
    std::size_t pixels = 0;           // that differ at all
    unsigned largestStep = 0;         // in any channel
    std::size_t alphaOnlyPixels = 0;  // of those, the ones whose colour agrees

    bool None() const { return sameSize && pixels == 0; }
    /// No more than another processor, which rounds a few pixels differently, may make of it.
    bool WithinRounding(const SPicture& picture) const;
};

SDifference Compare(const SPicture& expected, const SPicture& actual);

}  // namespace kestrail
