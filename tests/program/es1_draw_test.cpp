#include <algorithm>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr std::uint32_t bytes = 5121;
constexpr std::uint32_t shorts = 5122;
constexpr std::uint32_t floats = 5126;

constexpr std::uint32_t colorArray = 32886;
constexpr std::uint32_t normalArray = 32885;
constexpr std::uint32_t vertexArray = 32884;
constexpr std::uint32_t pointSizeArray = 35740;
constexpr std::uint32_t matrixIndexArray = 34884;
constexpr std::uint32_t weightArray = 34477;
constexpr std::uint32_t textureArray = 32888;
constexpr std::uint32_t firstUnit = 33984;

const std::string noData = message +
                           "glDrawArrays: No enought Data. No Pointer replaced with real memory. "
                           "glDrawArrays would crash.";

std::string Asked(unsigned name) {
    return Host("es1.glGetIntegerv", name, "ptr");
}
std::string AskedPointer(unsigned name) {
    return Host("es1.glGetPointerv", name, "ptr");
}
std::string AskedEnabled(unsigned array, bool enabled) {
    return Host("es1.glIsEnabled", array) + (enabled ? " = 1" : " = 0");
}
std::string Activated(unsigned unit) {
    return Host("es1.glClientActiveTexture", firstUnit + unit);
}
std::string BoundArrayBuffer(unsigned name) {
    return Host("es1.glBindBuffer", 34962, name);
}

class CEs1Draw : public CTraceTest {
protected:
    explicit CEs1Draw(std::uint32_t version = 14) : CTraceTest(TraceOf(1, version)) {}

    void Enable(std::uint32_t array) { trace.Add(3039, trace.Gl().Enum(array)); }
    void ColorPointer(std::uint64_t pointer) {
        trace.Add(3022, trace.Gl().Int(4).Enum(bytes).Sizei(40).Pointer(pointer));
    }
    void NormalPointer(std::uint64_t pointer) {
        trace.Add(3100, trace.Gl().Enum(shorts).Sizei(40).Pointer(pointer));
    }
    void VertexPointer(std::uint64_t pointer) {
        trace.Add(3143, trace.Gl().Int(3).Enum(floats).Sizei(40).Pointer(pointer));
    }
    void TexCoordPointer(unsigned unit, std::uint64_t pointer) {
        trace.Add(3015, trace.Gl().Enum(firstUnit + unit));
        trace.Add(3126, trace.Gl().Int(2).Enum(shorts).Sizei(40).Pointer(pointer));
    }
    CRecordBuilder Arrays(std::int64_t count = 1) const {
        return trace.Gl().Enum(4).Int(0).Sizei(count);
    }
    CRecordBuilder Elements(const Bytes& indices, std::uint64_t offset) const {
        return trace.Gl().Enum(4).Sizei(2).Enum(bytes).Data(offset, indices).Pointer(offset);
    }

    /// The host's calls of the first draw, from its first question on, without the search for
    /// extensions.
    Lines DrawCalls(const std::string& from, const std::string& script = {}) {
        const SRunResult run = RunScripted(script);
        messages = run.Messages();
        Lines calls;
        for (auto call = std::find(run.calls.begin(), run.calls.end(), from);
             call != run.calls.end(); ++call) {
            if (call->rfind("eglGetProcAddress", 0) != 0) calls.push_back(*call);
        }
        return calls;
    }

    SRunResult Run() {
        SRunResult run = CTraceTest::Run();
        messages = run.Messages();
        return run;
    }

    Lines messages;
};

class COldEs1Draw : public CEs1Draw {
protected:
    COldEs1Draw() : CEs1Draw(13) {}
};

/// What a draw asks of the texture units where none has a pointer.
Lines UnitQuestions() {
    Lines lines;
    for (unsigned unit = 0; unit < 8; ++unit) {
        for (const std::string& line :
             {Asked(34018), Asked(34017), Activated(unit), Asked(32904), Asked(32905), Asked(34970),
              AskedPointer(32914), Activated(0)}) {
            lines.push_back(line);
        }
    }
    return lines;
}

