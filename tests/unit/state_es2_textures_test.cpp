#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "base/output.h"
#include "tests/unit/state_es2_model.h"

namespace kestrail {
namespace {

constexpr std::uint32_t k2D = 3553, kCube = 34067, k3D = 32879, kArray = 35866, kFace0 = 34069;
constexpr std::uint32_t kLuminance = 6409, kRgb = 6407, kRgba = 6408;
constexpr std::uint32_t kBytes = 5121, k4444 = 32819, k565 = 33635;

struct SImageCall {
    std::uint32_t target = k2D;
    std::int64_t level = 0;
    std::int64_t width = 4;
    std::int64_t height = 2;
    std::uint32_t format = kLuminance;
    std::uint32_t type = kBytes;
    std::int64_t alignment = 1;
    std::int64_t internalFormat = kLuminance;

    bool Apply(CModel& model, const Bytes& pixels) const {
        return model.Do(2106, Gl().Enum(target)
                                  .Int(level)
                                  .Int(internalFormat)
                                  .Sizei(width)
                                  .Sizei(height)
                                  .Int(0)
                                  .Enum(format)
                                  .Enum(type)
                                  .Data(pixels.empty() ? 0 : 1, pixels)
                                  .Int(alignment));
    }
};

struct SSubCall {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::uint32_t format = kLuminance;
    std::uint32_t type = kBytes;
    std::uint32_t target = k2D;
    std::int64_t level = 0;

    bool Apply(CModel& model, const Bytes& pixels) const {
        return model.Do(2111, Gl().Enum(target)
                                  .Int(level)
                                  .Int(x)
                                  .Int(y)
                                  .Sizei(width)
                                  .Sizei(height)
                                  .Enum(format)
                                  .Enum(type)
                                  .Data(pixels.empty() ? 0 : 1, pixels));
    }
};

void BindTexture(CModel& model, std::uint32_t target, std::uint32_t name) {
    EXPECT_TRUE(model.Bind(2007, target, name));
}

std::string PixelsOf(const CEs2State& state, std::uint32_t name, std::uint32_t face = 0,
                     std::uint32_t level = 0) {
    const STextureImageState* image = state.FindImage(name, face, level);
    return image != nullptr ? BytesOf(image->data) : "no image";
}

TEST(Es2Units, AsFarAsTheRecordGoes) {
    CModel model;
    CEs2State& s = model.state;
    const struct {
        std::uint32_t unit;
        std::int32_t used;
        bool there;
    } cases[] = {{33984, 1, true},   {33986, 3, true},   {33985, 3, true}, {34015, 32, true},
                 {34016, 32, false}, {33983, 32, false}, {0, 32, false},   {0xFFFFFFFF, 32, false}};
    std::uint32_t name = 100;
    for (const auto& c : cases) {
        EXPECT_TRUE(model.Enum(2001, c.unit));
        EXPECT_EQ(s.activeTexture, c.unit);
        EXPECT_EQ(s.textureUnitsUsed, c.used) << c.unit;
        EXPECT_EQ(model.Bind(2007, k2D, ++name), c.there) << c.unit;
        EXPECT_EQ(SImageCall().Apply(model, {}), c.there);
        EXPECT_EQ(model.Do(2109, Gl().Enum(k2D).Enum(10240).Int(9728)), c.there);
        if (!c.there) continue;
        EXPECT_EQ((*s.binding2D)[c.unit - 33984], name);
    }
    EXPECT_EQ(s.textures->Count(), 4);
}

TEST(Es2Units, HoldATextureOfEachTarget) {
    CModel model;
    CEs2State& s = model.state;
    model.Enum(2001, 33985);
    EXPECT_FALSE(model.Bind(2007, 34068, 9));
    EXPECT_EQ(s.textures->Count(), 0);
    std::uint32_t name = 10;
    for (const std::uint32_t target : {k2D, kCube, k3D, kArray}) {
        BindTexture(model, target, ++name);
        const STextureImageState* image = s.FindImage(name, 0, 0);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->name, name);
        EXPECT_EQ(image->bindTarget, target);
        EXPECT_EQ(image->width, 0);
        EXPECT_EQ(image->parameters[0], 9986);
    }
    EXPECT_EQ((*s.binding2D)[1], 11U);
    EXPECT_EQ((*s.bindingCube)[1], 12U);
    EXPECT_EQ((*s.binding3D)[1], 13U);
    EXPECT_EQ((*s.binding2DArray)[1], 14U);
    const CEs2State before = s;
    BindTexture(model, k2D, 0);
    BindTexture(model, k2D, 11);
    EXPECT_TRUE(SameTables(before, s));

