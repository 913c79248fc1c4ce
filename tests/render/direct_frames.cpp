#include "tests/render/direct_frames.h"

#include <GLES2/gl2.h>

#include "samples/common/direct_back_end.h"

namespace kestrail {

Pictures DrawDirectly(SceneDrawer* draw, const samples::SSceneSize& size) {
    Pictures frames;
    samples::CDirectBackEnd backEnd([&] {
        const auto getError = reinterpret_cast<decltype(&glGetError)>(backEnd.Find("glGetError"));
        const auto readPixels =
            reinterpret_cast<decltype(&glReadPixels)>(backEnd.Find("glReadPixels"));
        SPicture& frame = frames[static_cast<unsigned>(frames.size()) + 1];
        frame.width = static_cast<std::uint32_t>(size.width);
        frame.height = static_cast<std::uint32_t>(size.height);
        frame.pixels.resize(std::size_t{frame.width} * frame.height * 4);
        EXPECT_EQ(getError(), static_cast<GLenum>(GL_NO_ERROR));
        readPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE, frame.pixels.data());
    });
    if (!draw(backEnd, size)) ADD_FAILURE() << "no EGL surface to draw on";
    EXPECT_EQ(frames.size(), static_cast<std::size_t>(size.frames));
    return frames;
}

}  // namespace kestrail
