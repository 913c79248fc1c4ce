#include <array>
#include <cmath>
#include <cstddef>

#include "samples/common/draw_scene.h"
#include "samples/common/memory.h"
#include "samples/es3/calls.h"
#include "samples/es3/shaders.h"

namespace kestrail::samples {

// Instanced tiles drawn to two targets that are shown side by side, a multisampled star, a slice
// through a volume, a tile with numbers from an integer image.
namespace {

constexpr GLsizei targetSize = 64;
constexpr GLsizei starSize = 32;
constexpr GLuint paletteBinding = 3;
constexpr std::size_t paletteSize = 20;
// A multiple of any driver's GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT.
constexpr std::size_t secondPalette = 256;

// All attributes are bound by hand: client arrays and integer attributes take the recorded index.
constexpr GLuint cornerIndex = 0;
constexpr GLuint offsetIndex = 1;
constexpr GLuint coordinateIndex = 1;
constexpr GLuint shadeIndex = 1;
constexpr GLuint kindIndex = 2;
constexpr GLuint nudgeIndex = 3;

struct SInstance {
    float offset[2];
    GLubyte kind;
    GLubyte padding[3];
};

struct SCorner {
    float corner[2];
    float coordinate[3];
};

constexpr std::size_t instanceCount = 6;
using Instances = std::array<SInstance, instanceCount>;

class CScene {
public:
    CScene(CEs3Calls& gl, const SSceneSize& size) : m_gl(gl), m_size(size) {}

    void SetUp();
    void DrawFrame(int frame);
    void TearDown();

private:
    struct SNamed {
        GLuint index;
        const char* name;
    };

    GLuint MakeProgram(const char* vertex, const char* fragment, const std::vector<SNamed>& bound);
    void MakePrograms();
    void MakeBuffers();
    void MakeVertexArrays();
    void MakeTextures();
    void MakeSamplers();
    void MakeTargetTexture(GLenum attachment, GLsizei size, GLenum format);
    void MakeTargets();
    void MoveInstances(int frame);
    void DrawInstances(int frame);
    void DrawStar(int frame);
    void ShowTargets();
    void DrawVolume(int frame);
    void DrawTile(int frame);
    void WaitForDriver();

