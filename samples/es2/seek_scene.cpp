#include <array>
#include <cmath>

#include "samples/common/draw_scene.h"
#include "samples/common/memory.h"
#include "samples/es2/calls.h"
#include "samples/es2/program.h"
#include "samples/es2/render_target.h"
#include "samples/es2/shaders.h"

namespace kestrail::samples {

// Each frame relies on objects and settings of the frames before, but on nothing that they have
// drawn, copied or had generated: those contents are in no record of a frame's start. Neither are
// the window's viewport and the scissor box until it has been set, so every frame sets them.
namespace {

constexpr GLint imageUnit = 1;
constexpr GLsizei diarySide = 8;

// Objects that come and go, by frame.
constexpr int bannerMade = 2, bannerGone = 5, bannerAgain = 7;
constexpr int stripesMade = 3, stripesGone = 9;
constexpr int subtracting = 6;

constexpr const char* stripesFragment = R"(
uniform float width;
varying vec4 colour;
void main() {
    if (mod(gl_FragCoord.x + gl_FragCoord.y, width) < 0.5 * width) discard;
    gl_FragColor = colour;
}
)";

using Pixels = std::array<std::uint8_t, std::size_t{4} * diarySide * diarySide>;

Pixels MakePixels(int seed) {
    Pixels pixels{};
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = Byte(static_cast<int>(i) * (23 + seed) + static_cast<int>(i / 32) * 71);
    }
    return pixels;
}

class CScene {
public:
    CScene(CEs2Calls& gl, const SSceneSize& size) : m_gl(gl), m_size(size) {}

    void SetUp();
    void DrawFrame(int frame);

private:
    void MakePrograms();
    void MakeBuffers();
    void MakeTexture(GLuint texture, const Pixels& pixels);
    void MakeTextures();
    void ChangeObjects(int frame);
    void DrawGem(int frame, int choice);
    void DrawIntoTarget(int frame);
    void DrawTile(GLuint texture, float x, float y, float size, float turn);
    void DrawTiles(int frame);
    void DrawCutTile(int frame);
    void DrawWave(int frame);
    void DrawStripes(int frame);

    CEs2Calls& m_gl;
    SSceneSize m_size;
    GLuint m_tile = 0, m_gem = 0, m_flat = 0, m_stripes = 0;
    GLint m_placement = 0, m_fade = 0, m_turn = 0, m_choice = 0, m_flatTurn = 0, m_centre = 0;
    GLint m_stripesTurn = 0, m_stripesCentre = 0;
    std::array<GLuint, 3> m_buffers{};   // gem corners, gem indices, wave
    std::array<GLuint, 3> m_textures{};  // patched, mipmapped, diary
    GLuint m_banner = 0;
    SRenderTarget m_target;
};

std::array<float, 4> Turn2(float angle) {
    return {std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle)};
}

void CScene::MakePrograms() {
    m_tile = MakeProgram(m_gl, shaders::tileVertex, shaders::tileFragment,
                         {"corner", "texcoord", "colour"});
    m_placement = m_gl.GetUniformLocation(m_tile, "placement");
    m_fade = m_gl.GetUniformLocation(m_tile, "fade");
    m_gl.UseProgram(m_tile);
    m_gl.Uniform1i(m_gl.GetUniformLocation(m_tile, "image"), imageUnit);
    m_gl.Uniform4f(m_gl.GetUniformLocation(m_tile, "filterColour"), 1.0F, 0.9F, 0.8F, 0.75F);
    m_gl.VertexAttrib4f(2, 0.2F, 0.9F, 0.6F, 1.0F);

    const std::array<float, 16> projection = {0.4F, 0, 0,     0, 0, 0.5F, 0, 0,
                                              0,    0, -0.5F, 0, 0, 0,    0, 1.0F};
    const std::array<float, 6> lights = {0.3F, 0.8F, 0.9F, -0.8F, 0.1F, 0.4F};
    const std::array<float, 12> palette = {0.9F, 0.3F, 0.2F, 1.0F, 0.2F, 0.8F,
                                           0.4F, 1.0F, 0.9F, 0.8F, 0.3F, 1.0F};
    m_gem = MakeProgram(m_gl, shaders::cubeVertex, shaders::cubeFragment, {"position", "normal"});
    m_turn = m_gl.GetUniformLocation(m_gem, "turn");
    m_choice = m_gl.GetUniformLocation(m_gem, "choice");
    m_gl.UseProgram(m_gem);
    m_gl.UniformMatrix4fv(m_gl.GetUniformLocation(m_gem, "projection"), 1, projection.data());
    m_gl.Uniform3fv(m_gl.GetUniformLocation(m_gem, "lights"), 2, lights.data());
    m_gl.Uniform4fv(m_gl.GetUniformLocation(m_gem, "palette"), 3, palette.data());

    m_flat = MakeProgram(m_gl, shaders::flatVertex, shaders::flatFragment, {"corner", "shade"});
    m_flatTurn = m_gl.GetUniformLocation(m_flat, "turn");
    m_centre = m_gl.GetUniformLocation(m_flat, "centre");
}

