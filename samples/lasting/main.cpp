// A program whose frames stand on what earlier ones left in the driver, in one way after the other,
// three frames each. It draws on a surface that keeps what was drawn; recorded, it is a trace that
// is hard to seek in.
#include <EGL/egl.h>
#include <GLES3/gl3.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

constexpr int kWidth = 128;
constexpr int kHeight = 96;
constexpr int kSide = 32;
constexpr int kPhaseFrames = 3;

EGLDisplay g_display;
EGLConfig g_config;
EGLSurface g_surface;
EGLContext g_context;

GLuint Shader(GLenum kind, const char* text) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    return shader;
}

GLuint Program(const char* vertex, const char* fragment, const char* kept = nullptr) {
    const GLuint program = glCreateProgram();
    for (const GLuint shader :
         {Shader(GL_VERTEX_SHADER, vertex), Shader(GL_FRAGMENT_SHADER, fragment)}) {
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    if (kept != nullptr) glTransformFeedbackVaryings(program, 1, &kept, GL_SEPARATE_ATTRIBS);
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == 0) std::fprintf(stderr, "a program isn't linked\n");
    return program;
}

// A quad over all of the viewport, made from the vertex's number.
constexpr const char* kWhole = R"(#version 300 es
out vec2 at;
void main() {
    at = vec2(gl_VertexID & 1, gl_VertexID >> 1);
    gl_Position = vec4(at * 2.0 - 1.0, 0.0, 1.0);
})";
constexpr const char* kPlain = R"(#version 300 es
precision mediump float;
uniform vec4 color;
in vec2 at;
out vec4 drawn;
void main() { drawn = color * vec4(at, 1.0, 1.0); })";
constexpr const char* kImage = R"(#version 300 es
precision mediump float;
uniform sampler2D image;
uniform float level;
in vec2 at;
out vec4 drawn;
void main() { drawn = textureLod(image, at.yx, level) * 0.8 + vec4(0.1, 0.0, 0.05, 0.2); })";
constexpr const char* kCube = R"(#version 300 es
precision mediump float;
uniform samplerCube cube;
in vec2 at;
out vec4 drawn;
void main() { drawn = texture(cube, vec3(1.0, at.x - 0.5, 2.0 * at.y - 0.4)); })";
constexpr const char* kLayers = R"(#version 300 es
precision mediump float;
precision mediump sampler2DArray;
uniform sampler2DArray layers;
in vec2 at;
out vec4 drawn;
void main() { drawn = texture(layers, vec3(at.x, at.y, floor(at.x * 3.0))); })";
constexpr const char* kMoved = R"(#version 300 es
in vec4 place;
out vec4 next;
out vec2 at;
void main() {
    next = vec4(place.yx * 0.9 + 0.05, 0.0, 1.0);
    at = place.xy;
    gl_Position = place;
    gl_PointSize = 9.0;
})";

struct SScene {
    GLuint plain = Program(kWhole, kPlain);
    GLuint image = Program(kWhole, kImage);
    GLuint cube = Program(kWhole, kCube);
    GLuint layers = Program(kWhole, kLayers);
    GLuint moved = Program(kMoved, kPlain, "next");
    std::array<GLuint, 6> textures{};
    std::array<GLuint, 6> framebuffers{};
    std::array<GLuint, 3> buffers{};
    GLuint cubeMap = 0;
    GLuint array = 0;
    EGLContext other = EGL_NO_CONTEXT;
    GLuint otherFramebuffer = 0;
};

void Color(const SScene& scene, float red, float green, float blue) {
    glUseProgram(scene.plain);
    glUniform4f(glGetUniformLocation(scene.plain, "color"), red, green, blue, 1.0F);
}