    model.Enum(2001, 33984);
    BindTexture(model, k2D, 11);
    EXPECT_TRUE(model.Names(2031, {11, 13, 0, 77}));
    EXPECT_EQ(*s.binding2D, (std::array<std::uint32_t, 32>{}));
    EXPECT_EQ((*s.binding3D)[1], 0U);
    EXPECT_EQ((*s.bindingCube)[1], 12U);
    EXPECT_EQ(s.textures->Count(), 2);
    EXPECT_EQ(before.textures->Count(), 4);
}

TEST(Es2Textures, ImagesAreBorrowed) {
    CModel model;
    CEs2State& s = model.state;
    BindTexture(model, k2D, 3);
    BindTexture(model, kCube, 4);
    EXPECT_TRUE(model.Do(2109, Gl().Enum(k2D).Enum(10242).Int(33071)));
    SImageCall call;
    call.format = kRgb;
    call.internalFormat = 0x8051;
    call.width = 3;
    call.alignment = 4;
    EXPECT_TRUE(call.Apply(model, Bytes(24, 7)));
    const STextureImageState& image = *s.FindImage(3, 0, 0);
    EXPECT_TRUE(image.data.Borrowed());
    EXPECT_EQ(image.data.Size(), 24U);
    EXPECT_EQ(image.imageSize, 24U);
    EXPECT_EQ(image.target, k2D);
    EXPECT_EQ(image.bindTarget, k2D);
    EXPECT_EQ(image.name, 3U);
    EXPECT_EQ(image.format, kRgb);
    EXPECT_EQ(image.internalFormat, 0x8051);
    EXPECT_EQ(image.type, kBytes);
    EXPECT_EQ(image.width, 3);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.unpackAlignment, 4);
    EXPECT_EQ(image.parameters[2], 33071);

    call.target = kFace0 + 5;
    call.level = 2;
    EXPECT_TRUE(call.Apply(model, Bytes(5, 7)));
    const STextureImageState& face = *s.FindImage(4, 5, 2);
    EXPECT_EQ(face.target, kFace0 + 5);
    EXPECT_EQ(face.bindTarget, kCube);
    EXPECT_EQ(face.level, 2);
    EXPECT_EQ(face.data.Size(), 5U);
    EXPECT_EQ(face.imageSize, 24U);
    EXPECT_EQ(face.parameters[2], 10497);

    const CEs2State before = s;
    call.level = -1;
    EXPECT_FALSE(call.Apply(model, Bytes(24, 7)));
    for (const std::uint32_t target : {kFace0 - 1, kFace0 + 6, kCube, k3D, 0U}) {
        SImageCall other;
        other.target = target;
        EXPECT_FALSE(other.Apply(model, {})) << target;
    }
    EXPECT_TRUE(SameTables(before, s));

    SImageCall huge;
    huge.width = huge.height = 0x7FFFFFFF;
    huge.alignment = -1;
    EXPECT_TRUE(huge.Apply(model, Bytes(3, 7)));
    EXPECT_EQ(s.FindImage(3, 0, 0)->data.Size(), 3U);
    EXPECT_EQ(s.FindImage(3, 0, 0)->imageSize, 0xFFFFFFFFU);
}

