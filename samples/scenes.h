// Small animated scenes, one for each API and one for seeking. The same scene is drawn or recorded,
// depending on the back end that it is given.
#pragma once

#include "samples/common/back_end.h"

namespace kestrail::samples {

struct SSceneSize {
    int width;
    int height;
    int frames;
};

/// These draw a whole scene, from start-up to tear-down. False if the back end couldn't be opened.
bool DrawEs1Scene(IBackEnd& backEnd, const SSceneSize& size);
bool DrawEs2Scene(IBackEnd& backEnd, const SSceneSize& size);
bool DrawEs3Scene(IBackEnd& backEnd, const SSceneSize& size);
/// An ES2 scene each of whose frames can be drawn from what is known of its start alone, without
/// the pictures of those before. It tears nothing down: that would make one more frame, without a
/// swap.
bool DrawSeekScene(IBackEnd& backEnd, const SSceneSize& size);

}  // namespace kestrail::samples
