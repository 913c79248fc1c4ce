// What became of a call in its executor's case.
#pragma once

#include <cstdint>

namespace kestrail {

enum class EPlayed : std::uint8_t {
    kPlayed,   ///< done; the host's error is read next, if the player wants it
    kLeftOut,  ///< deliberately not played, or played without a look at the host's error
    kFailed,
    kMissing,    ///< an extension call whose entry the host lacks
    kElsewhere,  ///< an extension call that this API does not play
};

}  // namespace kestrail
