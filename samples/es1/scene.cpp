#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "samples/common/draw_scene.h"
#include "samples/common/memory.h"
#include "samples/es1/calls.h"

namespace kestrail::samples {

// A lit cube in fog, seen directly and through a texture that it is rendered to, a tile of two
// textures at once, point sprites, a wave in a mapped buffer, a stencilled disc.
namespace {

constexpr GLsizei targetSize = 32;

// Positions are fixed-point, and the padding makes a stride that no packed array has.
struct SCubeVertex {
    GLfixed position[3];
    GLbyte normal[3];
    GLbyte padding;
};

struct STileVertex {
    GLshort x, y;
    GLfloat s, t;
};

GLfixed Fix(float value) {
    return static_cast<GLfixed>(std::lround(value * 65536.0F));
}

std::vector<GLfixed> FixAll(const std::vector<float>& values) {
    std::vector<GLfixed> fixed(values.size());
    std::transform(values.begin(), values.end(), fixed.begin(), Fix);
    return fixed;
}

class CScene {
public:
    CScene(CEs1Calls& gl, const SSceneSize& size) : m_gl(gl), m_size(size) {}

    void SetUp();
    void DrawFrame(int frame);
    void TearDown();

private:
    void MakeCube();
    void MakeTextures();
    void MakeTarget();
    void SetLights();
    void DrawCube(int frame);
    void DrawIntoTarget(int frame);
    void DrawBackground(int frame);
    void DrawCubeInFog(int frame);
    void DrawTiles(int frame);
    void DrawTargetTile(int frame);
    void DrawSprites(int frame);
    void DrawWave(int frame);
    void DrawDisc(int frame);
    void UseFlatView(bool fixedPoint);

    CEs1Calls& m_gl;
    SSceneSize m_size;
    std::array<GLuint, 3> m_buffers{};   // cube vertices, cube indices, wave
    std::array<GLuint, 4> m_textures{};  // odd rows, 565, mipmapped, sprite
    GLuint m_targetTexture = 0, m_target = 0, m_targetDepth = 0;
};

void CScene::MakeCube() {
    std::array<SCubeVertex, 24> vertices{};
    std::array<GLushort, 36> indices{};
    for (std::size_t face = 0; face < 6; ++face) {
        const std::size_t axis = face / 2;
        const float side = face % 2 == 0 ? 1.0F : -1.0F;
        for (std::size_t corner = 0; corner < 4; ++corner) {
            SCubeVertex& vertex = vertices[face * 4 + corner];
            vertex.position[axis] = Fix(side);
            vertex.position[(axis + 1) % 3] = Fix((corner & 1) != 0 ? side : -side);
            vertex.position[(axis + 2) % 3] = Fix((corner & 2) != 0 ? 1.0F : -1.0F);
            vertex.normal[axis] = side > 0 ? GLbyte{127} : GLbyte{-127};
        }
        constexpr std::array<std::size_t, 6> order = {0, 1, 2, 2, 1, 3};
        for (std::size_t i = 0; i < 6; ++i) {
            indices[face * 6 + i] = static_cast<GLushort>(face * 4 + order[i]);
        }
    }
    m_gl.GenBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BufferData(GL_ARRAY_BUFFER, SizeOf(vertices), nullptr, GL_STATIC_DRAW);
    m_gl.BufferSubData(GL_ARRAY_BUFFER, 0, SizeOf(vertices), vertices.data());
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    m_gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, SizeOf(indices), indices.data(), GL_STATIC_DRAW);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[2]);
    m_gl.BufferData(GL_ARRAY_BUFFER, 64 * static_cast<GLsizeiptr>(sizeof(float)), nullptr,
                    GL_DYNAMIC_DRAW);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
}

