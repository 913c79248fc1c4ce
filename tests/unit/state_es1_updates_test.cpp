#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "calls/model/factories.h"
#include "state/es1/es1_state.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

/// Applies recorded calls to a record, and keeps them for as long as the record may borrow bytes.
class StateEs1Updates : public testing::Test {
protected:
    bool Apply(std::uint16_t id, const CRecordBuilder& record) {
        CRecordStream stream(record);
        m_calls.push_back(CreateEs1Call(id, stream.Trace()));
        return static_cast<CEs1Call&>(*m_calls.back()).UpdateState(state);
    }
    bool ApplyExt(std::uint16_t id, const CRecordBuilder& record) {
        CRecordStream stream(record);
        m_calls.push_back(CreateExtCall(id, stream.Trace()));
        return static_cast<CExtCall&>(*m_calls.back()).UpdateState(state);
    }
    static CRecordBuilder Gl() { return CTraceBuilder().Gl(); }
    static CRecordBuilder Ext() { return CTraceBuilder().Ext(0, 1); }

    // Short forms of the calls that the tests need often.
    bool Enum(std::uint16_t id, std::uint32_t value) { return Apply(id, Gl().Enum(value)); }
    bool ActiveTexture(std::uint32_t texture) { return Enum(3001, texture); }
    bool MatrixMode(std::uint32_t mode) { return Enum(3093, mode); }
    bool Push() { return Apply(3113, Gl()); }
    bool Pop() { return Apply(3112, Gl()); }
    bool Translate(float x, float y, float z) {
        return Apply(3141, Gl().Float(x).Float(y).Float(z));
    }
    bool BindTexture(std::uint32_t name) { return Apply(3005, Gl().Enum(3553).Uint(name)); }
    bool TexImage(int width, int height, const Bytes& pixels, std::uint32_t format = 6408,
                  std::uint32_t type = 5121, int level = 0, int alignment = 4) {
        CRecordBuilder record = Gl().Enum(3553).Int(level).Int(6408).Sizei(width).Sizei(height);
        record.Int(0).Enum(format).Enum(type).Data(pixels.empty() ? 0 : 1, pixels);
        return Apply(3133, record.Int(alignment));
    }
    bool TexSubImage(int x, int y, int width, int height, const Bytes& pixels,
                     std::uint32_t format = 6408, std::uint32_t type = 5121, int level = 0) {
        CRecordBuilder record = Gl().Enum(3553).Int(level).Int(x).Int(y).Sizei(width).Sizei(height);
        return Apply(3140, record.Enum(format).Enum(type).Data(pixels.empty() ? 0 : 1, pixels));
    }
    bool BindBuffer(std::uint32_t target, std::uint32_t name) {
        return Apply(3004, Gl().Enum(target).Uint(name));
    }
    bool BufferData(std::uint32_t target, std::int64_t size, const Bytes& bytes) {
        return Apply(
            3007, Gl().Enum(target).Sizeiptr(size).Data(bytes.empty() ? 0 : 1, bytes).Enum(35044));
    }
    bool BufferSubData(std::int64_t offset, std::int64_t size, const Bytes& bytes) {
        return Apply(3008, Gl().Enum(34962).Intptr(offset).Sizeiptr(size).Data(1, bytes));
    }
    SMatrix Top(std::size_t stack) const {
        return state.matrixStacks[stack].Level(
            static_cast<std::uint32_t>(state.matrixStacks[stack].top));
    }
    static Bytes BytesIn(const CSharedBytes& contents) {
        std::vector<std::uint8_t> room;
        const std::uint8_t* start = contents.Get(room);
        return Bytes(start, start + contents.Size());
    }
    Bytes ImageBytes(std::uint32_t name, std::uint32_t level = 0) const {
        const STextureImage1State* image = state.FindImage(name, level);
        return image != nullptr ? BytesIn(image->data) : Bytes();
    }
    Bytes BufferBytes(std::uint32_t name) const {
        const SBufferState* buffer = state.buffers->Find(name);
        return buffer != nullptr ? BytesIn(buffer->data) : Bytes();
    }

    CEs1State state;

private:
    std::vector<std::unique_ptr<CApiCall>> m_calls;
};

