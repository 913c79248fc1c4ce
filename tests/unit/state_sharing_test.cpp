#include <gmock/gmock.h>

#include <deque>
#include <random>
#include <utility>
#include <vector>

#include "state/es1/es1_state.h"
#include "state/shared_bytes.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

/// Applies each call to the state, then those behind the `once` first ones once more. Returns
/// the state as it was in between.
template <typename State, typename Apply>
State AppliedTwice(State& state, const std::string& calls, std::uint32_t once, Apply apply) {
    CTraceBuilder trace;
    std::istringstream lines(calls);
    for (std::string line; std::getline(lines >> std::ws, line, ';');) {
        AddCall(trace, line, std::is_same_v<State, CEs1State>);
    }
    const CTempFile file(trace.Build());
    CTraceDocument& document = *CTraceDocument::Instance();
    Printed([&] { EXPECT_EQ(document.OpenTrace(file.Name(), true), 0U); });
    State between;
    SUpdates updates(output::Printed());
    for (std::uint32_t turn = 0, first = 1; turn < 2; ++turn, first = once + 1) {
        between = state;
        for (std::uint32_t i = first; i <= trace.CallCount(); ++i) {
            apply(*document.GetFrameStore()->CallAt(i)->call, state, updates);
        }
    }
    document.CloseTrace();
    return between;
}

/// Which members of two states are one.
template <typename State, typename... Members>
std::vector<bool> Shared(const State& a, const State& b, Members... members) {
    return {(a.*members).SameAs(b.*members)...};
}

constexpr const char* kEs2Calls = R"(
    glCreateShader 35633 = 1 ; glCreateProgram = 5 ; glCreateProgram = 6 ; glUseProgram 5 ;
    glBindTexture 3553 7 ; glTexParameteri 3553 10242 1 ; glDeleteTextures 2 {0 99} ;
    glBindBuffer 34962 3 ; glBufferSubData 34962 9 1 [aa] ; glDeleteBuffers 1 {99} ;
    glVertexAttribPointer 2 3 5126 1 12 40 ; glEnableVertexAttribArray 2 ;
    glDisableVertexAttribArray 1 ; glBindFramebuffer 36160 5 ; es3.glDrawBuffers 1 {36064} ;
    glFramebufferRenderbuffer 36160 1 36161 4 ; glBindRenderbuffer 36161 4 ;
    glShaderSource 1 1 {"x"} {1} ; glCompileShader 1 ; glGetUniformLocation 5 "u" = 3 ;
    glGetUniformLocation 5 "v" = 4 ; glUniform1f 3 nan ; glUniform4f 4 1 2 3 4 ;
    glVertexAttrib2f 1 2 3 ; glBindAttribLocation 6 1 "a" ; glLinkProgram 6)";

TEST(StateSharing, Es2CallsThatChangeNothingCopyNothing) {
    CEs2State a;
    const CEs2State b =
        AppliedTwice(a, kEs2Calls, 4, [](CApiCall& call, CEs2State& state, SUpdates& updates) {
            static_cast<CEs2Call&>(call).UpdateState(state, updates);
        });
    using S = CEs2State;
    EXPECT_THAT(Shared(a, b, &S::buffers, &S::framebuffers, &S::programs, &S::renderbuffers,
                       &S::shaders, &S::textures, &S::binding2D, &S::uniforms, &S::attributeValues,
                       &S::attributeBindings, &S::vertexArrays),
                testing::Each(true));
}

constexpr const char* kEs1Calls = R"(
    glMatrixMode 5889 ; glPushMatrix ; glTranslatef 1 2 3 ; glPopMatrix ; glBindTexture 3553 7 ;
    glTexParameteri 3553 10241 9728 ; glTexEnvi 8960 8704 8448 ; glLightfv 16384 4611 {1 2 3 1} ;
    glLoadIdentity ; glVertexPointer 3 5126 24 100 ; glEnableClientState 32884 ;
    glBindBuffer 34963 9 ; glBindFramebufferOES 36160 12 ; glBindRenderbufferOES 36161 4 ;
    glMultiTexCoord4f 33984 1 2 3 nan ; glDeleteTextures 1 {1000} ; glDeleteBuffers 1 {1000})";

