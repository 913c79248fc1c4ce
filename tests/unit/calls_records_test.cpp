#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calls/model/array_values.h"
#include "calls/model/client_arrays.h"
#include "calls/model/egl_values.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

// The entry points of each family in the order of their identifiers.
constexpr const char* kEglNames =
    "eglChooseConfig eglCopyBuffers eglCreateContext eglCreatePbufferSurface "
    "eglCreatePixmapSurface eglCreateWindowSurface eglDestroyContext eglDestroySurface "
    "eglGetConfigAttrib eglGetConfigs eglGetCurrentContext eglGetCurrentDisplay "
    "eglGetCurrentSurface eglGetDisplay eglGetError eglGetProcAddress eglInitialize "
    "eglMakeCurrent eglQueryContext eglQueryString eglQuerySurface eglSwapBuffers "
    "eglTerminate eglWaitGL eglWaitNative eglBindTexImage eglReleaseTexImage "
    "eglSurfaceAttrib eglSwapInterval eglBindAPI eglCreatePbufferFromClientBuffer "
    "eglQueryAPI eglReleaseThread eglWaitClient";
constexpr const char* kEglExtNames =
    "eglSetSwapRectangleANDROID eglGetRenderBufferANDROID eglLockSurfaceKHR "
    "eglUnlockSurfaceKHR eglCreateImageKHR eglDestroyImageKHR";
constexpr const char* kEs2Names =
    "glActiveTexture glAttachShader glBindAttribLocation glBindBuffer glBindFramebuffer "
    "glBindRenderbuffer glBindTexture glBlendColor glBlendEquation glBlendEquationSeparate "
    "glBlendFunc glBlendFuncSeparate glBufferData glBufferSubData glCheckFramebufferStatus "
    "glClear glClearColor glClearDepthf glClearStencil glColorMask glCompileShader "
    "glCompressedTexImage2D glCompressedTexSubImage2D glCopyTexImage2D glCopyTexSubImage2D "
    "glCreateProgram glCreateShader glCullFace glDeleteBuffers glDeleteFramebuffers "
    "glDeleteTextures glDeleteProgram glDeleteRenderbuffers glDeleteShader glDetachShader "
    "glDepthFunc glDepthMask glDepthRangef glDisable glDisableVertexAttribArray "
    "glDrawArrays glDrawElements glEnable glEnableVertexAttribArray glFinish glFlush "
    "glFramebufferRenderbuffer glFramebufferTexture2D glFrontFace glGenBuffers "
    "glGenerateMipmap glGenFramebuffers glGenRenderbuffers glGenTextures glGetActiveAttrib "
    "glGetActiveUniform glGetAttachedShaders glGetAttribLocation glGetBooleanv "
    "glGetBufferParameteriv glGetError glGetFloatv glGetFramebufferAttachmentParameteriv "
    "glGetIntegerv glGetProgramiv glGetProgramInfoLog glGetRenderbufferParameteriv "
    "glGetShaderiv glGetShaderInfoLog glGetShaderPrecisionFormat glGetShaderSource "
    "glGetString glGetTexParameterfv glGetTexParameteriv glGetUniformfv glGetUniformiv "
    "glGetUniformLocation glGetVertexAttribfv glGetVertexAttribiv glGetVertexAttribPointerv "
    "glHint glIsBuffer glIsEnabled glIsFramebuffer glIsProgram glIsRenderbuffer glIsShader "
    "glIsTexture glLineWidth glLinkProgram glPixelStorei glPolygonOffset glReadPixels "
    "glReleaseShaderCompiler glRenderbufferStorage glSampleCoverage glScissor "
    "glShaderBinary glShaderSource glStencilFunc glStencilFuncSeparate glStencilMask "
    "glStencilMaskSeparate glStencilOp glStencilOpSeparate glTexImage2D glTexParameterf "
    "glTexParameterfv glTexParameteri glTexParameteriv glTexSubImage2D glUniform1f "
    "glUniform1fv glUniform1i glUniform1iv glUniform2f glUniform2fv glUniform2i "
    "glUniform2iv glUniform3f glUniform3fv glUniform3i glUniform3iv glUniform4f "
    "glUniform4fv glUniform4i glUniform4iv glUniformMatrix2fv glUniformMatrix3fv "
    "glUniformMatrix4fv glUseProgram glValidateProgram glVertexAttrib1f glVertexAttrib1fv "
    "glVertexAttrib2f glVertexAttrib2fv glVertexAttrib3f glVertexAttrib3fv glVertexAttrib4f "
    "glVertexAttrib4fv glVertexAttribPointer glViewport";
