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

}  // namespace
}  // namespace kestrail