void CScene::MakeTextures() {
    struct SFormat {
        GLenum format, type;
        GLsizei width, height;
        std::size_t pixelSize;
        GLint alignment;
    };
    constexpr std::array<SFormat, 4> formats = {{
        {GL_RGB, GL_UNSIGNED_BYTE, 2, 8, 3, 1},
        {GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 1, 8, 2, 4},
        {GL_RGBA, GL_UNSIGNED_BYTE, 16, 16, 4, 4},
        {GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, 4, 4, 2, 8},
    }};
    m_gl.GenTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    for (std::size_t k = 0; k < formats.size(); ++k) {
        const SFormat& format = formats[k];
        const auto alignment = static_cast<std::size_t>(format.alignment);
        const std::size_t row =
            (static_cast<std::size_t>(format.width) * format.pixelSize + alignment - 1) /
            alignment * alignment;
        std::vector<std::uint8_t> pixels(row * static_cast<std::size_t>(format.height));
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = Byte(static_cast<int>(i * (37 + 6 * k) + (i / row) * 83 + 60));
        }
        m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, format.alignment);
        m_gl.BindTexture(GL_TEXTURE_2D, m_textures[k]);
        m_gl.TexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                           k % 2 == 0 ? GL_NEAREST : GL_LINEAR);
        m_gl.TexImage2D(GL_TEXTURE_2D, 0, format.format, format.width, format.height, format.format,
                        format.type, pixels.data());
    }
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[2]);
    m_gl.GenerateMipmapOES(GL_TEXTURE_2D);
    m_gl.TexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                       static_cast<GLfloat>(GL_LINEAR_MIPMAP_NEAREST));
}

void CScene::MakeTarget() {
    m_gl.GenTextures(1, &m_targetTexture);
    m_gl.BindTexture(GL_TEXTURE_2D, m_targetTexture);
    m_gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, targetSize, targetSize, GL_RGBA, GL_UNSIGNED_BYTE,
                    nullptr);
    m_gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    m_gl.GenRenderbuffersOES(1, &m_targetDepth);
    m_gl.BindRenderbufferOES(GL_RENDERBUFFER_OES, m_targetDepth);
    m_gl.RenderbufferStorageOES(GL_RENDERBUFFER_OES, GL_DEPTH_COMPONENT16_OES, targetSize,
                                targetSize);
    m_gl.GenFramebuffersOES(1, &m_target);
    m_gl.BindFramebufferOES(GL_FRAMEBUFFER_OES, m_target);
    m_gl.FramebufferTexture2DOES(GL_FRAMEBUFFER_OES, GL_COLOR_ATTACHMENT0_OES, GL_TEXTURE_2D,
                                 m_targetTexture, 0);
    m_gl.FramebufferRenderbufferOES(GL_FRAMEBUFFER_OES, GL_DEPTH_ATTACHMENT_OES,
                                    GL_RENDERBUFFER_OES, m_targetDepth);
    m_gl.CheckFramebufferStatusOES(GL_FRAMEBUFFER_OES);
    m_gl.BindFramebufferOES(GL_FRAMEBUFFER_OES, 0);
}

void CScene::SetLights() {
    m_gl.LightModelfv(GL_LIGHT_MODEL_AMBIENT, {0.2F, 0.2F, 0.25F, 1.0F});
    m_gl.LightModelx(GL_LIGHT_MODEL_TWO_SIDE, 0);
    m_gl.Lightfv(GL_LIGHT0, GL_DIFFUSE, {0.9F, 0.8F, 0.6F, 1.0F});
    m_gl.Lightfv(GL_LIGHT0, GL_SPECULAR, {0.7F, 0.7F, 0.7F, 1.0F});
    m_gl.Lightxv(GL_LIGHT1, GL_DIFFUSE, FixAll({0.1F, 0.3F, 0.7F, 1.0F}));
    m_gl.Lightf(GL_LIGHT1, GL_SPOT_CUTOFF, 60.0F);
    m_gl.Lightx(GL_LIGHT1, GL_LINEAR_ATTENUATION, Fix(0.05F));
    m_gl.Materialxv(GL_FRONT_AND_BACK, GL_SPECULAR, FixAll({0.6F, 0.6F, 0.5F, 1.0F}));
    m_gl.Materialf(GL_FRONT_AND_BACK, GL_SHININESS, 12.0F);
    m_gl.Materialx(GL_FRONT_AND_BACK, GL_SHININESS, Fix(9.5F));
}

void CScene::SetUp() {
    MakeCube();
    MakeTextures();
    MakeTarget();
    SetLights();
    m_gl.Hint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    m_gl.FrontFace(GL_CCW);
    m_gl.CullFace(GL_BACK);
    m_gl.ClearStencil(0);
    m_gl.ClearDepthf(1.0F);
}

