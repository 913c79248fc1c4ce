// A libEGL.so that stands before the system's: it passes every call on, and keeps the picture of
// each frame just before its swap as frame-<n>.rgba in the folder that KESTRAIL_CAPTURE_DIR names.
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

#define FORWARD(result, name, parameters, arguments)                                       \
    extern "C" result EGLAPIENTRY name parameters {                                        \
        static auto const entry = reinterpret_cast<decltype(&(name))>(SystemEntry(#name)); \
        return entry arguments;                                                            \
    }

FORWARD(EGLBoolean, eglChooseConfig,
        (EGLDisplay dpy, const EGLint* attrib_list, EGLConfig* configs, EGLint config_size,
         EGLint* num_config),
        (dpy, attrib_list, configs, config_size, num_config))
FORWARD(EGLBoolean, eglCopyBuffers,
        (EGLDisplay dpy, EGLSurface surface, EGLNativePixmapType target), (dpy, surface, target))
FORWARD(EGLContext, eglCreateContext,
        (EGLDisplay dpy, EGLConfig config, EGLContext share_context, const EGLint* attrib_list),
        (dpy, config, share_context, attrib_list))
FORWARD(EGLSurface, eglCreatePbufferSurface,
        (EGLDisplay dpy, EGLConfig config, const EGLint* attrib_list), (dpy, config, attrib_list))
FORWARD(EGLSurface, eglCreatePixmapSurface,
        (EGLDisplay dpy, EGLConfig config, EGLNativePixmapType pixmap, const EGLint* attrib_list),
        (dpy, config, pixmap, attrib_list))
FORWARD(EGLSurface, eglCreateWindowSurface,
        (EGLDisplay dpy, EGLConfig config, EGLNativeWindowType win, const EGLint* attrib_list),
        (dpy, config, win, attrib_list))
FORWARD(EGLBoolean, eglDestroyContext, (EGLDisplay dpy, EGLContext ctx), (dpy, ctx))
FORWARD(EGLBoolean, eglDestroySurface, (EGLDisplay dpy, EGLSurface surface), (dpy, surface))
FORWARD(EGLBoolean, eglGetConfigAttrib,
        (EGLDisplay dpy, EGLConfig config, EGLint attribute, EGLint* value),
        (dpy, config, attribute, value))
FORWARD(EGLBoolean, eglGetConfigs,
        (EGLDisplay dpy, EGLConfig* configs, EGLint config_size, EGLint* num_config),
        (dpy, configs, config_size, num_config))
FORWARD(EGLDisplay, eglGetCurrentDisplay, (void), ())
FORWARD(EGLSurface, eglGetCurrentSurface, (EGLint readdraw), (readdraw))
FORWARD(EGLDisplay, eglGetDisplay, (EGLNativeDisplayType display_id), (display_id))
FORWARD(EGLint, eglGetError, (void), ())
FORWARD(EGLBoolean, eglInitialize, (EGLDisplay dpy, EGLint* major, EGLint* minor),
        (dpy, major, minor))
FORWARD(EGLBoolean, eglMakeCurrent,
        (EGLDisplay dpy, EGLSurface draw, EGLSurface read, EGLContext ctx), (dpy, draw, read, ctx))
FORWARD(EGLBoolean, eglQueryContext,
        (EGLDisplay dpy, EGLContext ctx, EGLint attribute, EGLint* value),
        (dpy, ctx, attribute, value))
FORWARD(const char*, eglQueryString, (EGLDisplay dpy, EGLint name), (dpy, name))
FORWARD(EGLBoolean, eglQuerySurface,
        (EGLDisplay dpy, EGLSurface surface, EGLint attribute, EGLint* value),
        (dpy, surface, attribute, value))
FORWARD(EGLBoolean, eglTerminate, (EGLDisplay dpy), (dpy))
FORWARD(EGLBoolean, eglWaitGL, (void), ())
FORWARD(EGLBoolean, eglWaitNative, (EGLint engine), (engine))
FORWARD(EGLBoolean, eglBindTexImage, (EGLDisplay dpy, EGLSurface surface, EGLint buffer),
        (dpy, surface, buffer))
FORWARD(EGLBoolean, eglReleaseTexImage, (EGLDisplay dpy, EGLSurface surface, EGLint buffer),
        (dpy, surface, buffer))
FORWARD(EGLBoolean, eglSurfaceAttrib,
        (EGLDisplay dpy, EGLSurface surface, EGLint attribute, EGLint value),
        (dpy, surface, attribute, value))
FORWARD(EGLBoolean, eglSwapInterval, (EGLDisplay dpy, EGLint interval), (dpy, interval))
FORWARD(EGLBoolean, eglBindAPI, (EGLenum api), (api))
FORWARD(EGLenum, eglQueryAPI, (void), ())
FORWARD(EGLSurface, eglCreatePbufferFromClientBuffer,
        (EGLDisplay dpy, EGLenum buftype, EGLClientBuffer buffer, EGLConfig config,
         const EGLint* attrib_list),
        (dpy, buftype, buffer, config, attrib_list))
FORWARD(EGLBoolean, eglReleaseThread, (void), ())
FORWARD(EGLBoolean, eglWaitClient, (void), ())
FORWARD(EGLContext, eglGetCurrentContext, (void), ())

#undef FORWARD

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
