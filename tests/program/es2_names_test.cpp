#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr unsigned arrayBuffer = 34962;
constexpr unsigned texture2D = 3553;
constexpr unsigned vertexShader = 35633;
constexpr unsigned fragmentShader = 35632;

class CNames : public CTraceTest {
protected:
    CNames() : CTraceTest(Es2Trace()) {}

    void CreateShader(std::uint32_t name, std::uint32_t type) {
        trace.Add(2027, trace.Gl().Uint(name).Enum(type));
    }
    void CreateProgram(std::uint32_t name) { trace.Add(2026, trace.Gl().Uint(name)); }
    void Expect(const Lines& expected) {
        const SRunResult run = Run();
        EXPECT_EQ(run.GlCalls(), expected) << run.out;
        messages = run.Messages();
    }

    Lines messages;
};

TEST_F(CNames, ABindOfAnUnknownNameMakesIt) {
    Bind(2004, arrayBuffer, 7);
    Bind(2005, 36160, 7);
    Bind(2006, 36161, 7);
    Bind(2007, texture2D, 7);
    Bind(2004, arrayBuffer, 7);
    Bind(2005, 36160, 7);
    Bind(2006, 36161, 7);
    Bind(2007, texture2D, 7);
    Expect({Host("glGenBuffers", 1, "{101}"), Host("glBindBuffer", arrayBuffer, 101),
            Host("glGenFramebuffers", 1, "{102}"), Host("glBindFramebuffer", 36160, 102),
            Host("glGenRenderbuffers", 1, "{103}"), Host("glBindRenderbuffer", 36161, 103),
            Host("glGenTextures", 1, "{104}"), Host("glBindTexture", texture2D, 104),
            Host("glBindBuffer", arrayBuffer, 101), Host("glBindFramebuffer", 36160, 102),
            Host("glBindRenderbuffer", 36161, 103), Host("glBindTexture", texture2D, 104)});
}

TEST_F(CNames, TheNameZeroNeedsNoObject) {
    Bind(2004, arrayBuffer, 0);
    Bind(2005, 36160, 0);
    Bind(2006, 36161, 0);
    Bind(2007, texture2D, 0);
    One(2131, 0);
    Expect({Host("glBindBuffer", arrayBuffer, 0), Host("glBindFramebuffer", 36160, 0),
            Host("glBindRenderbuffer", 36161, 0), Host("glBindTexture", texture2D, 0),
            Host("glUseProgram", 0)});
}

TEST_F(CNames, AllOnesIsTheDefaultFramebuffer) {
    Bind(2005, 36160, 0xFFFFFFFFU);
    SRunOptions options;
    options.script = "glGetIntegerv:GL_FRAMEBUFFER_BINDING 1 42\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_EQ(run.GlCalls(), Lines{Host("glBindFramebuffer", 36160, 42)});
    EXPECT_TRUE(run.Printed(message + "Default FBO: 42\n"));
}

TEST_F(CNames, TheDefaultFramebufferIsReadOnce) {
    trace.Add(2016, trace.Gl().Bitfield(1));
    trace.Add(2016, trace.Gl().Bitfield(2));
    const SRunResult run = RunTrace(trace);
    EXPECT_EQ(run.CallsOf({"glGetIntegerv", "glClear"}),
              (Lines{Host("glGetIntegerv", 36006, "ptr"), Host("glClear", 1), Host("glClear", 2)}));
}