TEST_F(StateEs1Updates, FixedPointValuesAreDividedByTwelve) {
    const auto four = [](CRecordBuilder record) {
        return record.Array(tag::Fixed, 1, {24, 36, 48, -25});
    };
    // 24, 36, 48 and 65536 become 2, 3, 4 and 5461; -25 truncates to -2.
    const struct {
        std::uint16_t id;
        CRecordBuilder record;
        std::function<const float*(const CEs1State&)> field;
        std::vector<float> expected;
    } cases[] = {
        {3013, Gl().Clampx(65536), [](auto& s) { return &s.clearDepth; }, {5461}},
        {3011,
         Gl().Clampx(24).Clampx(36).Clampx(48).Clampx(-25),
         [](auto& s) { return s.clearColor.data(); },
         {2, 3, 4, -2}},
        {3020,
         Gl().Fixed(24).Fixed(36).Fixed(48).Fixed(65536),
         [](auto& s) { return s.currentColor.data(); },
         {2, 3, 4, 5461}},
        {3033, Gl().Clampx(24).Clampx(36), [](auto& s) { return &s.depthRangeNear; }, {2}},
        {3033, Gl().Clampx(24).Clampx(36), [](auto& s) { return &s.depthRangeFar; }, {3}},
        {3003, Gl().Enum(516).Clampx(24), [](auto& s) { return &s.alphaRef; }, {2}},
        {3084, Gl().Fixed(36), [](auto& s) { return &s.lineWidth; }, {3}},
        {3109, Gl().Fixed(36), [](auto& s) { return &s.pointSize; }, {3}},
        {3111, Gl().Fixed(24).Fixed(-25), [](auto& s) { return &s.polygonOffsetFactor; }, {2}},
        {3111, Gl().Fixed(24).Fixed(-25), [](auto& s) { return &s.polygonOffsetUnits; }, {-2}},
        {3118, Gl().Clampx(24).Boolean(true), [](auto& s) { return &s.sampleCoverageValue; }, {2}},
        {3099,
         Gl().Fixed(24).Fixed(36).Fixed(48),
         [](auto& s) { return s.currentNormal.data(); },
         {2, 3, 4}},
        {3097,
         Gl().Enum(33985).Fixed(24).Fixed(36).Fixed(48).Fixed(12),
         [](auto& s) { return (*s.currentTexCoord)[1].data(); },
         {2, 3, 4, 1}},
        {3017,
         Gl().Enum(12290).Item(tag::Fixed, 1, {24, 36, 48, -25}),
         [](auto& s) { return s.clipPlanes[2].data(); },
         {2, 3, 4, -2}},
        {3044, Gl().Enum(2914).Fixed(36), [](auto& s) { return &s.fogDensity; }, {3}},
        {3044, Gl().Enum(2917).Fixed(9729), [](auto& s) { return &s.fogMode; }, {9729}},
        {3045, four(Gl().Enum(2917)), [](auto& s) { return &s.fogMode; }, {24}},
        {3045, four(Gl().Enum(2918)), [](auto& s) { return s.fogColor.data(); }, {2, 3, 4, -2}},
        {3081,
         Gl().Enum(16386).Enum(4613).Fixed(24),
         [](auto& s) { return s.lights->values[2][5].data(); },
         {2, 0, 0, 0}},
        {3082,
         four(Gl().Enum(16391).Enum(4612)),
         [](auto& s) { return s.lights->values[7][4].data(); },
         {2, 3, 4, 0}},
        {3091,
         Gl().Enum(1032).Enum(5633).Fixed(48),
         [](auto& s) { return s.material[4].data(); },
         {4, 0, 0, 0}},
        {3092,
         four(Gl().Enum(1032).Enum(5632)),
         [](auto& s) { return s.material[3].data(); },
         {2, 3, 4, -2}},
        {3078,
         four(Gl().Enum(2899)),
         [](auto& s) { return s.lightModelAmbient.data(); },
         {2, 3, 4, -2}},
        {3106,
         Gl().Enum(33063).Fixed(36),
         [](auto& s) { return s.pointParameters[1].data(); },
         {3, 0, 0}},
        {3107,
         four(Gl().Enum(33065)),
         [](auto& s) { return s.pointParameters[3].data(); },
         {2, 3, 4}},
        {3132,
         four(Gl().Enum(8960).Enum(3356)),
         [](auto& s) { return s.textureEnvs->scales[0].data(); },
         {0, 2}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(Apply(c.id, c.record)) << c.id;
        const float* field = c.field(state);
        EXPECT_EQ(std::vector<float>(field, field + c.expected.size()), c.expected) << c.id;
    }
    EXPECT_TRUE(Apply(3131, Gl().Enum(8960).Enum(34161).Fixed(24)));
    EXPECT_EQ(state.textureEnvs->values[0][1], 2);
    EXPECT_TRUE(Apply(3077, Gl().Enum(2898).Fixed(1)));
    EXPECT_EQ(state.lightModelTwoSide, 1);
}

TEST_F(StateEs1Updates, PlainValuesGoToTheirFields) {
    Apply(3006, Gl().Enum(770).Enum(771));
    EXPECT_EQ(state.blendSrc, 770u);
    EXPECT_EQ(state.blendDst, 771u);
    Apply(3016, Gl().Enum(12293).RealItem(tag::Float, 1, {1, 2, 3, 4}));
    EXPECT_EQ(state.clipPlanes[5], (SVector4{1, 2, 3, 4}));
    Apply(3019, Gl().Ubyte(255).Ubyte(0).Ubyte(51).Ubyte(102));
    EXPECT_EQ(state.currentColor, (SVector4{1, 0, 0.2F, 0.4F}));
    Apply(3021, Gl().Boolean(true).Boolean(false).Boolean(true).Boolean(false));
    EXPECT_EQ(state.colorMask, (std::array<std::uint8_t, 4>{1, 0, 1, 0}));
    Apply(3071, Gl().Enum(3153).Enum(4354));
    EXPECT_EQ(state.hints[4], 4354u);
    Apply(3103, Gl().Enum(3317).Int(1));
    Apply(3103, Gl().Enum(3333).Int(2));
    EXPECT_EQ(state.unpackAlignment, 1);
    EXPECT_EQ(state.packAlignment, 2);
    Apply(3144, Gl().Int(5).Int(6).Sizei(7).Sizei(8));
    EXPECT_EQ(state.viewport, (std::array<std::int32_t, 4>{5, 6, 7, 8}));
    Apply(3123, Gl().Enum(514).Int(7).Uint(0xFF));
    Apply(3124, Gl().Uint(0x55));
    EXPECT_EQ(state.stencilRef, 7);
    EXPECT_EQ(state.stencilValueMask, 0xFFu);
    EXPECT_EQ(state.stencilWriteMask, 0x55u);
    Apply(3125, Gl().Enum(1).Enum(2).Enum(3));
    EXPECT_EQ(state.stencilFail, 1u);
    EXPECT_EQ(state.stencilDepthFail, 2u);
    EXPECT_EQ(state.stencilDepthPass, 3u);
    Apply(3076, Gl().Enum(2898).Reals(tag::Float, 1, {0.5F}));
    EXPECT_EQ(state.lightModelTwoSide, 1);
}

TEST_F(StateEs1Updates, EnvironmentsAreByUnit) {
    ActiveTexture(33987);
    EXPECT_TRUE(Apply(3129, Gl().Enum(8960).Enum(8704).Int(8448)));
    EXPECT_TRUE(Apply(3127, Gl().Enum(8960).Enum(34163).Float(1.5F)));
    EXPECT_TRUE(Apply(3128, Gl().Enum(8960).Enum(34202).Reals(tag::Float, 1, {768})));
    EXPECT_FALSE(Apply(3129, Gl().Enum(34048).Enum(8704).Int(1)));
    EXPECT_EQ(state.textureEnvs->values[3][0], 8448);
    EXPECT_EQ(state.textureEnvs->values[3][14], 768);
    EXPECT_EQ(state.textureEnvs->values[0][0], 0);
    EXPECT_EQ(state.textureEnvs->scales[3][0], 1.5F);
    EXPECT_TRUE(Apply(3127, Gl().Enum(34913).Enum(34914).Float(1)));
    EXPECT_EQ(state.textureEnvs->pointSpriteReplace[3], 1);
    EXPECT_TRUE(Apply(3129, Gl().Enum(8960).Enum(34913).Int(34914)));
    EXPECT_EQ(state.textureEnvs->pointSpriteReplace[3], 34914);
}

TEST_F(StateEs1Updates, CapabilitiesAreByTableAndTexturingByUnit) {
    EXPECT_TRUE(Enum(3038, 2929));
    EXPECT_TRUE(Enum(3038, 2960));
    EXPECT_TRUE(Enum(3038, 12345));
    EXPECT_EQ(state.capabilities[11], 1);
    EXPECT_EQ(state.capabilities[33], 1);
    int enabled = 0;
    for (const std::uint8_t flag : state.capabilities) enabled += flag;
    EXPECT_EQ(enabled, 2);
    EXPECT_TRUE(Enum(3034, 2929));
    EXPECT_EQ(state.capabilities[11], 0);

    EXPECT_TRUE(ActiveTexture(33984 + 5));
    EXPECT_TRUE(Enum(3038, 3553));
    EXPECT_EQ(state.texture2DEnabled[5], 1);
    EXPECT_EQ(state.texture2DEnabled[0], 0);
    EXPECT_EQ(state.textureUnitsUsed, 6);
    EXPECT_TRUE(ActiveTexture(33985));
    EXPECT_EQ(state.textureUnitsUsed, 6);
}

TEST_F(StateEs1Updates, UnitsAndIndicesOutsideTheRecordLeaveItAlone) {
    BindTexture(4);
    for (const std::uint32_t texture : {33983u, 34016u, 0u, 0xFFFFFFFFu}) {
        ActiveTexture(texture);
        Enum(3015, texture);
        EXPECT_EQ(state.textureUnitsUsed, 1);
        EXPECT_FALSE(Enum(3038, 3553));
        EXPECT_FALSE(BindTexture(9));
        EXPECT_FALSE(TexImage(1, 1, Bytes(4, 1)));
        EXPECT_FALSE(TexSubImage(0, 0, 1, 1, Bytes(4, 1)));
        EXPECT_FALSE(Apply(3136, Gl().Enum(3553).Enum(10241).Int(9728)));
        EXPECT_FALSE(Apply(3129, Gl().Enum(8960).Enum(8704).Int(1)));
        EXPECT_FALSE(Enum(3039, 32888));
        EXPECT_FALSE(Apply(3126, Gl().Int(2).Enum(5126).Sizei(0).Pointer(1)));
        EXPECT_FALSE(Apply(3096, Gl().Enum(texture).Float(1).Float(1).Float(1).Float(1)));
        MatrixMode(5890);
        EXPECT_FALSE(Push());
        EXPECT_FALSE(Apply(3085, Gl()));
    }
    EXPECT_FALSE(Apply(3016, Gl().Enum(12294).RealItem(tag::Float, 1, {1, 2, 3, 4})));
    EXPECT_FALSE(Apply(3016, Gl().Enum(12288).RealItem(tag::Float, 0, {})));
    EXPECT_FALSE(Apply(3079, Gl().Enum(16392).Enum(4608).Float(1)));
    EXPECT_FALSE(Apply(3043, Gl().Enum(2918).Reals(tag::Float, 0, {})));
    EXPECT_EQ(state.clipPlaneIndex, 0u);
    EXPECT_EQ(state.binding2D[0], 4u);
    EXPECT_EQ(state.textures->Count(), 1);
    EXPECT_EQ(state.vertexArrays->Count(), 0);
}

TEST_F(StateEs1Updates, VectorsAreTakenAsFarAsTheyReach) {
    EXPECT_TRUE(Apply(3080, Gl().Enum(16384).Enum(4609).Reals(tag::Float, 1, {0.5F, 0.25F})));
    EXPECT_EQ(state.lights->values[0][1], (SVector4{0.5F, 0.25F, 1, 1}));
    EXPECT_TRUE(Apply(3080, Gl().Enum(16384).Enum(4612).Reals(tag::Float, 1, {1, 2, 3, 4, 5})));
    EXPECT_EQ(state.lights->values[0][4], (SVector4{1, 2, 3, 0}));
    // Shininess has one component; the enumerant for ambient and diffuse is in no table.
    EXPECT_TRUE(Apply(3090, Gl().Enum(1032).Enum(5633).Reals(tag::Float, 1, {7, 8})));
    EXPECT_EQ(state.material[4], (SVector4{7, 0, 0, 0}));
    EXPECT_TRUE(Apply(3090, Gl().Enum(1032).Enum(5634).Reals(tag::Float, 1, {9, 9, 9, 9})));
    EXPECT_EQ(state.material[0], (SVector4{0.2F, 0.2F, 0.2F, 1}));
}

TEST_F(StateEs1Updates, StacksFollowTheMode) {
    MatrixMode(5889);
    EXPECT_TRUE(Translate(1, 2, 3));
    EXPECT_TRUE(Apply(3119, Gl().Float(2).Float(3).Float(4)));
    // The new factor stands on the right: it scales what the translation moved.
    EXPECT_EQ(Top(1), (SMatrix{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 2, 6, 12, 1}));
    ActiveTexture(33984 + 31);
    MatrixMode(5890);
    EXPECT_TRUE(Apply(3142, Gl().Fixed(24).Fixed(36).Fixed(-25)));
    EXPECT_EQ(Top(33)[12], 2.0F);
    EXPECT_EQ(Top(33)[14], -2.0F);
    EXPECT_EQ(Top(0), CMatrixStack().Level(0));

    MatrixMode(5888);
    const std::vector<float> counted = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_TRUE(Apply(3086, Gl().RealItem(tag::Float, 1, counted)));
    EXPECT_EQ(Top(0)[1], 2.0F);
    EXPECT_FALSE(Apply(3086, Gl().RealItem(tag::Float, 0, {})));
    EXPECT_FALSE(Apply(3094, Gl().RealItem(tag::Float, 0, {})));
    // Multiplied as it is, without a transposition: a swap of the first two columns.
    EXPECT_TRUE(Apply(
        3094, Gl().RealItem(tag::Float, 1, {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2})));
    EXPECT_EQ(Top(0), (SMatrix{2, 1, 3, 8, 6, 5, 7, 16, 10, 9, 11, 24, 14, 13, 15, 32}));
    EXPECT_FALSE(Apply(3102, Gl().Fixed(1).Fixed(1).Fixed(0).Fixed(1).Fixed(0).Fixed(1)));
    EXPECT_EQ(Top(0)[0], 2.0F);
    EXPECT_TRUE(Apply(3085, Gl()));
    EXPECT_EQ(Top(0), CMatrixStack().Level(0));
}

TEST_F(StateEs1Updates, StacksEndAtBothEnds) {
    EXPECT_TRUE(Pop());
    EXPECT_EQ(state.matrixStacks[0].top, 0);
    for (int level = 1; level <= 19; ++level) {
        EXPECT_TRUE(Push());
        EXPECT_TRUE(Translate(1, 0, 0));
    }
    EXPECT_EQ(state.matrixStacks[0].top, 19);
    EXPECT_TRUE(Push());
    EXPECT_EQ(state.matrixStacks[0].top, 19);
    EXPECT_EQ(Top(0)[12], 19.0F);
    EXPECT_TRUE(Pop());
    EXPECT_EQ(Top(0)[12], 18.0F);
}

TEST_F(StateEs1Updates, PaletteStacksTakeLoadsAndPushesOnly) {
    MatrixMode(34880);
    EXPECT_TRUE(ApplyExt(4011, Ext().Uint(8)));
    EXPECT_EQ(state.paletteIndex, 8);
    EXPECT_EQ(state.paletteMatricesUsed, 8);
    const std::vector<float> load(16, 3.0F);
    EXPECT_TRUE(Apply(3086, Gl().RealItem(tag::Float, 1, load)));
    EXPECT_TRUE(Push());
    EXPECT_EQ(Top(42)[5], 3.0F);
    EXPECT_EQ(state.matrixStacks[42].top, 1);
    EXPECT_FALSE(Pop());
    EXPECT_FALSE(Apply(3085, Gl()));
    EXPECT_FALSE(Translate(1, 1, 1));
    EXPECT_EQ(state.matrixStacks[42].top, 1);
    EXPECT_TRUE(ApplyExt(4011, Ext().Uint(2)));
    EXPECT_EQ(state.paletteMatricesUsed, 8);
    // Beyond the stacks that are kept there is nothing to load.
    for (const std::uint32_t index : {9u, 0x7FFFFFFFu}) {
        EXPECT_TRUE(ApplyExt(4011, Ext().Uint(index)));
        EXPECT_FALSE(Apply(3086, Gl().RealItem(tag::Float, 1, load)));
        EXPECT_FALSE(Push());
    }
    EXPECT_FALSE(ApplyExt(4011, Ext().Uint(0x80000000u)));
    EXPECT_EQ(state.paletteIndex, 0x7FFFFFFF);
}

TEST_F(StateEs1Updates, TexturesKeepParametersAcrossImages) {
    EXPECT_FALSE(Apply(3136, Gl().Enum(3553).Enum(10241).Int(9728)));
    EXPECT_FALSE(Apply(3005, Gl().Enum(34067).Uint(8)));
    BindTexture(7);
    ASSERT_NE(state.FindImage(7, 0), nullptr);
    EXPECT_EQ(state.FindImage(7, 0)->name, 7u);
    EXPECT_TRUE(Apply(3134, Gl().Enum(3553).Enum(10240).Float(9728)));
    EXPECT_TRUE(Apply(3139, Gl().Enum(3553).Enum(10242).Array(tag::Fixed, 1, {33071})));
    EXPECT_TRUE(Apply(3136, Gl().Enum(3553).Enum(33084).Int(1)));
    EXPECT_FALSE(Apply(3136, Gl().Enum(34067).Enum(10240).Int(1)));
    EXPECT_TRUE(Apply(3134, Gl().Enum(3553).Enum(10241).Float(1e30F)));
    const Bytes pixels = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_TRUE(TexImage(2, 1, pixels, 6408, 5121, 0, 1));
    EXPECT_TRUE(TexImage(1, 1, {9, 9, 9, 9}, 6408, 5121, 1));
    EXPECT_FALSE(TexImage(1, 1, {9, 9, 9, 9}, 6408, 5121, -1));

    const STextureImage1State& image = *state.FindImage(7, 0);
    EXPECT_EQ(image.parameters, (std::array<std::int32_t, 4>{INT32_MAX, 9728, 33071, 10497}));
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.unpackAlignment, 1);
    EXPECT_EQ(image.imageSize, 8u);
    EXPECT_TRUE(image.data.Borrowed());
    EXPECT_EQ(ImageBytes(7), pixels);
    EXPECT_EQ(ImageBytes(7, 1), Bytes(4, 9));

    EXPECT_TRUE(
        Apply(3023, Gl().Enum(3553).Int(0).Enum(0x8D64).Sizei(4).Sizei(4).Int(0).Sizei(8).Data(
                        1, Bytes(8, 5))));
    EXPECT_EQ(state.FindImage(7, 0)->compressed, 1);
    EXPECT_EQ(state.FindImage(7, 0)->internalFormat, 0x8D64);
    EXPECT_TRUE(TexSubImage(0, 0, 1, 1, Bytes(4, 1)));
    EXPECT_EQ(ImageBytes(7), Bytes(8, 5));

    ActiveTexture(33986);
    BindTexture(7);
    EXPECT_TRUE(Apply(3029, Gl().Sizei(5).Array(tag::Uint, 1, {7, 99})));
    EXPECT_EQ(state.binding2D[0], 0u);
    EXPECT_EQ(state.binding2D[2], 0u);
    EXPECT_EQ(state.textures->Count(), 0);
}