    CEs3Calls& m_gl;
    SSceneSize m_size;
    GLuint m_instanced = 0, m_volume = 0, m_tile = 0, m_flat = 0;
    GLint m_bend = 0, m_squash = 0, m_count = 0, m_pick = 0, m_layers = 0;
    GLint m_volumeTurn = 0, m_weights = 0, m_volumeImage = 0;
    GLint m_place = 0, m_image = 0, m_marks = 0, m_flatTurn = 0;
    // corners, instances, indices, palettes, staged instances
    std::array<GLuint, 5> m_buffers{};
    std::array<GLuint, 3> m_vertexArrays{};  // instanced, star, tile
    std::array<GLuint, 4> m_textures{};      // layers, volume, checks, copied layers
    std::array<GLuint, 2> m_samplers{};
    // two targets, multisampled star, star, marks
    std::array<GLuint, 4> m_framebuffers{};
    std::array<GLuint, 2> m_renderbuffers{};  // depth and stencil, samples
    std::vector<GLuint> m_targetTextures;     // front, back, star, marks
};

GLuint CScene::MakeProgram(const char* vertex, const char* fragment,
                           const std::vector<SNamed>& bound) {
    const GLuint program = m_gl.CreateProgram();
    const GLuint vertexShader = m_gl.CreateShader(GL_VERTEX_SHADER);
    m_gl.ShaderSource(vertexShader, {es3shaders::version, vertex});
    m_gl.CompileShader(vertexShader);
    const GLuint fragmentShader = m_gl.CreateShader(GL_FRAGMENT_SHADER);
    m_gl.ShaderSource(fragmentShader, {es3shaders::fragmentHead, fragment});
    m_gl.CompileShader(fragmentShader);
    m_gl.AttachShader(program, vertexShader);
    m_gl.AttachShader(program, fragmentShader);
    for (const SNamed& attribute : bound) {
        m_gl.BindAttribLocation(program, attribute.index, attribute.name);
    }
    m_gl.LinkProgram(program);
    m_gl.DeleteShader(vertexShader);
    m_gl.DeleteShader(fragmentShader);
    return program;
}

void CScene::MakePrograms() {
    m_instanced = MakeProgram(es3shaders::instancedVertex, es3shaders::instancedFragment,
                              {{cornerIndex, "corner"},
                               {offsetIndex, "offset"},
                               {kindIndex, "kind"},
                               {nudgeIndex, "nudge"}});
    m_layers = m_gl.GetUniformLocation(m_instanced, "layers");
    m_pick = m_gl.GetUniformLocation(m_instanced, "pick");
    m_count = m_gl.GetUniformLocation(m_instanced, "count");
    m_squash = m_gl.GetUniformLocation(m_instanced, "squash");
    m_bend = m_gl.GetUniformLocation(m_instanced, "bend");
    const GLuint palette = m_gl.GetUniformBlockIndex(m_instanced, "Palette");
    m_gl.UniformBlockBinding(m_instanced, palette, paletteBinding);

    m_volume = MakeProgram(es3shaders::volumeVertex, es3shaders::volumeFragment,
                           {{cornerIndex, "corner"}, {coordinateIndex, "coordinate"}});
    m_weights = m_gl.GetUniformLocation(m_volume, "weights");
    m_volumeImage = m_gl.GetUniformLocation(m_volume, "volume");
    m_volumeTurn = m_gl.GetUniformLocation(m_volume, "turn");

    m_tile =
        MakeProgram(es3shaders::tileVertex, es3shaders::tileFragment, {{cornerIndex, "corner"}});
    m_marks = m_gl.GetUniformLocation(m_tile, "marks");
    m_image = m_gl.GetUniformLocation(m_tile, "image");
    m_place = m_gl.GetUniformLocation(m_tile, "place");

    m_flat = MakeProgram(es3shaders::flatVertex, es3shaders::flatFragment,
                         {{cornerIndex, "corner"}, {shadeIndex, "shade"}, {nudgeIndex, "nudge"}});
    m_flatTurn = m_gl.GetUniformLocation(m_flat, "turn");
}

void CScene::MakeBuffers() {
    // A square as a strip, then a star's points.
    std::array<float, 18> corners = {-1, -1, 1, -1, -1, 1, 1, 1};
    for (std::size_t i = 0; i < 5; ++i) {
        corners[8 + 2 * i] = 0.9F * std::cos(2.513F * static_cast<float>(i));
        corners[9 + 2 * i] = 0.9F * std::sin(2.513F * static_cast<float>(i));
    }
    // The restart index cuts the strip in two.
    constexpr std::array<GLushort, 13> indices = {0, 1, 2, 2, 1, 3, 0, 1, 2, 0xFFFF, 1, 3, 2};
    std::array<float, secondPalette / 4 + paletteSize> palettes{};
    for (std::size_t i = 0; i < paletteSize - 4; ++i) {
        palettes[i] = static_cast<float>((i * 37 + 20) % 100) / 100.0F;
        palettes[secondPalette / 4 + i] = static_cast<float>((i * 53 + 70) % 100) / 100.0F;
    }
    palettes[secondPalette / 4 + paletteSize - 4] = 0.15F;

    m_gl.GenBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BufferData(GL_ARRAY_BUFFER, SizeOf(corners), corners.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[1]);
    m_gl.BufferData(GL_ARRAY_BUFFER, sizeof(Instances), nullptr, GL_DYNAMIC_COPY);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, SizeOf(indices), indices.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_UNIFORM_BUFFER, m_buffers[3]);
    m_gl.BufferData(GL_UNIFORM_BUFFER, SizeOf(palettes), palettes.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_COPY_READ_BUFFER, m_buffers[4]);
    m_gl.BufferData(GL_COPY_READ_BUFFER, sizeof(Instances), nullptr, GL_STREAM_READ);
}

void CScene::MakeVertexArrays() {
    m_gl.GenVertexArrays(static_cast<GLsizei>(m_vertexArrays.size()), m_vertexArrays.data());
    m_gl.BindVertexArray(m_vertexArrays[0]);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.VertexAttribPointer(cornerIndex, 2, GL_FLOAT, false, 0, Offset(0));
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[1]);
    m_gl.VertexAttribPointer(offsetIndex, 2, GL_FLOAT, false, sizeof(SInstance), Offset(0));
    m_gl.VertexAttribIPointer(kindIndex, 1, GL_UNSIGNED_BYTE, sizeof(SInstance),
                              Offset(offsetof(SInstance, kind)));
    m_gl.VertexAttribDivisor(offsetIndex, 1);
    m_gl.VertexAttribDivisor(kindIndex, 1);
    for (GLuint index : {cornerIndex, offsetIndex, kindIndex}) m_gl.EnableVertexAttribArray(index);