TEST(Es2Textures, CompressedImagesKeepWhatWasCaptured) {
    const struct {
        std::int64_t imageSize;
        std::size_t captured;
        std::uint32_t stored;
        bool taken;
    } cases[] = {
        {8, 8, 8, true}, {8, 3, 3, true}, {6, 8, 6, true}, {8, 0, 8, true}, {-1, 8, 0, false}};
    for (const auto& c : cases) {
        CModel model;
        BindTexture(model, k2D, 3);
        const Bytes blocks(c.captured, 5);
        EXPECT_EQ(model.Do(2022, Gl().Enum(k2D)
                                     .Int(0)
                                     .Enum(36196)
                                     .Sizei(4)
                                     .Sizei(4)
                                     .Int(0)
                                     .Sizei(c.imageSize)
                                     .Data(c.captured != 0 ? 1 : 0, blocks)),
                  c.taken);
        const STextureImageState& image = *model.state.FindImage(3, 0, 0);
        EXPECT_EQ(image.imageSize, c.stored);
        if (!c.taken) continue;
        EXPECT_EQ(image.compressed, 1);
        EXPECT_EQ(image.format, 36196U);
        EXPECT_EQ(image.unpackAlignment, 4);
        const CEs2State before = model.state;
        EXPECT_TRUE((SSubCall{0, 0, 1, 1}.Apply(model, Text("x"))));
        EXPECT_TRUE(SameTables(before, model.state));
    }
}

TEST(Es2Textures, PartsAreCopiedIntoPlace) {
    CModel model;
    CEs2State& s = model.state;
    model.Do(2091, Gl().Enum(3317).Int(1));
    BindTexture(model, k2D, 3);
    SImageCall().Apply(model, Text("abcdefgh"));
    const CEs2State before = s;
    EXPECT_TRUE((SSubCall{1, 0, 2, 2}.Apply(model, Text("WXYZ"))));
    EXPECT_EQ(PixelsOf(s, 3), "aWXdeYZh");
    EXPECT_EQ(PixelsOf(before, 3), "abcdefgh");
    EXPECT_TRUE((SSubCall{3, 1, 1, 1}.Apply(model, Text("!"))));
    EXPECT_EQ(PixelsOf(s, 3), "aWXdeYZ!");
    // A host that is given fewer bytes than it reads is not asked.
    EXPECT_FALSE((SSubCall{0, 0, 2, 2}.Apply(model, Text("123"))));
    EXPECT_EQ(PixelsOf(s, 3), "aWXdeYZ!");
    // The call's rows are padded to the alignment in force.
    model.Do(2091, Gl().Enum(3317).Int(4));
    EXPECT_TRUE((SSubCall{0, 0, 2, 2}.Apply(model, Text("AB--CD"))));
    EXPECT_EQ(PixelsOf(s, 3), "ABXdCDZ!");
    EXPECT_TRUE((SSubCall{0, 0, 4, 2}.Apply(model, Text("stuvwxyz"))));
    EXPECT_EQ(PixelsOf(s, 3), "stuvwxyz");
    EXPECT_TRUE(s.FindImage(3, 0, 0)->data.Borrowed());
    // Narrower rows may take as much room as whole ones.
    EXPECT_TRUE((SSubCall{1, 0, 2, 2}.Apply(model, Text("AB--CD--"))));
    EXPECT_EQ(PixelsOf(s, 3), "sABvwCDz");
    // All of a face, at a level of its own, whose rows are laid out otherwise.
    BindTexture(model, kCube, 4);
    SImageCall face;
    face.target = kFace0 + 2;
    face.level = 1;
    face.width = 2;
    face.Apply(model, Text("abcd"));
    SSubCall sub{0, 0, 2, 2};
    sub.target = kFace0 + 2;
    sub.level = 1;
    EXPECT_TRUE(sub.Apply(model, Text("AB--CD--")));
    EXPECT_EQ(PixelsOf(s, 4, 2, 1), "ABCD");
}