constexpr const char* kEs1Names =
    "glActiveTexture glAlphaFunc glAlphaFuncx glBindBuffer glBindTexture glBlendFunc "
    "glBufferData glBufferSubData glClear glClearColor glClearColorx glClearDepthf "
    "glClearDepthx glClearStencil glClientActiveTexture glClipPlanef glClipPlanex glColor4f "
    "glColor4ub glColor4x glColorMask glColorPointer glCompressedTexImage2D "
    "glCompressedTexSubImage2D glCopyTexImage2D glCopyTexSubImage2D glCullFace "
    "glDeleteBuffers glDeleteTextures glDepthFunc glDepthMask glDepthRangef glDepthRangex "
    "glDisable glDisableClientState glDrawArrays glDrawElements glEnable "
    "glEnableClientState glFinish glFlush glFogf glFogfv glFogx glFogxv glFrontFace "
    "glFrustumf glFrustumx glGetBooleanv glGetBufferParameteriv glGetClipPlanef "
    "glGetClipPlanex glGenBuffers glGenTextures glGetError glGetFixedv glGetFloatv "
    "glGetIntegerv glGetLightfv glGetLightxv glGetMaterialfv glGetMaterialxv glGetPointerv "
    "glGetString glGetTexEnvfv glGetTexEnviv glGetTexEnvxv glGetTexParameterfv "
    "glGetTexParameteriv glGetTexParameterxv glHint glIsBuffer glIsEnabled glIsTexture "
    "glLightModelf glLightModelfv glLightModelx glLightModelxv glLightf glLightfv glLightx "
    "glLightxv glLineWidth glLineWidthx glLoadIdentity glLoadMatrixf glLoadMatrixx "
    "glLogicOp glMaterialf glMaterialfv glMaterialx glMaterialxv glMatrixMode glMultMatrixf "
    "glMultMatrixx glMultiTexCoord4f glMultiTexCoord4x glNormal3f glNormal3x "
    "glNormalPointer glOrthof glOrthox glPixelStorei glPointParameterf glPointParameterfv "
    "glPointParameterx glPointParameterxv glPointSize glPointSizex glPolygonOffset "
    "glPolygonOffsetx glPopMatrix glPushMatrix glReadPixels glRotatef glRotatex "
    "glSampleCoverage glSampleCoveragex glScalef glScalex glScissor glShadeModel "
    "glStencilFunc glStencilMask glStencilOp glTexCoordPointer glTexEnvf glTexEnvfv "
    "glTexEnvi glTexEnviv glTexEnvx glTexEnvxv glTexImage2D glTexParameterf "
    "glTexParameterfv glTexParameteri glTexParameteriv glTexParameterx glTexParameterxv "
    "glTexSubImage2D glTranslatef glTranslatex glVertexPointer glViewport "
    "glPointSizePointerOES";
