#include <array>
#include <cmath>
#include <cstddef>

#include "samples/common/draw_scene.h"
#include "samples/common/memory.h"
#include "samples/es2/calls.h"
#include "samples/es2/program.h"
#include "samples/es2/render_target.h"
#include "samples/es2/shaders.h"

namespace kestrail::samples {

// A lit cube seen directly and through a texture that it is rendered to, tiles of several texture
// formats, translucent client-array shapes, a stencilled star.
namespace {

// Attributes that client arrays are given to: the recorded index and the live one have to agree,
// so they are bound by hand.
constexpr GLuint cornerIndex = 0;
constexpr GLuint texcoordIndex = 1;
constexpr GLuint colourIndex = 2;

struct STileVertex {
    float x, y, s, t;
    std::uint8_t colour[4];
};

struct SCubeVertex {
    float position[3];
    float normal[3];
};

/// The rotation about an axis tilted by `tilt`, in columns.
std::array<float, 9> Turn(float angle, float tilt) {
    const float c = std::cos(angle), s = std::sin(angle);
    const float ct = std::cos(tilt), st = std::sin(tilt);
    return {c, s * st, -s * ct, 0.0F, ct, st, s, -c * st, c * ct};
}

class CScene {
public:
    CScene(CEs2Calls& gl, const SSceneSize& size) : m_gl(gl), m_size(size) {}

    void SetUp();
    void DrawFrame(int frame);
    void TearDown();

private:
    struct SCubeUniforms {
        GLint projection, turn, lights, palette, choice;
    };

    void MakePrograms();
    void MakeCube();
    void MakeTextures();
    void MakeMipmaps(GLuint texture);
    void MakeFlickerTexture(int frame);
    void DrawCube(int frame, int choice, bool swapped, float aspect);
    void DrawIntoTarget(int frame);
    void DrawBackground(int frame);
    void DrawTile(GLuint texture, float x, float y, float size, float turn, float fade);
    void DrawTiles(int frame);
    void DrawGlass(int frame);
    void DrawStar(int frame);
    void DrawStrip(int frame);
    void SetTurn(float angle);