TEST_F(StateEs1Updates, SubImagesGoIntoAPrivateCopy) {
    BindTexture(7);
    // Two rows of three one-byte pixels, padded to 4.
    TexImage(3, 2, {1, 2, 3, 0, 4, 5, 6, 0}, 6409, 5121);
    const CEs1State before = state;
    Apply(3103, Gl().Enum(3317).Int(2));
    // One column of two rows; each row is padded to 2, the last one is short.
    EXPECT_TRUE(TexSubImage(1, 0, 1, 2, {20, 0, 50}, 6409, 5121));
    EXPECT_EQ(ImageBytes(7), (Bytes{1, 20, 3, 0, 4, 50, 6, 0}));
    EXPECT_FALSE(state.FindImage(7, 0)->data.Borrowed());
    EXPECT_EQ(BytesIn(before.FindImage(7, 0)->data)[1], 2);
    // The whole image in the layout of the image is borrowed again.
    Apply(3103, Gl().Enum(3317).Int(4));
    EXPECT_TRUE(TexSubImage(0, 0, 3, 2, {9, 8, 7, 0, 6, 5, 4, 0}, 6409, 5121));
    EXPECT_TRUE(state.FindImage(7, 0)->data.Borrowed());
    EXPECT_EQ(ImageBytes(7), (Bytes{9, 8, 7, 0, 6, 5, 4, 0}));
    // In another layout, or with the last row's padding missing, it is copied by rows.
    EXPECT_TRUE(TexSubImage(0, 0, 3, 2, {8, 7, 6, 0, 5, 4, 3}, 6409, 5121));
    EXPECT_FALSE(state.FindImage(7, 0)->data.Borrowed());
    EXPECT_EQ(ImageBytes(7), (Bytes{8, 7, 6, 0, 5, 4, 3, 0}));
    Apply(3103, Gl().Enum(3317).Int(0));
    EXPECT_TRUE(TexSubImage(0, 0, 3, 2, {1, 2, 3, 4, 5, 6, 77, 77}, 6409, 5121));
    EXPECT_EQ(ImageBytes(7), (Bytes{1, 2, 3, 0, 4, 5, 6, 0}));
}