void Quad() {
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void Onto(GLuint framebuffer) {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    if (framebuffer == 0) {
        glViewport(0, 0, kWidth, kHeight);
    } else {
        glViewport(0, 0, kSide, kSide);
    }
}

void Show(const SScene& scene, GLuint texture, float level = 0.0F) {
    glUseProgram(scene.image);
    glUniform1f(glGetUniformLocation(scene.image, "level"), level);
    glBindTexture(GL_TEXTURE_2D, texture);
    Quad();
}

void Parameters(GLenum target, GLint small) {
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, small);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void Prepare(SScene& scene) {
    glGenTextures(6, scene.textures.data());
    glGenFramebuffers(6, scene.framebuffers.data());
    for (std::size_t i = 0; i < scene.textures.size(); ++i) {
        glBindTexture(GL_TEXTURE_2D, scene.textures[i]);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kSide, kSide, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        Parameters(GL_TEXTURE_2D, i == 3 ? GL_NEAREST_MIPMAP_NEAREST : GL_NEAREST);
        if (i == 3) glGenerateMipmap(GL_TEXTURE_2D);
        Onto(scene.framebuffers[i]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                               scene.textures[i], 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    // A framebuffer is complete with it alone, though nobody tests depth.
    GLuint depth = 0;
    glGenRenderbuffers(1, &depth);
    glBindRenderbuffer(GL_RENDERBUFFER, depth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT16, kSide, kSide);
    Onto(scene.framebuffers[2]);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
    glGenTextures(1, &scene.cubeMap);
    glBindTexture(GL_TEXTURE_CUBE_MAP, scene.cubeMap);
    for (GLenum face = 0; face < 6; ++face) {
        static constexpr std::array<unsigned char, 16> kGrey = {90, 90, 90, 255, 90, 90, 90, 255,
                                                                90, 90, 90, 255, 90, 90, 90, 255};
        glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA8, 2, 2, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, kGrey.data());
    }
    Parameters(GL_TEXTURE_CUBE_MAP, GL_NEAREST);
    glGenTextures(1, &scene.array);
    glBindTexture(GL_TEXTURE_2D_ARRAY, scene.array);
    glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA8, kSide, kSide, kPhaseFrames, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, nullptr);
    Parameters(GL_TEXTURE_2D_ARRAY, GL_NEAREST);
    constexpr std::array<float, 12> kPlaces = {-0.5F, -0.4F, 0.0F, 1.0F, 0.1F, 0.3F,
                                               0.0F,  1.0F,  0.6F, 0.0F, 0.0F, 1.0F};
    glGenBuffers(3, scene.buffers.data());
    for (const GLuint buffer : scene.buffers) {
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        glBufferData(GL_ARRAY_BUFFER, sizeof kPlaces, kPlaces.data(), GL_DYNAMIC_DRAW);
    }
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    scene.other = eglCreateContext(g_display, g_config, g_context, version);
}

/// Each of two images is made from the other.
void PingPong(const SScene& scene, int turn) {
    const auto to = static_cast<std::size_t>(turn & 1);
    if (turn == 0) {
        Onto(scene.framebuffers[1]);
        Color(scene, 0.9F, 0.6F, 0.3F);
        Quad();
    }
    Onto(scene.framebuffers[to]);
    Show(scene, scene.textures[1 - to]);
    Onto(0);
    Show(scene, scene.textures[to]);
}

void Accumulate(const SScene& scene, int turn) {
    Onto(scene.framebuffers[2]);
    if (turn == 0) glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    Color(scene, 0.1F, 0.2F, 0.15F * static_cast<float>(turn));
    Quad();
    glDisable(GL_BLEND);
    Onto(0);
    Show(scene, scene.textures[2]);
}

/// Places that feedback wrote are those of the next frame.
void Feedback(const SScene& scene, int turn) {
    const auto from = static_cast<std::size_t>(turn & 1);
    glUseProgram(scene.moved);
    glUniform4f(glGetUniformLocation(scene.moved, "color"), 1.0F, 0.8F, 0.2F, 1.0F);
    const auto place = static_cast<GLuint>(glGetAttribLocation(scene.moved, "place"));
    glBindBuffer(GL_ARRAY_BUFFER, scene.buffers[from]);
    glVertexAttribPointer(place, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(place);
    glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, scene.buffers[1 - from]);
    glBeginTransformFeedback(GL_POINTS);
    glDrawArrays(GL_POINTS, 0, 3);
    glEndTransformFeedback();
    glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, 0);
    glDisableVertexAttribArray(place);
}

/// The small levels of an image that was drawn a frame before.
void Mipmaps(const SScene& scene, int turn) {
    if (turn == 0) {
        Onto(scene.framebuffers[3]);
        Color(scene, 0.7F, 1.0F, 0.5F);
        Quad();
        glBindTexture(GL_TEXTURE_2D, scene.textures[3]);
        glGenerateMipmap(GL_TEXTURE_2D);
    }
    Onto(0);
    Show(scene, scene.textures[3], static_cast<float>(turn + 1));
}

/// Nothing is cleared: the surface keeps what was drawn.
void Kept(const SScene& scene, int turn) {
    glViewport(10 + turn * 30, 20, 40, 50);
    Color(scene, 1.0F, 0.3F * static_cast<float>(turn), 0.6F);
    Quad();
}

