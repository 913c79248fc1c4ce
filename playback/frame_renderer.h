// Renders frames of a trace one by one, each as it was when it was recorded: what it stands on is
// played in front of it, and nothing else.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "pictures/picture.h"
#include "slicing/slicer.h"
#include "tracefile/document/frame_store.h"

namespace kestrail {

/// A frame without its picture has no pixels: it ends in no swap, or its window can't be read.
struct SRenderedFrame {
    std::uint32_t frame = 0;
    SPicture picture;
    /// Calls that failed since the frame before, by number.
    std::vector<std::uint32_t> failed;
};

/// Where is rendered: in windows, or in pbuffers of their sizes, without a window system.
enum class EScreen { kWindows, kNone };

class CFrameRenderer {
public:
    using Take = std::function<void(const SRenderedFrame&)>;

    /// `diagnostics` is told what playing calls tells. The trace stays as it is.
    CFrameRenderer(CFrameStore& trace, Diagnostics& diagnostics, EScreen screen)
        : m_trace(trace), m_diagnostics(diagnostics), m_screen(screen) {}

    // Both render frames, 1-based and ascending, on a driver that begins with nothing, and hand
    // them to `take` one after the other. Frames that there aren't are left out. Both throw
    // CHostLibException without a driver, and a text where it can't render.

    /// With what the frames stand on, and nothing else.
    void Render(CSlicer& slicer, const std::vector<std::uint32_t>& frames, const Take& take);
    /// With all that is in front of them, as it was recorded.
    void RenderInOrder(const std::vector<std::uint32_t>& frames, const Take& take);

private:
    CFrameStore& m_trace;
    Diagnostics& m_diagnostics;
    EScreen m_screen;
};

/// How many frames were shown: those that end in a swap, all but what may follow the last one.
std::uint32_t ShownFrames(CFrameStore& trace);

/// The picture that a frame has in the trace; without pixels if it has none.
SPicture PictureInTrace(CFrameStore& trace, std::uint32_t frame);

}  // namespace kestrail