TEST_F(StateEs1Updates, SubImagesAreConverted) {
    BindTexture(7);
    TexImage(2, 1, {0, 0, 0, 0}, 6408, 32819);
    // 5551 red with alpha: 0xF801 becomes 0xF00F of 4444.
    EXPECT_TRUE(TexSubImage(1, 0, 1, 1, {0x01, 0xF8}, 6408, 32820));
    EXPECT_EQ(ImageBytes(7), (Bytes{0, 0, 0x0F, 0xF0}));
    EXPECT_FALSE(TexSubImage(0, 0, 1, 1, {1, 2}, 6410, 5120));
    EXPECT_EQ(ImageBytes(7), (Bytes{0, 0, 0x0F, 0xF0}));
}

TEST_F(StateEs1Updates, SubImagesOutOfRangeChangeNothing) {
    EXPECT_TRUE(TexSubImage(0, 0, 1, 1, {}));
    BindTexture(7);
    TexImage(2, 2, Bytes(16, 7));
    const std::string message =
        "KESTRAIL(W) ERROR: glTexSubImage2D: trying to update a texture out of limits.\n";
    EXPECT_EQ(Printed([this] { EXPECT_FALSE(TexSubImage(0, 0, 3, 1, Bytes(64, 1))); }), message);
    EXPECT_EQ(Printed([this] { EXPECT_FALSE(TexSubImage(0, 0, 1, 3, Bytes(64, 1))); }), message);
    EXPECT_EQ(Printed([this] {
                  const int kMax = INT32_MAX;
                  const int kMin = INT32_MIN;
                  const int cases[][4] = {{1, 0, 2, 1},  {0, 1, 1, 2},    {-1, 0, 1, 1},
                                          {0, -1, 1, 1}, {kMax, 0, 2, 2}, {0, kMax, 2, 2},
                                          {0, 0, 0, 1},  {0, 0, -1, 1},   {0, 0, 1, kMin}};
                  for (const auto& c : cases) {
                      EXPECT_FALSE(TexSubImage(c[0], c[1], c[2], c[3], Bytes(64, 1)));
                  }
                  // Too few bytes, no such level, unknown formats.
                  EXPECT_FALSE(TexSubImage(0, 0, 2, 2, Bytes(15, 1)));
                  EXPECT_FALSE(TexSubImage(0, 0, 1, 1, Bytes(64, 1), 6408, 5121, 3));
                  EXPECT_FALSE(TexSubImage(0, 0, 1, 1, Bytes(64, 1), 6408, 5121, -1));
                  EXPECT_FALSE(TexSubImage(0, 0, 1, 1, Bytes(64, 1), 1, 5121));
              }),
              "");
    EXPECT_EQ(ImageBytes(7), Bytes(16, 7));
    // Zeros stand where an image brought no pixels, unless it claims more than any image has.
    TexImage(2, 1, {});
    EXPECT_TRUE(TexSubImage(1, 0, 1, 1, Bytes(4, 1)));
    EXPECT_EQ(ImageBytes(7), (Bytes{0, 0, 0, 0, 1, 1, 1, 1}));
    TexImage(2, 2, Bytes(5, 3));
    EXPECT_TRUE(TexSubImage(1, 1, 1, 1, Bytes(4, 1)));
    EXPECT_EQ(ImageBytes(7), (Bytes{3, 3, 3, 3, 3, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1}));
    TexImage(INT32_MAX, INT32_MAX, {});
    EXPECT_FALSE(TexSubImage(1, 0, 1, 1, Bytes(4, 1)));
}

