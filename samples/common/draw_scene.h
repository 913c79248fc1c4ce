// The course of a scene.
#pragma once

#include "samples/scenes.h"

namespace kestrail::samples {

/// Draws a scene's frames through the calls of its API. A scene that has something to tear down
/// ends EGL too. False if the back end couldn't be opened.
template <typename Calls, typename Scene>
bool DrawScene(IBackEnd& backEnd, const SSceneSize& size) {
    Calls gl(backEnd);
    if (!gl.Open(size.width, size.height)) return false;
    Scene scene(gl, size);
    scene.SetUp();
    for (int frame = 0; frame < size.frames; ++frame) scene.DrawFrame(frame);
    if constexpr (requires { scene.TearDown(); }) {
        scene.TearDown();
        gl.Close();
    }
    return true;
}

}  // namespace kestrail::samples
