// Cuts a stretch of frames out of a trace: a trace of its own, which begins with a block of the
// calls that the stretch stands on. Records are taken over as they are.
#pragma once

#include <cstdint>
#include <string>

#include "slicing/slicer.h"

namespace kestrail {

struct STrim {
    std::string trace;
    std::string output;  ///< is written over
    /// Of the trace, from 1, both included.
    std::uint32_t firstFrame = 1;
    std::uint32_t lastFrame = 1;
    EUnused unused = EUnused::kLeftOut;
};

struct STrimmed {
    std::uint32_t stateCalls = 0;  ///< in the block that the trace begins with
    std::uint32_t calls = 0;       ///< of the frames
    std::uint32_t unused = 0;      ///< objects that none of the frames uses, left out
    std::uint64_t bytes = 0;
    bool damaged = false;            ///< the trace ends in the middle of a record
    std::uint32_t callsInTrace = 0;  ///< up to where it ends
};

/// Why a trace couldn't be cut.
struct STrimFailure {
    enum class EKind { kTrace, kFrames, kOutput };
    EKind kind;
    std::string text;
};

/// In the output the block is frame 1, unless there is none since the stretch begins with the
/// trace; its frames follow. Only traces whose version has such a block, 12 and later, can be cut
/// from elsewhere than their beginning. Throws STrimFailure.
STrimmed Trim(const STrim& wanted);

}  // namespace kestrail