TEST_F(CNames, GensStoreEachElementAndDeletesDropIt) {
    List(2050, {7, 8, 9});
    Bind(2004, arrayBuffer, 8);
    List(2029, {9, 7, 55});
    Bind(2004, arrayBuffer, 8);
    Bind(2004, arrayBuffer, 9);
    List(2054, {4, 5});
    // A texture that is known already: no new ones are made; buffers have no such guard.
    List(2054, {4, 6});
    List(2050, {8});
    Bind(2004, arrayBuffer, 8);
    List(2031, {5, 77});
    Bind(2007, texture2D, 4);
    Expect({Host("glGenBuffers", 3, "{101, 102, 103}"), Host("glBindBuffer", arrayBuffer, 102),
            Host("glDeleteBuffers", 3, "{103, 101, 4294967295}"),
            Host("glBindBuffer", arrayBuffer, 102), Host("glGenBuffers", 1, "{104}"),
            Host("glBindBuffer", arrayBuffer, 104), Host("glGenTextures", 2, "{105, 106}"),
            Host("glGenBuffers", 1, "{107}"), Host("glBindBuffer", arrayBuffer, 107),
            Host("glDeleteTextures", 2, "{106, 0}"), Host("glBindTexture", texture2D, 105)});
}

TEST_F(CNames, AttachmentsAreTranslatedAndAMissKeepsItsOwnValue) {
    List(2053, {7});
    List(2054, {7});
    trace.Add(2047, trace.Gl().Enum(36160).Enum(36064).Enum(36161).Uint(7));
    trace.Add(2047, trace.Gl().Enum(36160).Enum(36064).Enum(36161).Uint(8));
    trace.Add(2048, trace.Gl().Enum(36160).Enum(36064).Enum(texture2D).Uint(7).Int(0));
    trace.Add(2048, trace.Gl().Enum(36160).Enum(36064).Enum(texture2D).Uint(8).Int(0));
    Expect({Host("glGenRenderbuffers", 1, "{101}"), Host("glGenTextures", 1, "{102}"),
            Host("glFramebufferRenderbuffer", 36160, 36064, 36161, 101),
            Host("glFramebufferRenderbuffer", 36160, 36064, 36161, 4294967295U),
            Host("glFramebufferTexture2D", 36160, 36064, texture2D, 102, 0),
            Host("glFramebufferTexture2D", 36160, 36064, texture2D, 0, 0)});
}

TEST_F(CNames, ASecondCreationUnderOneNameFails) {
    CreateShader(3, vertexShader);
    CreateShader(3, fragmentShader);
    CreateProgram(4);
    CreateProgram(4);
    Expect({Host("glCreateShader", vertexShader) + " = 101", "glCreateProgram() = 102"});
    EXPECT_EQ(messages, (Lines{message + "Error call:glCreateShader 2027",
                               error + "PlayCall Error: Unrecognized/Error call",
                               message + "Error call:glCreateProgram 2026",
                               error + "PlayCall Error: Unrecognized/Error call"}));
}

TEST_F(CNames, AShaderWithoutReferencesIsForgottenAtOnce) {
    CreateShader(3, vertexShader);
    One(2034, 3);
    CreateShader(3, vertexShader);
    One(2021, 3);
    Expect({Host("glCreateShader", vertexShader) + " = 101", Host("glDeleteShader", 101),
            Host("glCreateShader", vertexShader) + " = 102", Host("glCompileShader", 102)});
}

TEST_F(CNames, AnAttachedShaderOutlivesItsDeletion) {
    CreateProgram(9);
    CreateShader(3, vertexShader);
    Two(2002, 9, 3);
    One(2034, 3);
    One(2021, 3);
    // The program goes, and the shader that only it listed with it.
    One(2032, 9);
    CreateShader(3, vertexShader);
    Expect({"glCreateProgram() = 101", Host("glCreateShader", vertexShader) + " = 102",
            Host("glAttachShader", 101, 102), Host("glDeleteShader", 102),
            Host("glCompileShader", 102), Host("glDeleteProgram", 101),
            Host("glCreateShader", vertexShader) + " = 103"});
}

TEST_F(CNames, ADetachForgetsADeletedShader) {
    CreateProgram(9);
    CreateShader(3, fragmentShader);
    Two(2002, 9, 3);
    Two(2035, 9, 3);
    One(2021, 3);
    Two(2002, 9, 3);
    One(2034, 3);
    Two(2035, 9, 3);
    CreateShader(3, fragmentShader);
    Expect({"glCreateProgram() = 101", Host("glCreateShader", fragmentShader) + " = 102",
            Host("glAttachShader", 101, 102), Host("glDetachShader", 101, 102),
            Host("glCompileShader", 102), Host("glAttachShader", 101, 102),
            Host("glDeleteShader", 102), Host("glDetachShader", 101, 102),
            Host("glCreateShader", fragmentShader) + " = 103"});
}