TEST_F(StateEs1Updates, BufferContents) {
    EXPECT_FALSE(BufferData(34962, 4, Bytes(4, 1)));
    EXPECT_FALSE(BufferData(35345, 4, Bytes(4, 1)));
    BindBuffer(34962, 5);
    BindBuffer(34963, 6);
    EXPECT_TRUE(BufferData(34962, 4, {1, 2, 3, 4}));
    EXPECT_TRUE(BufferData(34963, 4, {}));
    EXPECT_TRUE(state.buffers->Find(5)->data.Borrowed());
    EXPECT_EQ(state.buffers->Find(6)->target, 34963u);
    EXPECT_EQ(state.buffers->Find(6)->size, 4u);
    EXPECT_FALSE(BufferData(34962, -1, Bytes(4, 1)));

    const CEs1State before = state;
    EXPECT_TRUE(BufferSubData(1, 2, {8, 9}));
    EXPECT_EQ(BufferBytes(5), (Bytes{1, 8, 9, 4}));
    EXPECT_EQ(BytesIn(before.buffers->Find(5)->data)[1], 2);
    const struct {
        std::int64_t offset, size;
    } outside[] = {{3, 2}, {-1, 2}, {INT32_MAX, 2}, {0, 3}, {0, -1}, {5, 0}};
    for (const auto& c : outside) EXPECT_FALSE(BufferSubData(c.offset, c.size, {8, 9}));
    EXPECT_EQ(BufferBytes(5), (Bytes{1, 8, 9, 4}));
    EXPECT_TRUE(BufferSubData(0, 4, {4, 3, 2, 1}));
    EXPECT_TRUE(state.buffers->Find(5)->data.Borrowed());

    EXPECT_TRUE(BufferData(34962, 3, {}));
    EXPECT_TRUE(BufferSubData(1, 1, {8}));
    EXPECT_EQ(BufferBytes(5), (Bytes{0, 8, 0}));
    EXPECT_TRUE(BufferData(34962, INT32_MAX, {}));
    EXPECT_FALSE(BufferSubData(1, 1, {8}));

    EXPECT_TRUE(Apply(3028, Gl().Sizei(-1).Array(tag::Uint, 1, {5, 6})));
    EXPECT_EQ(state.buffers->Count(), 2);
    EXPECT_TRUE(Apply(3028, Gl().Sizei(9).Array(tag::Uint, 1, {5, 77})));
    EXPECT_EQ(state.buffers->Count(), 1);
    EXPECT_FALSE(BufferSubData(0, 1, {8}));
}