void CScene::UseFlatView(bool fixedPoint) {
    m_gl.MatrixMode(GL_PROJECTION);
    m_gl.LoadIdentity();
    if (fixedPoint) {
        m_gl.Orthox(Fix(-100.0F), Fix(100.0F), Fix(-75.0F), Fix(75.0F), Fix(-1.0F), Fix(1.0F));
    } else {
        m_gl.Orthof(-100.0F, 100.0F, -75.0F, 75.0F, -1.0F, 1.0F);
    }
    m_gl.MatrixMode(GL_MODELVIEW);
    m_gl.LoadIdentity();
}

/// The cube in the projection in hand, two halves of it in two colours.
void CScene::DrawCube(int frame) {
    const float t = static_cast<float>(frame);
    m_gl.MatrixMode(GL_MODELVIEW);
    m_gl.LoadMatrixx(FixAll({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0.25F, 0, 1}));
    m_gl.Lightfv(GL_LIGHT0, GL_POSITION, {2.0F, 3.0F, 1.0F, 0.0F});
    m_gl.Lightxv(GL_LIGHT1, GL_POSITION, FixAll({-3.0F, 0.5F, 1.0F, 1.0F}));
    m_gl.Lightfv(GL_LIGHT1, GL_SPOT_DIRECTION, {0.6F, 0.0F, -1.0F});
    m_gl.PushMatrix();
    m_gl.Translatex(0, Fix(-0.25F), Fix(-5.0F));
    m_gl.Rotatex(Fix(6.0F * t), Fix(0.2F), Fix(1.0F), 0);
    m_gl.Rotatef(20.0F, 1.0F, 0.0F, 0.4F);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    m_gl.VertexPointer(3, GL_FIXED, sizeof(SCubeVertex), Offset(0));
    m_gl.NormalPointer(GL_BYTE, sizeof(SCubeVertex), Offset(offsetof(SCubeVertex, normal)));
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.EnableClientState(GL_NORMAL_ARRAY);
    for (GLenum cap : {GL_DEPTH_TEST, GL_CULL_FACE, GL_LIGHTING, GL_LIGHT0, GL_LIGHT1}) {
        m_gl.Enable(cap);
    }
    m_gl.DepthFunc(GL_LEQUAL);
    m_gl.Materialfv(GL_FRONT_AND_BACK, GL_AMBIENT, {0.5F, 0.4F, 0.4F, 1.0F});
    m_gl.Materialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, {0.9F, 0.4F, 0.3F, 1.0F});
    m_gl.DrawElements(GL_TRIANGLES, 18, GL_UNSIGNED_SHORT, Offset(0));
    m_gl.Materialxv(GL_FRONT_AND_BACK, GL_DIFFUSE, FixAll({0.3F, 0.8F, 0.5F, 1.0F}));
    m_gl.DrawElements(GL_TRIANGLES, 18, GL_UNSIGNED_SHORT, Offset(18 * sizeof(GLushort)));
    for (GLenum cap : {GL_DEPTH_TEST, GL_CULL_FACE, GL_LIGHTING, GL_LIGHT0, GL_LIGHT1}) {
        m_gl.Disable(cap);
    }
    m_gl.DisableClientState(GL_NORMAL_ARRAY);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_gl.PopMatrix();
}

void CScene::DrawIntoTarget(int frame) {
    m_gl.BindFramebufferOES(GL_FRAMEBUFFER_OES, m_target);
    m_gl.Viewport(0, 0, targetSize, targetSize);
    m_gl.ClearColorx(Fix(0.1F), Fix(0.2F), Fix(0.5F), Fix(1.0F));
    m_gl.ClearDepthx(Fix(1.0F));
    m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_gl.MatrixMode(GL_PROJECTION);
    m_gl.LoadIdentity();
    m_gl.Frustumx(Fix(-0.5F), Fix(0.5F), Fix(-0.5F), Fix(0.5F), Fix(1.0F), Fix(20.0F));
    DrawCube(3 * frame);
    m_gl.BindFramebufferOES(GL_FRAMEBUFFER_OES, 0);
    m_gl.Viewport(0, 0, m_size.width, m_size.height);
}