    CEs2Calls& m_gl;
    SSceneSize m_size;
    GLuint m_tile = 0, m_cube = 0, m_flat = 0;
    GLint m_placement = 0, m_filter = 0, m_fade = 0, m_image = 0;
    GLint m_flatTurn = 0, m_centre = 0;
    GLuint m_position = 0, m_normal = 0;
    SCubeUniforms m_cubeUniforms{};
    std::array<GLuint, 3> m_buffers{};  // cube vertices, cube indices, strip
    std::array<GLuint, 7> m_textures{};
    GLuint m_flicker = 0;
    SRenderTarget m_target;
};

void CScene::MakePrograms() {
    m_tile = MakeProgram(m_gl, shaders::tileVertex, shaders::tileFragment,
                         {"corner", "texcoord", "colour"});
    m_fade = m_gl.GetUniformLocation(m_tile, "fade");
    m_placement = m_gl.GetUniformLocation(m_tile, "placement");
    m_image = m_gl.GetUniformLocation(m_tile, "image");
    m_filter = m_gl.GetUniformLocation(m_tile, "filterColour");

    m_cube = MakeProgram(m_gl, shaders::cubeVertex, shaders::cubeFragment, {});
    m_normal = static_cast<GLuint>(m_gl.GetAttribLocation(m_cube, "normal"));
    m_position = static_cast<GLuint>(m_gl.GetAttribLocation(m_cube, "position"));
    m_cubeUniforms = {
        m_gl.GetUniformLocation(m_cube, "projection"), m_gl.GetUniformLocation(m_cube, "turn"),
        m_gl.GetUniformLocation(m_cube, "lights"), m_gl.GetUniformLocation(m_cube, "palette"),
        m_gl.GetUniformLocation(m_cube, "choice")};

    m_flat = MakeProgram(m_gl, shaders::flatVertex, shaders::flatFragment, {"corner", "shade"});
    m_flatTurn = m_gl.GetUniformLocation(m_flat, "turn");
    m_centre = m_gl.GetUniformLocation(m_flat, "centre");
}

void CScene::MakeCube() {
    std::array<SCubeVertex, 24> vertices{};
    std::array<std::uint16_t, 36> indices{};
    for (std::size_t face = 0; face < 6; ++face) {
        const std::size_t axis = face / 2;
        const float side = face % 2 == 0 ? 0.5F : -0.5F;
        for (std::size_t corner = 0; corner < 4; ++corner) {
            SCubeVertex& vertex = vertices[face * 4 + corner];
            vertex.position[axis] = side;
            vertex.position[(axis + 1) % 3] = (corner & 1) != 0 ? side : -side;
            vertex.position[(axis + 2) % 3] = (corner & 2) != 0 ? 0.5F : -0.5F;
            vertex.normal[axis] = 2.0F * side;
        }
        constexpr std::array<std::size_t, 6> order = {0, 1, 2, 2, 1, 3};
        for (std::size_t i = 0; i < 6; ++i) {
            indices[face * 6 + i] = static_cast<std::uint16_t>(face * 4 + order[i]);
        }
    }
    m_gl.GenBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BufferData(GL_ARRAY_BUFFER, SizeOf(vertices), vertices.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    m_gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, SizeOf(indices), indices.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BufferData(GL_ARRAY_BUFFER, 128 * static_cast<GLsizeiptr>(sizeof(float)), nullptr,
                    GL_DYNAMIC_DRAW);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
}

void CScene::MakeMipmaps(GLuint texture) {
    m_gl.BindTexture(GL_TEXTURE_2D, texture);
    for (GLint level = 0; level < 4; ++level) {
        const GLsizei side = 8 >> level;
        std::vector<std::uint8_t> pixels;
        for (int i = 0; i < side * side; ++i) {
            const int checker = (i + i / side) & 1;
            pixels.insert(pixels.end(),
                          {Byte(level * 80), Byte(255 - level * 60), Byte(checker * 200), 255});
        }
        m_gl.TexImage2D(GL_TEXTURE_2D, level, GL_RGBA, side, side, GL_RGBA, GL_UNSIGNED_BYTE,
                        pixels.data());
    }
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
    m_gl.TexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, static_cast<GLfloat>(GL_NEAREST));
}

void CScene::MakeTextures() {
    struct SFormat {
        GLenum format, type;
        GLsizei side;
        std::size_t pixelSize;
        GLint alignment;
    };
    // The odd sides and alignments make rows whose padding matters.
    constexpr std::array<SFormat, 6> formats = {{
        {GL_RGBA, GL_UNSIGNED_BYTE, 16, 4, 4},
        {GL_RGB, GL_UNSIGNED_BYTE, 5, 3, 1},
        {GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 7, 2, 4},
        {GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, 8, 2, 8},
        {GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, 3, 2, 4},
        {GL_LUMINANCE, GL_UNSIGNED_BYTE, 5, 1, 2},
    }};
    m_gl.GenTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    for (std::size_t k = 0; k < formats.size(); ++k) {
        const SFormat& format = formats[k];
        const std::size_t alignment = static_cast<std::size_t>(format.alignment);
        const std::size_t side = static_cast<std::size_t>(format.side);
        const std::size_t row = (side * format.pixelSize + alignment - 1) / alignment * alignment;
        std::vector<std::uint8_t> pixels(row * side);
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = Byte(static_cast<int>(i * (29 + 10 * k) + (i / row) * 61));
        }
        m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, format.alignment);
        m_gl.BindTexture(GL_TEXTURE_2D, m_textures[k]);
        m_gl.TexImage2D(GL_TEXTURE_2D, 0, format.format, format.side, format.side, format.format,
                        format.type, pixels.data());
        m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[0]);
    m_gl.GenerateMipmap(GL_TEXTURE_2D);
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    MakeMipmaps(m_textures[6]);
}