void CScene::MakeBuffers() {
    constexpr std::array<float, 18> corners = {1,  0, 0, 0, 1,  0, 0, 0, 1,
                                               -1, 0, 0, 0, -1, 0, 0, 0, -1};
    constexpr std::array<std::uint16_t, 24> indices = {0, 1, 2, 1, 3, 2, 3, 4, 2, 4, 0, 2,
                                                       1, 0, 5, 3, 1, 5, 4, 3, 5, 0, 4, 5};
    std::array<float, 32> wave{};
    for (std::size_t i = 0; i < 16; ++i) wave[2 * i] = static_cast<float>(i) / 8.0F - 0.95F;
    m_gl.GenBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BufferData(GL_ARRAY_BUFFER, SizeOf(corners), nullptr, GL_STATIC_DRAW);
    m_gl.BufferSubData(GL_ARRAY_BUFFER, 0, SizeOf(corners) / 2, corners.data());
    m_gl.BufferSubData(GL_ARRAY_BUFFER, SizeOf(corners) / 2, SizeOf(corners) / 2, &corners[9]);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    m_gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, SizeOf(indices), indices.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BufferData(GL_ARRAY_BUFFER, SizeOf(wave), wave.data(), GL_DYNAMIC_DRAW);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
}

void CScene::MakeTexture(GLuint texture, const Pixels& pixels) {
    m_gl.BindTexture(GL_TEXTURE_2D, texture);
    m_gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, diarySide, diarySide, GL_RGBA, GL_UNSIGNED_BYTE,
                    pixels.data());
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
}

void CScene::MakeTextures() {
    m_gl.ActiveTexture(GL_TEXTURE0 + imageUnit);
    m_gl.GenTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    MakeTexture(m_textures[0], MakePixels(0));
    const Pixels patch = MakePixels(9);
    m_gl.TexSubImage2D(GL_TEXTURE_2D, 0, 2, 3, 4, 4, GL_RGBA, GL_UNSIGNED_BYTE, patch.data());
    MakeTexture(m_textures[1], MakePixels(14));
    for (GLint level = 1; level < 4; ++level) {
        m_gl.TexImage2D(GL_TEXTURE_2D, level, GL_RGBA, diarySide >> level, diarySide >> level,
                        GL_RGBA, GL_UNSIGNED_BYTE, MakePixels(14 + 5 * level).data());
    }
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
    MakeTexture(m_textures[2], Pixels{});
}

/// What is set here only, every frame finds set.
void CScene::SetUp() {
    MakePrograms();
    MakeBuffers();
    MakeTextures();
    m_target.Make(m_gl);
    m_gl.FrontFace(GL_CCW);
    m_gl.CullFace(GL_BACK);
    m_gl.Enable(GL_DEPTH_TEST);
    m_gl.DepthFunc(GL_LEQUAL);
    m_gl.BlendFunc(GL_SRC_ALPHA, GL_ONE);
    m_gl.StencilFunc(GL_EQUAL, 1, 0xFF);
}

