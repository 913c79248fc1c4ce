#include "tests/support/table_rows.h"

#include <iterator>
#include <sstream>

namespace kestrail {

namespace {

const char* const prototypeRows[] = {
#include "prototypes.inc"
};

SPrototype ParseRow(const std::string& row) {
    std::vector<std::string> fields;
    std::istringstream stream(row);
    std::string field;
    while (std::getline(stream, field, ';')) fields.push_back(field);
    SPrototype prototype{fields.at(0), fields.at(1), fields.at(2), {}, {}};
    for (std::size_t i = 3; i < fields.size(); ++i) {
        const std::size_t bar = fields[i].find('|');
        prototype.types.push_back(fields[i].substr(0, bar));
        prototype.names.push_back(fields[i].substr(bar + 1));
    }
    return prototype;
}

const std::vector<SPrototype>& Prototypes() {
    static const std::vector<SPrototype> prototypes = [] {
        std::vector<SPrototype> parsed;
        for (const char* row : prototypeRows) parsed.push_back(ParseRow(row));
        return parsed;
    }();
    return prototypes;
}

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::map<std::string, Played> Marked(const std::vector<std::string>& unplayed,
                                     const std::vector<std::string>& checked,
                                     const std::vector<std::string>& byHand) {
    std::map<std::string, Played> marks;
    for (const std::string& entry : unplayed) marks[entry] = Played::No;
    for (const std::string& entry : checked) marks[entry] = Played::Checked;
    for (const std::string& entry : byHand) marks[entry] = Played::ByHand;
    return marks;
}

}  // namespace

const SPrototype* FindPrototype(const std::string& family, const std::string& entry) {
    for (const SPrototype& prototype : Prototypes()) {
        if (prototype.family == family && prototype.entry == entry) return &prototype;
    }
    return nullptr;
}

const SFamilyRows& EglRows() {
    static const SFamilyRows rows = [] {
        SFamilyRows egl;
        egl.family = "Egl";
        egl.first = 1001;
        egl.entries = Words(R"(
            eglChooseConfig eglCopyBuffers eglCreateContext eglCreatePbufferSurface
            eglCreatePixmapSurface eglCreateWindowSurface eglDestroyContext eglDestroySurface
            eglGetConfigAttrib eglGetConfigs eglGetCurrentContext eglGetCurrentDisplay
            eglGetCurrentSurface eglGetDisplay eglGetError eglGetProcAddress eglInitialize
            eglMakeCurrent eglQueryContext eglQueryString eglQuerySurface eglSwapBuffers
            eglTerminate eglWaitGL eglWaitNative eglBindTexImage eglReleaseTexImage
            eglSurfaceAttrib eglSwapInterval eglBindAPI eglCreatePbufferFromClientBuffer
            eglQueryAPI eglReleaseThread eglWaitClient)");
        return egl;
    }();
    return rows;
}

// NOLINTNEXTLINE(readability-function-size): a table.
const SFamilyRows& Es2Rows() {
    static const SFamilyRows rows = [] {
        SFamilyRows es2;
        es2.family = "Es2";
        es2.first = 2001;
        es2.entries = Words(R"(
            glActiveTexture glAttachShader glBindAttribLocation glBindBuffer glBindFramebuffer
            glBindRenderbuffer glBindTexture glBlendColor glBlendEquation glBlendEquationSeparate
            glBlendFunc glBlendFuncSeparate glBufferData glBufferSubData glCheckFramebufferStatus
            glClear glClearColor glClearDepthf glClearStencil glColorMask glCompileShader
            glCompressedTexImage2D glCompressedTexSubImage2D glCopyTexImage2D glCopyTexSubImage2D
            glCreateProgram glCreateShader glCullFace glDeleteBuffers glDeleteFramebuffers
            glDeleteTextures glDeleteProgram glDeleteRenderbuffers glDeleteShader glDetachShader
            glDepthFunc glDepthMask glDepthRangef glDisable glDisableVertexAttribArray
            glDrawArrays glDrawElements glEnable glEnableVertexAttribArray glFinish glFlush
            glFramebufferRenderbuffer glFramebufferTexture2D glFrontFace glGenBuffers
            glGenerateMipmap glGenFramebuffers glGenRenderbuffers glGenTextures glGetActiveAttrib
            glGetActiveUniform glGetAttachedShaders glGetAttribLocation glGetBooleanv
            glGetBufferParameteriv glGetError glGetFloatv glGetFramebufferAttachmentParameteriv
            glGetIntegerv glGetProgramiv glGetProgramInfoLog glGetRenderbufferParameteriv
            glGetShaderiv glGetShaderInfoLog glGetShaderPrecisionFormat glGetShaderSource
            glGetString glGetTexParameterfv glGetTexParameteriv glGetUniformfv glGetUniformiv
            glGetUniformLocation glGetVertexAttribfv glGetVertexAttribiv glGetVertexAttribPointerv
            glHint glIsBuffer glIsEnabled glIsFramebuffer glIsProgram glIsRenderbuffer glIsShader
            glIsTexture glLineWidth glLinkProgram glPixelStorei glPolygonOffset glReadPixels
            glReleaseShaderCompiler glRenderbufferStorage glSampleCoverage glScissor
            glShaderBinary glShaderSource glStencilFunc glStencilFuncSeparate glStencilMask
            glStencilMaskSeparate glStencilOp glStencilOpSeparate glTexImage2D glTexParameterf
            glTexParameterfv glTexParameteri glTexParameteriv glTexSubImage2D glUniform1f
            glUniform1fv glUniform1i glUniform1iv glUniform2f glUniform2fv glUniform2i
            glUniform2iv glUniform3f glUniform3fv glUniform3i glUniform3iv glUniform4f
            glUniform4fv glUniform4i glUniform4iv glUniformMatrix2fv glUniformMatrix3fv
            glUniformMatrix4fv glUseProgram glValidateProgram glVertexAttrib1f glVertexAttrib1fv
            glVertexAttrib2f glVertexAttrib2fv glVertexAttrib3f glVertexAttrib3fv glVertexAttrib4f
            glVertexAttrib4fv glVertexAttribPointer glViewport)");
        es2.played = Marked(Words(R"(
            glCheckFramebufferStatus glGetVertexAttribfv glGetVertexAttribiv
            glGetVertexAttribPointerv glIsBuffer glIsEnabled glIsFramebuffer glIsProgram
            glIsRenderbuffer glIsShader glIsTexture glReadPixels glValidateProgram)"),
                            Words(R"(
            glGetActiveAttrib glGetActiveUniform glGetAttachedShaders glGetBooleanv
            glGetBufferParameteriv glGetError glGetFloatv glGetFramebufferAttachmentParameteriv
            glGetIntegerv glGetProgramInfoLog glGetRenderbufferParameteriv glGetShaderiv
            glGetShaderInfoLog glGetShaderPrecisionFormat glGetShaderSource glGetString
            glGetTexParameterfv glGetTexParameteriv glGetUniformfv glGetUniformiv)"),
                            {"glDrawArrays", "glDrawElements"});
        for (const std::string& name : Words(R"(
            buffer framebuffer renderbuffer texture program shader index location)")) {
            es2.translated["*"][name] = name;
        }
        es2.translated["glBindAttribLocation"] = {{"program", "program"}};
        es2.translated["glDeleteBuffers"] = {{"buffers", "buffer"}};
        es2.translated["glDeleteFramebuffers"] = {{"framebuffers", "framebuffer"}};
        es2.translated["glDeleteRenderbuffers"] = {{"renderbuffers", "renderbuffer"}};
        es2.translated["glDeleteTextures"] = {{"textures", "texture"}};
        es2.translated["glShaderBinary"] = {{"shaders", "shader"}};
        return es2;
    }();
    return rows;
}

// NOLINTNEXTLINE(readability-function-size): a table.
const SFamilyRows& Es1Rows() {
    static const SFamilyRows rows = [] {
        SFamilyRows es1;
        es1.family = "Es1";
        es1.first = 3001;
        es1.prefix = "es1.";
        es1.entries = Words(R"(
            glActiveTexture glAlphaFunc glAlphaFuncx glBindBuffer glBindTexture glBlendFunc
            glBufferData glBufferSubData glClear glClearColor glClearColorx glClearDepthf
            glClearDepthx glClearStencil glClientActiveTexture glClipPlanef glClipPlanex glColor4f
            glColor4ub glColor4x glColorMask glColorPointer glCompressedTexImage2D
            glCompressedTexSubImage2D glCopyTexImage2D glCopyTexSubImage2D glCullFace
            glDeleteBuffers glDeleteTextures glDepthFunc glDepthMask glDepthRangef glDepthRangex
            glDisable glDisableClientState glDrawArrays glDrawElements glEnable
            glEnableClientState glFinish glFlush glFogf glFogfv glFogx glFogxv glFrontFace
            glFrustumf glFrustumx glGetBooleanv glGetBufferParameteriv glGetClipPlanef
            glGetClipPlanex glGenBuffers glGenTextures glGetError glGetFixedv glGetFloatv
            glGetIntegerv glGetLightfv glGetLightxv glGetMaterialfv glGetMaterialxv glGetPointerv
            glGetString glGetTexEnvfv glGetTexEnviv glGetTexEnvxv glGetTexParameterfv
            glGetTexParameteriv glGetTexParameterxv glHint glIsBuffer glIsEnabled glIsTexture
            glLightModelf glLightModelfv glLightModelx glLightModelxv glLightf glLightfv glLightx
            glLightxv glLineWidth glLineWidthx glLoadIdentity glLoadMatrixf glLoadMatrixx
            glLogicOp glMaterialf glMaterialfv glMaterialx glMaterialxv glMatrixMode glMultMatrixf
            glMultMatrixx glMultiTexCoord4f glMultiTexCoord4x glNormal3f glNormal3x
            glNormalPointer glOrthof glOrthox glPixelStorei glPointParameterf glPointParameterfv
            glPointParameterx glPointParameterxv glPointSize glPointSizex glPolygonOffset
            glPolygonOffsetx glPopMatrix glPushMatrix glReadPixels glRotatef glRotatex
            glSampleCoverage glSampleCoveragex glScalef glScalex glScissor glShadeModel
            glStencilFunc glStencilMask glStencilOp glTexCoordPointer glTexEnvf glTexEnvfv
            glTexEnvi glTexEnviv glTexEnvx glTexEnvxv glTexImage2D glTexParameterf
            glTexParameterfv glTexParameteri glTexParameteriv glTexParameterx glTexParameterxv
            glTexSubImage2D glTranslatef glTranslatex glVertexPointer glViewport
            glPointSizePointerOES)");
        es1.played = Marked(Words(R"(
            glGetBooleanv glGetBufferParameteriv glGetClipPlanef glGetClipPlanex glGetError
            glGetFixedv glGetFloatv glGetIntegerv glGetLightfv glGetLightxv glGetMaterialfv
            glGetMaterialxv glGetPointerv glGetString glGetTexEnvfv glGetTexEnviv glGetTexEnvxv
            glGetTexParameterfv glGetTexParameteriv glGetTexParameterxv glIsBuffer glIsEnabled
            glIsTexture)"),
                            {}, {"glClipPlanex", "glDrawArrays", "glDrawElements"});
        es1.translated["*"] = {{"buffer", "buffer"}, {"texture", "texture"}};
        es1.translated["glDeleteBuffers"] = {{"buffers", "buffer"}};
        es1.translated["glDeleteTextures"] = {{"textures", "texture"}};
        return es1;
    }();
    return rows;
}

// NOLINTNEXTLINE(readability-function-size): a table.
const SFamilyRows& Es3Rows() {
    static const SFamilyRows rows = [] {
        SFamilyRows es3;
        es3.family = "Es3";
        es3.first = 5143;
        es3.entries = Words(R"(
            glReadBuffer glDrawRangeElements glTexImage3D glTexSubImage3D glCopyTexSubImage3D
            glCompressedTexImage3D glCompressedTexSubImage3D glGenQueries glDeleteQueries
            glIsQuery glBeginQuery glEndQuery glGetQueryiv glGetQueryObjectuiv glUnmapBuffer
            glGetBufferPointerv glDrawBuffers glUniformMatrix2x3fv glUniformMatrix3x2fv
            glUniformMatrix2x4fv glUniformMatrix4x2fv glUniformMatrix3x4fv glUniformMatrix4x3fv
            glBlitFramebuffer glRenderbufferStorageMultisample glFramebufferTextureLayer
            glMapBufferRange glFlushMappedBufferRange glBindVertexArray glDeleteVertexArrays
            glGenVertexArrays glIsVertexArray glGetIntegeri_v glBeginTransformFeedback
            glEndTransformFeedback glBindBufferRange glBindBufferBase glTransformFeedbackVaryings
            glGetTransformFeedbackVarying glVertexAttribIPointer glGetVertexAttribIiv
            glGetVertexAttribIuiv glVertexAttribI4i glVertexAttribI4ui glVertexAttribI4iv
            glVertexAttribI4uiv glGetUniformuiv glGetFragDataLocation glUniform1ui glUniform2ui
            glUniform3ui glUniform4ui glUniform1uiv glUniform2uiv glUniform3uiv glUniform4uiv
            glClearBufferiv glClearBufferuiv glClearBufferfv glClearBufferfi glGetStringi
            glCopyBufferSubData glGetUniformIndices glGetActiveUniformsiv glGetUniformBlockIndex
            glGetActiveUniformBlockiv glGetActiveUniformBlockName glUniformBlockBinding
            glDrawArraysInstanced glDrawElementsInstanced glFenceSync glIsSync glDeleteSync
            glClientWaitSync glWaitSync glGetInteger64v glGetSynciv glGetInteger64i_v
            glGetBufferParameteri64v glGenSamplers glDeleteSamplers glIsSampler glBindSampler
            glSamplerParameteri glSamplerParameteriv glSamplerParameterf glSamplerParameterfv
            glGetSamplerParameteriv glGetSamplerParameterfv glVertexAttribDivisor
            glBindTransformFeedback glDeleteTransformFeedbacks glGenTransformFeedbacks
            glIsTransformFeedback glPauseTransformFeedback glResumeTransformFeedback
            glGetProgramBinary glProgramBinary glProgramParameteri glInvalidateFramebuffer
            glInvalidateSubFramebuffer glTexStorage2D glTexStorage3D glGetInternalformativ)");
        es3.played = Marked({}, Words(R"(
            glTexSubImage3D glGenQueries glIsQuery glBeginQuery glEndQuery glGetQueryiv
            glGetQueryObjectuiv glGetBufferPointerv glIsVertexArray glGetIntegeri_v
            glBeginTransformFeedback glTransformFeedbackVaryings glGetTransformFeedbackVarying
            glGetVertexAttribIiv glGetVertexAttribIuiv glVertexAttribI4uiv glGetUniformuiv
            glGetFragDataLocation glGetStringi glGetUniformIndices glGetActiveUniformsiv
            glGetUniformBlockIndex glGetActiveUniformBlockiv glGetActiveUniformBlockName glIsSync
            glGetInteger64v glGetSynciv glGetInteger64i_v glGetBufferParameteri64v glIsSampler
            glGetSamplerParameteriv glGetSamplerParameterfv glBindTransformFeedback
            glDeleteTransformFeedbacks glGenTransformFeedbacks glIsTransformFeedback
            glPauseTransformFeedback glResumeTransformFeedback glGetProgramBinary
            glGetInternalformativ)"),
                            {"glDrawRangeElements", "glDrawElementsInstanced", "glUnmapBuffer"});
        for (const std::string& entry : es3.entries) {
            if (entry.rfind("glUniform", 0) == 0) {
                es3.translated[entry] = {{"location", "location"}};
            }
        }
        es3.translated["glUniformBlockBinding"] = {{"program", "program"}};
        es3.translated["glBindVertexArray"] = {{"array", "array"}};
        es3.translated["glDeleteVertexArrays"] = {{"arrays", "array"}};
        es3.translated["glBindBufferRange"] = {{"buffer", "buffer"}};
        es3.translated["glBindBufferBase"] = {{"buffer", "buffer"}};
        es3.translated["glDeleteSync"] = {{"sync", "sync"}};
        es3.translated["glClientWaitSync"] = {{"sync", "sync"}};
        es3.translated["glWaitSync"] = {{"sync", "sync"}};
        es3.translated["glDeleteSamplers"] = {{"samplers", "sampler"}};
        es3.translated["glBindSampler"] = {{"sampler", "sampler"}};
        return es3;
    }();
    return rows;
}

const SFamilyRows& ExtRows() {
    static const SFamilyRows rows = [] {
        SFamilyRows ext;
        ext.family = "Ext";
        ext.first = 4001;
        ext.api = 1;
        ext.entries = Words(R"(
            glDiscardFramebufferEXT glMultiDrawElementsEXT glMultiDrawArraysEXT glMapBufferOES
            glUnmapBufferOES glGetBufferPointervOES glBindVertexArrayOES glDeleteVertexArraysOES
            glGenVertexArraysOES glIsVertexArrayOES glCurrentPaletteMatrixOES
            glLoadPaletteFromModelViewMatrixOES glMatrixIndexPointerOES glWeightPointerOES
            glIsRenderbufferOES glBindRenderbufferOES glDeleteRenderbuffersOES
            glGenRenderbuffersOES glRenderbufferStorageOES glGetRenderbufferParameterivOES
            glIsFramebufferOES glBindFramebufferOES glDeleteFramebuffersOES glGenFramebuffersOES
            glCheckFramebufferStatusOES glFramebufferTexture2DOES glFramebufferRenderbufferOES
            glGetFramebufferAttachmentParameterivOES glGenerateMipmapOES)");
        ext.played = Marked({}, Words(R"(
            glGetBufferPointervOES glIsVertexArrayOES glIsRenderbufferOES
            glGetRenderbufferParameterivOES glIsFramebufferOES glCheckFramebufferStatusOES)"),
                            {"glMultiDrawElementsEXT", "glMultiDrawArraysEXT", "glUnmapBufferOES"});
        ext.translated["glBindVertexArrayOES"] = {{"array", "array"}};
        ext.translated["glDeleteVertexArraysOES"] = {{"arrays", "array"}};
        ext.translated["glBindRenderbufferOES"] = {{"renderbuffer", "renderbuffer"}};
        ext.translated["glBindFramebufferOES"] = {{"framebuffer", "framebuffer"}};
        ext.translated["glFramebufferTexture2DOES"] = {{"texture", "texture"}};
        ext.translated["glFramebufferRenderbufferOES"] = {{"renderbuffer", "renderbuffer"}};
        return ext;
    }();
    return rows;
}

const SFamilyRows& MultisampleRows() {
    static const SFamilyRows rows = [] {
        SFamilyRows ext;
        ext.family = "Ext";
        ext.first = 4089;
        ext.api = 2;
        ext.entries = {"glRenderbufferStorageMultisampleQVA",
                       "glFramebufferTexture2DMultisampleQVA"};
        ext.translated["glFramebufferTexture2DMultisampleQVA"] = {{"texture", "texture"}};
        return ext;
    }();
    return rows;
}

}  // namespace kestrail