constexpr const char* kEs3Names =
    "glReadBuffer glDrawRangeElements glTexImage3D glTexSubImage3D glCopyTexSubImage3D "
    "glCompressedTexImage3D glCompressedTexSubImage3D glGenQueries glDeleteQueries "
    "glIsQuery glBeginQuery glEndQuery glGetQueryiv glGetQueryObjectuiv glUnmapBuffer "
    "glGetBufferPointerv glDrawBuffers glUniformMatrix2x3fv glUniformMatrix3x2fv "
    "glUniformMatrix2x4fv glUniformMatrix4x2fv glUniformMatrix3x4fv glUniformMatrix4x3fv "
    "glBlitFramebuffer glRenderbufferStorageMultisample glFramebufferTextureLayer "
    "glMapBufferRange glFlushMappedBufferRange glBindVertexArray glDeleteVertexArrays "
    "glGenVertexArrays glIsVertexArray glGetIntegeri_v glBeginTransformFeedback "
    "glEndTransformFeedback glBindBufferRange glBindBufferBase glTransformFeedbackVaryings "
    "glGetTransformFeedbackVarying glVertexAttribIPointer glGetVertexAttribIiv "
    "glGetVertexAttribIuiv glVertexAttribI4i glVertexAttribI4ui glVertexAttribI4iv "
    "glVertexAttribI4uiv glGetUniformuiv glGetFragDataLocation glUniform1ui glUniform2ui "
    "glUniform3ui glUniform4ui glUniform1uiv glUniform2uiv glUniform3uiv glUniform4uiv "
    "glClearBufferiv glClearBufferuiv glClearBufferfv glClearBufferfi glGetStringi "
    "glCopyBufferSubData glGetUniformIndices glGetActiveUniformsiv glGetUniformBlockIndex "
    "glGetActiveUniformBlockiv glGetActiveUniformBlockName glUniformBlockBinding "
    "glDrawArraysInstanced glDrawElementsInstanced glFenceSync glIsSync glDeleteSync "
    "glClientWaitSync glWaitSync glGetInteger64v glGetSynciv glGetInteger64i_v "
    "glGetBufferParameteri64v glGenSamplers glDeleteSamplers glIsSampler glBindSampler "
    "glSamplerParameteri glSamplerParameteriv glSamplerParameterf glSamplerParameterfv "
    "glGetSamplerParameteriv glGetSamplerParameterfv glVertexAttribDivisor "
    "glBindTransformFeedback glDeleteTransformFeedbacks glGenTransformFeedbacks "
    "glIsTransformFeedback glPauseTransformFeedback glResumeTransformFeedback "
    "glGetProgramBinary glProgramBinary glProgramParameteri glInvalidateFramebuffer "
    "glInvalidateSubFramebuffer glTexStorage2D glTexStorage3D glGetInternalformativ";
constexpr const char* kExtNames =
    "glDiscardFramebufferEXT glMultiDrawElementsEXT glMultiDrawArraysEXT glMapBufferOES "
    "glUnmapBufferOES glGetBufferPointervOES glBindVertexArrayOES glDeleteVertexArraysOES "
    "glGenVertexArraysOES glIsVertexArrayOES glCurrentPaletteMatrixOES "
    "glLoadPaletteFromModelViewMatrixOES glMatrixIndexPointerOES glWeightPointerOES "
    "glIsRenderbufferOES glBindRenderbufferOES glDeleteRenderbuffersOES "
    "glGenRenderbuffersOES glRenderbufferStorageOES glGetRenderbufferParameterivOES "
    "glIsFramebufferOES glBindFramebufferOES glDeleteFramebuffersOES glGenFramebuffersOES "
    "glCheckFramebufferStatusOES glFramebufferTexture2DOES glFramebufferRenderbufferOES "
    "glGetFramebufferAttachmentParameterivOES glGenerateMipmapOES glTexBindStreamQVA "
    "glGetTexStreamDeviceAttributeivQVA glGetTexStreamDeviceNameQVA glDeleteFencesNV "
    "glFinishFenceNV glGenFencesNV glGetFenceivNV glIsFenceNV glSetFenceNV glTestFenceNV "
    "glEGLImageTargetRenderbufferStorageOES glEGLImageTargetTexture2DOES glAlphaFuncxOES "
    "glClearColorxOES glClearDepthxOES glClipPlanexOES glColor4xOES glDepthRangexOES "
    "glFogxOES glFogxvOES glFrustumxOES glGetClipPlanexOES glGetFixedvOES glGetLightxvOES "
    "glGetMaterialxvOES glGetTexEnvxvOES glGetTexParameterxvOES glLightModelxOES "
    "glLightModelxvOES glLightxOES glLightxvOES glLineWidthxOES glLoadMatrixxOES "
    "glMaterialxOES glMaterialxvOES glMultMatrixxOES glMultiTexCoord4xOES glNormal3xOES "
    "glOrthoxOES glPointParameterxOES glPointParameterxvOES glPointSizexOES "
    "glPolygonOffsetxOES glRotatexOES glSampleCoveragexOES glScalexOES glTexEnvxOES "
    "glTexEnvxvOES glTexParameterxOES glTexParameterxvOES glTranslatexOES";

