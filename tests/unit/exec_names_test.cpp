#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

#include "exec/egl_names.h"
#include "exec/es1_names.h"
#include "exec/es2_names.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kUnknown = 0xFFFFFFFF;

/// Handles of the host, made from numbers.
EGLDisplay Live(std::uintptr_t number) {
    return reinterpret_cast<EGLDisplay>(number);
}

class Es2Names : public testing::Test {
protected:
    Es2Names() { names.ResetNames(); }
    ~Es2Names() override { names.ResetNames(); }

    void Shader(std::uint32_t recorded, std::uint32_t type) {
        names.SetShader(recorded, recorded + 100, type);
    }
    std::uint32_t References(std::uint32_t shader) {
        const SShaderRecord* record = names.GetShaderRecord(shader);
        return record != nullptr ? record->references : kUnknown;
    }
    /// glDeleteShader of a shader that is attached.
    void MarkDeleted(std::uint32_t shader) { names.GetShaderRecord(shader)->deletePending = true; }

    CEs2Names names;
};

TEST_F(Es2Names, UnknownNamesHaveTheirTablesOwnMiss) {
    EXPECT_EQ(names.Textures().Get(5), 0U);
    EXPECT_EQ(names.Samplers().Get(5), 0U);
    EXPECT_EQ(names.Syncs().Get(5), 0U);
    for (auto* table :
         {&names.Renderbuffers(), &names.Framebuffers(), &names.VertexArrays(), &names.Buffers()}) {
        EXPECT_EQ(table->Get(5), kUnknown);
        // The name 0 is no miss.
        EXPECT_EQ(table->Get(0), 0U);
        table->Set(5, 6);
        EXPECT_EQ(table->Get(5), 6U);
        table->Erase(5);
        EXPECT_EQ(table->Get(5), kUnknown);
        table->Set(0, 9);
        table->Set(5, 6);
    }
    names.Textures().Set(0, 3);
    names.SetShader(1, 2, GL_VERTEX_SHADER);
    names.SetProgram(0, 7);
    names.SetProgram(1, 8);
    names.ExtensionsResolved() = true;
    names.UseProgram(8, false);

    CEs2Names().ResetNames();
    for (auto* table :
         {&names.Renderbuffers(), &names.Framebuffers(), &names.VertexArrays(), &names.Buffers()}) {
        EXPECT_EQ(table->Get(5), kUnknown);
        EXPECT_EQ(table->Get(0), 0U);
    }
    EXPECT_EQ(names.Textures().Get(0), 0U);
    EXPECT_EQ(names.GetShaderRecord(1), nullptr);
    EXPECT_EQ(names.GetProgramRecord(1), nullptr);
    ASSERT_NE(names.GetProgramRecord(0), nullptr);
    EXPECT_EQ(names.GetProgramRecord(0)->liveName, 0U);
    EXPECT_EQ(names.CurrentProgram(), 0U);
    EXPECT_FALSE(names.ExtensionsResolved());
}

TEST_F(Es2Names, LocationsBelongToTheProgramInUse) {
    names.SetUniformLocation(31, 4, 14);
    names.SetUniformLocation(32, 4, 24);
    names.SetAttribLocation(31, 1, 11);
    names.SetAttribLocation(31, -1, 12);
    const auto expect = [this](std::uint32_t live, int uniform, int attribute) {
        names.UseProgram(live, false);
        EXPECT_EQ(names.GetUniformLocation(4), uniform) << live;
        EXPECT_EQ(names.GetAttribLocation(1), attribute) << live;
    };
    expect(31, 14, 11);
    EXPECT_EQ(names.GetUniformLocation(5), -1);
    EXPECT_EQ(AttributeIndex(names, 1), 11U);
    EXPECT_EQ(AttributeIndex(names, 2), 2U);
    expect(32, 24, -1);
    EXPECT_EQ(AttributeIndex(names, 1), 1U);
    expect(33, -1, -1);
    names.EraseUniformLocation(4);
    expect(32, 24, -1);
    names.EraseUniformLocation(4);
    expect(32, -1, -1);
    expect(31, 14, 11);
    names.ClearUniformLocations(31);
    names.ClearUniformLocations(99);
    expect(31, -1, 11);
    // Attribute locations outlive a restart, uniform locations do not.
    names.SetUniformLocation(31, 4, 14);
    names.ResetNames();
    expect(31, -1, 11);
}