void CScene::DrawBackground(int frame) {
    constexpr std::array<GLbyte, 8> corners = {-100, -75, 100, -75, -100, 75, 100, 75};
    std::array<GLubyte, 16> colours = {20, 40, 60, 255, 70,  30, 40,  255,
                                       90, 80, 30, 255, 150, 90, 130, 255};
    colours[0] = Byte(20 + 7 * frame);
    UseFlatView(true);
    m_gl.VertexPointer(2, GL_BYTE, 0, corners.data());
    m_gl.ColorPointer(4, GL_UNSIGNED_BYTE, 0, colours.data());
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.EnableClientState(GL_COLOR_ARRAY);
    m_gl.ShadeModel(GL_SMOOTH);
    m_gl.DepthMask(false);
    m_gl.DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    m_gl.DepthMask(true);
    m_gl.DisableClientState(GL_COLOR_ARRAY);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
}

void CScene::DrawCubeInFog(int frame) {
    m_gl.MatrixMode(GL_PROJECTION);
    m_gl.LoadIdentity();
    m_gl.Frustumf(-0.5F, 0.5F, -0.375F, 0.375F, 1.0F, 20.0F);
    m_gl.Enable(GL_FOG);
    m_gl.Fogx(GL_FOG_MODE, GL_LINEAR);
    m_gl.Fogf(GL_FOG_START, 3.5F);
    m_gl.Fogx(GL_FOG_END, Fix(7.0F));
    if (frame % 2 == 0) {
        m_gl.Fogfv(GL_FOG_COLOR, {0.5F, 0.5F, 0.6F, 1.0F});
    } else {
        m_gl.Fogxv(GL_FOG_COLOR, FixAll({0.55F, 0.5F, 0.6F, 1.0F}));
    }
    m_gl.DepthRangef(0.1F, 0.9F);
    DrawCube(frame);
    m_gl.DepthRangex(0, Fix(1.0F));
    m_gl.Disable(GL_FOG);
}