/// Which identifiers have a class, and the names that go with them.
std::map<std::uint16_t, std::string> NamesOfIdentifiers() {
    std::map<std::uint16_t, std::string> names;
    const auto add = [&names](std::uint16_t first, const char* list) {
        std::istringstream words(list);
        for (std::string word; words >> word; ++first) names[first] = word;
    };
    add(1001, kEglNames);
    add(1100, kEglExtNames);
    add(2001, kEs2Names);
    add(3001, kEs1Names);
    add(4001, kExtNames);
    add(4089, "glRenderbufferStorageMultisampleQVA glFramebufferTexture2DMultisampleQVA");
    add(4126, "glGetProgramBinaryOES glProgramBinaryOES");
    add(5143, kEs3Names);
    return names;
}

std::unique_ptr<CApiCall> Make(std::uint16_t id, CRecordStream& stream) {
    return CTraceDocument::CreateCall(id, stream.Trace());
}

std::unique_ptr<CApiCall> Make(std::uint16_t id, const CRecordBuilder& record,
                               std::uint32_t version = 14) {
    CRecordStream stream(record, version);
    std::unique_ptr<CApiCall> call = Make(id, stream);
    EXPECT_NE(call, nullptr) << id;
    return call;
}

/// What a call's list holds, and who owns it: the call goes with the object.
class CListed {
public:
    CListed(std::uint16_t id, const CRecordBuilder& record, std::uint32_t version = 14)
        : call(Make(id, record, version)) {
        call->FillCallInfo(info, true);
    }
    template <typename Value>
    Value& At(std::uint32_t index) {
        return dynamic_cast<Value&>(*(*info.GetParameters())[index]);
    }
    /// The names of the visible parameters, a bar, and the names of the hidden ones.
    std::string Names() const {
        std::string names;
        for (std::uint32_t i = 0; info.GetParameters() != nullptr; ++i) {
            if (i == info.GetVisibleCount()) names += "| ";
            if (i == info.GetParameters()->size()) break;
            names += std::string(info.GetParameterName(i)) + ' ';
        }
        return names;
    }

    std::unique_ptr<CApiCall> call;
    CGenCallInfo info;
};

TEST(Factories, TheIdentifierAloneSaysTheName) {
    // Pixmaps keep the length that the first of them reads, so this needs a process of its own.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto walk = [] {
        const std::map<std::uint16_t, std::string> names = NamesOfIdentifiers();
        const std::set<std::uint16_t> sinceEight = {4080, 4089, 4090, 4126, 4127};
        // All calls of a version read the same zeros: null pointers and empty arrays.
        const Bytes zeros(400);
        bool sound = names.size() == 34 + 6 + 142 + 145 + 80 + 4 + 104;
        for (std::uint32_t version = 7; version <= 15; ++version) {
            CRecordStream stream(zeros, version);
            for (std::uint32_t number = 0; number <= 65535; ++number) {
                const auto id = static_cast<std::uint16_t>(number);
                stream.Trace().Stream().Seek(0, SEEK_SET);
                const auto found = names.find(id);
                const bool wanted =
                    found != names.end() && (version > 7 || sinceEight.count(id) == 0);
                const std::unique_ptr<CApiCall> call = Make(id, stream);
                const bool right =
                    (call != nullptr) == wanted &&
                    (!wanted || (call->GetName() == found->second && call->m_id == id &&
                                 call->GetCallId() == id && !call->m_edited));
                if (right) continue;
                std::fprintf(stderr, "version %u, identifier %u\n", version, number);
                sound = false;
            }
        }
        std::exit(sound ? 0 : 1);
    };
    EXPECT_EXIT(walk(), testing::ExitedWithCode(0), "");
}