TEST_F(Es2Names, AShaderLivesAsLongAsAProgramListsIt) {
    Shader(1, GL_VERTEX_SHADER);
    Shader(2, GL_FRAGMENT_SHADER);
    for (const std::uint32_t program : {10U, 11U}) {
        names.SetProgram(program, program + 100);
        names.AttachShader(program, 1);
        names.AttachShader(program, 2);
        EXPECT_EQ(names.GetProgramRecord(program)->vertexShader, 1U);
        EXPECT_EQ(names.GetProgramRecord(program)->fragmentShader, 2U);
    }
    EXPECT_EQ(References(1), 2U);
    MarkDeleted(1);
    MarkDeleted(2);
    names.DeleteProgram(10);
    EXPECT_EQ(names.GetProgramRecord(10), nullptr);
    EXPECT_EQ(References(1), 1U);
    EXPECT_EQ(References(2), 1U);
    names.DeleteProgram(11);
    EXPECT_EQ(References(1), kUnknown);
    EXPECT_EQ(References(2), kUnknown);
    names.DeleteProgram(11);
}

TEST_F(Es2Names, ShadersThatNobodyDeletedStayBehindTheirProgram) {
    // The first two are adjacent, so that the sweep erases twice in the same slot.
    Shader(1, GL_VERTEX_SHADER);
    Shader(2, GL_FRAGMENT_SHADER);
    Shader(3, GL_VERTEX_SHADER);
    names.SetProgram(10, 110);
    names.AttachShader(10, 1);
    names.AttachShader(10, 2);
    MarkDeleted(1);
    names.DeleteProgram(10);
    EXPECT_EQ(References(1), kUnknown);
    EXPECT_EQ(References(2), 0U);
    EXPECT_EQ(References(3), 0U);
    EXPECT_EQ(names.GetShaderRecord(3)->liveName, 103U);
    names.DeleteShaderRecord(2);
    EXPECT_EQ(names.GetShaderRecord(2), nullptr);
}

TEST_F(Es2Names, Detaching) {
    Shader(1, GL_VERTEX_SHADER);
    Shader(2, GL_FRAGMENT_SHADER);
    names.SetProgram(10, 110);
    names.AttachShader(10, 1);
    names.AttachShader(10, 2);
    names.DetachShader(10, 2);
    EXPECT_EQ(names.GetProgramRecord(10)->fragmentShader, 0U);
    EXPECT_EQ(names.GetProgramRecord(10)->vertexShader, 1U);
    EXPECT_EQ(References(2), 0U);
    MarkDeleted(1);
    names.DetachShader(10, 1);
    EXPECT_EQ(names.GetShaderRecord(1), nullptr);
    // A shader or a program that there is not is left alone.
    names.AttachShader(10, 77);
    names.AttachShader(77, 2);
    names.DetachShader(77, 2);
    names.DetachShader(10, 77);
    EXPECT_EQ(References(2), 0U);
    // A new shader of the same name starts afresh.
    names.AttachShader(10, 2);
    MarkDeleted(2);
    Shader(2, GL_VERTEX_SHADER);
    EXPECT_EQ(References(2), 0U);
    EXPECT_FALSE(names.GetShaderRecord(2)->deletePending);
}

TEST_F(Es2Names, ProgramsDeletedInUseGoWithTheNextUse) {
    Shader(1, GL_VERTEX_SHADER);
    for (const std::uint32_t program : {10U, 11U, 12U}) {
        names.SetProgram(program, program + 100);
        names.AttachShader(program, 1);
        names.UseProgram(program + 100, false);
        names.DeleteProgram(program);
        ASSERT_NE(names.GetProgramRecord(program), nullptr);
        EXPECT_TRUE(names.GetProgramRecord(program)->deletePending);
    }
    EXPECT_EQ(References(1), 3U);
    names.UseProgram(112, true);
    EXPECT_EQ(names.GetProgramRecord(10), nullptr);
    EXPECT_EQ(names.GetProgramRecord(11), nullptr);
    ASSERT_NE(names.GetProgramRecord(12), nullptr);
    EXPECT_EQ(References(1), 1U);
    MarkDeleted(1);
    names.UseProgram(0, true);
    EXPECT_EQ(names.GetProgramRecord(12), nullptr);
    EXPECT_EQ(References(1), kUnknown);
    EXPECT_NE(names.GetProgramRecord(0), nullptr);
}