void CScene::SetUp() {
    MakePrograms();
    MakeCube();
    MakeTextures();
    m_target.Make(m_gl);
    m_gl.FrontFace(GL_CCW);
    m_gl.CullFace(GL_BACK);
    m_gl.ClearStencil(0);
}

/// A texture made anew every few frames, so that names are deleted and handed out again.
void CScene::MakeFlickerTexture(int frame) {
    if (frame % 4 == 0) {
        if (m_flicker != 0) m_gl.DeleteTextures(1, &m_flicker);
        m_gl.GenTextures(1, &m_flicker);
        m_gl.BindTexture(GL_TEXTURE_2D, m_flicker);
        m_gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 8, 8, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
        m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        const std::vector<std::uint8_t> grey(std::size_t{8} * 8 * 3, 90);
        m_gl.TexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 8, 8, GL_RGB, GL_UNSIGNED_BYTE, grey.data());
    }
    std::array<std::uint8_t, 9> patch{};
    for (std::size_t i = 0; i < patch.size(); ++i) {
        patch[i] = Byte(frame * 37 + static_cast<int>(i) * 53);
    }
    m_gl.BindTexture(GL_TEXTURE_2D, m_flicker);
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 1);
    m_gl.TexSubImage2D(GL_TEXTURE_2D, 0, frame % 8, (frame * 3) % 6, 1, 3, GL_RGB, GL_UNSIGNED_BYTE,
                       patch.data());
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

void CScene::DrawCube(int frame, int choice, bool swapped, float aspect) {
    const float angle = 0.11F * static_cast<float>(frame);
    const std::array<float, 9> turn = Turn(swapped ? -angle : angle, 0.6F);
    const std::array<float, 16> projection = {0.9F / aspect, 0, 0, 0, 0,    0.9F, 0, 0, 0, 0,
                                              -0.5F,         0, 0, 0, 0.1F, 1.0F};
    const std::array<float, 6> lights = {0.3F, 0.8F, 0.9F, -0.8F, std::sin(angle), 0.4F};
    const std::array<float, 12> palette = {0.9F, 0.3F, 0.2F, 1.0F, 0.2F, 0.8F,
                                           0.4F, 1.0F, 0.9F, 0.8F, 0.3F, 1.0F};
    m_gl.UseProgram(m_cube);
    m_gl.UniformMatrix4fv(m_cubeUniforms.projection, 1, projection.data());
    m_gl.UniformMatrix3fv(m_cubeUniforms.turn, 1, turn.data());
    m_gl.Uniform3fv(m_cubeUniforms.lights, 2, lights.data());
    m_gl.Uniform4fv(m_cubeUniforms.palette, 3, palette.data());
    m_gl.Uniform2i(m_cubeUniforms.choice, choice, swapped ? 1 : 0);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    m_gl.VertexAttribPointer(m_position, 3, GL_FLOAT, false, sizeof(SCubeVertex), Offset(0));
    m_gl.VertexAttribPointer(m_normal, 3, GL_FLOAT, false, sizeof(SCubeVertex),
                             Offset(offsetof(SCubeVertex, normal)));
    m_gl.EnableVertexAttribArray(m_position);
    m_gl.EnableVertexAttribArray(m_normal);
    m_gl.Enable(GL_DEPTH_TEST);
    m_gl.DepthFunc(GL_LEQUAL);
    m_gl.Enable(GL_CULL_FACE);
    m_gl.DrawElements(GL_TRIANGLES, 18, GL_UNSIGNED_SHORT, Offset(0));
    m_gl.DrawElements(GL_TRIANGLES, 18, GL_UNSIGNED_SHORT, Offset(18 * sizeof(std::uint16_t)));
    m_gl.Disable(GL_CULL_FACE);
    m_gl.Disable(GL_DEPTH_TEST);
    m_gl.DisableVertexAttribArray(m_position);
    m_gl.DisableVertexAttribArray(m_normal);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void CScene::DrawIntoTarget(int frame) {
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_target.framebuffer);
    m_gl.Viewport(0, 0, SRenderTarget::size, SRenderTarget::size);
    m_gl.ClearColor(0.1F, 0.1F, 0.4F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawCube(frame, 2, true, 1.0F);
    m_gl.BindFramebuffer(GL_FRAMEBUFFER, 0);
    m_gl.Viewport(0, 0, m_size.width, m_size.height);
}

void CScene::SetTurn(float angle) {
    const float c = std::cos(angle), s = std::sin(angle);
    const std::array<float, 4> turn = {c, s, -s, c};
    m_gl.UniformMatrix2fv(m_flatTurn, 1, turn.data());
}

void CScene::DrawBackground(int frame) {
    const std::array<float, 8> corners = {-1, -1, 1, -1, -1, 1, 1, 1};
    std::array<std::uint8_t, 16> shades = {20, 30, 60, 255, 60, 40,  30,  255,
                                           90, 60, 90, 255, 20, 110, 120, 255};
    shades[0] = Byte(20 + frame * 5);
    m_gl.UseProgram(m_flat);
    SetTurn(0.0F);
    m_gl.Uniform2f(m_centre, 0.0F, 0.0F);
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, corners.data());
    m_gl.VertexAttribPointer(1, 4, GL_UNSIGNED_BYTE, true, 0, shades.data());
    m_gl.EnableVertexAttribArray(0);
    m_gl.EnableVertexAttribArray(1);
    m_gl.DepthMask(false);
    m_gl.DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    m_gl.DepthMask(true);
    m_gl.DisableVertexAttribArray(0);
    m_gl.DisableVertexAttribArray(1);
}