TEST_F(StateEs1Updates, ClientArraysBelongToTheVertexArray) {
    BindBuffer(34962, 5);
    EXPECT_TRUE(Apply(3143, Gl().Int(3).Enum(5126).Sizei(24).Pointer(100)));
    EXPECT_TRUE(Apply(3100, Gl().Enum(5120).Sizei(8).Pointer(200)));
    EXPECT_TRUE(Enum(3039, 32884));
    EXPECT_TRUE(ApplyExt(4007, Ext().Uint(3)));
    Enum(3015, 33985);
    BindBuffer(34962, 0);
    BindBuffer(34963, 9);
    EXPECT_TRUE(Apply(3126, Gl().Int(2).Enum(5126).Sizei(0).Pointer(300)));
    EXPECT_TRUE(Apply(3022, Gl().Int(4).Enum(5121).Sizei(4).Pointer(400)));
    EXPECT_TRUE(Apply(3145, Gl().Enum(5126).Sizei(4).Pointer(500)));
    EXPECT_TRUE(Enum(3039, 32888));
    EXPECT_TRUE(Enum(3039, 32886));
    EXPECT_TRUE(Enum(3035, 32886));
    EXPECT_TRUE(Enum(3039, 11));

    const SClientArraysState& first = **state.vertexArrays->Find(0);
    EXPECT_EQ(first.vertex, (SClientArrayState{5, 3, 5126, 24, 100}));
    EXPECT_EQ(first.normal, (SClientArrayState{5, 0, 5120, 8, 200}));
    EXPECT_EQ(first.enabled, (std::array<std::uint8_t, 6>{0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(first.elementBuffer, 0u);
    const SClientArraysState& second = **state.vertexArrays->Find(3);
    EXPECT_EQ(second.name, 3u);
    EXPECT_EQ(second.texCoords[1], (SClientArrayState{0, 2, 5126, 0, 300}));
    EXPECT_EQ(second.color, (SClientArrayState{0, 4, 5121, 4, 400}));
    EXPECT_EQ(second.pointSize, (SClientArrayState{0, 0, 5126, 4, 500}));
    EXPECT_EQ(second.texCoordEnabled[1], 1);
    EXPECT_EQ(second.enabled, (std::array<std::uint8_t, 6>{}));
    EXPECT_EQ(second.elementBuffer, 9u);
    EXPECT_TRUE(ApplyExt(4013, Ext().Int(4).Enum(5121).Sizei(0).Pointer(1)));
    EXPECT_EQ(second.matrixIndex, SClientArrayState());
}

TEST_F(StateEs1Updates, FramebufferObjects) {
    EXPECT_FALSE(ApplyExt(4024, Ext().Sizei(2).ArrayHead(0, 0)));
    EXPECT_FALSE(ApplyExt(4019, Ext().Enum(36161).Enum(32854).Sizei(1).Sizei(1)));
    EXPECT_FALSE(ApplyExt(4026, Ext().Enum(36160).Enum(36064).Enum(3553).Uint(7).Int(0)));
    EXPECT_TRUE(ApplyExt(4024, Ext().Sizei(2).Array(tag::Uint, 1, {11, 12})));
    EXPECT_TRUE(ApplyExt(4018, Ext().Sizei(9).Array(tag::Uint, 1, {21})));
    EXPECT_EQ(state.framebuffers->Find(12)->name, 12u);
    EXPECT_EQ(state.framebuffers->Find(12)->everBound, 0);

    EXPECT_TRUE(ApplyExt(4016, Ext().Enum(36161).Uint(21)));
    EXPECT_TRUE(ApplyExt(4019, Ext().Enum(36161).Enum(32854).Sizei(64).Sizei(32)));
    EXPECT_EQ(state.renderbuffers->Find(21)->width, 64);
    EXPECT_EQ(state.renderbuffers->Find(21)->height, 32);
    EXPECT_EQ(state.renderbuffers->Find(21)->internalFormat, 32854u);
    EXPECT_EQ(state.renderbuffers->Find(21)->everBound, 1);

    EXPECT_TRUE(ApplyExt(4022, Ext().Enum(36160).Uint(12)));
    EXPECT_TRUE(ApplyExt(4026, Ext().Enum(36160).Enum(36064).Enum(3553).Uint(7).Int(2)));
    EXPECT_TRUE(ApplyExt(4027, Ext().Enum(36160).Enum(36096).Enum(36161).Uint(21)));
    EXPECT_TRUE(ApplyExt(4027, Ext().Enum(36160).Enum(36128).Enum(36161).Uint(22)));
    EXPECT_FALSE(ApplyExt(4027, Ext().Enum(36161).Enum(36128).Enum(36161).Uint(23)));
    const SFramebufferState& framebuffer = *state.framebuffers->Find(12);
    EXPECT_EQ(framebuffer.everBound, 1);
    ASSERT_EQ(framebuffer.colors->size(), 1u);
    EXPECT_EQ(framebuffer.colors->front().kind, 5890u);
    EXPECT_EQ(framebuffer.colors->front().name, 7u);
    EXPECT_EQ(framebuffer.colors->front().level, 2);
    EXPECT_EQ(framebuffer.depth.name, 21u);
    EXPECT_EQ(framebuffer.depth.kind, 36161u);
    EXPECT_EQ(framebuffer.stencil.name, 22u);

    EXPECT_TRUE(ApplyExt(4023, Ext().Sizei(1).Array(tag::Uint, 1, {11, 12})));
    EXPECT_EQ(state.boundFramebuffer, 12u);
    EXPECT_TRUE(ApplyExt(4023, Ext().Sizei(2).Array(tag::Uint, 1, {11, 12})));
    EXPECT_TRUE(ApplyExt(4017, Ext().Sizei(1).Array(tag::Uint, 1, {21})));
    EXPECT_EQ(state.boundFramebuffer, 0u);
    EXPECT_EQ(state.boundRenderbuffer, 0u);
    EXPECT_EQ(state.framebuffers->Count() + state.renderbuffers->Count(), 0);
}

TEST_F(StateEs1Updates, CallsThatChangeNothingShareWithTheSnapshot) {
    const auto frame = [this] {
        ActiveTexture(33984);
        BindTexture(7);
        Apply(3136, Gl().Enum(3553).Enum(10241).Int(9728));
        Apply(3129, Gl().Enum(8960).Enum(8704).Int(8448));
        Apply(3080, Gl().Enum(16384).Enum(4611).Reals(tag::Float, 1, {1, 2, 3, 1}));
        MatrixMode(5888);
        Apply(3085, Gl());
        Push();
        Translate(1, 2, 3);
        Pop();
        Apply(3143, Gl().Int(3).Enum(5126).Sizei(24).Pointer(100));
        Enum(3039, 32884);
        BindBuffer(34963, 9);
        ApplyExt(4022, Ext().Enum(36160).Uint(12));
        Apply(3029, Gl().Sizei(1).Array(tag::Uint, 1, {1000}));
    };
    frame();
    const CEs1State snapshot = state;
    frame();
    EXPECT_TRUE(state.textures.SameAs(snapshot.textures));
    EXPECT_TRUE(state.textureEnvs.SameAs(snapshot.textureEnvs));
    EXPECT_TRUE(state.lights.SameAs(snapshot.lights));
    EXPECT_TRUE(state.vertexArrays.SameAs(snapshot.vertexArrays));
    EXPECT_TRUE(state.framebuffers.SameAs(snapshot.framebuffers));
    EXPECT_TRUE(state.matrixStacks[1].SameAs(snapshot.matrixStacks[1]));
    Push();
    Translate(7, 7, 7);
    EXPECT_FALSE(state.matrixStacks[0].SameAs(snapshot.matrixStacks[0]));
    EXPECT_EQ(snapshot.matrixStacks[0].Level(1)[12], 1.0F);
}

}  // namespace
}  // namespace kestrail