TEST(Es1Names, ResettingKeepsFramebuffersAndRenderbuffers) {
    CEs1Names names;
    for (auto* table : {&names.Buffers(), &names.Framebuffers(), &names.Renderbuffers()}) {
        EXPECT_EQ(table->Get(0), 0U);
        EXPECT_EQ(table->Get(8), kUnknown);
        table->Set(8, 18);
    }
    for (auto* table : {&names.Textures(), &names.VertexArrays()}) {
        EXPECT_EQ(table->Get(8), 0U);
        table->Set(8, 18);
    }
    names.ExtensionsResolved() = true;
    CEs1Names().ResetNames();
    EXPECT_EQ(names.Buffers().Get(8), kUnknown);
    EXPECT_EQ(names.Buffers().Get(0), 0U);
    EXPECT_EQ(names.Textures().Get(8), 0U);
    EXPECT_EQ(names.VertexArrays().Get(8), 0U);
    EXPECT_FALSE(names.ExtensionsResolved());
    for (auto* table : {&names.Framebuffers(), &names.Renderbuffers()}) {
        EXPECT_EQ(table->Get(8), 18U);
        table->Erase(8);
    }
}

TEST(EglNames, HandlesAreToldApartByTheirDisplays) {
    CEglNames names;
    const EGLDisplay first = Live(0x10), second = Live(0x20);
    constexpr std::uint64_t kWide = 0x500000001;
    names.SetDisplay(1, first, EGLNativeDisplayType{});
    names.SetDisplay(kWide, second, reinterpret_cast<EGLNativeDisplayType>(std::uintptr_t{7}));
    EXPECT_EQ(names.GetDisplay(1), first);
    EXPECT_EQ(names.GetDisplay(kWide), second);
    EXPECT_EQ(names.GetDisplay(0), EGL_NO_DISPLAY);
    EXPECT_EQ(names.GetDisplay(2), EGL_NO_DISPLAY);
    EXPECT_EQ(names.GetNativeDisplay(second),
              reinterpret_cast<EGLNativeDisplayType>(std::uintptr_t{7}));
    EXPECT_EQ(names.GetNativeDisplay(Live(0x99)), EGLNativeDisplayType{});
    EXPECT_EQ(names.GetNativeDisplay(EGL_NO_DISPLAY), EGLNativeDisplayType{});

    EXPECT_EQ(names.GetSurface(first, 5), EGL_NO_SURFACE);
    names.SetSurface(first, 5, Live(0x15));
    names.SetSurface(second, 5, Live(0x25));
    names.SetSurface(second, 0, Live(0x26));
    EXPECT_EQ(names.GetSurface(first, 5), Live(0x15));
    EXPECT_EQ(names.GetSurface(second, 5), Live(0x25));
    EXPECT_EQ(names.GetSurface(second, 0), EGL_NO_SURFACE);
    names.SetContext(first, 5, Live(0x35), 2);
    names.SetContext(second, 5, Live(0x45), 2);
    EXPECT_EQ(names.GetContext(first, 5), Live(0x35));
    EXPECT_EQ(names.GetContext(first, 6), EGL_NO_CONTEXT);
    EXPECT_EQ(names.GetContext(first, 0), EGL_NO_CONTEXT);
    names.SetConfig(second, 5, Live(0x55));
    EXPECT_EQ(names.FindConfig(first, 5), nullptr);
    ASSERT_NE(names.FindConfig(second, 5), nullptr);
    EXPECT_EQ(*names.FindConfig(second, 5), Live(0x55));

    names.RemoveSurface(first, 5);
    names.RemoveSurface(Live(0x99), 5);
    names.RemoveContext(second, 5);
    EXPECT_EQ(names.GetSurface(first, 5), EGL_NO_SURFACE);
    EXPECT_EQ(names.GetSurface(second, 5), Live(0x25));
    EXPECT_EQ(names.GetContext(second, 5), EGL_NO_CONTEXT);
    EXPECT_EQ(names.GetContext(first, 5), Live(0x35));

    // Clearing empties a display, configurations stay.
    names.SetContext(second, 5, Live(0x45), 2);
    names.ClearDisplay(second);
    EXPECT_EQ(names.GetSurface(second, 5), EGL_NO_SURFACE);
    EXPECT_EQ(names.GetContext(second, 5), EGL_NO_CONTEXT);
    EXPECT_NE(names.FindConfig(second, 5), nullptr);
    EXPECT_EQ(names.GetContext(first, 5), Live(0x35));
    EXPECT_EQ(names.GetDisplay(kWide), second);

    // A key that no display was recorded under removes nothing.
    names.RemoveDisplay(0x20);
    EXPECT_EQ(names.GetDisplay(kWide), second);
    names.SetSurface(second, 5, Live(0x25));
    names.RemoveDisplay(kWide);
    EXPECT_EQ(names.GetDisplay(kWide), EGL_NO_DISPLAY);
    EXPECT_EQ(names.GetNativeDisplay(second), EGLNativeDisplayType{});
    EXPECT_EQ(names.GetSurface(second, 5), EGL_NO_SURFACE);
    EXPECT_EQ(names.FindConfig(second, 5), nullptr);
    EXPECT_EQ(names.GetDisplay(1), first);
    names.RemoveDisplay(1);
}