/// Two textures on one tile, their coordinates from one strided client array and one packed one,
/// the second turned by its texture matrix.
void CScene::DrawTiles(int frame) {
    const float t = static_cast<float>(frame);
    constexpr std::array<STileVertex, 4> vertices = {{{-30, -20, 0.0F, 0.0F},
                                                      {30, -20, 2.0F, 0.0F},
                                                      {30, 20, 2.0F, 2.0F},
                                                      {-30, 20, 0.0F, 2.0F}}};
    constexpr std::array<GLshort, 8> second = {0, 0, 1, 0, 1, 1, 0, 1};
    constexpr std::array<GLubyte, 6> indices = {0, 1, 2, 0, 2, 3};
    UseFlatView(false);
    m_gl.Translatef(-60.0F, 45.0F, 0.0F);
    m_gl.MultMatrixf({1, 0.1F, 0, 0, -0.1F, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    m_gl.Enable(GL_TEXTURE_2D);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[0]);
    m_gl.TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    m_gl.ActiveTexture(GL_TEXTURE1);
    m_gl.Enable(GL_TEXTURE_2D);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[2]);
    m_gl.TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE);
    m_gl.TexEnvx(GL_TEXTURE_ENV, GL_COMBINE_RGB, GL_INTERPOLATE);
    m_gl.TexEnvi(GL_TEXTURE_ENV, GL_SRC2_RGB, GL_CONSTANT);
    m_gl.TexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE, 1.0F);
    m_gl.TexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, {0.5F, 0.3F, 0.6F, 0.4F});
    m_gl.MatrixMode(GL_TEXTURE);
    m_gl.PushMatrix();
    m_gl.Rotatef(5.0F * t, 0.0F, 0.0F, 1.0F);
    m_gl.Scalex(Fix(1.5F), Fix(0.75F), Fix(1.0F));
    m_gl.Color4x(Fix(1.0F), Fix(0.9F), Fix(0.7F), Fix(1.0F));
    m_gl.ClientActiveTexture(GL_TEXTURE1);
    m_gl.TexCoordPointer(2, GL_SHORT, 0, second.data());
    m_gl.EnableClientState(GL_TEXTURE_COORD_ARRAY);
    m_gl.ClientActiveTexture(GL_TEXTURE0);
    m_gl.TexCoordPointer(2, GL_FLOAT, sizeof(STileVertex), &vertices[0].s);
    m_gl.EnableClientState(GL_TEXTURE_COORD_ARRAY);
    m_gl.VertexPointer(2, GL_SHORT, sizeof(STileVertex), vertices.data());
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, indices.data());

    // The second unit's coordinates from the current ones.
    m_gl.ClientActiveTexture(GL_TEXTURE1);
    m_gl.DisableClientState(GL_TEXTURE_COORD_ARRAY);
    m_gl.ClientActiveTexture(GL_TEXTURE0);
    m_gl.MatrixMode(GL_MODELVIEW);
    m_gl.LoadMatrixf({0.5F, 0, 0, 0, 0, 0.5F, 0, 0, 0, 0, 1, 0, 70, 50, 0, 1});
    m_gl.MultMatrixx(FixAll({1, 0, 0, 0, 0.3F, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    m_gl.MultiTexCoord4f(GL_TEXTURE1, 0.1F * t, 0.3F, 0.0F, 1.0F);
    if (frame % 3 == 0) m_gl.MultiTexCoord4x(GL_TEXTURE1, Fix(0.4F), Fix(0.2F), 0, Fix(1.0F));
    m_gl.DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, indices.data());
    m_gl.MatrixMode(GL_TEXTURE);
    m_gl.PopMatrix();
    m_gl.MatrixMode(GL_MODELVIEW);
    m_gl.Disable(GL_TEXTURE_2D);
    m_gl.ActiveTexture(GL_TEXTURE0);
    m_gl.DisableClientState(GL_TEXTURE_COORD_ARRAY);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
}

void CScene::DrawTargetTile(int frame) {
    constexpr std::array<GLfixed, 8> corners = {-0x1A0000, -0x1A0000, 0x1A0000, -0x1A0000,
                                                -0x1A0000, 0x1A0000,  0x1A0000, 0x1A0000};
    constexpr std::array<GLbyte, 8> coordinates = {0, 0, 1, 0, 0, 1, 1, 1};
    m_gl.BindTexture(GL_TEXTURE_2D, m_targetTexture);
    m_gl.TexEnvx(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    for (GLenum cap : {GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL}) m_gl.Enable(cap);
    m_gl.Color4f(0.9F, 0.9F, 0.9F, 1.0F);
    if (frame % 2 == 0) {
        m_gl.Normal3f(0.5F, 0.5F, 0.7F);
    } else {
        m_gl.Normal3x(Fix(0.7F), Fix(0.5F), Fix(0.5F));
    }
    m_gl.LoadIdentity();
    m_gl.Translatex(Fix(66.0F), Fix(-35.0F), 0);
    m_gl.Rotatef(3.0F * static_cast<float>(frame), 0.0F, 0.0F, 1.0F);
    m_gl.ClipPlanef(GL_CLIP_PLANE0, {-1.0F, -1.0F, 0.0F, 40.0F});
    m_gl.Enable(GL_CLIP_PLANE0);
    m_gl.VertexPointer(2, GL_FIXED, 0, corners.data());
    m_gl.TexCoordPointer(2, GL_BYTE, 0, coordinates.data());
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.EnableClientState(GL_TEXTURE_COORD_ARRAY);
    m_gl.DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    m_gl.DisableClientState(GL_TEXTURE_COORD_ARRAY);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
    for (GLenum cap : {GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL, GL_CLIP_PLANE0})
        m_gl.Disable(cap);
}

/// Sprites of growing size out of the middle of four client arrays, then points of one size.
void CScene::DrawSprites(int frame) {
    std::array<GLfixed, 24> places{};
    std::array<GLfloat, 12> sizes{};
    std::array<GLfloat, 48> colours{};
    for (std::size_t i = 0; i < 12; ++i) {
        const float angle = 0.5236F * static_cast<float>(i) + 0.1F * static_cast<float>(frame);
        places[2 * i] = Fix(80.0F * std::cos(angle));
        places[2 * i + 1] = Fix(60.0F * std::sin(angle));
        sizes[i] = (4.0F + static_cast<float>(i)) * static_cast<float>(m_size.width) / 256.0F;
        for (std::size_t channel = 0; channel < 4; ++channel) {
            colours[4 * i + channel] = 0.65F + 0.03F * static_cast<float>((i + 4 * channel) % 12);
        }
    }
    m_gl.LoadIdentity();
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[3]);
    m_gl.TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    m_gl.Enable(GL_POINT_SPRITE_OES);
    m_gl.TexEnvi(GL_POINT_SPRITE_OES, GL_COORD_REPLACE_OES, GL_TRUE);
    m_gl.PointParameterf(GL_POINT_SIZE_MIN, 2.0F);
    m_gl.PointParameterfv(GL_POINT_DISTANCE_ATTENUATION, {1.0F, 0.0F, 0.0F});
    m_gl.VertexPointer(2, GL_FIXED, 0, places.data());
    m_gl.ColorPointer(4, GL_FLOAT, 0, colours.data());
    m_gl.PointSizePointerOES(GL_FLOAT, 0, sizes.data());
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.EnableClientState(GL_COLOR_ARRAY);
    m_gl.EnableClientState(GL_POINT_SIZE_ARRAY_OES);
    m_gl.Enable(GL_BLEND);
    m_gl.BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_gl.DrawArrays(GL_POINTS, 2, 8);
    m_gl.Disable(GL_BLEND);
    m_gl.DisableClientState(GL_POINT_SIZE_ARRAY_OES);
    m_gl.DisableClientState(GL_COLOR_ARRAY);
    m_gl.TexEnvi(GL_POINT_SPRITE_OES, GL_COORD_REPLACE_OES, GL_FALSE);
    m_gl.Disable(GL_POINT_SPRITE_OES);
    m_gl.Disable(GL_TEXTURE_2D);
    m_gl.Color4ub(250, 240, 120, 255);
    if (frame % 2 == 0) {
        m_gl.PointSize(3.0F);
    } else {
        m_gl.PointSizex(Fix(5.0F));
    }
    m_gl.DrawArrays(GL_POINTS, 10, 2);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
}

/// A wave in a buffer that is mapped and rewritten each frame.
void CScene::DrawWave(int frame) {
    std::array<float, 64> wave{};
    for (std::size_t i = 0; i < 32; ++i) {
        const float x = 6.25F * static_cast<float>(i) - 96.0F;
        wave[2 * i] = x;
        wave[2 * i + 1] = 9.0F * std::sin(0.08F * x + 0.4F * static_cast<float>(frame)) - 5.0F;
    }
    m_gl.BindBuffer(GL_ARRAY_BUFFER, m_buffers[2]);
    m_gl.RewriteBufferOES(GL_ARRAY_BUFFER, wave.data(), sizeof wave);
    m_gl.VertexPointer(2, GL_FLOAT, 0, Offset(0));
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.Color4f(0.4F, 1.0F, 0.9F, 0.5F);
    m_gl.LineWidth(1.0F);
    m_gl.LineWidthx(Fix(2.0F));
    m_gl.Enable(GL_ALPHA_TEST);
    m_gl.AlphaFunc(GL_GREATER, 0.4F);
    m_gl.DrawArrays(GL_LINE_STRIP, 0, 20);
    m_gl.AlphaFuncx(GL_LESS, Fix(0.4F));
    m_gl.DrawArrays(GL_LINE_STRIP, 0, 32);
    m_gl.Disable(GL_ALPHA_TEST);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
    m_gl.BindBuffer(GL_ARRAY_BUFFER, 0);
}

/// A flat-shaded fan where the stencil buffer was marked, and its rim inverted by a logic
/// operation.
void CScene::DrawDisc(int frame) {
    std::array<GLshort, 20> fan{};
    std::array<GLubyte, 40> colours{};
    for (std::size_t i = 1; i < 10; ++i) {
        const float angle = 0.7854F * static_cast<float>(i) + 0.05F * static_cast<float>(frame);
        fan[2 * i] = static_cast<GLshort>(std::lround(24.0F * std::cos(angle)));
        fan[2 * i + 1] = static_cast<GLshort>(std::lround(24.0F * std::sin(angle)));
        for (std::size_t channel = 0; channel < 4; ++channel) {
            colours[4 * i + channel] = Byte(static_cast<int>(60 + 29 * i + 70 * channel));
        }
    }
    m_gl.LoadIdentity();
    m_gl.Translatef(-62.0F, -40.0F, 0.0F);
    m_gl.Scalef(1.2F, 1.1F, 1.0F);
    m_gl.VertexPointer(2, GL_SHORT, 0, fan.data());
    m_gl.EnableClientState(GL_VERTEX_ARRAY);
    m_gl.Enable(GL_STENCIL_TEST);
    m_gl.StencilMask(0xFF);
    m_gl.StencilFunc(GL_ALWAYS, 1, 0xFF);
    m_gl.StencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    m_gl.ColorMask(false, false, false, false);
    m_gl.DrawArrays(GL_TRIANGLE_FAN, 0, 7);
    m_gl.ColorMask(true, true, true, true);
    m_gl.StencilFunc(GL_EQUAL, 1, 0xFF);
    m_gl.StencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    m_gl.ColorPointer(4, GL_UNSIGNED_BYTE, 0, colours.data());
    m_gl.EnableClientState(GL_COLOR_ARRAY);
    m_gl.ShadeModel(GL_FLAT);
    m_gl.DrawArrays(GL_TRIANGLE_FAN, 0, 10);
    m_gl.ShadeModel(GL_SMOOTH);
    m_gl.DisableClientState(GL_COLOR_ARRAY);
    m_gl.Disable(GL_STENCIL_TEST);
    m_gl.Enable(GL_COLOR_LOGIC_OP);
    m_gl.LogicOp(GL_INVERT);
    m_gl.DrawArrays(GL_LINE_LOOP, 1, 8);
    m_gl.Disable(GL_COLOR_LOGIC_OP);
    m_gl.DisableClientState(GL_VERTEX_ARRAY);
}

void CScene::DrawFrame(int frame) {
    DrawIntoTarget(frame);
    m_gl.ClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    DrawBackground(frame);
    m_gl.Enable(GL_SCISSOR_TEST);
    m_gl.Scissor(m_size.width * (frame % 10) / 10, 0, m_size.width / 10, m_size.height / 12);
    m_gl.ClearColorx(Fix(0.8F), Fix(0.3F), Fix(0.6F), Fix(1.0F));
    m_gl.Clear(GL_COLOR_BUFFER_BIT);
    m_gl.Disable(GL_SCISSOR_TEST);
    m_gl.Enable(GL_POLYGON_OFFSET_FILL);
    if (frame % 2 == 0) {
        m_gl.PolygonOffset(1.0F, 1.0F);
    } else {
        m_gl.PolygonOffsetx(Fix(1.0F), Fix(2.0F));
    }
    DrawCubeInFog(frame);
    m_gl.Disable(GL_POLYGON_OFFSET_FILL);
    DrawTiles(frame);
    DrawTargetTile(frame);
    DrawSprites(frame);
    DrawWave(frame);
    DrawDisc(frame);
    const std::array<std::uint8_t, 6> patch = {Byte(40 * frame), 90, 200, 250,
                                               Byte(70 * frame), 30};
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[0]);
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 1);
    m_gl.TexSubImage2D(GL_TEXTURE_2D, 0, 0, frame % 8, 2, 1, GL_RGB, GL_UNSIGNED_BYTE,
                       patch.data());
    m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    m_gl.BindTexture(GL_TEXTURE_2D, m_textures[1]);
    m_gl.CopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 2, m_size.width / 2, m_size.height / 2, 1, 3);
    m_gl.Swap();
}

void CScene::TearDown() {
    m_gl.DeleteTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    m_gl.DeleteTextures(1, &m_targetTexture);
    m_gl.DeleteFramebuffersOES(1, &m_target);
    m_gl.DeleteRenderbuffersOES(1, &m_targetDepth);
    m_gl.DeleteBuffers(static_cast<GLsizei>(m_buffers.size()), m_buffers.data());
}

}  // namespace

bool DrawEs1Scene(IBackEnd& backEnd, const SSceneSize& size) {
    return DrawScene<CEs1Calls, CScene>(backEnd, size);
}

}  // namespace kestrail::samples