TEST_F(CNames, TheCurrentProgramIsForgottenWithTheNextUse) {
    CreateProgram(9);
    CreateProgram(8);
    One(2131, 9);
    One(2032, 9);
    One(2090, 9);
    One(2131, 8);
    CreateProgram(9);
    Expect({"glCreateProgram() = 101", "glCreateProgram() = 102", Host("glUseProgram", 101),
            Host("glDeleteProgram", 101), Host("glLinkProgram", 101),
            Host("glGetProgramiv", 101, 35714, "ptr"), Host("glGetProgramiv", 101, 35716, "ptr"),
            Host("glUseProgram", 102), "glCreateProgram() = 103"});
    EXPECT_TRUE(messages.empty()) << ::testing::PrintToString(messages);
}

TEST_F(CNames, ShadersAndProgramsWithoutARecordFailWithoutACrash) {
    const std::pair<std::uint16_t, unsigned> calls[] = {{2021, 1}, {2034, 1}, {2032, 1}, {2090, 1},
                                                        {2131, 1}, {2002, 2}, {2035, 2}};
    for (const auto& [id, count] : calls) {
        count == 1 ? One(id, 77) : Two(id, 77, 78);
    }
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.GlCalls(), Lines{});
    EXPECT_EQ(run.Messages().size(), 2 * std::size(calls)) << run.out;
}

TEST_F(CNames, UniformLocationsBelongToTheProgramInUse) {
    const auto ask = [&](std::uint32_t program, std::int64_t recorded, const char* name) {
        trace.Add(2077, trace.Gl().Int(recorded).Uint(program).String(0x10, name));
    };
    const auto set = [&](std::int64_t location, float value) {
        trace.Add(2112, trace.Gl().Int(location).Float(value));
    };
    CreateProgram(8);
    CreateProgram(9);
    ask(8, 0, "a");
    ask(9, 0, "b");
    ask(9, 5, "c");
    set(0, 1);
    One(2131, 8);
    set(0, 2);
    set(5, 3);
    One(2131, 9);
    set(0, 4);
    set(5, 5);
    SRunOptions options;
    options.script = "glGetUniformLocation 3 -1\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_EQ(
        run.CallsOf({"glGetUniformLocation", "glUniform1f"}),
        (Lines{Host("glGetUniformLocation", 101, "\"a\"") + " = 1001",
               Host("glGetUniformLocation", 102, "\"b\"") + " = 1002",
               Host("glGetUniformLocation", 102, "\"c\"") + " = -1", Host("glUniform1f", -1, 1.0),
               Host("glUniform1f", 1001, 2.0), Host("glUniform1f", -1, 3.0),
               Host("glUniform1f", 1002, 4.0), Host("glUniform1f", -1, 5.0)}));
}

TEST_F(CNames, AttributesFallBackToTheRecordedIndex) {
    CreateProgram(8);
    trace.Add(2058, trace.Gl().Int(1).Uint(8).String(0x10, "position"));
    trace.Add(2003, trace.Gl().Uint(8).Uint(1).String(0x10, "position"));
    One(2044, 1);
    One(2131, 8);
    One(2044, 1);
    One(2044, 2);
    Expect({"glCreateProgram() = 101", Host("glGetAttribLocation", 101, "\"position\"") + " = 9",
            Host("glBindAttribLocation", 101, 1, "\"position\""),
            Host("glEnableVertexAttribArray", 1), Host("glUseProgram", 101),
            Host("glEnableVertexAttribArray", 9), Host("glEnableVertexAttribArray", 2)});
}

}  // namespace
}  // namespace kestrail