TEST(EglNames, GeometryIsSetAndReadInOne) {
    const auto both = [](std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d,
                         EGLDisplay display, std::initializer_list<std::int32_t> sizes,
                         EGLDisplay expected) {
        CEglNames().SurfaceGeometry(a, b, c, d, display);
        EXPECT_EQ(std::vector<std::int32_t>({a, b, c, d}), std::vector<std::int32_t>(sizes));
        EXPECT_EQ(display, expected);
    };
    both(1, 2, 3, 4, Live(9), {1, 2, 3, 4}, Live(9));
    both(-1, -1, -1, -1, EGL_NO_DISPLAY, {1, 2, 3, 4}, Live(9));
    both(-1, 20, 30, -1, Live(8), {1, 20, 30, 4}, Live(8));
    both(0, -1, -1, -2, EGL_NO_DISPLAY, {0, 20, 30, -2}, Live(8));
    both(-1, -1, -1, -1, EGL_NO_DISPLAY, {0, 20, 30, -2}, Live(8));
}

TEST(EglNames, AttributesOfContexts) {
    std::vector<EGLint> room;
    EXPECT_EQ(ContextVersion(nullptr), 1);
    EXPECT_EQ(CheckedAttributes(nullptr, room), nullptr);
    const EGLint plain[] = {0x3098, 3, 0x30FC, 1, EGL_NONE};
    EXPECT_EQ(ContextVersion(plain), 3);
    EXPECT_EQ(CheckedAttributes(plain, room), plain);
    // Lists that end behind a name, as the reader closes them.
    const EGLint lone[] = {0x30FC, EGL_NONE, 0x3098, 2, EGL_NONE, EGL_NONE};
    EXPECT_EQ(ContextVersion(lone), 2);
    const EGLint unchecked[] = {0x31B3, EGL_NONE, 0x3098, 2, 0x31B3, 1, EGL_NONE};
    const EGLint* const checked = CheckedAttributes(unchecked, room);
    EXPECT_EQ(std::vector<EGLint>(checked, checked + 3),
              std::vector<EGLint>({0x3098, 2, EGL_NONE}));
}

TEST(EglNames, EveryContextHasAPixelStoreOfItsOwn) {
    CEglNames names;
    names.UseContext(Live(0x71));
    names.PixelStore().Set(GL_UNPACK_ALIGNMENT, 1);
    names.UseContext(Live(0x72));
    EXPECT_EQ(names.PixelStore().unpackAlignment, 4);
    names.UseContext(Live(0x71));
    EXPECT_EQ(names.PixelStore().unpackAlignment, 1);
    // What the host refuses changes nothing.
    for (const int value : {0, -1, 3, 16}) names.PixelStore().Set(GL_UNPACK_ALIGNMENT, value);
    names.PixelStore().Set(0x0CF2, 9);
    names.PixelStore().Set(0x0CF2, -9);
    names.PixelStore().Set(GL_PACK_ALIGNMENT, 8);
    names.PixelStore().Set(0x1234, 2);
    EXPECT_EQ(names.PixelStore().unpackAlignment, 1);
    EXPECT_EQ(names.PixelStore().unpackRowLength, 9);
    EXPECT_EQ(names.PixelStore().packAlignment, 8);
    // A handle that the host hands out again is another context.
    names.SetContext(Live(0x10), 5, Live(0x71), 2);
    EXPECT_EQ(names.PixelStore().unpackAlignment, 4);
    names.UseContext(EGL_NO_CONTEXT);
}

}  // namespace
}  // namespace kestrail