TEST(Factories, FamiliesReadTheirErrorFieldsFirst) {
    CListed egl(1024, Record().EglInt(0x3001).EglBoolean(true));
    EXPECT_EQ(egl.call->m_group, kGroupEgl);
    EXPECT_EQ(egl.call->m_error.value, 0U);
    EXPECT_STREQ(egl.info.GetApiName(), "EGL");
    EXPECT_EQ(ShortText(*egl.info.GetErrorValue()), "EGL_NOT_INITIALIZED");
    EXPECT_EQ(ShortText(*egl.info.GetReturnValue()), "EGL_TRUE");
    EXPECT_EQ(egl.info.GetParameters(), nullptr);

    const struct {
        std::uint16_t id;
        std::uint8_t group;
        const char* api;
    } plain[] = {{3041, kGroupEs1, "ES1"}, {2046, kGroupEs2, "ES2"}, {5177, kGroupEs2, "ES3"}};
    for (const auto& c : plain) {
        CListed call(c.id, Record().Enum(0x502));
        EXPECT_EQ(call.call->m_group, c.group);
        EXPECT_EQ(call.call->m_error.value, 0x502U);
        EXPECT_STREQ(call.info.GetApiName(), c.api);
        EXPECT_EQ(ShortText(*call.info.GetErrorValue()), "GL_INVALID_OPERATION");
        EXPECT_EQ(call.info.GetReturnValue(), nullptr);
        EXPECT_STREQ(call.info.GetCallName(), call.call->GetName());
    }
    const struct {
        std::uint8_t api, group;
        const char* name;
    } extensions[] = {{0, kGroupNone, "EGL"},
                      {1, kGroupExtEs1, "ES1"},
                      {2, kGroupExtEs2, "ES2"},
                      {3, kGroupNone, "EGL"}};
    for (const auto& c : extensions) {
        CListed call(4010, Record().Enum(0x501).Ubyte(c.api).Boolean(true).Uint(4));
        EXPECT_EQ(call.call->m_group, c.group);
        EXPECT_EQ(call.call->m_error.value, 0U);
        EXPECT_STREQ(call.info.GetApiName(), c.name);
        EXPECT_EQ(ShortText(*call.info.GetErrorValue()), "GL_INVALID_VALUE");
        EXPECT_EQ(call.At<TuintType<21>>(0).value, 4U);
    }
}

TEST(Draws, CapturedArraysTakeTheRestOfTheRecord) {
    static constexpr std::uint16_t kDraws[] = {2041, 2042, 3036, 3037};
    for (const std::uint16_t id : kDraws) {
        for (const std::uint32_t version : {7U, 13U, 14U}) {
            for (const std::size_t leftOver : {0U, 1U, 7U}) {
                CRecordBuilder record = Record(version).Enum(0).Enum(4);
                const bool elements = id == 2042 || id == 3037;
                if (elements) {
                    record.Sizei(3).Enum(0x1401).Data(0x99, Bytes{0, 1, 2}).Pointer(0x99);
                } else {
                    record.Int(2).Sizei(3);
                }
                CListed none(id, record, version);
                record.ClientArray(3, 0x1000, Bytes{1, 2, 3}).ClientArray(1, 0x2000, Bytes{4});
                record.Raw(Bytes(leftOver, 0xEE));
                CListed two(id, record, version);
                const std::uint32_t hidden = elements ? 5 : 3;
                for (CListed* call : {&none, &two}) {
                    EXPECT_EQ(call->info.GetVisibleCount(), elements ? 4U : 3U);
                    ASSERT_EQ(call->info.GetParameters()->size(), hidden + 2);
                    EXPECT_EQ(ShortText(call->At<TGLBeginMode>(0)), "GL_TRIANGLES");
                    if (elements) {
                        EXPECT_EQ(call->At<TPointer>(4).value, 0x99U);
                    }
                }
                EXPECT_TRUE(none.At<SVectorData<SDataPtr*>>(hidden).items.empty());
                EXPECT_TRUE(none.At<SVectorData<int>>(hidden + 1).items.empty());
                const auto& arrays = two.At<SVectorData<SDataPtr*>>(hidden);
                const auto& indices = two.At<SVectorData<int>>(hidden + 1);
                ASSERT_EQ(arrays.items.size(), 2U) << id << ' ' << version << ' ' << leftOver;
                EXPECT_EQ(arrays.items[0]->GetData()[2], 3);
                EXPECT_EQ(arrays.items[1]->GetData()[0], 4);
                EXPECT_EQ(arrays.items[1]->pointer.value, 0x2000U);
                EXPECT_EQ(indices.items,
                          version >= 14 ? std::vector<int>({3, 1}) : std::vector<int>({-1, -1}));
                EXPECT_EQ(ShortText(arrays), "");
            }
        }
    }
}

TEST(Draws, DamagedArraysEnd) {
    // An array larger than its record, in a record that is otherwise sound.
    CRecordBuilder large = Record().Enum(0).Enum(4).Int(0).Sizei(3);
    large.Int(0).Pointer(1).U32(100000);
    CRecordStream stream(large);
    EXPECT_THROW(Make(2041, stream), std::logic_error);
    // Widths of the wrong sign make the count of what is left grow.
    for (const int width : {-127, -8, 4, 8, 127}) {
        WidthTable widths = StandardWidths();
        widths[tag::Pointer] = static_cast<std::int8_t>(width);
        widths[tag::Int] = static_cast<std::int8_t>(width);
        CRecordStream damaged(Bytes(5000), 14, widths);
        EXPECT_NE(Make(2041, damaged), nullptr);
        EXPECT_LE(damaged.Consumed(), 5000U + 400U);
    }
    // A record shorter than the fixed members.
    CRecordStream shorter(Bytes(6));
    EXPECT_NE(Make(2042, shorter), nullptr);
}

