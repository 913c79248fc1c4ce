// What `kestrail frames --why` tells.
#pragma once

#include <cstdint>
#include <cstdio>

#include "tracefile/document/frame_store.h"

namespace kestrail {

/// Prints which earlier frames a frame stands on: by how many calls, and a line for each image or
/// buffer that they draw into, with the last call that stands on that. With `json`, an object a
/// line for each frame.
void PrintReasons(CFrameStore& trace, std::uint32_t frame, bool json, std::FILE* out);

}  // namespace kestrail
