// Renders frames of a trace one by one, each as it was when it was recorded: what it stands on is
// played in front of it, and nothing else.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "slicing/slicer.h"
#include "tracefile/document/frame_store.h"

namespace kestrail {

/// What a window holds: rows of R, G, B, A bytes from the bottom on, tightly packed.
struct SPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels;
};

/// A frame without its picture has no pixels: it ends in no swap, or its window can't be read.
struct SRenderedFrame {
    std::uint32_t frame = 0;
    SPicture picture;
    /// Calls that failed here, by number.
    std::vector<std::uint32_t> failed;
};

class CFrameRenderer {
public:
    using Take = std::function<void(const SRenderedFrame&)>;

    /// `diagnostics` is told what playing calls tells. The trace stays as it is.
    CFrameRenderer(CFrameStore& trace, CSlicer& slicer, Diagnostics& diagnostics)
        : m_trace(trace), m_slicer(slicer), m_diagnostics(diagnostics) {}

    /// Renders frames, 1-based and ascending, on a driver that begins with nothing, and hands them
    /// to `take` one after the other. Frames that there aren't are left out. Throws
    /// CHostLibException without a driver.
    void Render(const std::vector<std::uint32_t>& frames, const Take& take);

private:
    CFrameStore& m_trace;
    CSlicer& m_slicer;
    Diagnostics& m_diagnostics;
};

/// The picture that a frame has in the trace; without pixels if it has none.
SPicture PictureInTrace(CFrameStore& trace, std::uint32_t frame);

}  // namespace kestrail
