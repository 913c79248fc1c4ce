// Small animated scenes, one for each API. The same scene is drawn or recorded, depending on the
// back end that it is given.
#pragma once

#include "samples/common/back_end.h"

namespace kestrail::samples {

struct SSceneSize {
    int width;
    int height;
    int frames;
};

/// Each draws a whole scene, from start-up to tear-down. False if the back end couldn't be opened.
bool DrawEs1Scene(IBackEnd& backEnd, const SSceneSize& size);
bool DrawEs2Scene(IBackEnd& backEnd, const SSceneSize& size);
bool DrawEs3Scene(IBackEnd& backEnd, const SSceneSize& size);

}  // namespace kestrail::samples
