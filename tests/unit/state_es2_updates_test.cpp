#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "tests/unit/state_es2_model.h"

namespace kestrail {
namespace {

TEST(Es2Values, EachCallHasItsFields) {
    using S = CEs2State;
    using Four = std::array<float, 4>;
    const struct {
        std::uint16_t id;
        CRecordBuilder record;
        std::function<bool(const S&)> holds;
    } cases[] = {
        {2008, Gl().Clampf(1).Clampf(2).Clampf(3).Clampf(4),
         [](const S& s) {
             return s.blendColor == Four{1, 2, 3, 4};
         }},
        {2010, Gl().Enum(5).Enum(6),
         [](const S& s) { return s.blendEquationRgb == 5 && s.blendEquationAlpha == 6; }},
        {2012, Gl().Enum(11).Enum(12).Enum(13).Enum(14),
         [](const S& s) {
             return s.blendSrcRgb == 11 && s.blendDstRgb == 12 && s.blendSrcAlpha == 13 &&
                    s.blendDstAlpha == 14;
         }},
        {2011, Gl().Enum(15).Enum(16),
         [](const S& s) {
             return s.blendSrcRgb == 15 && s.blendDstRgb == 16 && s.blendSrcAlpha == 15 &&
                    s.blendDstAlpha == 16;
         }},
        {2017, Gl().Clampf(.5F).Clampf(2).Clampf(3).Clampf(4),
         [](const S& s) {
             return s.clearColor == Four{.5F, 2, 3, 4};
         }},
        {2018, Gl().Clampf(.25F), [](const S& s) { return s.clearDepth == .25F; }},
        {2019, Gl().Int(-7), [](const S& s) { return s.clearStencil == -7; }},
        {2020, Gl().Boolean(false).Boolean(true).Boolean(false).Boolean(true),
         [](const S& s) {
             return s.colorMask == std::array<std::uint8_t, 4>{0, 1, 0, 1};
         }},
        {2028, Gl().Enum(1028), [](const S& s) { return s.cullFaceMode == 1028; }},
        {2036, Gl().Enum(515), [](const S& s) { return s.depthFunc == 515; }},
        {2037, Gl().Boolean(false), [](const S& s) { return s.depthMask == 0; }},
        {2038, Gl().Clampf(.1F).Clampf(.9F),
         [](const S& s) { return s.depthRangeNear == .1F && s.depthRangeFar == .9F; }},
        {2049, Gl().Enum(2304), [](const S& s) { return s.frontFace == 2304; }},
        {2081, Gl().Enum(33170).Enum(4354),
         [](const S& s) { return s.generateMipmapHint == 4354; }},
        {2081, Gl().Enum(35723).Enum(4353),
         [](const S& s) { return s.generateMipmapHint == 4354; }},
        {2091, Gl().Enum(3333).Int(1), [](const S& s) { return s.packAlignment == 1; }},
        {2091, Gl().Enum(3317).Int(8),
         [](const S& s) { return s.unpackAlignment == 8 && s.packAlignment == 1; }},
        {2091, Gl().Enum(3314).Int(99),
         [](const S& s) { return s.unpackAlignment == 8 && s.packAlignment == 1; }},
        {2092, Gl().Float(1.5F).Float(-2),
         [](const S& s) { return s.polygonOffsetFactor == 1.5F && s.polygonOffsetUnits == -2; }},
        {2094, Gl(), [](const S& s) { return s.shaderCompilerReleased == 1; }},
        {2096, Gl().Clampf(.75F).Boolean(true),
         [](const S& s) { return s.sampleCoverageValue == .75F && s.sampleCoverageInvert == 1; }},
        {2097, Gl().Int(-1).Int(2).Sizei(3).Sizei(4),
         [](const S& s) {
             return s.scissorBox == std::array<std::int32_t, 4>{-1, 2, 3, 4};
         }},
        {2142, Gl().Int(5).Int(-6).Sizei(7).Sizei(8),
         [](const S& s) {
             return s.viewport == std::array<std::int32_t, 4>{5, -6, 7, 8};
         }},
        {2100, Gl().Enum(512).Int(3).Uint(0xF0),
         [](const S& s) {
             return s.stencilFuncFront == 512 && s.stencilFuncBack == 512 &&
                    s.stencilRefFront == 3 && s.stencilRefBack == 3 &&
                    s.stencilValueMaskFront == 0xF0 && s.stencilValueMaskBack == 0xF0;
         }},
        {2102, Gl().Uint(0xF),
         [](const S& s) {
             return s.stencilWriteMaskFront == 0xF && s.stencilWriteMaskBack == 0xF;
         }},
        {2104, Gl().Enum(1).Enum(2).Enum(3),
         [](const S& s) {
             return s.stencilFailFront == 1 && s.stencilFailBack == 1 &&
                    s.stencilDepthFailFront == 2 && s.stencilDepthFailBack == 2 &&
                    s.stencilDepthPassFront == 3 && s.stencilDepthPassBack == 3;
         }},
    };
    CModel model;
    for (const auto& c : cases) {
        EXPECT_TRUE(model.Do(c.id, c.record)) << c.id;
        EXPECT_TRUE(c.holds(model.state)) << c.id;
    }
    // A call without an update of its own.
    EXPECT_FALSE(model.Enum(2009, 5));
    EXPECT_EQ(model.state.blendEquationRgb, 5U);
}

TEST(Es2Values, CapabilitiesByTheTable) {
    constexpr std::uint32_t kCaps[] = {3042, 2884, 2929, 3024, 32823, 32926, 32928, 3089, 2960};
    CModel model;
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(model.state.capabilities[i], kCaps[i] == 3024 ? 1 : 0);
        EXPECT_TRUE(model.Enum(2043, kCaps[i]));
        EXPECT_EQ(model.state.capabilities[i], 1);
        EXPECT_TRUE(model.Enum(2039, kCaps[i]));
        EXPECT_EQ(model.state.capabilities[i], 0);
    }
    EXPECT_TRUE(model.Enum(2043, 36201));
    EXPECT_EQ(model.state.capabilities, (std::array<std::uint8_t, 9>{}));
}

TEST(Es2Values, StencilOfOneFace) {
    // Both faces at once count as the front one.
    const struct {
        std::uint32_t face;
        bool known, front, back;
    } faces[] = {{1028, true, true, false},
                 {1029, true, false, true},
                 {1032, true, true, false},
                 {1030, false, false, false}};
    for (const auto& f : faces) {
        CModel model;
        EXPECT_EQ(model.Do(2101, Gl().Enum(f.face).Enum(1).Int(2).Uint(3)), f.known);
        EXPECT_EQ(model.Do(2103, Gl().Enum(f.face).Uint(4)), f.known);
        EXPECT_EQ(model.Do(2105, Gl().Enum(f.face).Enum(5).Enum(6).Enum(7)), f.known);
        const CEs2State& s = model.state;
        using Seven = std::array<std::int64_t, 7>;
        const Seven set = {1, 2, 3, 4, 5, 6, 7};
        const Seven initial = {519, 0, 0xFFFFFFFF, 0xFFFFFFFF, 7680, 7680, 7680};
        EXPECT_EQ((Seven{s.stencilFuncFront, s.stencilRefFront, s.stencilValueMaskFront,
                         s.stencilWriteMaskFront, s.stencilFailFront, s.stencilDepthFailFront,
                         s.stencilDepthPassFront}),
                  f.front ? set : initial)
            << f.face;
        EXPECT_EQ((Seven{s.stencilFuncBack, s.stencilRefBack, s.stencilValueMaskBack,
                         s.stencilWriteMaskBack, s.stencilFailBack, s.stencilDepthFailBack,
                         s.stencilDepthPassBack}),
                  f.back ? set : initial)
            << f.face;
    }
}

TEST(Es2Buffers, ContentsAreBorrowedUntilAPartChanges) {
    CModel model;
    CEs2State& s = model.state;
    EXPECT_FALSE(model.Do(2013, Gl().Enum(34962).Sizeiptr(4).Data(1, Text("abcd")).Enum(35044)));
    EXPECT_EQ(s.vertexArrays->Count(), 0);
    EXPECT_TRUE(model.Bind(2004, 34962, 3));
    EXPECT_TRUE(model.Bind(2004, 34963, 4));
    EXPECT_FALSE(model.Bind(2004, 35345, 5));
    EXPECT_EQ(s.CurrentVertexArray().arrayBuffer, 3U);
    EXPECT_EQ(s.CurrentVertexArray().elementBuffer, 4U);

    EXPECT_TRUE(model.Do(2013, Gl().Enum(34962).Sizeiptr(4).Data(1, Text("abcd")).Enum(35044)));
    const SBufferState& buffer = *s.buffers->Find(3);
    EXPECT_EQ(buffer.target, 34962U);
    EXPECT_EQ(buffer.name, 3U);
    EXPECT_EQ(buffer.size, 4U);
    EXPECT_EQ(buffer.usage, 35044U);
    EXPECT_TRUE(buffer.data.Borrowed());

    const CEs2State before = s;
    const auto sub = [](std::int64_t offset, std::int64_t size, const Bytes& bytes) {
        return Gl().Enum(34962).Intptr(offset).Sizeiptr(size).Data(bytes.empty() ? 0 : 1, bytes);
    };
    const struct {
        std::int64_t offset, size;
        const char* bytes;
    } refused[] = {{-1, 1, "x"}, {0, -1, "x"},         {4, 1, "x"},
                   {3, 2, "xy"}, {0, 2, "x"},          {0x7FFFFFFF, 1, "x"},
                   {0, 1, ""},   {0, 0x7FFFFFFF, "x"}, {2, 5, "vwxyz"}};
    for (const auto& r : refused)
        EXPECT_FALSE(model.Do(2014, sub(r.offset, r.size, Text(r.bytes))));
    EXPECT_FALSE(model.Do(2014, Gl().Enum(1).Intptr(0).Sizeiptr(1).Data(1, Text("x"))));
    EXPECT_TRUE(model.Do(2014, sub(4, 0, Text("x"))));
    EXPECT_TRUE(SameTables(before, s));

    EXPECT_TRUE(model.Do(2014, sub(1, 2, Text("XY"))));
    EXPECT_TRUE(model.Do(2014, sub(3, 1, Text("Zw"))));
    EXPECT_EQ(BytesOf(s.buffers->Find(3)->data), "aXYZ");
    EXPECT_EQ(BytesOf(before.buffers->Find(3)->data), "abcd");
    // All of it: the new call's bytes serve as they are.
    EXPECT_TRUE(model.Do(2014, sub(0, 4, Text("1234"))));
    EXPECT_TRUE(s.buffers->Find(3)->data.Borrowed());
    EXPECT_EQ(BytesOf(s.buffers->Find(3)->data), "1234");

    EXPECT_FALSE(model.Names(2029, {}));
    EXPECT_TRUE(model.Names(2029, {0, 99, 3}));
    EXPECT_EQ(s.buffers->Find(3), nullptr);
    EXPECT_NE(before.buffers->Find(3), nullptr);
    EXPECT_FALSE(model.Do(2014, sub(0, 4, Text("1234"))));
}

TEST(Es2Buffers, WithoutContentsReadAsZerosOnceAPartIsSet) {
    CModel model;
    model.Bind(2004, 34963, 8);
    const auto allocate = [&](std::int64_t size, const Bytes& bytes) {
        return model.Do(
            2013, Gl().Enum(34963).Sizeiptr(size).Data(bytes.empty() ? 0 : 1, bytes).Enum(35048));
    };
    const auto set = [&](std::int64_t offset) {
        return model.Do(2014, Gl().Enum(34963).Intptr(offset).Sizeiptr(1).Data(1, Text("x")));
    };
    const auto held = [&]() -> const SBufferState& { return *model.state.buffers->Find(8); };
    EXPECT_TRUE(allocate(3, {}));
    EXPECT_EQ(held().size, 3U);
    EXPECT_TRUE(held().data.Empty());
    EXPECT_TRUE(set(1));
    EXPECT_EQ(BytesOf(held().data), std::string("\0x\0", 3));
    // Fewer bytes than the buffer is long count as none.
    EXPECT_TRUE(allocate(5, Text("abc")));
    EXPECT_TRUE(held().data.Empty());
    EXPECT_TRUE(allocate(0x7FFFFFFF, {}));
    EXPECT_FALSE(set(1));
    EXPECT_TRUE(held().data.Empty());
    EXPECT_FALSE(allocate(-1, {}));
    EXPECT_EQ(held().size, 0x7FFFFFFFU);
    EXPECT_TRUE(allocate(0, {}));
    EXPECT_FALSE(set(0));
}

TEST(Es2Framebuffers, AttachmentsGoToTheirPlaces) {
    CModel model;
    CEs2State& s = model.state;
    const auto texture = [&](std::uint32_t attachment, std::uint32_t target, std::uint32_t name) {
        return model.Do(2048, Gl().Enum(36160).Enum(attachment).Enum(target).Uint(name).Int(2));
    };
    const auto renderbuffer = [&](std::uint32_t target, std::uint32_t attachment) {
        return model.Do(2047, Gl().Enum(target).Enum(attachment).Enum(36161).Uint(21));
    };
    EXPECT_FALSE(texture(36064, 3553, 11));
    EXPECT_FALSE(model.Names(2052, {}));
    EXPECT_TRUE(model.Names(2052, {5, 6, 0}));
    EXPECT_EQ(s.framebuffers->Count(), 2);
    EXPECT_EQ(s.framebuffers->Find(6)->name, 6U);
    EXPECT_EQ(s.framebuffers->Find(6)->everBound, 0);
    EXPECT_TRUE(model.Bind(2005, 36160, 5));
    EXPECT_EQ(s.boundFramebuffer, 5U);
    EXPECT_EQ(s.framebuffers->Find(5)->everBound, 1);

    EXPECT_TRUE(texture(36064, 3553, 11));
    EXPECT_TRUE(texture(36066, 34071, 12));
    EXPECT_TRUE(renderbuffer(36160, 36096));
    EXPECT_TRUE(renderbuffer(36160, 36128));
    const CEs2State before = s;
    EXPECT_FALSE(renderbuffer(36009, 33306));
    EXPECT_FALSE(renderbuffer(36160, 36080));
    EXPECT_FALSE(texture(36063, 3553, 11));
    EXPECT_FALSE(texture(0xFFFFFFFF, 3553, 11));
    EXPECT_TRUE(SameTables(before, s));
    const auto is = [](const SAttachmentState& a, std::uint32_t name, std::int32_t level,
                       std::uint32_t face, std::uint32_t kind) {
        return a.name == name && a.level == level && a.cubeFace == face && a.kind == kind;
    };
    const SFramebufferState& f = *s.framebuffers->Find(5);
    ASSERT_EQ(f.colors->size(), 3U);
    EXPECT_TRUE(is((*f.colors)[0], 11, 2, 0, 5890));
    EXPECT_TRUE(is((*f.colors)[1], 0, 0, 0, 0));
    EXPECT_TRUE(is((*f.colors)[2], 12, 2, 34071, 5890));
    EXPECT_TRUE(is(f.depth, 21, 0, 0, 36161) && is(f.stencil, 21, 0, 0, 36161));
    EXPECT_EQ(f.depthStencil.kind, 0U);
    EXPECT_TRUE(renderbuffer(36160, 33306));
    EXPECT_TRUE(texture(36079, 3553, 13));
    EXPECT_EQ(s.framebuffers->Find(5)->depthStencil.name, 21U);
    EXPECT_EQ(s.framebuffers->Find(5)->colors->size(), 16U);
    EXPECT_EQ(before.framebuffers->Find(5)->colors->size(), 3U);

    EXPECT_TRUE(model.Names(2030, {6}));
    EXPECT_EQ(s.boundFramebuffer, 5U);
    EXPECT_TRUE(model.Names(2030, {5}));
    EXPECT_EQ(s.boundFramebuffer, 0U);
    EXPECT_EQ(s.framebuffers->Count(), 0);
}

TEST(Es2Framebuffers, RenderbuffersKeepTheirStorage) {
    CModel model;
    CEs2State& s = model.state;
    const auto storage = Gl().Enum(36161).Enum(33189).Sizei(64).Sizei(32);
    EXPECT_FALSE(model.Do(2095, storage));
    EXPECT_TRUE(model.Names(2053, {2}));
    EXPECT_EQ(s.renderbuffers->Find(2)->everBound, 0);
    EXPECT_TRUE(model.Bind(2006, 36161, 2));
    EXPECT_TRUE(model.Do(2095, storage));
    const auto holds = [&](std::int32_t width, std::int32_t height, std::uint32_t format) {
        const SRenderbufferState& r = *s.renderbuffers->Find(2);
        return r.name == 2 && r.everBound == 1 && r.width == width && r.height == height &&
               r.internalFormat == format && r.samples == 0;
    };
    EXPECT_TRUE(holds(64, 32, 33189));
    EXPECT_TRUE(model.Do(5167, Gl().Enum(36161).Sizei(4).Enum(32856).Sizei(16).Sizei(8)));
    EXPECT_TRUE(holds(16, 8, 32856));
    EXPECT_TRUE(model.Names(2033, {7, 2}));
    EXPECT_EQ(s.boundRenderbuffer, 0U);
    EXPECT_EQ(s.renderbuffers->Count(), 0);
}

TEST(Es2Framebuffers, DrawBuffersStayWithTheFramebuffer) {
    CModel model;
    const auto draw = [](std::int64_t n) {
        return Gl().Sizei(n).Array(tag::Enum, 1, {36064, 0, 36066});
    };
    EXPECT_FALSE(model.Do(5159, draw(3)));
    EXPECT_EQ(model.state.framebuffers->Count(), 0);
    model.Bind(2005, 36160, 4);
    const auto held = [&] { return *model.state.framebuffers->Find(4)->drawBuffers; };
    using Values = std::vector<std::uint32_t>;
    EXPECT_FALSE(model.Do(5159, draw(2)));
    EXPECT_EQ(held(), (Values{36064, 0}));
    EXPECT_FALSE(model.Do(5159, draw(-1)));
    EXPECT_EQ(held(), (Values{36064, 0}));
    EXPECT_FALSE(model.Do(5159, draw(1000)));
    EXPECT_EQ(held(), (Values{36064, 0, 36066}));
}

TEST(Es2VertexArrays, EachHoldsItsOwnBindings) {
    CModel model;
    CEs2State& s = model.state;
    const auto pointer = [&](std::uint32_t index, std::int64_t stride) {
        return model.Do(2141,
                        Gl().Uint(index).Int(3).Enum(5126).Boolean(true).Sizei(stride).Pointer(40));
    };
    model.Bind(2004, 34962, 9);
    EXPECT_TRUE(pointer(2, 12));
    EXPECT_TRUE(model.Uint(2044, 2));
    EXPECT_FALSE(model.Names(5173, {}));
    EXPECT_TRUE(model.Names(5173, {7, 8}));
    EXPECT_TRUE(model.Uint(5171, 7));
    EXPECT_EQ(s.currentVertexArray, 7U);
    EXPECT_EQ(s.CurrentVertexArray().name, 7U);
    EXPECT_TRUE(model.Uint(2044, 31));
    EXPECT_FALSE(model.Uint(2044, 32));
    EXPECT_FALSE(model.Uint(2040, 0x80000000U));
    EXPECT_FALSE(pointer(0xFFFFFFFF, 0));
    EXPECT_EQ(s.CurrentVertexArray().attributes.size(), 32U);
    EXPECT_EQ(s.CurrentVertexArray().attributes[31].enabled, 1);
    EXPECT_EQ(s.CurrentVertexArray().arrayBuffer, 0U);

    model.Uint(5171, 0);
    ASSERT_EQ(s.CurrentVertexArray().attributes.size(), 3U);
    EXPECT_EQ(s.CurrentVertexArray().attributes[2],
              (SAttribPointerState{1, 1, 3, 5126, 12, 40, 9}));
    const CEs2State before = s;
    EXPECT_TRUE(pointer(2, 12));
    EXPECT_TRUE(SameTables(before, s));
    EXPECT_TRUE(pointer(2, 16));
    EXPECT_EQ(s.CurrentVertexArray().attributes[2].enabled, 1);
    EXPECT_EQ(before.CurrentVertexArray().attributes[2].stride, 12);
    EXPECT_TRUE(model.Uint(2040, 2));
    EXPECT_EQ(s.CurrentVertexArray().attributes[2].enabled, 0);
    // What is set to its default counts as set.
    CModel defaults;
    const auto attributes = [&] { return defaults.state.CurrentVertexArray().attributes.size(); };
    EXPECT_FALSE(defaults.state.HasCurrentVertexArray());
    EXPECT_TRUE(defaults.Bind(2004, 34962, 0));
    EXPECT_TRUE(defaults.state.HasCurrentVertexArray());
    EXPECT_EQ(attributes(), 0U);
    EXPECT_TRUE(defaults.Uint(2040, 3));
    EXPECT_EQ(attributes(), 4U);
    // The default one can't be deleted.
    EXPECT_TRUE(model.Names(5172, {7, 0}));
    EXPECT_EQ(s.vertexArrays->Find(7), nullptr);
    EXPECT_NE(s.vertexArrays->Find(0), nullptr);
    EXPECT_FALSE(model.Names(5172, {}));
}

TEST(Es2Programs, ShadersLiveAsLongAsTheyAreAttached) {
    CModel model;
    CEs2State& s = model.state;
    EXPECT_FALSE(model.CreateShader(0, 35633));
    EXPECT_FALSE(model.Uint(2026, 0));
    EXPECT_TRUE(model.CreateShader(1, 35633));
    EXPECT_TRUE(model.CreateShader(2, 35632));
    EXPECT_TRUE(model.Uint(2026, 5));
    EXPECT_TRUE(model.Uint(2026, 6));
    for (std::uint32_t program : {5U, 6U}) {
        EXPECT_TRUE(model.Pair(2002, program, 1));
        EXPECT_TRUE(model.Pair(2002, program, 2));
    }
    EXPECT_FALSE(model.Pair(2002, 5, 99));
    EXPECT_FALSE(model.Pair(2002, 99, 1));
    EXPECT_FALSE(model.Pair(2035, 99, 1));
    EXPECT_FALSE(model.Pair(2035, 5, 99));
    EXPECT_EQ(s.programs->Find(5)->vertexShader, 1U);
    EXPECT_EQ(s.programs->Find(5)->fragmentShader, 2U);
    EXPECT_EQ(s.shaders->Find(1)->attachCount, 2);

    EXPECT_FALSE(model.Uint(2034, 99));
    EXPECT_TRUE(model.Uint(2034, 1));
    EXPECT_EQ(s.shaders->Find(1)->deletePending, 1);
    EXPECT_TRUE(model.Pair(2035, 5, 1));
    EXPECT_EQ(s.programs->Find(5)->vertexShader, 0U);
    EXPECT_EQ(s.shaders->Find(1)->attachCount, 1);
    EXPECT_TRUE(model.Pair(2035, 6, 1));
    EXPECT_EQ(s.shaders->Find(1), nullptr);

    EXPECT_TRUE(model.Uint(2034, 2));
    EXPECT_TRUE(model.Uint(2032, 5));
    EXPECT_EQ(s.programs->Find(5), nullptr);
    EXPECT_EQ(s.shaders->Find(2)->attachCount, 1);
    EXPECT_TRUE(model.Uint(2032, 6));
    EXPECT_EQ(s.shaders->Find(2), nullptr);
    EXPECT_FALSE(model.Uint(2032, 6));

    EXPECT_TRUE(model.CreateShader(3, 35632));
    EXPECT_TRUE(model.Uint(2034, 3));
    EXPECT_EQ(s.shaders->Count(), 0);
    EXPECT_TRUE(model.Uint(2032, 0));
    EXPECT_NE(s.programs->Find(0), nullptr);
}

TEST(Es2Programs, ShadersGoInTheOrderOfTheirTable) {
    CModel model;
    for (const std::uint32_t shader : {1U, 2U, 3U, 4U}) {
        model.CreateShader(shader, shader == 2 ? 35633 : 35632);
    }
    model.Uint(2026, 5);
    for (const std::uint32_t shader : {1U, 2U}) {
        model.Pair(2002, 5, shader);
        model.Uint(2034, shader);
    }
    EXPECT_TRUE(model.Uint(2032, 5));
    ASSERT_EQ(model.state.shaders->Count(), 2);
    EXPECT_EQ(model.state.shaders->KeyAt(0), 4U);
    EXPECT_EQ(model.state.shaders->KeyAt(1), 3U);
}

TEST(Es2Programs, TheOneInUseGoesWhenAnotherIsUsed) {
    CModel model;
    CEs2State& s = model.state;
    model.Uint(2026, 5);
    model.Uint(2026, 6);
    model.CreateShader(1, 35633);
    model.Pair(2002, 5, 1);
    EXPECT_TRUE(model.Uint(2090, 5));
    EXPECT_FALSE(model.Uint(2090, 99));
    EXPECT_TRUE(model.Uint(2131, 5));
    EXPECT_EQ(s.currentProgram.name, 5U);
    EXPECT_EQ(s.currentProgram.vertexShader, 1U);
    EXPECT_EQ(s.currentProgram.linked, 1);
    EXPECT_TRUE(model.Do(2133, Gl().Uint(0).Float(1)));
    EXPECT_TRUE(model.Uint(2034, 1));
    EXPECT_TRUE(model.Uint(2032, 5));
    EXPECT_EQ(s.currentProgramDeletePending, 1);
    EXPECT_EQ(s.programs->Find(5)->deletePending, 1);
    EXPECT_TRUE(model.Uint(2131, 5));
    EXPECT_FALSE(model.Uint(2131, 99));
    EXPECT_NE(s.programs->Find(5), nullptr);
    EXPECT_NE(s.attributeValues->Find(5), nullptr);
    EXPECT_TRUE(model.Uint(2131, 6));
    EXPECT_EQ(s.currentProgram.name, 6U);
    EXPECT_EQ(s.currentProgramDeletePending, 0);
    EXPECT_EQ(s.programs->Find(5), nullptr);
    EXPECT_EQ(s.shaders->Find(1), nullptr);
    EXPECT_EQ(s.attributeValues->Find(5), nullptr);
    EXPECT_TRUE(model.Uint(2131, 0));
    EXPECT_EQ(s.currentProgram.name, 0U);
}

TEST(Es2Programs, SourcesAreKnownByTheCallTheyCameWith) {
    CModel model;
    CEs2State& s = model.state;
    const auto source = [&](std::uint32_t shader, const std::vector<std::string>& parts) {
        return model.Do(2099, Gl().Uint(shader).Sizei(1).Strings(1, parts).Array(tag::Int, 0, {}));
    };
    EXPECT_FALSE(source(1, {"void"}));
    model.CreateShader(1, 35633);
    model.CreateShader(2, 35633);
    EXPECT_TRUE(source(1, {"void ", "main"}));
    EXPECT_EQ(s.shaders->Find(1)->source->view(), "void main");
    EXPECT_EQ(s.shaders->Find(1)->sourceLength, 9U);
    const CEs2State before = s;
    EXPECT_TRUE(model.Again());
    EXPECT_TRUE(SameTables(before, s));
    EXPECT_TRUE(source(2, {"void ", "main"}));
    EXPECT_NE(s.shaders->Find(1)->sourceId, s.shaders->Find(2)->sourceId);
    EXPECT_NE(s.shaders->Find(1)->sourceId, 0U);
    EXPECT_TRUE(source(1, {""}));
    EXPECT_EQ(s.shaders->Find(1)->sourceLength, 9U);
    EXPECT_FALSE(model.Uint(2021, 99));
    EXPECT_EQ(s.shaderCompilerReleased, 1);
    EXPECT_TRUE(model.Uint(2021, 1));
    EXPECT_EQ(s.shaders->Find(1)->compiled, 1);
    EXPECT_EQ(s.shaders->Find(2)->compiled, 0);
    EXPECT_EQ(s.shaderCompilerReleased, 0);
}

struct SUniformCase {
    std::uint16_t id;
    CRecordBuilder record;
    std::uint32_t kind;
    std::int32_t components;
    std::vector<double> values;
};

/// The calls of all forms, at location 3.
std::vector<SUniformCase> UniformCases() {
    std::vector<SUniformCase> cases;
    std::uint16_t id = 2112;
    for (std::int32_t n = 1; n <= 4; ++n) {
        for (const bool real : {true, false}) {
            CRecordBuilder one = Gl().Int(3);
            std::vector<double> values;
            for (std::int32_t i = 0; i < n; ++i) {
                values.push_back(real ? i + n + .5 : i - n);
                real ? one.Float(static_cast<float>(values.back())) : one.Int(i - n);
            }
            cases.push_back({id++, one, real ? 1U : 0U, n, values});
            // Two of the three items that the call carries.
            const std::size_t scalars = static_cast<std::size_t>(n) * 3;
            CRecordBuilder many = Gl().Int(3).Sizei(2);
            if (real) {
                many.Reals(tag::Float, 1, std::vector<float>(scalars, 6.5F),
                           static_cast<std::size_t>(n));
            } else {
                many.Array(tag::Int, 1, std::vector<std::int64_t>(scalars, -6),
                           static_cast<std::size_t>(n));
            }
            cases.push_back({id++, many, real ? 1U : 0U, n,
                             std::vector<double>(scalars / 3 * 2, real ? 6.5 : -6)});
        }
    }
    for (const std::int32_t n : {4, 9, 16}) {
        std::vector<float> floats;
        for (std::int32_t i = 0; i < n; ++i) floats.push_back(static_cast<float>(i));
        cases.push_back({id++,
                         Gl().Int(3).Sizei(1).Boolean(false).Reals(tag::Float, 1, floats,
                                                                   static_cast<std::size_t>(n)),
                         2, n, std::vector<double>(floats.begin(), floats.end())});
    }
    return cases;
}

template <typename T>
std::vector<double> Doubles(const T* values, std::uint32_t count) {
    return std::vector<double>(values, values + count);
}

TEST(Es2Uniforms, OfAllForms) {
    CModel model;
    model.Uint(2026, 5);
    model.Uint(2131, 5);
    EXPECT_TRUE(model.Locate(5, "u", 3));
    EXPECT_TRUE(model.Locate(5, "unused", -1));
    EXPECT_EQ((*model.state.uniforms->Find(5))->values.Count(), 1);
    const auto held = [&]() -> const SUniformState& {
        return *(*model.state.uniforms->Find(5))->values.Find(3);
    };
    EXPECT_EQ(held().kind, SUniformState::kNeverSet);
    const std::vector<SUniformCase> cases = UniformCases();
    EXPECT_EQ(cases.size(), 19U);
    for (const SUniformCase& c : cases) {
        const CEs2State before = model.state;
        EXPECT_TRUE(model.Do(c.id, c.record)) << c.id;
        EXPECT_EQ(held().kind, c.kind) << c.id;
        EXPECT_EQ(held().components, c.components) << c.id;
        const CShaderValues& values = held().values;
        EXPECT_EQ(c.kind == 0 ? Doubles(values.Integers(), values.Count())
                              : Doubles(values.Floats(), values.Count()),
                  c.values)
            << c.id;
        EXPECT_FALSE(SameTables(before, model.state)) << c.id;
        const CEs2State after = model.state;
        EXPECT_TRUE(model.Again());
        EXPECT_TRUE(SameTables(after, model.state)) << c.id;
    }
    const SUniformLocation& named = *(*model.state.uniforms->Find(5))->locations->Find(3);
    EXPECT_EQ(named.name->view(), "u");
    EXPECT_EQ(named.location, 3);
    EXPECT_EQ(named.liveLocation, 3);
}

TEST(Es2Uniforms, LeftOutOfTheRecord) {
    CModel model;
    model.Uint(2026, 5);
    model.Uint(2131, 5);
    model.Locate(5, "u", 3);
    model.Locate(6, "v", 4);
    model.Locate(5, "", 7);
    EXPECT_TRUE(model.Do(2112, Gl().Int(3).Float(NAN)));
    const CEs2State before = model.state;
    const auto array = [](std::int64_t location, std::int64_t count, std::uint64_t pointer) {
        return Gl().Int(location).Sizei(count).Reals(tag::Float, pointer, {1, 2});
    };
    const struct {
        CRecordBuilder record;
        std::uint16_t id;
        bool result;
    } cases[] = {{Gl().Int(-1).Float(2), 2112, true},
                 {Gl().Int(4).Float(2), 2112, true},
                 {Gl().Int(7).Float(2), 2112, true},
                 {Gl().Int(-3).Float(2), 2112, true},
                 {Gl().Int(3).Float(NAN), 2112, true},
                 {array(3, 0, 1), 2113, true},
                 {array(3, -1, 1), 2113, false},
                 {array(3, 3, 1), 2113, false},
                 {array(3, 0x7FFFFFFF, 1), 2113, false},
                 {Gl().Int(3).Sizei(1).Reals(tag::Float, 0, {}), 2113, false}};
    for (const auto& c : cases) EXPECT_EQ(model.Do(c.id, c.record), c.result);
    model.Locate(5, "u", 3);
    EXPECT_TRUE(SameTables(before, model.state));
    // A snapshot keeps its own value.
    EXPECT_TRUE(model.Do(2112, Gl().Int(3).Float(8)));
    EXPECT_TRUE(std::isnan((*before.uniforms->Find(5))->values.Find(3)->values.Floats()[0]));
    EXPECT_EQ((*model.state.uniforms->Find(5))->values.Find(3)->values.Floats()[0], 8);
}

TEST(Es2Attributes, ConstantValuesAndBindings) {
    CModel model;
    CEs2State& s = model.state;
    model.Uint(2026, 5);
    model.Uint(2131, 5);
    const auto held = [&](std::uint32_t index) -> const SAttributeState& {
        return *(*s.attributeValues->Find(5))->Find(index);
    };
    std::uint16_t id = 2133;
    for (std::size_t n = 1; n <= 4; ++n) {
        std::vector<float> values;
        CRecordBuilder one = Gl().Uint(6);
        for (std::size_t i = 0; i < n; ++i) {
            values.push_back(static_cast<float>(10 * n + i));
            one.Float(values.back());
        }
        EXPECT_TRUE(model.Do(id++, one));
        EXPECT_TRUE(held(6).values.Are(values.data(), static_cast<std::uint32_t>(n)));
        EXPECT_EQ(held(6).components, static_cast<std::int32_t>(n));
        EXPECT_EQ(held(6).index, 6U);
        for (float& v : values) v = -v;
        EXPECT_TRUE(model.Do(id, Gl().Uint(6).RealItem(tag::Float, 1, values)));
        EXPECT_TRUE(held(6).values.Are(values.data(), static_cast<std::uint32_t>(n)));
        const CEs2State before = s;
        EXPECT_FALSE(model.Do(id++, Gl().Uint(6).RealItem(tag::Float, 0, {})));
        EXPECT_FALSE(model.Do(2133, Gl().Uint(0x80000000U).Float(1)));
        EXPECT_TRUE(SameTables(before, s));
    }
    // Linking makes the values those that the bindings hold.
    const auto bind = [](std::uint32_t index, const char* name) {
        return Gl().Uint(5).Uint(index).String(1, name);
    };
    EXPECT_TRUE(model.Do(2003, bind(2, "position")));
    EXPECT_FALSE(model.Do(2003, bind(0x80000000U, "position")));
    const CEs2State before = s;
    EXPECT_TRUE(model.Do(2003, bind(2, "position")));
    EXPECT_TRUE(SameTables(before, s));
    EXPECT_TRUE(model.Uint(2090, 5));
    EXPECT_EQ(s.programs->Find(5)->linked, 1);
    EXPECT_EQ((*s.attributeValues->Find(5))->Count(), 1);
    EXPECT_EQ(held(2).name->view(), "position");
    EXPECT_EQ(held(2).bound, 1);
    EXPECT_TRUE(model.Do(2133, Gl().Uint(2).Float(4)));
    EXPECT_EQ(held(2).name->view(), "position");
    EXPECT_TRUE((*s.attributeBindings->Find(5))->Find(2)->values.Count() == 0);
}

}  // namespace
}  // namespace kestrail
