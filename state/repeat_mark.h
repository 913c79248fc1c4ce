// Which updates of a record may not be applied once more. The states of most frames are not kept
// but made again from the calls since a kept one; that must neither print anything twice nor make
// anew what a seek tells from older contents by where it stands.
#pragma once

#include <cstdint>

namespace kestrail {

/// How many such updates there were in this process.
inline std::uint64_t unrepeatableUpdates = 0;

}  // namespace kestrail