Lines operator+(Lines first, const Lines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(CEs1Draw, TheDriverIsAskedInOrder) {
    trace.Add(3036, Arrays(3));
    const std::string checked = "es1.glGetError() = 0";
    const Lines start = {Asked(34964),
                         BoundArrayBuffer(0),
                         Host("es1.glGetString", 7939),
                         AskedEnabled(colorArray, false),
                         AskedEnabled(normalArray, false),
                         AskedEnabled(vertexArray, false),
                         AskedEnabled(pointSizeArray, false)};
    const Lines palette = {AskedEnabled(matrixIndexArray, false), checked};
    const Lines end = {BoundArrayBuffer(0), Host("es1.glDrawArrays", 4, 0, 3), checked};
    const Lines weight = {AskedEnabled(weightArray, false)};
    EXPECT_EQ(DrawCalls(Asked(34964)), start + palette + weight + UnitQuestions() + end);
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
    EXPECT_EQ(DrawCalls(Asked(34964), "glGetString * GL_OES_mapbuffer\n"),
              start + weight + UnitQuestions() + end)
        << "a host without a matrix palette isn't asked for its indices";
}

TEST_F(CEs1Draw, TheErrorOfAnUnknownArrayDoesNotLinger) {
    trace.Add(3036, Arrays(3));
    const Lines calls = DrawCalls(Asked(34964), "glGetError 1 0x500\n");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "es1.glGetError() = 1280"), 1);
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
}

TEST_F(CEs1Draw, UnitsEndWithThoseOfTheDriver) {
    trace.Add(3036, Arrays(3));
    const Lines calls = DrawCalls(Asked(34964), "glGetIntegerv:GL_MAX_TEXTURE_UNITS * 2\n");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), Asked(34018)), 8);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), Asked(34017)), 2);
}

TEST_F(CEs1Draw, AllFourteenKindsArePointedAtTheirBytesInOrder) {
    for (std::uint32_t array :
         {colorArray, normalArray, vertexArray, pointSizeArray, matrixIndexArray, weightArray}) {
        Enable(array);
    }
    ColorPointer(0x10);
    NormalPointer(0x20);
    VertexPointer(0x30);
    trace.Add(3145, trace.Gl().Enum(floats).Sizei(40).Pointer(0x40));
    trace.Add(4013, trace.Ext(0, 1).Int(2).Enum(bytes).Sizei(40).Pointer(0x50));
    trace.Add(4014, trace.Ext(0, 1).Int(2).Enum(floats).Sizei(40).Pointer(0x60));
    for (unsigned unit = 0; unit < 8; ++unit) {
        TexCoordPointer(unit, 0x70);
        Enable(textureArray);
    }
    trace.Add(3015, trace.Gl().Enum(firstUnit + 3));
    // The bytes of one vertex a kind, each byte the kind itself.
    const std::size_t sizes[] = {4, 6, 12, 4, 2, 8, 4, 4, 4, 4, 4, 4, 4, 4};
    CRecordBuilder draw = Arrays();
    std::string drawn = Host("es1.glDrawArrays", 4, 0, 1);
    for (std::size_t kind = 14; kind-- > 0;) {
        draw.ClientArray(static_cast<std::int64_t>(kind), 0x10,
                         Bytes(sizes[kind], static_cast<std::uint8_t>(kind)));
    }
    draw.ClientArray(0, 0x10, Bytes(4, 0xEE));
    for (std::size_t kind = 0; kind < 14; ++kind) {
        drawn += " [" + std::to_string(kind) + " <";
        for (std::size_t i = 0; i < sizes[kind]; ++i) {
            drawn += std::string("0") + "0123456789abcd"[kind];
        }
        drawn += ":" + std::to_string(sizes[kind]) + ">]";
    }
    trace.Add(3036, draw);

    Lines expected = {Asked(34964), BoundArrayBuffer(0),
                      // Colour, normal, vertex.
                      AskedEnabled(colorArray, true), Asked(32897), Asked(32898), Asked(34968),
                      AskedPointer(32912), Host("es1.glColorPointer", 4, bytes, 0, "ptr"),
                      AskedEnabled(normalArray, true), Asked(32894), Asked(34967),
                      AskedPointer(32911), Host("es1.glNormalPointer", shorts, 0, "ptr"),
                      AskedEnabled(vertexArray, true), Asked(32890), Asked(32891), Asked(34966),
                      AskedPointer(32910), Host("es1.glVertexPointer", 3, floats, 0, "ptr"),
                      // Point size, matrix index, weight.
                      AskedEnabled(pointSizeArray, true), Asked(35210), Asked(35743),
                      AskedPointer(35212), Host("es1.glPointSizePointerOES", floats, 0, "ptr"),
                      AskedEnabled(matrixIndexArray, true), "es1.glGetError() = 0", Asked(34886),
                      Asked(34887), Asked(35742), AskedPointer(34889),
                      Host("glMatrixIndexPointerOES", 2, bytes, 0, "ptr"),
                      AskedEnabled(weightArray, true), Asked(34475), Asked(34473), Asked(34974),
                      AskedPointer(34476), Host("glWeightPointerOES", 2, floats, 0, "ptr")};
    for (unsigned unit = 0; unit < 8; ++unit) {
        expected = expected + Lines{Asked(34018),
                                    Asked(34017),
                                    Activated(unit),
                                    Asked(32904),
                                    Asked(32905),
                                    Asked(34970),
                                    AskedPointer(32914),
                                    AskedEnabled(textureArray, true),
                                    Host("es1.glTexCoordPointer", 2, shorts, 0, "ptr"),
                                    Activated(3)};
    }
    expected = expected + Lines{BoundArrayBuffer(0), drawn, "es1.glGetError() = 0"};
    EXPECT_EQ(DrawCalls(Asked(34964)), expected);
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
}

