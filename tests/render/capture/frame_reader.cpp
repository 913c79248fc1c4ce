#include "tests/render/capture/frame_reader.h"

#include <EGL/egl.h>
#include <GLES3/gl3.h>

#include <array>
#include <cstring>

namespace kestrail {

namespace {

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
};

int MajorVersion(const SEntries& gl) {
    const auto* const text = reinterpret_cast<const char*>(gl.getString(GL_VERSION));
    if (text == nullptr) return 0;
    if (std::strstr(text, "OpenGL ES-C") != nullptr) return 1;
    const char* const number = std::strstr(text, "OpenGL ES ");
    return number == nullptr ? 0 : number[10] - '0';
}

GLint Current(const SEntries& gl, GLenum name) {
    GLint value = 0;
    gl.getIntegerv(name, &value);
    return value;
}

/// Packing that ES3 adds, reset for as long as the object lives.
class CPlainPacking {
public:
    explicit CPlainPacking(const SEntries& gl) : m_gl(gl) {
        m_buffer = Current(gl, GL_PIXEL_PACK_BUFFER_BINDING);
        m_gl.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        for (std::size_t i = 0; i < names.size(); ++i) {
            m_values[i] = Current(gl, names[i]);
            m_gl.pixelStorei(names[i], 0);
        }
        m_readBuffer = Current(gl, GL_READ_BUFFER);
        m_gl.readBuffer(GL_BACK);
    }
    ~CPlainPacking() {
        m_gl.readBuffer(static_cast<GLenum>(m_readBuffer));
        for (std::size_t i = 0; i < names.size(); ++i) m_gl.pixelStorei(names[i], m_values[i]);
        m_gl.bindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(m_buffer));
    }
    CPlainPacking(const CPlainPacking&) = delete;
    CPlainPacking& operator=(const CPlainPacking&) = delete;

private:
    static constexpr std::array<GLenum, 3> names = {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS,
                                                    GL_PACK_SKIP_PIXELS};
    const SEntries& m_gl;
    std::array<GLint, 3> m_values{};
    GLint m_buffer = 0;
    GLint m_readBuffer = 0;
};

void Read(const SEntries& gl, int width, int height, std::vector<std::uint8_t>& pixels) {
    const GLint alignment = Current(gl, GL_PACK_ALIGNMENT);
    gl.pixelStorei(GL_PACK_ALIGNMENT, 1);
    gl.readPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    gl.pixelStorei(GL_PACK_ALIGNMENT, alignment);
}

}  // namespace

std::vector<std::uint8_t> ReadBackBuffer(int width, int height) {
    static const SEntries gl;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height) * 4);
    const int version = MajorVersion(gl);
    if (version == 0) return pixels;
    const GLenum target = version >= 3 ? GL_READ_FRAMEBUFFER : GL_FRAMEBUFFER;
    const GLenum binding = version >= 3 ? GL_READ_FRAMEBUFFER_BINDING : GL_FRAMEBUFFER_BINDING;
    const auto bind = version == 1 ? gl.bindOes : gl.bind;
    const auto framebuffer = static_cast<GLuint>(Current(gl, binding));
    if (framebuffer != 0) bind(target, 0);
    if (version >= 3) {
        const CPlainPacking plain(gl);
        Read(gl, width, height, pixels);
    } else {
        Read(gl, width, height, pixels);
    }
    if (framebuffer != 0) bind(target, framebuffer);
    return pixels;
}

}  // namespace kestrail
