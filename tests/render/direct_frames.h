// The frames of a sample scene, drawn on the driver by the scene itself.
#pragma once

#include "samples/scenes.h"
#include "tests/render/player_run.h"

namespace kestrail {

using SceneDrawer = bool(samples::IBackEnd&, const samples::SSceneSize&);

/// Each frame as it is when it is swapped. A scene that cannot be drawn to its end fails the test.
Pictures DrawDirectly(SceneDrawer* draw, const samples::SSceneSize& size);

}  // namespace kestrail