TEST_F(COldEs1Draw, ArraysWithoutIndicesGoByPosition) {
    for (std::uint32_t array : {colorArray, normalArray, vertexArray, textureArray}) Enable(array);
    ColorPointer(0x10);
    Bind(3004, 34962, 7);
    NormalPointer(0x20);
    Bind(3004, 34962, 0);
    VertexPointer(0x30);
    TexCoordPointer(0, 0x40);
    // The normals stand in a buffer and take no array; the texture coordinates find none left.
    trace.Add(3036,
              Arrays().ClientArray(9, 0x10, Bytes(4, 0x11)).ClientArray(9, 0x10, Bytes(12, 0x22)));
    EXPECT_EQ(Run().CallsOf({"es1.glDrawArrays"}),
              Lines{Host("es1.glDrawArrays", 4, 0, 1) +
                    " [0 <11111111:4>] [2 <222222222222222222222222:12>] [6 64]"});
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
}

TEST_F(CEs1Draw, AMissingArrayIsToldOfAndTheOthersArePointedAllTheSame) {
    for (std::uint32_t array : {colorArray, normalArray, vertexArray}) Enable(array);
    ColorPointer(0x10);
    NormalPointer(0x20);
    VertexPointer(0x30);
    const Bytes vertex(12, 0x22);
    trace.Add(3036, Arrays().ClientArray(2, 0x10, vertex));
    EXPECT_EQ(Run().CallsOf({"es1.glDrawArrays"}),
              Lines{Host("es1.glDrawArrays", 4, 0, 1) +
                    " [0 16] [1 32] [2 <222222222222222222222222:12>]"});
    EXPECT_EQ(messages, (Lines{noData, noData}));
}

TEST_F(CEs1Draw, AnIndexedDrawSaysNothingOfMissingArrays) {
    for (std::uint32_t array : {colorArray, vertexArray}) Enable(array);
    ColorPointer(0x10);
    VertexPointer(0x30);
    trace.Add(3037, Elements({0, 0}, 0x70).ClientArray(2, 0x10, Bytes(12, 0x22)));
    trace.Add(3037, Elements({0, 0}, 0x70));
    const Lines draws = Run().CallsOf({"es1.glDrawElements"});
    ASSERT_EQ(draws.size(), 2U);
    EXPECT_EQ(draws[0], Host("es1.glDrawElements", 4, 2, bytes, "<0000:2>") +
                            " [0 16] [2 <222222222222222222222222:12>]");
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
}

TEST_F(CEs1Draw, ADrawWithoutAnyArrayIsToldOfForEachKind) {
    for (std::uint32_t array : {vertexArray, textureArray}) Enable(array);
    VertexPointer(0x30);
    TexCoordPointer(0, 0x40);
    trace.Add(3036, Arrays());
    EXPECT_EQ(Run().CallsOf({"es1.glDrawArrays"}),
              Lines{Host("es1.glDrawArrays", 4, 0, 1) + " [2 48] [6 64]"});
    EXPECT_EQ(messages, (Lines{noData, noData}));
}

