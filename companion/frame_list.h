// Which frames of a trace are asked for, and who takes which of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrail {

using Frames = std::vector<std::uint32_t>;

/// "1,8,100-120,every:50" or "all", of so many frames; ascending, each once. Every 50th is 50, 100
/// and so on. Empty for what is no list of frames that there are.
Frames ParseFrames(const std::string& list, std::uint32_t count);

/// The part of that number, from 1, of frames that are cut into parts of about the same length.
/// Neighbours stay together: they stand on the same calls.
Frames PartOf(const Frames& frames, std::size_t part, std::size_t parts);

/// "I/N" with I from 1 to N.
bool ParseShard(const std::string& text, std::size_t& part, std::size_t& parts);

}  // namespace kestrail
