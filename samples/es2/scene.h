// A small animated ES2 scene: a lit cube seen directly and through a texture that it is rendered
// to, tiles of several texture formats, translucent client-array shapes, a stencilled star.
#pragma once

#include "samples/es2/calls.h"

namespace kestrail::samples {

struct SSceneSize {
    int width;
    int height;
    int frames;
};

/// Draws the whole scene, from start-up to tear-down. False if `gl` couldn't be opened.
bool DrawScene(IEs2Calls& gl, const SSceneSize& size);

}  // namespace kestrail::samples