void CScene::DrawTile(GLuint texture, float x, float y, float size, float turn, float fade) {
    constexpr std::array<STileVertex, 4> vertices = {{
        {-1, -1, 0, 0, {255, 0, 0, 255}},
        {1, -1, 1, 0, {0, 255, 0, 255}},
        {1, 1, 1, 1, {0, 0, 255, 255}},
        {-1, 1, 0, 1, {255, 255, 255, 255}},
    }};
    constexpr std::array<std::uint8_t, 6> indices = {0, 1, 2, 0, 2, 3};
    const float c = size * std::cos(turn), s = size * std::sin(turn);
    const std::array<float, 9> placement = {c, s, 0, -s, c, 0, x, y, 1};
    m_gl.BindTexture(GL_TEXTURE_2D, texture);
    m_gl.UniformMatrix3fv(m_placement, 1, placement.data());
    m_gl.Uniform1f(m_fade, fade);
    m_gl.VertexAttribPointer(cornerIndex, 2, GL_FLOAT, false, sizeof(STileVertex), vertices.data());
    m_gl.VertexAttribPointer(texcoordIndex, 2, GL_FLOAT, false, sizeof(STileVertex),
                             &vertices[0].s);
    m_gl.VertexAttribPointer(colourIndex, 4, GL_UNSIGNED_BYTE, true, sizeof(STileVertex),
                             vertices[0].colour);
    m_gl.DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, indices.data());
}

void CScene::DrawTiles(int frame) {
    const float t = static_cast<float>(frame);
    m_gl.UseProgram(m_tile);
    m_gl.ActiveTexture(GL_TEXTURE0);
    m_gl.Uniform1i(m_image, 0);
    m_gl.Uniform4f(m_filter, 1.0F, 0.95F, 0.9F, 1.0F);
    for (GLuint index : {cornerIndex, texcoordIndex, colourIndex}) {
        m_gl.EnableVertexAttribArray(index);
    }
    for (std::size_t k = 0; k < m_textures.size(); ++k) {
        const float place = static_cast<float>(k);
        // The mipmapped ones grow and shrink through their levels.
        const bool mipmapped = k == 0 || k == 6;
        const float size = mipmapped ? 0.06F + 0.05F * std::sin(0.4F * t + place) : 0.11F;
        DrawTile(m_textures[k], -0.86F + 0.285F * place, 0.82F, size, 0.05F * t, 0.1F);
    }
    DrawTile(m_flicker, 0.78F, 0.35F, 0.16F, 0.0F, 0.0F);
    DrawTile(m_target.texture, 0.68F, -0.25F, 0.26F, 0.1F * std::sin(0.2F * t), 0.0F);
    m_gl.DisableVertexAttribArray(colourIndex);
    m_gl.VertexAttrib4f(colourIndex, 1.0F, 0.5F, 0.0F, 1.0F);
    DrawTile(m_textures[3], -0.82F, 0.4F, 0.12F, -0.1F * t, 0.5F);
    m_gl.DisableVertexAttribArray(cornerIndex);
    m_gl.DisableVertexAttribArray(texcoordIndex);
}

