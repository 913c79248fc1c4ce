#include <gmock/gmock.h>

#include "state/es1/es1_state.h"
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
    for (std::uint32_t turn = 0, first = 1; turn < 2; ++turn, first = once + 1) {
        between = state;
        for (std::uint32_t i = first; i <= trace.CallCount(); ++i) {
            apply(*document.GetFrameStore()->CallAt(i)->call, state);
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
    const CEs2State b = AppliedTwice(
        a, kEs2Calls, 4, [](CApiCall& call, CEs2State& state) { ApplyEs2Call(call, state); });
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
    const CEs1State b = AppliedTwice(a, kEs1Calls, 4, [](CApiCall& call, CEs1State& state) {
        call.m_group == kGroupEs1 ? static_cast<CEs1Call&>(call).UpdateState(state)
                                  : static_cast<CExtCall&>(call).UpdateState(state);
    });
    using S = CEs1State;
    EXPECT_THAT(Shared(a, b, &S::textures, &S::textureEnvs, &S::lights, &S::vertexArrays,
                       &S::framebuffers, &S::renderbuffers, &S::currentTexCoord),
                testing::Each(true));
    EXPECT_TRUE(a.matrixStacks[1].SameAs(b.matrixStacks[1]));
}

}  // namespace
}  // namespace kestrail