void CScene::ChangeObjects(int frame) {
    if (frame == bannerMade || frame == bannerAgain) {
        m_gl.GenTextures(1, &m_banner);
        MakeTexture(m_banner, MakePixels(40 + frame));
    }
    if (frame == bannerGone) {
        m_gl.DeleteTextures(1, &m_banner);
        m_banner = 0;
    }
    if (frame == stripesMade) {
        m_stripes = MakeProgram(m_gl, shaders::flatVertex, stripesFragment, {"corner", "shade"});
        m_stripesTurn = m_gl.GetUniformLocation(m_stripes, "turn");
        m_stripesCentre = m_gl.GetUniformLocation(m_stripes, "centre");
        m_gl.UseProgram(m_stripes);
        m_gl.Uniform1f(m_gl.GetUniformLocation(m_stripes, "width"), 6.0F);
    }
    if (frame == stripesGone) {
        m_gl.DeleteProgram(m_stripes);
        m_stripes = 0;
    }
    if (frame == subtracting) {
        // Both at once by glBlendEquation isn't kept in the record of a frame's start.
        m_gl.BlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_FUNC_ADD);
    }
    // A row of the diary for each frame; those of the frames before stay.
    const Pixels row = MakePixels(frame);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[2]);
    m_gl.TexSubImage2D(GL_TEXTURE_2D, 0, 0, frame % diarySide, diarySide, 1, GL_RGBA,
                       GL_UNSIGNED_BYTE, row.data());
}

void CScene::DrawGem(int frame, int choice) {
    const float angle = 0.17F * static_cast<float>(frame) + static_cast<float>(choice);
    const float c = std::cos(angle), s = std::sin(angle);
    const std::array<float, 9> turn = {c, 0.4F * s, s, 0, 0.9F, -0.4F, -s, 0.4F * c, c};
    m_gl.UseProgram(m_gem);
    m_gl.UniformMatrix3fv(m_turn, 1, turn.data());
    m_gl.Uniform2i(m_choice, choice, frame % 2);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    for (const GLuint index : {0U, 1U}) {
        m_gl.VertexAttribPointer(index, 3, GL_FLOAT, false, 0, Offset(0));
        m_gl.EnableVertexAttribArray(index);
    }
    m_gl.DrawElements(GL_TRIANGLES, 24, GL_UNSIGNED_SHORT, Offset(0));
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void CScene::DrawIntoTarget(int frame) {
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_target.framebuffer);
    m_gl.Viewport(0, 0, SRenderTarget::size, SRenderTarget::size);
    m_gl.ClearColor(0.1F, 0.1F, 0.4F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawGem(frame, 2);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, 0);
}

void CScene::DrawTile(GLuint texture, float x, float y, float size, float turn) {
    constexpr std::array<float, 8> corners = {-1, -1, 1, -1, 1, 1, -1, 1};
    constexpr std::array<float, 8> texcoords = {0, 0, 1, 0, 1, 1, 0, 1};
    constexpr std::array<std::uint8_t, 6> indices = {0, 1, 2, 0, 2, 3};
    const float c = size * std::cos(turn), s = size * std::sin(turn);
    const std::array<float, 9> placement = {c, s, 0, -s, c, 0, x, y, 1};
    m_gl.BindTexture(GL_TEXTURE_2D, texture);
    m_gl.UniformMatrix3fv(m_placement, 1, placement.data());
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, corners.data());
    m_gl.VertexAttribPointer(1, 2, GL_FLOAT, false, 0, texcoords.data());
    m_gl.DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, indices.data());
}

void CScene::DrawTiles(int frame) {
    const float t = static_cast<float>(frame);
    m_gl.UseProgram(m_tile);
    m_gl.Uniform1f(m_fade, 0.05F * static_cast<float>(frame % 5));
    DrawTile(m_textures[0], -0.7F, 0.6F, 0.25F, 0.1F * t);
    DrawTile(m_textures[1], -0.1F, 0.7F, 0.06F + 0.05F * std::sin(t), 0.0F);
    DrawTile(m_textures[2], 0.6F, 0.6F, 0.3F, 0.0F);
    DrawTile(m_target.texture, -0.6F, -0.5F, 0.3F, 0.2F);
    m_gl.Enable(GL_BLEND);
    DrawTile(m_banner != 0 ? m_banner : m_textures[0], 0.1F, 0.0F, 0.35F, -0.07F * t);
    m_gl.Disable(GL_BLEND);
}

