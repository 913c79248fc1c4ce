// A libEGL.so that stands before the system's. It holds the swap alone: all other entries are found
// in the system's library, which it is linked with. The picture of each frame just before its swap
// is kept as frame-<n>.rgba in the folder that KESTRAIL_CAPTURE_DIR names.
// The file holds width and height as 32-bit numbers, then rows of RGBA bytes, the bottom row first.
#include <EGL/egl.h>
#include <GLES3/gl3.h>
#include <dlfcn.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace {

template <typename Entry>
Entry SystemEntry(const char* name) {
    static void* const library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    void* const entry = library == nullptr ? nullptr : dlsym(library, name);
    if (entry == nullptr) std::abort();
    return reinterpret_cast<Entry>(entry);
}

template <typename Entry>
Entry Find(const char* name) {
    return reinterpret_cast<Entry>(eglGetProcAddress(name));
}

struct SEntries {
    decltype(&glGetString) getString = Find<decltype(&glGetString)>("glGetString");
    decltype(&glGetIntegerv) getIntegerv = Find<decltype(&glGetIntegerv)>("glGetIntegerv");
    decltype(&glPixelStorei) pixelStorei = Find<decltype(&glPixelStorei)>("glPixelStorei");
    decltype(&glReadPixels) readPixels = Find<decltype(&glReadPixels)>("glReadPixels");
    decltype(&glBindBuffer) bindBuffer = Find<decltype(&glBindBuffer)>("glBindBuffer");
    decltype(&glReadBuffer) readBuffer = Find<decltype(&glReadBuffer)>("glReadBuffer");
    decltype(&glBindFramebuffer) bind = Find<decltype(&glBindFramebuffer)>("glBindFramebuffer");
    decltype(&glBindFramebuffer) bindOes =
        Find<decltype(&glBindFramebuffer)>("glBindFramebufferOES");

    GLint Current(GLenum name) const {
        GLint value = 0;
        getIntegerv(name, &value);
        return value;
    }
    int MajorVersion() const {
        const auto* const text = reinterpret_cast<const char*>(getString(GL_VERSION));
        if (text == nullptr) return 0;
        if (std::strstr(text, "OpenGL ES-C") != nullptr) return 1;
        const char* const number = std::strstr(text, "OpenGL ES ");
        return number == nullptr ? 0 : number[10] - '0';
    }
};

/// The back buffer of the current surface under any ES version. The context's state is left as it
/// was.
std::vector<char> ReadBackBuffer(int width, int height) {
    static const SEntries gl;
    std::vector<char> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                             4);
    const int version = gl.MajorVersion();
    if (version == 0) return pixels;
    const bool es3 = version >= 3;
    const GLenum target = es3 ? GL_READ_FRAMEBUFFER : GL_FRAMEBUFFER;
    const auto bind = version == 1 ? gl.bindOes : gl.bind;
    const auto framebuffer =
        static_cast<GLuint>(gl.Current(es3 ? GL_READ_FRAMEBUFFER_BINDING : GL_FRAMEBUFFER_BINDING));
    if (framebuffer != 0) bind(target, 0);
    const auto buffer = static_cast<GLuint>(es3 ? gl.Current(GL_PIXEL_PACK_BUFFER_BINDING) : 0);
    const auto readBuffer = static_cast<GLenum>(es3 ? gl.Current(GL_READ_BUFFER) : GL_BACK);
    if (es3) {
        gl.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        gl.readBuffer(GL_BACK);
    }
    // All but the first came with ES3.
    constexpr std::array<GLenum, 4> packing = {GL_PACK_ALIGNMENT, GL_PACK_ROW_LENGTH,
                                               GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS};
    std::array<GLint, packing.size()> packed{};
    const std::size_t count = es3 ? packing.size() : 1;
    for (std::size_t i = 0; i < count; ++i) {
        packed[i] = gl.Current(packing[i]);
        gl.pixelStorei(packing[i], i == 0 ? 1 : 0);
    }
    gl.readPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (std::size_t i = 0; i < count; ++i) gl.pixelStorei(packing[i], packed[i]);
    if (es3) {
        gl.readBuffer(readBuffer);
        gl.bindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
    }
    if (framebuffer != 0) bind(target, framebuffer);
    return pixels;
}

}  // namespace

extern "C" EGLBoolean EGLAPIENTRY eglSwapBuffers(EGLDisplay dpy, EGLSurface surface) {
    static auto const swap = SystemEntry<decltype(&eglSwapBuffers)>("eglSwapBuffers");
    static unsigned number = 0;
    ++number;
    EGLint size[2] = {};
    const char* const folder = std::getenv("KESTRAIL_CAPTURE_DIR");
    // Pixels are read from the current read surface, so that has to be the one being swapped.
    if (folder != nullptr && surface != EGL_NO_SURFACE &&
        eglGetCurrentSurface(EGL_READ) == surface &&
        eglQuerySurface(dpy, surface, EGL_WIDTH, &size[0]) == EGL_TRUE &&
        eglQuerySurface(dpy, surface, EGL_HEIGHT, &size[1]) == EGL_TRUE) {
        const std::vector<char> pixels = ReadBackBuffer(size[0], size[1]);
        std::ofstream(std::string(folder) + "/frame-" + std::to_string(number) + ".rgba",
                      std::ios::binary)
            .write(reinterpret_cast<const char*>(size), sizeof size)
            .write(pixels.data(), static_cast<std::streamsize>(pixels.size()));
    }
    return swap(dpy, surface);
}

extern "C" __eglMustCastToProperFunctionPointerType EGLAPIENTRY
eglGetProcAddress(const char* procname) {
    static auto const lookUp = SystemEntry<decltype(&eglGetProcAddress)>("eglGetProcAddress");
    if (std::string(procname) == "eglSwapBuffers") {
        return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(&eglSwapBuffers);
    }
    return lookUp(procname);
}
