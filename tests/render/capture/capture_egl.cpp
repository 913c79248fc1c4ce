// A libEGL.so that stands before the system's. It holds the swap alone: all other entries are found
// in the system's library, which it is linked with. The picture of each frame just before its swap
// is kept as frame-<n>.rgba in the folder that KESTRAIL_CAPTURE_DIR names.
// The file holds width and height as 32-bit numbers, then rows of RGBA bytes, the bottom row first.
#include <EGL/egl.h>
#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/render/capture/frame_reader.h"

namespace {

void* SystemEntry(const char* name) {
    static void* const library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    void* const entry = library == nullptr ? nullptr : dlsym(library, name);
    if (entry == nullptr) {
        std::fprintf(stderr, "capture: no %s in the system's EGL library\n", name);
        std::abort();
    }
    return entry;
}

void WriteFrame(unsigned number, std::uint32_t width, std::uint32_t height,
                const std::vector<std::uint8_t>& pixels) {
    const char* const folder = std::getenv("KESTRAIL_CAPTURE_DIR");
    if (folder == nullptr) return;
    const std::string path = std::string(folder) + "/frame-" + std::to_string(number) + ".rgba";
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return;
    const std::uint32_t size[] = {width, height};
    std::fwrite(size, sizeof size, 1, file);
    std::fwrite(pixels.data(), 1, pixels.size(), file);
    std::fclose(file);
}

}  // namespace

extern "C" EGLBoolean EGLAPIENTRY eglSwapBuffers(EGLDisplay dpy, EGLSurface surface) {
    static auto const swap =
        reinterpret_cast<decltype(&eglSwapBuffers)>(SystemEntry("eglSwapBuffers"));
    static unsigned number = 0;
    ++number;
    EGLint width = 0;
    EGLint height = 0;
    // Pixels are read from the current read surface, so that has to be the one being swapped.
    if (surface != EGL_NO_SURFACE && eglGetCurrentSurface(EGL_READ) == surface &&
        eglQuerySurface(dpy, surface, EGL_WIDTH, &width) == EGL_TRUE &&
        eglQuerySurface(dpy, surface, EGL_HEIGHT, &height) == EGL_TRUE) {
        WriteFrame(number, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                   kestrail::ReadBackBuffer(width, height));
    }
    return swap(dpy, surface);
}

extern "C" __eglMustCastToProperFunctionPointerType EGLAPIENTRY
eglGetProcAddress(const char* procname) {
    static auto const lookUp =
        reinterpret_cast<decltype(&eglGetProcAddress)>(SystemEntry("eglGetProcAddress"));
    if (std::string(procname) == "eglSwapBuffers") {
        return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(&eglSwapBuffers);
    }
    return lookUp(procname);
}