TEST_F(CEs1Draw, ArraysInBuffersOfNullOrDisabledAreLeftAlone) {
    for (std::uint32_t array : {colorArray, normalArray}) Enable(array);
    Bind(3004, 34962, 7);
    ColorPointer(16);
    Bind(3004, 34962, 0);
    NormalPointer(0);
    VertexPointer(0x30);
    TexCoordPointer(0, 0x40);
    Bind(3004, 34962, 7);
    trace.Add(3036, Arrays().ClientArray(0, 0x10, Bytes(4)).ClientArray(6, 0x10, Bytes(4)));
    const Lines setters = Run().CallsOf({"es1.glColorPointer", "es1.glNormalPointer",
                                         "es1.glVertexPointer", "es1.glTexCoordPointer"});
    EXPECT_EQ(setters.size(), 4U) << "the recorded ones only";
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
    const Lines drawn = DrawCalls(Asked(34964));
    ASSERT_GT(drawn.size(), 3U);
    EXPECT_EQ(Lines(drawn.begin(), drawn.begin() + 2), (Lines{Asked(34964), BoundArrayBuffer(0)}));
    EXPECT_EQ(Lines(drawn.end() - 3, drawn.end()),
              (Lines{BoundArrayBuffer(101), Host("es1.glDrawArrays", 4, 0, 1) + " [1 NULL]",
                     "es1.glGetError() = 0"}));
}

TEST_F(CEs1Draw, IndicesComeFromTheRecordOrTheBoundBuffer) {
    Enable(vertexArray);
    VertexPointer(0x30);
    trace.Add(3037, Elements({0, 1}, 0x70).ClientArray(2, 0x10, Bytes(24, 0x22)));
    Bind(3004, 34963, 5);
    trace.Add(3037, Elements({}, 6).ClientArray(2, 0x10, Bytes(24, 0x22)));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"es1.glDrawElements"}),
              (Lines{Host("es1.glDrawElements", 4, 2, bytes, "<0001:2>") +
                         " [2 <22222222222222222222222222222222:24>]",
                     Host("es1.glDrawElements", 4, 2, bytes, 6) + " [2 <:0>]"}));
    const Lines asked = run.CallsOf({"es1.glGetIntegerv"});
    ASSERT_GT(asked.size(), 1U);
    EXPECT_EQ(asked[0], Asked(34965));
    EXPECT_EQ(asked[1], Asked(34964));
}

Lines RunEs1Viewport(bool framebuffer) {
    CTraceBuilder trace;
    trace.StartUp(1, 200, 200);
    if (framebuffer) trace.Add(4022, trace.Ext(0, 1).Enum(36160).Uint(5));
    trace.Add(3144, trace.Gl().Int(10).Int(10).Sizei(100).Sizei(100));
    trace.Add(3039, trace.Gl().Enum(vertexArray));
    trace.Add(3143, trace.Gl().Int(3).Enum(floats).Sizei(0).Pointer(0x30));
    for (int i = 0; i < 2; ++i) {
        trace.Add(3036, trace.Gl().Enum(4).Int(0).Sizei(1).ClientArray(2, 0x10, Bytes(12, 0x22)));
    }
    SRunOptions options;
    options.script = "eglQuerySurface:EGL_WIDTH * 400\neglQuerySurface:EGL_HEIGHT * 400\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    return run.CallsOf(
        {"es1.glViewport", "es1.glVertexPointer", "es1.glBindBuffer", "es1.glDrawArrays"});
}

TEST(Es1Viewport, IsCorrectedBehindTheArraysAndOnce) {
    const std::string recorded = Host("es1.glViewport", 10, 10, 100, 100);
    const std::string corrected = Host("es1.glViewport", 5, 5, 200, 200);
    const Lines pointed = {BoundArrayBuffer(0), Host("es1.glVertexPointer", 3, floats, 0, "ptr"),
                           BoundArrayBuffer(0)};
    const Lines draw = {Host("es1.glDrawArrays", 4, 0, 1) + " [2 <222222222222222222222222:12>]"};
    const Lines start = {recorded, Host("es1.glVertexPointer", 3, floats, 0, 48)};
    EXPECT_EQ(RunEs1Viewport(false), start + pointed + Lines{corrected} + draw + pointed + draw);
    EXPECT_EQ(RunEs1Viewport(true), start + pointed + draw + pointed + draw)
        << "an application's framebuffer has the size that it was recorded with";
}

}  // namespace
}  // namespace kestrail
