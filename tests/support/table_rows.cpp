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

/// In the order of the identifiers.
std::vector<std::string> Entries(const std::string& family) {
    std::vector<std::string> entries;
    for (const SPrototype& prototype : Prototypes()) {
        if (prototype.family == family) entries.push_back(prototype.entry);
    }
    return entries;
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
        egl.entries = Entries("Egl");
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
        es2.entries = Entries("Es2");
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
        es1.entries = Entries("Es1");
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
        es3.entries = Entries("Es3");
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