TEST(ShaderSource, StringsAreJoinedInOrder) {
    const auto source = [](const std::vector<std::string>& parts, std::uint64_t pointer = 1) {
        return Record().Enum(0).Uint(5).Sizei(2).Strings(pointer, parts).Array(tag::Int, 0, {});
    };
    CListed two(2099, source({"a", "b"}));
    EXPECT_EQ(two.Names(), "shader count string length | source ");
    EXPECT_STREQ(two.At<SString>(4).GetCString(), "ab");
    EXPECT_EQ(two.At<SString>(4).length, 2U);
    EXPECT_EQ(two.At<SString>(4).pointer.value, 0U);
    EXPECT_STREQ(CListed(2099, source({"x\n", "", "yz"})).At<SString>(4).GetCString(), "x\nyz");
    for (const auto& record : {source({}), source({"a"}, 0), source({""})}) {
        CListed none(2099, record);
        EXPECT_STREQ(none.At<SString>(4).GetCString(), "");
        EXPECT_EQ(none.At<SString>(4).length, 0U);
    }
}

TEST(EglRecords, Versions) {
    // Each record ends with what its version added; the next call shows that all of it was read.
    const auto consumed = [](std::uint16_t id, const CRecordBuilder& record, std::uint32_t version,
                             const char* names) {
        CRecordStream stream(record, version);
        const std::unique_ptr<CApiCall> call = Make(id, stream);
        ASSERT_NE(call, nullptr);
        EXPECT_EQ(stream.Consumed(), record.Content().size()) << id << ' ' << version;
        EXPECT_EQ(CListed(id, record, version).Names(), names) << id << ' ' << version;
    };
    const auto begun = [] {
        return Record().EglInt(0x3000).EglBoolean(true).Display(1).Surface(2);
    };
    consumed(1022, begun(), 7, "dpy surface | ");
    consumed(1022, begun(), 8, "dpy surface | ");
    consumed(1022, begun().Uint(9), 9, "dpy surface | ");
    const auto framed = begun().Uint(9).Uint(2).Uint(1).Data(5, Bytes(8, 3));
    for (const std::uint32_t version : {10U, 14U, 1000U}) {
        consumed(1022, framed, version, "dpy surface frame width height frameData | ");
    }
    CListed swap(1022, framed);
    EXPECT_EQ(swap.At<TuintType<21>>(3).value, 2U);
    EXPECT_EQ(swap.At<SDataPtr>(5).GetSize(), 8U);

    const auto current = begun().Surface(3).Context(4);
    consumed(1018, current, 7, "dpy draw read ctx | ");
    consumed(1018, current, 8, "dpy draw read ctx | ");
    consumed(1018, begun().Surface(3).Context(4).Config(5).Attributes({0x3024, 8, 0x3038}), 9,
             "dpy draw read ctx | ");

    const auto window = Record()
                            .EglInt(0x3000)
                            .Surface(9)
                            .Display(1)
                            .Config(2)
                            .Window(77, 640, 480)
                            .Attributes({})
                            .Attributes({0x3024, 5, 0x3038});
    consumed(1006, window, 7, "dpy config win attrib_list | attrib_list_config ");
    CListed surface(1006, window);
    EXPECT_EQ(surface.At<SEglNativeWindowDesc>(2).height, 480);
    std::int32_t red = 0;
    surface.At<SEglAttribList>(4).GetAttribute(0x3024, red);
    EXPECT_EQ(red, 5);
    EXPECT_EQ(ShortText(*surface.info.GetReturnValue()), "EGLSurface(9)");

    consumed(1003,
             Record()
                 .EglInt(0x3000)
                 .Context(1)
                 .Display(1)
                 .Config(2)
                 .Context(0)
                 .Attributes({0x3098, 2, 0x3038})
                 .Attributes({0x3038}),
             14, "dpy config share_context attrib_list_contex | attrib_list_config ");
    consumed(1004, Record().EglInt(0x3000).Surface(1).Display(1).Config(2).Attributes({0x3038}), 14,
             "dpy config attrib_list SurfaceDesc | ");
    consumed(1014, Record().EglInt(0x3000).Display(1).Value(tag::EglNativeDisplay, 0), 14,
             "NativeDisplayType | ");
}