TEST(Es2Textures, PartsThatDoNotFit) {
    CModel model;
    BindTexture(model, k2D, 3);
    SImageCall().Apply(model, Text("abcdefgh"));
    const CEs2State before = model.state;
    const std::string outOfLimits =
        "KESTRAIL(W) ERROR: glTexSubImage2D: trying to update a texture out of limits.\n";
    constexpr std::int64_t kMost = 0x7FFFFFFF;
    const struct {
        SSubCall call;
        bool message;
    } cases[] = {{{0, 0, 5, 1}, true},
                 {{0, 0, 1, 3}, true},
                 {{0, 0, kMost, 1}, true},
                 {{1, 0, 4, 1}, false},
                 {{0, 1, 1, 2}, false},
                 {{-1, 0, 1, 1}, false},
                 {{0, -1, 1, 1}, false},
                 {{kMost, kMost, 1, 1}, false},
                 {{0, 0, 0, 1}, false},
                 {{0, 0, -1, -1}, false},
                 {{0, 0, 1, 1, 1, 2}, false},
                 {{0, 0, 1, 1, kRgba, kBytes}, false},
                 {{0, 0, 1, 1, kLuminance, kBytes, kFace0}, false},
                 {{0, 0, 1, 1, kLuminance, kBytes, k2D, 1}, false},
                 {{0, 0, 1, 1, kLuminance, kBytes, k2D, -1}, false},
                 {{0, 0, 1, 1, kLuminance, kBytes, kCube}, false}};
    for (const auto& c : cases) {
        output::Flush();
        testing::internal::CaptureStdout();
        const bool result = c.call.Apply(model, Bytes(64, 'x'));
        output::Flush();
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_FALSE(result);
        EXPECT_EQ(printed, c.message ? outOfLimits : "");
        EXPECT_TRUE(SameTables(before, model.state));
    }
    EXPECT_TRUE((SSubCall{0, 0, 9, 9}.Apply(model, {})));
}

TEST(Es2Textures, ImagesWithoutPixelsBeginAsZeros) {
    CModel model;
    BindTexture(model, k2D, 3);
    SImageCall image;
    image.width = image.height = 3;
    image.alignment = 2;
    image.Apply(model, {});
    EXPECT_TRUE(model.state.FindImage(3, 0, 0)->data.Empty());
    EXPECT_TRUE((SSubCall{2, 1, 1, 1}.Apply(model, Text("x"))));
    EXPECT_EQ(PixelsOf(model.state, 3), std::string("\0\0\0\0\0\0x\0\0\0\0\0", 12));
    // No format yet: that of the call.
    image.format = image.type = 0;
    image.Apply(model, {});
    EXPECT_TRUE((SSubCall{0, 2, 1, 1}.Apply(model, Text("y"))));
    EXPECT_EQ(model.state.FindImage(3, 0, 0)->format, kLuminance);
    EXPECT_EQ(PixelsOf(model.state, 3), std::string("\0\0\0\0\0\0\0\0y\0\0\0", 12));
    // A size that only a damaged trace has.
    image.format = kLuminance;
    image.type = kBytes;
    image.width = image.height = 0x7FFFFFFF;
    image.Apply(model, {});
    const CEs2State before = model.state;
    EXPECT_FALSE((SSubCall{2, 1, 1, 1}.Apply(model, Text("x"))));
    EXPECT_TRUE(SameTables(before, model.state));
    image.Apply(model, Text("abc"));
    EXPECT_FALSE((SSubCall{1, 0, 1, 1}.Apply(model, Text("x"))));
    EXPECT_EQ(PixelsOf(model.state, 3), "abc");
}

TEST(Es2Textures, PartsOfAnotherFormatAreConverted) {
    CModel model;
    BindTexture(model, k2D, 3);
    SImageCall image;
    image.width = 3;
    image.format = kRgba;
    image.type = k4444;
    image.alignment = 4;
    Bytes zeros(16, 0);
    image.Apply(model, zeros);
    // Red, green over blue, white in 5, 6 and 5 bits, at (1, 0).
    const std::uint16_t colors[] = {0xF800, 0x07E0, 0x001F, 0xFFFF};
    Bytes pixels(8);
    std::memcpy(pixels.data(), colors, 8);
    EXPECT_TRUE((SSubCall{1, 0, 2, 2, kRgb, k565}.Apply(model, pixels)));
    const std::uint16_t wanted[] = {0, 0xF00F, 0x0F0F, 0, 0, 0x00FF, 0xFFFF, 0};
    Bytes bytes(16);
    std::memcpy(bytes.data(), wanted, 16);
    EXPECT_EQ(PixelsOf(model.state, 3), std::string(bytes.begin(), bytes.end()));

    const CEs2State before = model.state;
    EXPECT_FALSE((SSubCall{1, 0, 2, 2, kRgb, k565}.Apply(model, Bytes(7))));
    EXPECT_FALSE((SSubCall{0, 0, 1, 1, kRgba, k565}.Apply(model, pixels)));
    EXPECT_FALSE((SSubCall{0, 0, 1, 1, kRgba, 5126}.Apply(model, Bytes(16))));
    EXPECT_FALSE((SSubCall{0, 0, 3, 2, kRgb, k565}.Apply(model, pixels)));
    EXPECT_TRUE(SameTables(before, model.state));
    // Bytes read as zeros.
    EXPECT_TRUE((SSubCall{2, 0, 1, 1, kRgba, kBytes}.Apply(model, Text("abcd"))));
    std::memset(bytes.data() + 4, 0, 2);
    EXPECT_EQ(PixelsOf(model.state, 3), std::string(bytes.begin(), bytes.end()));
}