/// A tile that is shown only where another, turning one has set the stencil.
void CScene::DrawCutTile(int frame) {
    m_gl.Enable(GL_STENCIL_TEST);
    m_gl.StencilFunc(GL_ALWAYS, 1, 0xFF);
    m_gl.StencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    m_gl.ColorMask(false, false, false, false);
    DrawTile(m_textures[0], 0.6F, -0.5F, 0.25F, 0.3F * static_cast<float>(frame));
    m_gl.ColorMask(true, true, true, true);
    m_gl.StencilFunc(GL_EQUAL, 1, 0xFF);
    m_gl.StencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    DrawTile(m_textures[2], 0.6F, -0.5F, 0.28F, 0.0F);
    m_gl.Disable(GL_STENCIL_TEST);
}

/// A line in a buffer, of which each frame moves one point; the others are where they were left.
void CScene::DrawWave(int frame) {
    const std::array<float, 2> point = {static_cast<float>(frame % 16) / 8.0F - 0.95F,
                                        0.1F * static_cast<float>(frame % 3 + 1)};
    m_gl.DisableVertexAttribArray(1);
    m_gl.UseProgram(m_flat);
    m_gl.UniformMatrix2fv(m_flatTurn, 1, Turn2(0.02F * static_cast<float>(frame)).data());
    m_gl.Uniform2f(m_centre, 0.0F, -0.2F);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BufferSubData(GL_ARRAY_BUFFER, frame % 16 * SizeOf(point), SizeOf(point), point.data());
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, Offset(0));
    m_gl.VertexAttrib4f(1, 0.4F, 1.0F, 0.9F, 1.0F);
    m_gl.DrawArrays(GL_LINE_STRIP, 0, 16);
    m_gl.DrawArrays(GL_POINTS, 0, 16);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
}

void CScene::DrawStripes(int frame) {
    if (m_stripes == 0) return;
    constexpr std::array<float, 6> corners = {-0.3F, -0.2F, 0.3F, -0.2F, 0.0F, 0.3F};
    constexpr std::array<std::uint8_t, 12> shades = {250, 220, 60,  255, 60,  220,
                                                     90,  255, 220, 60,  180, 255};
    m_gl.UseProgram(m_stripes);
    m_gl.UniformMatrix2fv(m_stripesTurn, 1, Turn2(0.2F * static_cast<float>(frame)).data());
    m_gl.Uniform2f(m_stripesCentre, 0.0F, -0.65F);
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, corners.data());
    m_gl.VertexAttribPointer(1, 4, GL_UNSIGNED_BYTE, true, 0, shades.data());
    m_gl.EnableVertexAttribArray(1);
    m_gl.DrawArrays(GL_TRIANGLES, 0, 3);
    m_gl.DisableVertexAttribArray(1);
}

void CScene::DrawFrame(int frame) {
    ChangeObjects(frame);
    DrawIntoTarget(frame);
    m_gl.Viewport(0, 0, m_size.width, m_size.height);
    m_gl.ClearColor(0.02F * static_cast<float>(frame), 0.3F, 0.35F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    m_gl.Enable(GL_CULL_FACE);
    DrawGem(frame, frame / 4 % 2);
    m_gl.Disable(GL_CULL_FACE);
    DrawTiles(frame);
    DrawCutTile(frame);
    DrawWave(frame);
    DrawStripes(frame);
    m_gl.Enable(GL_SCISSOR_TEST);
    m_gl.Scissor(m_size.width * (frame % 12) / 12, 0, m_size.width / 12, m_size.height / 12);
    m_gl.ClearColor(0.8F, 0.2F, 0.6F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT);
    m_gl.Disable(GL_SCISSOR_TEST);
    m_gl.Swap();
}

}  // namespace

bool DrawSeekScene(IBackEnd& backEnd, const SSceneSize& size) {
    return DrawScene<CEs2Calls, CScene>(backEnd, size);
}

}  // namespace kestrail::samples
