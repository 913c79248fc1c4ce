// A recorded viewport fits the application's window; the live surface may have another size.
#pragma once

#include <cstdint>

#include "base/enumerants.h"
#include "exec/player_state.h"

namespace kestrail {

struct SViewport {
    std::int32_t x;
    std::int32_t y;
    std::int32_t width;
    std::int32_t height;
};

/// Converts as a saturating machine does; not a number gives 0.
std::int32_t ToPixel(double value);

// Kept: the size by live to recorded, the position by recorded to live; tools compare pictures.
SViewport CorrectedViewport(const SViewport& recorded, std::int32_t liveWidth,
                            std::int32_t liveHeight, std::int32_t recordedWidth,
                            std::int32_t recordedHeight);

/// Before a draw: when something moved the viewport or the framebuffer since the last one, fits the
/// viewport to the live surface, if that is what is drawn to and its size differs from the recorded
/// one. A surface whose recorded size is not known is left alone.
template <typename Host>
void CorrectViewport(SPlayerState& player, bool& viewportDirty, Host& host) {
    if (!viewportDirty) return;
    viewportDirty = false;
    std::int32_t framebuffer = 0;
    host.glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    std::int32_t liveWidth = -1, liveHeight = -1, recordedWidth = -1, recordedHeight = -1;
    EGLDisplay display = EGL_NO_DISPLAY;
    player.eglNames.SurfaceGeometry(liveWidth, liveHeight, recordedWidth, recordedHeight, display);
    if (static_cast<std::uint32_t>(framebuffer) != player.defaultFramebuffer) return;
    if (liveWidth == recordedWidth && liveHeight == recordedHeight) return;
    if (liveWidth == 0 || liveHeight == 0 || recordedWidth == 0 || recordedHeight == 0) return;
    std::int32_t box[4] = {};
    host.glGetIntegerv(GL_VIEWPORT, box);
    const SViewport fitted = CorrectedViewport({box[0], box[1], box[2], box[3]}, liveWidth,
                                               liveHeight, recordedWidth, recordedHeight);
    host.glViewport(fitted.x, fitted.y, fitted.width, fitted.height);
}

}  // namespace kestrail