    m_gl.BindVertexArray(m_vertexArrays[1]);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.VertexAttribPointer(cornerIndex, 2, GL_FLOAT, false, 0, Offset(8 * sizeof(float)));
    m_gl.EnableVertexAttribArray(cornerIndex);

    m_gl.BindVertexArray(m_vertexArrays[2]);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[2]);
    m_gl.VertexAttribPointer(cornerIndex, 2, GL_FLOAT, false, 0, Offset(0));
    m_gl.EnableVertexAttribArray(cornerIndex);
    m_gl.BindVertexArray(0);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
}

void CScene::MakeTextures() {
    m_gl.GenTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    // Rows of 15 bytes, padded to 16.
    std::vector<std::uint8_t> layers(std::size_t{16} * 5 * 3);
    for (std::size_t i = 0; i < layers.size(); ++i) {
        layers[i] = Byte(static_cast<int>(i * 31 + i / 80 * 97 + 50));
    }
    m_gl.BindTexture(GL_TEXTURE_2D_ARRAY, m_textures[0]);
    m_gl.TexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGB8, 5, 5, 3, GL_RGB, GL_UNSIGNED_BYTE,
                    layers.data());
    m_gl.TexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    m_gl.TexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MAG_FILTER, GL_NEAREST);

    std::vector<std::uint8_t> volume(std::size_t{7} * 3 * 4);
    for (std::size_t i = 0; i < volume.size(); ++i) {
        volume[i] = Byte(static_cast<int>(i * 43 + i / 21 * 19));
    }
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 1);
    m_gl.BindTexture(GL_TEXTURE_3D, m_textures[1]);
    m_gl.TexImage3D(GL_TEXTURE_3D, 0, GL_R8, 7, 3, 4, GL_RED, GL_UNSIGNED_BYTE, volume.data());
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);

    m_gl.BindTexture(GL_TEXTURE_2D_ARRAY, m_textures[3]);
    m_gl.TexStorage3D(GL_TEXTURE_2D_ARRAY, 1, GL_RGBA8, 8, 8, 3);
    m_gl.TexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MIN_FILTER, GL_LINEAR);

    std::array<std::uint8_t, 64> checks{};
    for (std::size_t i = 0; i < 16; ++i) {
        const bool light = ((i + i / 4) & 1) != 0;
        checks[4 * i] = light ? 200 : 30;
        checks[4 * i + 1] = light ? 190 : 60;
        checks[4 * i + 2] = light ? 120 : 90;
        checks[4 * i + 3] = 255;
    }
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[2]);
    m_gl.TexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 4, 4);
    m_gl.TexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 4, 4, GL_RGBA, GL_UNSIGNED_BYTE, checks.data());
}

/// The textures' own filters would leave them incomplete, so these show.
void CScene::MakeSamplers() {
    m_gl.GenSamplers(static_cast<GLsizei>(m_samplers.size()), m_samplers.data());
    m_gl.SamplerParameteri(m_samplers[0], GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    m_gl.SamplerParameteri(m_samplers[0], GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    m_gl.SamplerParameteri(m_samplers[0], GL_TEXTURE_WRAP_S, GL_MIRRORED_REPEAT);
    m_gl.SamplerParameterf(m_samplers[1], GL_TEXTURE_MIN_FILTER, static_cast<GLfloat>(GL_NEAREST));
    m_gl.SamplerParameterf(m_samplers[1], GL_TEXTURE_MAG_FILTER, static_cast<GLfloat>(GL_NEAREST));
}

/// A texture attached to the framebuffer in hand.
void CScene::MakeTargetTexture(GLenum attachment, GLsizei size, GLenum format) {
    GLuint texture = 0;
    m_gl.GenTextures(1, &texture);
    m_gl.BindTexture(GL_TEXTURE_2D, texture);
    m_gl.TexStorage2D(GL_TEXTURE_2D, 1, format, size, size);
    m_gl.FramebufferTexture2D(GL_FRAMEBUFFER, attachment, GL_TEXTURE_2D, texture, 0);
    m_targetTextures.push_back(texture);
}

void CScene::MakeTargets() {
    m_gl.GenFramebuffers(static_cast<GLsizei>(m_framebuffers.size()), m_framebuffers.data());
    m_gl.GenRenderbuffers(static_cast<GLsizei>(m_renderbuffers.size()), m_renderbuffers.data());
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[0]);
    MakeTargetTexture(GL_COLOR_ATTACHMENT0, targetSize, GL_RGBA8);
    MakeTargetTexture(GL_COLOR_ATTACHMENT1, targetSize, GL_RGBA8);
    m_gl.BindRenderbuffer(GL_RENDERBUFFER, m_renderbuffers[0]);
    m_gl.RenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, targetSize, targetSize);
    m_gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER,
                                 m_renderbuffers[0]);
    m_gl.DrawBuffers({GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1});
    m_gl.CheckFramebufferStatus(GL_FRAMEBUFFER);

    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[1]);
    m_gl.BindRenderbuffer(GL_RENDERBUFFER, m_renderbuffers[1]);
    m_gl.RenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_RGBA8, starSize, starSize);
    m_gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                                 m_renderbuffers[1]);
    m_gl.CheckFramebufferStatus(GL_FRAMEBUFFER);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[2]);
    MakeTargetTexture(GL_COLOR_ATTACHMENT0, starSize, GL_RGBA8);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[3]);
    MakeTargetTexture(GL_COLOR_ATTACHMENT0, 2, GL_RGBA8UI);
    m_gl.CheckFramebufferStatus(GL_FRAMEBUFFER);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, 0);
}