TEST(GlRecords, OnesThatCarryMoreThanTheirPrototype) {
    CListed image(2106, Record()
                            .Enum(0)
                            .Enum(0x0DE1)
                            .Int(0)
                            .Int(0x1908)
                            .Sizei(1)
                            .Sizei(1)
                            .Int(0)
                            .Enum(0x1908)
                            .Enum(0x1401)
                            .Data(1, Bytes(4, 9))
                            .Int(2));
    EXPECT_EQ(image.info.GetVisibleCount(), 9U);
    EXPECT_EQ(image.At<SImage2D>(8).GetSize(), 4U);
    EXPECT_EQ(image.At<TintType<17>>(9).value, 2);

    CListed matrix(3086, Record().Enum(0).RealItem(tag::Float, 1, std::vector<float>(16, 3)));
    EXPECT_EQ((matrix.At<SPtr<TfloatType<22>, 4, 4>>(0).GetRawArray()[15]), 3.0F);

    // Calls that set a client array keep the pointer twice: recorded and to be played.
    const std::pair<std::uint16_t, CRecordBuilder> pointers[] = {
        {3022, Record().Enum(0).Int(4).Enum(0x1406).Sizei(0).Pointer(0xABC)},
        {3100, Record().Enum(0).Enum(0x1406).Sizei(0).Pointer(0xABC)},
        {3126, Record().Enum(0).Int(2).Enum(0x1406).Sizei(0).Pointer(0xABC)},
        {3143, Record().Enum(0).Int(3).Enum(0x1406).Sizei(0).Pointer(0xABC)},
        {3145, Record().Enum(0).Enum(0x1406).Sizei(0).Pointer(0xABC)},
        {4013, Record().Enum(0).Ubyte(1).Int(3).Enum(0x1401).Sizei(0).Pointer(0xABC)},
        {4014, Record().Enum(0).Ubyte(1).Int(3).Enum(0x1406).Sizei(0).Pointer(0xABC)}};
    for (const auto& [id, record] : pointers) {
        CListed call(id, record);
        const std::uint32_t last = call.info.GetVisibleCount() - 1;
        ASSERT_EQ(call.info.GetParameters()->size(), last + 2) << id;
        EXPECT_STREQ(call.info.GetParameterName(last), "pointer");
        EXPECT_STREQ(call.info.GetParameterName(last + 1), "pointerPlayback");
        EXPECT_EQ(call.At<TPointer>(last).value, 0xABCU);
        EXPECT_EQ(call.At<TPointer>(last + 1).value, 0xABCU);
    }
    CListed attribute(
        2141, Record().Enum(0).Uint(1).Int(4).Enum(0x1406).Boolean(false).Sizei(0).Pointer(0xABC));
    EXPECT_EQ(attribute.info.GetParameters()->size(), 6U);
    EXPECT_EQ(attribute.At<TPointer>(5).value, 0xABCU);

    CListed instanced(
        5212, Record().Enum(0).Enum(4).Sizei(3).Enum(0x1403).Sizei(2).Data(7, Bytes(6)).Pointer(8));
    EXPECT_EQ(instanced.At<TPointer>(5).value, 8U);
    EXPECT_EQ(instanced.info.GetParameters()->size(), 6U);
    EXPECT_EQ(CListed(5177, Record().Enum(0).Data(3, Bytes(5))).At<SDataPtr>(0).GetSize(), 5U);
}

TEST(CallInfo, HoldsNothingAfterClear) {
    CListed call(2142, Record().Enum(0).Int(1).Int(2).Sizei(3).Sizei(4));
    EXPECT_EQ(call.Names(), "x y width height | ");
    call.info.Clear();
    EXPECT_EQ(call.info.GetParameters(), nullptr);
    EXPECT_EQ(call.info.GetVisibleCount(), 0U);
    EXPECT_EQ(call.info.GetErrorValue(), nullptr);
}

}  // namespace
}  // namespace kestrail
