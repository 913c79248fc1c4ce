// Reads the back buffer of the current surface under any ES version without leaving a trace in the
// context's state.
#pragma once

#include <cstdint>
#include <vector>

namespace kestrail {

/// width x height RGBA pixels, bottom row first. GL entries are looked up with eglGetProcAddress.
std::vector<std::uint8_t> ReadBackBuffer(int width, int height);

}  // namespace kestrail