void CScene::SetUp() {
    MakePrograms();
    MakeBuffers();
    MakeVertexArrays();
    MakeTextures();
    MakeSamplers();
    MakeTargets();
}

/// The instances are written to one buffer and copied to the one that is drawn from.
void CScene::MoveInstances(int frame) {
    Instances instances{};
    for (std::size_t i = 0; i < instances.size(); ++i) {
        const float angle = 1.0472F * static_cast<float>(i) + 0.1F * static_cast<float>(frame);
        instances[i] = {
            {0.6F * std::cos(angle), 0.6F * std::sin(angle)}, static_cast<GLubyte>(i), {}};
    }
    m_gl.BindBuffer(GL_COPY_READ_BUFFER, m_buffers[4]);
    m_gl.BufferSubData(GL_COPY_READ_BUFFER, 0, sizeof instances, instances.data());
    m_gl.BindBuffer(GL_COPY_WRITE_BUFFER, m_buffers[1]);
    m_gl.CopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 0, 0, sizeof instances);
}

void CScene::DrawInstances(int frame) {
    const float t = static_cast<float>(frame);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[0]);
    m_gl.Viewport(0, 0, targetSize, targetSize);
    m_gl.ClearBufferfv(GL_COLOR, 0, {0.1F, 0.1F, 0.25F, 1.0F});
    m_gl.ClearBufferfv(GL_COLOR, 1, {0.3F, 0.15F, 0.1F, 1.0F});
    m_gl.ClearBufferfi(GL_DEPTH_STENCIL, 0, 1.0F, 0);
    m_gl.ClearBufferiv(GL_STENCIL, 0, {5});
    m_gl.Enable(GL_DEPTH_TEST);
    m_gl.DepthFunc(GL_LEQUAL);
    m_gl.Enable(GL_STENCIL_TEST);
    m_gl.StencilFunc(GL_EQUAL, 5, 0xFF);
    m_gl.UseProgram(m_instanced);
    m_gl.ActiveTexture(GL_TEXTURE0);
    m_gl.BindTexture(GL_TEXTURE_2D_ARRAY, m_textures[0]);
    m_gl.Uniform1i(m_layers, 0);
    m_gl.Uniform1ui(m_count, 4);
    m_gl.Uniform2ui(m_pick, static_cast<GLuint>(frame / 3), static_cast<GLuint>(frame));
    m_gl.UniformMatrix2x3fv(m_bend, {1.0F, 0.2F * std::sin(t), 0.1F, -0.1F, 1.0F, 0.3F});
    m_gl.UniformMatrix3x2fv(m_squash, {0.22F, 0.02F, -0.02F, 0.2F, 0.01F, 0.02F});
    m_gl.BindVertexArray(m_vertexArrays[0]);
    m_gl.VertexAttribI4i(nudgeIndex, frame % 3 - 1, 0, 0, 0);
    m_gl.BindBufferBase(GL_UNIFORM_BUFFER, paletteBinding, m_buffers[3]);
    m_gl.DrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, 5);
    m_gl.ReadBuffer(GL_COLOR_ATTACHMENT0);
    m_gl.BindTexture(GL_TEXTURE_2D_ARRAY, m_textures[3]);
    for (GLint layer = 0; layer < 3; ++layer) {
        m_gl.CopyTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 0, 0, layer, 14 * layer, 24 + layer, 8, 8);
    }
    m_gl.BindBufferRange(GL_UNIFORM_BUFFER, paletteBinding, m_buffers[3], secondPalette,
                         paletteSize * sizeof(float));
    m_gl.VertexAttribI4i(nudgeIndex, 2, -9, 0, 0);
    m_gl.UniformMatrix3x2fv(m_squash, {0.1F, 0.0F, 0.0F, 0.1F, -0.1F, 0.1F});
    m_gl.DrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, Offset(0), 6);
    m_gl.BindVertexArray(0);
    m_gl.Disable(GL_STENCIL_TEST);
    m_gl.Disable(GL_DEPTH_TEST);
    m_gl.ReadBuffer(GL_COLOR_ATTACHMENT1);
    m_gl.BindTexture(GL_TEXTURE_2D_ARRAY, m_textures[0]);
    m_gl.CopyTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 1, 1, 2, targetSize / 2, targetSize / 3, 3, 2);
}