/// Translucent triangles out of one client array, drawn from its middle, under several equations.
void CScene::DrawGlass(int frame) {
    std::array<float, 30> corners{};
    for (std::size_t i = 0; i < 15; ++i) {
        const float angle = 2.1F * static_cast<float>(i) + 0.07F * static_cast<float>(frame);
        const float radius = 0.2F + 0.03F * static_cast<float>(i);
        corners[2 * i] = radius * std::cos(angle);
        corners[2 * i + 1] = radius * std::sin(angle);
    }
    const std::array<float, 3> green = {0.1F, 0.7F, 0.3F};
    m_gl.UseProgram(m_flat);
    SetTurn(0.02F * static_cast<float>(frame));
    m_gl.Uniform2f(m_centre, -0.5F, -0.4F);
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, corners.data());
    m_gl.EnableVertexAttribArray(0);
    m_gl.Enable(GL_BLEND);
    m_gl.BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_gl.VertexAttrib4f(1, 0.9F, 0.8F, 0.2F, 0.45F);
    m_gl.DrawArrays(GL_TRIANGLES, 3, 6);
    m_gl.BlendFuncSeparate(GL_CONSTANT_COLOR, GL_ONE, GL_ONE, GL_ZERO);
    m_gl.BlendColor(0.5F, 0.4F, 0.8F, 1.0F);
    m_gl.VertexAttrib3fv(1, green.data());
    m_gl.DrawArrays(GL_TRIANGLES, 9, 3);
    m_gl.BlendFunc(GL_ONE, GL_ONE);
    m_gl.BlendEquation(GL_FUNC_REVERSE_SUBTRACT);
    m_gl.ColorMask(true, true, false, true);
    m_gl.DrawArrays(GL_TRIANGLES, 12, 3);
    m_gl.ColorMask(true, true, true, true);
    m_gl.BlendEquation(GL_FUNC_ADD);
    m_gl.Disable(GL_BLEND);
    m_gl.DisableVertexAttribArray(0);
}

/// A star cut into the stencil buffer, then filled with stripes where it was cut an odd number of
/// times.
void CScene::DrawStar(int frame) {
    std::array<float, 10> points{};
    for (std::size_t i = 0; i < 5; ++i) {
        const float angle = 2.513F * static_cast<float>(i);
        points[2 * i] = 0.3F * std::cos(angle);
        points[2 * i + 1] = 0.3F * std::sin(angle);
    }
    constexpr std::array<std::uint16_t, 9> fan = {0, 1, 2, 0, 2, 3, 0, 3, 4};
    m_gl.Uniform2f(m_centre, 0.1F, -0.62F);
    SetTurn(-0.09F * static_cast<float>(frame));
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, points.data());
    m_gl.EnableVertexAttribArray(0);
    m_gl.Enable(GL_STENCIL_TEST);
    m_gl.StencilMask(0xFF);
    m_gl.StencilFunc(GL_ALWAYS, 0, 0xFF);
    m_gl.StencilOp(GL_KEEP, GL_KEEP, GL_INVERT);
    m_gl.ColorMask(false, false, false, false);
    m_gl.DrawElements(GL_TRIANGLES, 9, GL_UNSIGNED_SHORT, fan.data());
    m_gl.ColorMask(true, true, true, true);
    m_gl.StencilFunc(GL_EQUAL, 0xFF, 0xFF);
    m_gl.StencilOp(GL_KEEP, GL_KEEP, GL_ZERO);
    std::array<float, 16> stripes{};
    for (std::size_t i = 0; i < 8; ++i) {
        stripes[2 * i] = (i & 1) != 0 ? 0.35F : -0.35F;
        stripes[2 * i + 1] = 0.1F * static_cast<float>(i) - 0.35F;
    }
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, stripes.data());
    m_gl.VertexAttrib4f(1, 1.0F, 0.9F, 0.5F, 1.0F);
    m_gl.DrawArrays(GL_TRIANGLE_STRIP, 0, 8);
    m_gl.Disable(GL_STENCIL_TEST);
    m_gl.DisableVertexAttribArray(0);
}