TEST(Es2Textures, ParametersStayWithTheFirstImage) {
    constexpr std::uint32_t kNames[] = {10241, 10240, 10242, 10243, 33084, 34893, 34892, 33082,
                                        33083, 33085, 36418, 36419, 36420, 36421, 32882};
    for (const std::uint32_t target : {k2D, kCube, k3D, kArray}) {
        CModel model;
        EXPECT_FALSE(model.Do(2109, Gl().Enum(target).Enum(10240).Int(9728)));
        BindTexture(model, target, 5);
        for (std::size_t i = 0; i < 15; ++i) {
            const auto value = static_cast<std::int32_t>(i) + 50;
            const auto holds = [&](std::int32_t v) {
                return model.state.FindImage(5, 0, 0)->parameters[i] == v;
            };
            const auto head = [&] { return Gl().Enum(target).Enum(kNames[i]); };
            EXPECT_TRUE(model.Do(2107, head().Float(static_cast<float>(value))));
            EXPECT_TRUE(holds(value));
            EXPECT_TRUE(model.Do(2108, head().Reals(tag::Float, 1, {-2.5F, 3})));
            EXPECT_TRUE(holds(-2));
            EXPECT_TRUE(model.Do(2109, head().Int(value + 1)));
            EXPECT_TRUE(holds(value + 1));
            EXPECT_TRUE(model.Do(2110, head().Array(tag::Int, 1, {value + 2})));
            EXPECT_TRUE(holds(value + 2));
        }
        const CEs2State before = model.state;
        EXPECT_TRUE(model.Do(2109, Gl().Enum(target).Enum(34046).Int(1)));
        EXPECT_TRUE(model.Do(2109, Gl().Enum(target).Enum(10241).Int(52)));
        EXPECT_FALSE(model.Do(2109, Gl().Enum(kFace0).Enum(10241).Int(1)));
        EXPECT_FALSE(model.Do(2110, Gl().Enum(target).Enum(10241).Array(tag::Int, 0, {})));
        EXPECT_FALSE(model.Do(2108, Gl().Enum(target).Enum(10241).Reals(tag::Float, 0, {})));
        EXPECT_TRUE(SameTables(before, model.state));
    }
    // Numbers that no int holds.
    CModel model;
    BindTexture(model, k2D, 5);
    const struct {
        float value;
        std::int32_t held;
    } cases[] = {{NAN, 0},
                 {INFINITY, 2147483647},
                 {-INFINITY, -2147483647 - 1},
                 {3e9F, 2147483647},
                 {-2147483648.F, -2147483647 - 1}};
    for (const auto& c : cases) {
        EXPECT_TRUE(model.Do(2107, Gl().Enum(k2D).Enum(33083).Float(c.value)));
        EXPECT_EQ(model.state.FindImage(5, 0, 0)->parameters[8], c.held);
    }
}