void CScene::DrawStar(int frame) {
    const float angle = 0.08F * static_cast<float>(frame);
    const float c = std::cos(angle), s = std::sin(angle);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[1]);
    m_gl.Viewport(0, 0, starSize, starSize);
    m_gl.ClearBufferfv(GL_COLOR, 0, {0.0F, 0.2F, 0.1F, 1.0F});
    m_gl.UseProgram(m_flat);
    m_gl.UniformMatrix2x4fv(m_flatTurn, {c, s, 0.3F, 0.0F, -s, c, 0.0F, 0.3F});
    m_gl.BindVertexArray(m_vertexArrays[1]);
    m_gl.VertexAttribI4ui(shadeIndex, 250, 220, 60, 255);
    m_gl.VertexAttribI4iv(nudgeIndex, {frame % 5 * 2, -3, 0, 0});
    m_gl.DrawArrays(GL_TRIANGLE_FAN, 0, 5);
    m_gl.VertexAttribI4ui(shadeIndex, 120, 40, 160, 255);
    m_gl.DrawArrays(GL_LINE_LOOP, 0, 5);
    m_gl.BindVertexArray(0);
    m_gl.BindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffers[1]);
    m_gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, m_framebuffers[2]);
    m_gl.BlitFramebuffer({0, 0, starSize, starSize}, {0, 0, starSize, starSize},
                         GL_COLOR_BUFFER_BIT, GL_NEAREST);
    m_gl.InvalidateFramebuffer(GL_READ_FRAMEBUFFER, {GL_COLOR_ATTACHMENT0});
}

/// One target on each side of the window, the second upside down.
void CScene::ShowTargets() {
    m_gl.BindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffers[0]);
    m_gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    m_gl.Viewport(0, 0, m_size.width, m_size.height);
    m_gl.ClearBufferfv(GL_COLOR, 0, {0.15F, 0.15F, 0.15F, 1.0F});
    const int middle = m_size.width / 2;
    const int gap = m_size.width / 32;
    m_gl.ReadBuffer(GL_COLOR_ATTACHMENT0);
    m_gl.BlitFramebuffer({0, 0, targetSize, targetSize},
                         {gap, m_size.height / 3, middle - gap, m_size.height - gap},
                         GL_COLOR_BUFFER_BIT, GL_LINEAR);
    m_gl.ReadBuffer(GL_COLOR_ATTACHMENT1);
    m_gl.BlitFramebuffer({0, targetSize, targetSize, 0},
                         {middle + gap, m_size.height / 3, m_size.width - gap, m_size.height - gap},
                         GL_COLOR_BUFFER_BIT, GL_NEAREST);
    m_gl.BindFramebuffer(GL_READ_FRAMEBUFFER, 0);
}

