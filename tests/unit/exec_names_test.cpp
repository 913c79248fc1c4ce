// What names forget where only a seek goes: no recording gets there by its calls.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include "exec/es2_names.h"

namespace kestrail {
namespace {

TEST(Es2Names, ProgramsDeletedInUseWaitForASweepAndGoTogether) {
    CEs2Names names;
    names.SetShader(1, 101, GL_VERTEX_SHADER);
    for (const std::uint32_t program : {10U, 11U, 12U}) {
        names.SetProgram(program, program + 100);
        names.AttachShader(program, 1);
        names.UseProgram(program + 100, false);
        names.DeleteProgram(program);
        ASSERT_NE(names.GetProgramRecord(program), nullptr);
    }
    EXPECT_EQ(names.GetShaderRecord(1)->references, 3U);
    names.UseProgram(112, true);
    EXPECT_EQ(names.GetProgramRecord(10), nullptr);
    EXPECT_EQ(names.GetProgramRecord(11), nullptr);
    EXPECT_NE(names.GetProgramRecord(12), nullptr);
    names.UseProgram(0, true);
    EXPECT_EQ(names.GetProgramRecord(12), nullptr);
    EXPECT_NE(names.GetProgramRecord(0), nullptr);
    EXPECT_EQ(names.GetShaderRecord(1)->references, 0U);
}

TEST(Es2Names, ADetachLetsGoOfAShaderAndANewOneStartsAfresh) {
    CEs2Names names;
    names.SetShader(1, 101, GL_VERTEX_SHADER);
    names.SetShader(2, 102, GL_FRAGMENT_SHADER);
    for (const std::uint32_t program : {10U, 11U, 12U}) {
        names.SetProgram(program, program + 100);
        for (const std::uint32_t shader : {1U, 2U}) names.AttachShader(program, shader);
    }
    names.DetachShader(10, 2);
    EXPECT_EQ(names.GetProgramRecord(10)->fragmentShader, 0U);
    EXPECT_EQ(names.GetProgramRecord(10)->vertexShader, 1U);
    EXPECT_EQ(names.GetShaderRecord(2)->references, 2U);
    names.GetShaderRecord(2)->deletePending = true;
    names.DetachShader(11, 2);
    EXPECT_NE(names.GetShaderRecord(2), nullptr);
    names.DetachShader(12, 2);
    EXPECT_EQ(names.GetShaderRecord(2), nullptr);
    names.DetachShader(12, 2);
    names.DetachShader(77, 1);
    names.GetShaderRecord(1)->deletePending = true;
    names.SetShader(1, 201, GL_VERTEX_SHADER);
    EXPECT_EQ(names.GetShaderRecord(1)->references, 0U);
    EXPECT_FALSE(names.GetShaderRecord(1)->deletePending);
}

}  // namespace
}  // namespace kestrail