TEST(StateSharing, Es1CallsThatChangeNothingCopyNothing) {
    CEs1State a;
    const CEs1State b =
        AppliedTwice(a, kEs1Calls, 4, [](CApiCall& call, CEs1State& state, SUpdates& updates) {
            call.m_group == kGroupEs1 ? static_cast<CEs1Call&>(call).UpdateState(state, updates)
                                      : static_cast<CExtCall&>(call).UpdateState(state, updates);
        });
    using S = CEs1State;
    EXPECT_THAT(Shared(a, b, &S::textures, &S::textureEnvs, &S::lights, &S::vertexArrays,
                       &S::framebuffers, &S::renderbuffers, &S::currentTexCoord),
                testing::Each(true));
    EXPECT_TRUE(a.matrixStacks[1].SameAs(b.matrixStacks[1]));
}

using Content = std::vector<std::uint8_t>;

Content ContentOf(const CSharedBytes& bytes) {
    Content room;
    const std::uint8_t* start = bytes.Get(room);
    return Content(start, start + bytes.Size());
}

/// Parts anywhere in contents of several pieces, with copies in between that keep theirs.
TEST(SharedBytes, PartsGoIntoOneCopyOnly) {
    constexpr std::size_t kSize = 30'000;
    const SUpdates updates(output::Printed());
    Content model(20'000, 5);
    const Content borrowed = model;
    CSharedBytes bytes = CSharedBytes::Borrow(borrowed.data(), borrowed.size());
    model.resize(kSize);
    std::vector<std::pair<CSharedBytes, Content>> copies = {{bytes, borrowed}};
    std::mt19937 random(11);
    std::deque<Content> parts;
    for (std::uint8_t turn = 1; turn < 100; ++turn) {
        SByteRows rows;
        rows.length = 1 + random() % 600;
        rows.stride = rows.length + random() % 300;
        rows.count = 1 + random() % 12;
        const std::size_t span = rows.stride * (rows.count - 1) + rows.length;
        rows.offset = random() % (kSize - span + 1);
        parts.emplace_back(rows.length * rows.count, turn);
        rows.data = parts.back().data();
        rows.dataStride = rows.length;
        ASSERT_TRUE(bytes.Takes(kSize, updates));
        bytes.Put(kSize, rows, rows.data, updates);
        EXPECT_NE(bytes.Identity(), copies.back().first.Identity());
        for (std::size_t row = 0; row < rows.count; ++row) {
            std::fill_n(
                model.begin() + static_cast<std::ptrdiff_t>(rows.offset + row * rows.stride),
                rows.length, turn);
        }
        if (turn % 8 == 1) {
            copies.emplace_back(bytes, model);
            EXPECT_EQ(copies.back().first.Identity(), bytes.Identity());
        }
    }
    EXPECT_EQ(ContentOf(bytes), model);
    for (const auto& [copy, content] : copies) EXPECT_EQ(ContentOf(copy), content);
    EXPECT_TRUE(copies.front().first.Borrowed());
    EXPECT_FALSE(bytes.Borrowed());
}

TEST(SharedBytes, AllThatTakePartsComeToNoMoreThanALimit) {
    const SUpdates updates(output::Printed());
    const std::uint8_t one = 1;
    const SByteRows rows = {7, 1, 1, 1, &one, 1};
    EXPECT_FALSE(CSharedBytes().Takes(CSharedBytes::kLargest + 1, updates));
    constexpr std::uint64_t kFitting = CSharedBytes::kLargestOfAll / CSharedBytes::kLargest;
    std::vector<CSharedBytes> taking(kFitting);
    for (CSharedBytes& bytes : taking) {
        ASSERT_TRUE(bytes.Takes(CSharedBytes::kLargest, updates));
        bytes.Put(CSharedBytes::kLargest, rows, rows.data, updates);
    }
    EXPECT_FALSE(CSharedBytes().Takes(8, updates));
    EXPECT_TRUE(taking.back().Takes(CSharedBytes::kLargest, updates));
    // A copy counts as one with the original, until both are gone.
    const CSharedBytes copy = taking.back();
    taking.back() = CSharedBytes();
    EXPECT_FALSE(CSharedBytes().Takes(8, updates));
    taking.front() = CSharedBytes();
    EXPECT_TRUE(CSharedBytes().Takes(8, updates));
}

}  // namespace
}  // namespace kestrail