/// Out of client memory, which only the default vertex array may draw from.
void CScene::DrawVolume(int frame) {
    const float t = 0.1F * static_cast<float>(frame);
    constexpr std::array<SCorner, 4> corners = {{{{-0.9F, -0.95F}, {0, 0, 0}},
                                                 {{-0.4F, -0.95F}, {1, 0, 0}},
                                                 {{-0.4F, -0.45F}, {1, 1, 1}},
                                                 {{-0.9F, -0.45F}, {0, 1, 1}}}};
    constexpr std::array<GLubyte, 6> indices = {0, 1, 2, 0, 2, 3};
    m_gl.UseProgram(m_volume);
    m_gl.ActiveTexture(GL_TEXTURE1);
    m_gl.BindTexture(GL_TEXTURE_3D, m_textures[1]);
    m_gl.BindSampler(1, m_samplers[0]);
    m_gl.Uniform1i(m_volumeImage, 1);
    m_gl.Uniform4uiv(m_weights, {200, 150, 90, 255, 20, 10, 50, 0});
    m_gl.UniformMatrix4x3fv(m_volumeTurn,
                            {1, 0.1F, 0, 0, 1, 0.2F, 0.1F, 0, 1, std::sin(t), 0.1F, 0.5F * t});
    m_gl.VertexAttribPointer(cornerIndex, 2, GL_FLOAT, false, sizeof(SCorner), corners.data());
    m_gl.VertexAttribPointer(coordinateIndex, 3, GL_FLOAT, false, sizeof(SCorner),
                             corners[0].coordinate);
    m_gl.EnableVertexAttribArray(cornerIndex);
    m_gl.EnableVertexAttribArray(coordinateIndex);
    m_gl.DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, indices.data());
    m_gl.DisableVertexAttribArray(coordinateIndex);
    m_gl.DisableVertexAttribArray(cornerIndex);
    m_gl.BindSampler(1, 0);
}

void CScene::DrawTile(int frame) {
    const auto step = static_cast<GLuint>(frame % 10 * 10);
    m_gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, m_framebuffers[3]);
    m_gl.ClearBufferuiv(GL_COLOR, 0, {step, 60 - step / 2, 20, 0});
    m_gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    m_gl.UseProgram(m_tile);
    m_gl.Uniform1i(m_image, 0);
    m_gl.Uniform1i(m_marks, 1);
    m_gl.ActiveTexture(GL_TEXTURE1);
    m_gl.BindTexture(GL_TEXTURE_2D, m_targetTextures[3]);
    m_gl.ActiveTexture(GL_TEXTURE0);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[2]);
    m_gl.BindSampler(0, m_samplers[0]);
    m_gl.BindSampler(1, m_samplers[1]);
    m_gl.BindVertexArray(m_vertexArrays[2]);
    m_gl.Uniform4f(m_place, 0.0F, -0.7F, 0.3F, 0.25F);
    m_gl.DrawRangeElements(GL_TRIANGLES, 0, 3, 6, GL_UNSIGNED_SHORT, Offset(0));
    m_gl.BindTexture(GL_TEXTURE_2D, m_targetTextures[2]);
    m_gl.Uniform4f(m_place, 0.65F, -0.7F, 0.3F, 0.25F);
    m_gl.Enable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
    m_gl.DrawElements(GL_TRIANGLE_STRIP, 7, GL_UNSIGNED_SHORT, Offset(6 * sizeof(GLushort)));
    m_gl.Disable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
    m_gl.BindVertexArray(0);
    m_gl.BindSampler(0, 0);
    m_gl.BindSampler(1, 0);
}

void CScene::WaitForDriver() {
    const GLsync sync = m_gl.FenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    m_gl.ClientWaitSync(sync, GL_SYNC_FLUSH_COMMANDS_BIT, 500000000);
    m_gl.DeleteSync(sync);
}

void CScene::DrawFrame(int frame) {
    MoveInstances(frame);
    DrawInstances(frame);
    DrawStar(frame);
    ShowTargets();
    DrawVolume(frame);
    DrawTile(frame);
    WaitForDriver();
    m_gl.Swap();
}

void CScene::TearDown() {
    m_gl.DeleteSamplers(static_cast<GLsizei>(m_samplers.size()), m_samplers.data());
    m_gl.DeleteVertexArrays(static_cast<GLsizei>(m_vertexArrays.size()), m_vertexArrays.data());
    m_gl.DeleteTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    m_gl.DeleteTextures(static_cast<GLsizei>(m_targetTextures.size()), m_targetTextures.data());
    m_gl.DeleteFramebuffers(static_cast<GLsizei>(m_framebuffers.size()), m_framebuffers.data());
    m_gl.DeleteRenderbuffers(static_cast<GLsizei>(m_renderbuffers.size()), m_renderbuffers.data());
    m_gl.DeleteBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
    for (GLuint program : {m_instanced, m_volume, m_tile, m_flat}) m_gl.DeleteProgram(program);
}

}  // namespace

bool DrawEs3Scene(IBackEnd& backEnd, const SSceneSize& size) {
    return DrawScene<CEs3Calls, CScene>(backEnd, size);
}

}  // namespace kestrail::samples
