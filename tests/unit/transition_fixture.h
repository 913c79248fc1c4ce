// What the tests of the transitions share: host tables that write their calls down, made anew for
// each test.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exec/egl_names.h"
#include "exec/es1_names.h"
#include "exec/es2_names.h"
#include "state/es2/es2_state.h"
#include "tests/unit/recording_host.h"
#include "tests/unit/unit_support.h"

namespace kestrail {

using Calls = std::vector<std::string>;

// clang-format off
#define RECORD(entry) RecordInto<#entry>(host.entry);

inline void RecordEs2(SEs2Host& host) {
    Forbid(static_cast<SEs2Entries&>(host), kEs2Entries);
    RECORD(glActiveTexture) RECORD(glAttachShader) RECORD(glBindAttribLocation) RECORD(glBindBuffer)
    RECORD(glBindFramebuffer) RECORD(glBindRenderbuffer) RECORD(glBindTexture) RECORD(glBlendColor)
    RECORD(glBlendEquationSeparate) RECORD(glBlendFuncSeparate) RECORD(glBufferData)
    RECORD(glClearColor) RECORD(glClearDepthf) RECORD(glClearStencil) RECORD(glColorMask)
    RECORD(glCompileShader) RECORD(glCompressedTexImage2D) RECORD(glCreateProgram)
    RECORD(glCreateShader) RECORD(glCullFace) RECORD(glDeleteFramebuffers) RECORD(glDeleteProgram)
    RECORD(glDeleteShader) RECORD(glDeleteTextures) RECORD(glDepthFunc) RECORD(glDepthMask)
    RECORD(glDepthRangef) RECORD(glDetachShader) RECORD(glDisable)
    RECORD(glDisableVertexAttribArray) RECORD(glEnable) RECORD(glEnableVertexAttribArray)
    RECORD(glFramebufferRenderbuffer) RECORD(glFramebufferTexture2D) RECORD(glFrontFace)
    RECORD(glGenBuffers) RECORD(glGenFramebuffers) RECORD(glGenRenderbuffers) RECORD(glGenTextures)
    RECORD(glGetError) RECORD(glGetShaderiv) RECORD(glHint) RECORD(glIsProgram)
    RECORD(glLinkProgram) RECORD(glPixelStorei) RECORD(glPolygonOffset)
    RECORD(glRenderbufferStorage) RECORD(glSampleCoverage) RECORD(glScissor) RECORD(glShaderSource)
    RECORD(glStencilFuncSeparate) RECORD(glStencilMaskSeparate) RECORD(glStencilOpSeparate)
    RECORD(glTexImage2D) RECORD(glTexParameteri) RECORD(glUniform1f) RECORD(glUniform2fv)
    RECORD(glUniform3i) RECORD(glUniform4f) RECORD(glUniform4iv) RECORD(glUniformMatrix2fv)
    RECORD(glUniformMatrix3fv) RECORD(glUniformMatrix4fv) RECORD(glUseProgram)
    RECORD(glValidateProgram) RECORD(glVertexAttrib1f) RECORD(glVertexAttrib3f)
    RECORD(glVertexAttribPointer) RECORD(glViewport) RECORD(glBindVertexArrayOES)
    RECORD(glGenVertexArraysOES) RECORD(glMapBufferOES) RECORD(glRenderbufferStorageMultisampleQVA)
    RECORD(glFramebufferTexture2DMultisampleQVA)
    host.glGetUniformLocation = &ScriptedUniformLocation;
    host.glGetAttachedShaders = &ScriptedAttachedShaders;
}

inline void RecordEs3(SEs3Host& host) {
    Forbid(static_cast<SEs3Entries&>(host), kEs3Entries);
    RECORD(glBindVertexArray) RECORD(glDrawBuffers) RECORD(glGenVertexArrays) RECORD(glTexImage3D)
}

inline void RecordEs1(SEs1Host& host) {
    Forbid(static_cast<SEs1Entries&>(host), kEs1Entries);
    static_cast<SExtensionEntries&>(host) = SExtensionEntries{};
    RECORD(glActiveTexture) RECORD(glAlphaFunc) RECORD(glBindBuffer) RECORD(glBindTexture)
    RECORD(glBlendFunc) RECORD(glBufferData) RECORD(glClearColor) RECORD(glClearDepthf)
    RECORD(glClearStencil) RECORD(glClientActiveTexture) RECORD(glClipPlanef) RECORD(glColor4f)
    RECORD(glColorMask) RECORD(glColorPointer) RECORD(glCompressedTexImage2D) RECORD(glCullFace)
    RECORD(glDepthFunc) RECORD(glDepthMask) RECORD(glDepthRangef) RECORD(glDisable)
    RECORD(glDisableClientState) RECORD(glEnable) RECORD(glEnableClientState) RECORD(glFogf)
    RECORD(glFogfv) RECORD(glFrontFace) RECORD(glGenBuffers) RECORD(glGenTextures)
    RECORD(glGetIntegerv) RECORD(glHint) RECORD(glLightModelf) RECORD(glLightModelfv)
    RECORD(glLightfv) RECORD(glLineWidth) RECORD(glLoadMatrixf) RECORD(glLogicOp)
    RECORD(glMaterialfv) RECORD(glMatrixMode) RECORD(glMultiTexCoord4f) RECORD(glNormal3f)
    RECORD(glNormalPointer) RECORD(glPixelStorei) RECORD(glPointParameterfv) RECORD(glPointSize)
    RECORD(glPointSizePointerOES) RECORD(glPolygonOffset) RECORD(glPopMatrix) RECORD(glPushMatrix)
    RECORD(glSampleCoverage) RECORD(glScissor) RECORD(glShadeModel) RECORD(glStencilFunc)
    RECORD(glStencilMask) RECORD(glStencilOp) RECORD(glTexCoordPointer) RECORD(glTexImage2D)
    RECORD(glTexParameterf) RECORD(glVertexPointer) RECORD(glViewport)
}

/// The extensions of ES1, which the host lacks unless a test says otherwise.
inline void RecordEs1Extensions(SEs1Host& host) {
    RECORD(glCurrentPaletteMatrixOES) RECORD(glMatrixIndexPointerOES) RECORD(glWeightPointerOES)
    RECORD(glBindVertexArrayOES) RECORD(glGenVertexArraysOES) RECORD(glMapBufferOES)
    RECORD(glBindFramebufferOES) RECORD(glBindRenderbufferOES) RECORD(glCheckFramebufferStatusOES)
    RECORD(glFramebufferRenderbufferOES) RECORD(glFramebufferTexture2DOES)
    RECORD(glGenFramebuffersOES) RECORD(glGenRenderbuffersOES) RECORD(glRenderbufferStorageOES)
}

inline void RecordEgl(SEglHost& host) {
    Forbid(static_cast<SEglEntries&>(host), kEglEntries);
    RECORD(eglBindAPI) RECORD(eglCreateContext) RECORD(eglCreateWindowSurface)
    RECORD(eglDestroyContext) RECORD(eglDestroySurface) RECORD(eglGetDisplay) RECORD(eglGetError)
    RECORD(eglInitialize) RECORD(eglMakeCurrent) RECORD(eglQuerySurface) RECORD(eglTerminate)
    host.eglChooseConfig = &ScriptedChooseConfig;
}

#undef RECORD
// clang-format on

inline void SetBuffer(TShared<TStateTable<SBufferState>>& buffers, std::uint32_t name,
                      const CSharedBytes& data, std::uint32_t size) {
    SBufferState& buffer = buffers.Write().GetOrCreate(name);
    buffer.name = name;
    buffer.target = 34962;
    buffer.data = data;
    buffer.size = size;
    buffer.usage = 35044;
}

class StateTransition : public ::testing::Test {
protected:
    void SetUp() override {
        CHostConfig& config = *GetHostConfig();
        m_config = config;
        config.EglLibraryPath = "libEGL.so.1";
        config.Es1LibraryPath = "libGLESv1_CM.so.1";
        config.Es2LibraryPath = "libGLESv2.so.2";
        m_host = SRecordingHost();
        RecordEgl(*GetEglHost());
        RecordEs1(*GetEs1Host());
        RecordEs2(*GetEs2Host());
        RecordEs3(*GetEs3Host());
        m_names.ResetNames();
        m_es1Names.ResetNames();
        m_names.ExtensionsResolved() = true;
        m_es1Names.ExtensionsResolved() = true;
        CEglNames{}.PixelStore() = SPixelStore();
    }

    void TearDown() override { *GetHostConfig() = m_config; }

    /// What the host got since the last question, without the reading of errors.
    Calls Take() {
        Calls calls;
        for (const std::string& call : m_host.calls) {
            if (call != "glGetError()" && call != "eglGetError()") calls.push_back(call);
        }
        m_host.calls.clear();
        return calls;
    }

    /// Bytes that the host's calls name.
    CSharedBytes Content(const char* name, std::size_t size) {
        m_contents.emplace_back(size);
        m_host.pointerNames[m_contents.back().data()] = name;
        return CSharedBytes::Borrow(m_contents.back().data(), size);
    }

    SRecordingHost& m_host = SRecordingHost::Get();
    CEs2Names m_names;
    CEs1Names m_es1Names;
    CHostConfig m_config;
    std::vector<std::vector<std::uint8_t>> m_contents;
};

}  // namespace kestrail