TEST(Es3Textures, ImagesOfThreeDimensions) {
    CModel model;
    CEs2State& s = model.state;
    const auto image = [&](std::uint32_t target, std::int64_t level, const Bytes& pixels) {
        return model.Do(5145, Gl().Enum(target)
                                  .Int(level)
                                  .Int(33321)
                                  .Sizei(2)
                                  .Sizei(1)
                                  .Sizei(3)
                                  .Int(0)
                                  .Enum(kLuminance)
                                  .Enum(kBytes)
                                  .Data(pixels.empty() ? 0 : 1, pixels));
    };
    const auto part = [&](std::uint32_t target, std::int64_t level, std::int64_t width,
                          const char* pixels = "XY") {
        return model.Do(5146, Gl().Enum(target)
                                  .Int(level)
                                  .Int(0)
                                  .Int(0)
                                  .Int(1)
                                  .Sizei(width)
                                  .Sizei(1)
                                  .Sizei(1)
                                  .Enum(kLuminance)
                                  .Enum(kBytes)
                                  .Data(1, Text(pixels)));
    };
    model.Do(2091, Gl().Enum(3317).Int(2));
    BindTexture(model, kArray, 6);
    BindTexture(model, k3D, 7);
    EXPECT_FALSE(image(k2D, 0, {}));
    EXPECT_TRUE(image(kArray, 0, Text("abcdef")));
    EXPECT_TRUE(image(k3D, 1, {}));
    const STextureImageState& array = *s.FindImage(6, 0, 0);
    EXPECT_EQ(array.depth, 3);
    EXPECT_EQ(array.internalFormat, 33321);
    EXPECT_EQ(array.imageSize, 6U);
    EXPECT_EQ(array.unpackAlignment, 2);
    EXPECT_EQ(array.bindTarget, kArray);
    EXPECT_TRUE(array.data.Borrowed());
    // Found under no texture's name.
    EXPECT_EQ(s.FindImage(7, 0, 1), nullptr);
    EXPECT_EQ(s.FindImage(0, 0, 1)->target, k3D);
    // A part leaves the other layers alone, and the depth has no say.
    EXPECT_TRUE(part(kArray, 0, 2));
    EXPECT_EQ(PixelsOf(s, 6), "XYcdef");
    EXPECT_TRUE(part(kArray, 0, 2, "uvwxyz"));
    EXPECT_EQ(PixelsOf(s, 6), "uvwxyz");
    EXPECT_FALSE(part(kArray, -1, 1));
    EXPECT_FALSE(part(kArray, 1, 1));
    EXPECT_FALSE(part(k2D, 0, 1));
    // The level is looked up as the face.
    EXPECT_TRUE(image(kArray, 1, Text("abcdef")));
    EXPECT_FALSE(part(kArray, 1, 1));
}

TEST(Es2Updates, NoRecordHarmsTheModel) {
    // Records of any bytes, small numbers among them so that objects and ranges meet.
    std::uint32_t seed = 12345;
    const auto next = [&seed] { return seed = seed * 1664525U + 1013904223U; };
    const std::uint32_t wanted[] = {k2D,        kCube,      kFace0,    kArray, k3D,   34962, 34963,
                                    36160,      36064,      36096,     33306,  kRgba, kRgb,  k565,
                                    k4444,      kBytes,     10241,     35633,  35632, 0,     1,
                                    2,          3,          4,         8,      33984, 33985, 64,
                                    0xFFFFFFFF, 0x80000000, 0x7FFFFFFF};
    constexpr std::uint32_t kRounds = 20000;
    constexpr std::uint32_t kNumbers = 28;
    CRecordBuilder records = Record();
    for (std::uint32_t i = 0; i < kRounds * kNumbers; ++i) {
        const std::uint32_t pick = next() >> 8;
        const bool error = i % kNumbers == 0;
        records.U32(error ? 0 : pick % 16 == 0 ? next() : wanted[pick % std::size(wanted)]);
    }
    CRecordStream stream(records);
    CModel model;
    std::vector<CEs2State> snapshots;
    std::uint32_t handled = 0;
    output::Flush();
    testing::internal::CaptureStdout();
    for (std::uint32_t round = 0; round < kRounds; ++round) {
        const std::uint32_t number = (next() >> 8) % 149;
        constexpr std::uint16_t kEs3[] = {5145, 5146, 5159, 5167, 5171, 5172, 5173};
        const auto id =
            number < 142 ? static_cast<std::uint16_t>(2001 + number) : kEs3[number - 142];
        stream.Trace().Stream().Seek(static_cast<std::int32_t>(round * kNumbers * 4), SEEK_SET);
        stream.Trace().SetRecordSize(kNumbers * 4);
        try {
            handled += model.DoNext(id, stream.Trace()) ? 1 : 0;
        } catch (const std::exception&) {
        }
        if (round % 100 == 0) snapshots.push_back(model.state);
        if (snapshots.size() > 5) snapshots.erase(snapshots.begin());
    }
    output::Flush();
    testing::internal::GetCapturedStdout();
    EXPECT_GT(handled, kRounds / 5);
}

}  // namespace
}  // namespace kestrail