/// A wave kept in a buffer of which a part is rewritten each frame, drawn as line and points.
void CScene::DrawStrip(int frame) {
    const int half = frame % 2 * 16;
    std::array<float, 32> wave{};
    for (int i = 0; i < 16; ++i) {
        const float x = static_cast<float>(half + i) / 16.0F - 1.0F;
        wave[2 * static_cast<std::size_t>(i)] = x;
        wave[2 * static_cast<std::size_t>(i) + 1] =
            0.08F * std::sin(6.0F * x + 0.3F * static_cast<float>(frame));
    }
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BufferSubData(GL_ARRAY_BUFFER, frame % 2 * SizeOf(wave), SizeOf(wave), wave.data());
    m_gl.Uniform2f(m_centre, 0.45F, 0.6F);
    SetTurn(0.0F);
    m_gl.VertexAttribPointer(0, 2, GL_FLOAT, false, 0, Offset(0));
    m_gl.EnableVertexAttribArray(0);
    m_gl.LineWidth(2.0F);
    m_gl.VertexAttrib4f(1, 0.4F, 1.0F, 0.9F, 1.0F);
    // Before the second frame one half of the buffer is undefined.
    const GLsizei count = frame == 0 ? 16 : 32;
    m_gl.DrawArrays(GL_LINE_STRIP, 0, count);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
    constexpr std::array<std::uint8_t, 4> picks = {1, 5, 9, 15};
    m_gl.VertexAttrib4f(1, 1.0F, 1.0F, 1.0F, 1.0F);
    m_gl.DrawElements(GL_POINTS, 4, GL_UNSIGNED_BYTE, picks.data());
    m_gl.DisableVertexAttribArray(0);
}

void CScene::DrawFrame(int frame) {
    MakeFlickerTexture(frame);
    DrawIntoTarget(frame);
    m_gl.ClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    DrawBackground(frame);
    m_gl.Enable(GL_SCISSOR_TEST);
    m_gl.Scissor(m_size.width * (frame % 12) / 12, 0, m_size.width / 12, m_size.height / 12);
    m_gl.ClearColor(0.8F, 0.2F, 0.6F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT);
    m_gl.Disable(GL_SCISSOR_TEST);
    m_gl.Enable(GL_POLYGON_OFFSET_FILL);
    m_gl.PolygonOffset(1.0F, 1.0F);
    DrawCube(frame, frame / 4 % 3, false,
             static_cast<float>(m_size.width) / static_cast<float>(m_size.height));
    m_gl.Disable(GL_POLYGON_OFFSET_FILL);
    DrawTiles(frame);
    DrawGlass(frame);
    DrawStar(frame);
    DrawStrip(frame);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[1]);
    m_gl.CopyTexSubImage2D(GL_TEXTURE_2D, 0, 1, 1, m_size.width / 2, m_size.height / 2, 3, 3);
    m_gl.Swap();
}

void CScene::TearDown() {
    m_gl.DeleteTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    m_gl.DeleteTextures(1, &m_flicker);
    m_target.Delete(m_gl);
    m_gl.DeleteBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
    for (GLuint program : {m_tile, m_cube, m_flat}) m_gl.DeleteProgram(program);
}

}  // namespace

bool DrawEs2Scene(IBackEnd& backEnd, const SSceneSize& size) {
    return DrawScene<CEs2Calls, CScene>(backEnd, size);
}

}  // namespace kestrail::samples