/// Another context draws the image.
void Shared(SScene& scene, int turn) {
    eglMakeCurrent(g_display, g_surface, g_surface, scene.other);
    if (scene.otherFramebuffer == 0) {
        glGenFramebuffers(1, &scene.otherFramebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, scene.otherFramebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                               scene.textures[4], 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    Onto(scene.otherFramebuffer);
    glEnable(GL_SCISSOR_TEST);
    glScissor(turn * 10, 4, 8, 20);
    glClearColor(0.3F, 0.9F - 0.3F * static_cast<float>(turn), 0.5F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
    eglMakeCurrent(g_display, g_surface, g_surface, g_context);
    Show(scene, scene.textures[4]);
}

/// A vertex a frame is written through a pointer.
void Mapped(const SScene& scene, int turn) {
    constexpr std::size_t kVertex = 4 * sizeof(float);
    glBindBuffer(GL_ARRAY_BUFFER, scene.buffers[2]);
    const float place[] = {0.3F * static_cast<float>(turn) - 0.4F, 0.2F, 0.0F, 1.0F};
    void* const mapped = glMapBufferRange(GL_ARRAY_BUFFER, static_cast<GLintptr>(kVertex) * turn,
                                          kVertex, GL_MAP_WRITE_BIT);
    if (mapped != nullptr) std::memcpy(mapped, place, kVertex);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glUseProgram(scene.moved);
    glUniform4f(glGetUniformLocation(scene.moved, "color"), 0.4F, 1.0F, 0.9F, 1.0F);
    const auto at = static_cast<GLuint>(glGetAttribLocation(scene.moved, "place"));
    glVertexAttribPointer(at, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(at);
    glDrawArrays(GL_POINTS, 0, 3);
    glDisableVertexAttribArray(at);
}

/// A face is drawn a frame.
void Faces(const SScene& scene, int turn) {
    constexpr std::array<GLenum, kPhaseFrames> kFaces = {GL_TEXTURE_CUBE_MAP_POSITIVE_X,
                                                         GL_TEXTURE_CUBE_MAP_POSITIVE_Z,
                                                         GL_TEXTURE_CUBE_MAP_NEGATIVE_Z};
    glBindFramebuffer(GL_FRAMEBUFFER, scene.framebuffers[5]);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                           kFaces[static_cast<std::size_t>(turn)], scene.cubeMap, 0);
    glClearColor(0.2F * static_cast<float>(turn + 1), 0.7F, 0.1F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    Onto(0);
    glUseProgram(scene.cube);
    glBindTexture(GL_TEXTURE_CUBE_MAP, scene.cubeMap);
    Quad();
}

/// A layer is drawn a frame.
void Layers(const SScene& scene, int turn) {
    glBindFramebuffer(GL_FRAMEBUFFER, scene.framebuffers[5]);
    const int last = turn == 0 ? kPhaseFrames : turn + 1;
    for (int layer = turn; layer < last; ++layer) {
        glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, scene.array, 0, layer);
        glClearColor(0.5F, 0.2F, 0.3F * static_cast<float>(turn + 1), 1.0F);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    Onto(0);
    glUseProgram(scene.layers);
    glBindTexture(GL_TEXTURE_2D_ARRAY, scene.array);
    Quad();
}

/// Nothing but what the frame itself draws.
void Alone(const SScene& scene, int turn) {
    Color(scene, 0.4F, 0.5F, 0.3F * static_cast<float>(turn + 1));
    Quad();
}

bool Open() {
    g_display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (eglInitialize(g_display, nullptr, nullptr) == EGL_FALSE) return false;
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_ALPHA_SIZE,
                             8,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_ES3_BIT,
                             EGL_NONE};
    EGLint count = 0;
    eglChooseConfig(g_display, wanted, &g_config, 1, &count);
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, kWidth, EGL_HEIGHT, kHeight, EGL_NONE};
    if (count != 1) return false;
    g_context = eglCreateContext(g_display, g_config, EGL_NO_CONTEXT, version);
    g_surface = eglCreatePbufferSurface(g_display, g_config, size);
    return eglMakeCurrent(g_display, g_surface, g_surface, g_context) == EGL_TRUE;
}

}  // namespace

int main() {
    if (!Open()) {
        std::fprintf(stderr, "no surface to draw on\n");
        return 1;
    }
    SScene scene;
    Prepare(scene);
    using Draw = void (*)(SScene&, int);
    constexpr std::array<Draw, 10> kPhases = {
        [](SScene& s, int turn) { PingPong(s, turn); },
        [](SScene& s, int turn) { Accumulate(s, turn); },
        [](SScene& s, int turn) { Feedback(s, turn); },
        [](SScene& s, int turn) { Mipmaps(s, turn); },
        [](SScene& s, int turn) { Kept(s, turn); },
        Shared,
        [](SScene& s, int turn) { Mapped(s, turn); },
        [](SScene& s, int turn) { Faces(s, turn); },
        [](SScene& s, int turn) { Layers(s, turn); },
        [](SScene& s, int turn) { Alone(s, turn); },
    };
    for (std::size_t phase = 0; phase < kPhases.size(); ++phase) {
        for (int turn = 0; turn < kPhaseFrames; ++turn) {
            Onto(0);
            glClearColor(0.1F, 0.1F, 0.2F, 1.0F);
            const bool keeps = phase == 4 && turn > 0;
            if (!keeps) glClear(GL_COLOR_BUFFER_BIT);
            kPhases[phase](scene, turn);
            Onto(0);
            if (glGetError() != GL_NO_ERROR) {
                std::fprintf(stderr, "an error in phase %zu\n", phase);
            }
            eglSwapBuffers(g_display, g_surface);
        }
    }
    return 0;
}
