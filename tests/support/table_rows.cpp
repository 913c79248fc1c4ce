#include "tests/support/table_rows.h"

#include <fnmatch.h>

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

constexpr char kEs1Played[] = "-glGet* -glIs* =glClipPlanex =glDraw*";
constexpr char kEs1Translated[] = "+*.buffer +*.buffers +*.texture +*.textures";
constexpr char kEs2Played[] = R"(
    -glCheck* -glGetVertexAttrib* -glIs* -glReadPixels -glValidateProgram
    +glGet*Location +glGetProgramiv ?glGet* =glDrawArrays =glDrawElements)";
constexpr char kEs2Translated[] = R"(
    -glBindAttribLocation.index +*.*buffer +*.*buffers +*.texture +*.textures +*.program
    +*.shader +*.shaders +*.index +*.location)";
constexpr char kEs3Played[] = R"(
    ?glGet* ?glIs* ?*Query ?glGenQueries +glEndTransformFeedback ?*TransformFeedback*
    ?glTexSubImage3D ?glVertexAttribI4uiv
    =glDrawRangeElements =glDrawElementsInstanced =glUnmapBuffer)";
constexpr char kEs3Translated[] = R"(
    +glUniform*.location +glUniformBlockBinding.program +*.array +*.arrays +glBindBuffer*.buffer
    +*Sync.sync +glDeleteSamplers.samplers +glBindSampler.sampler)";
constexpr char kExtEntries[] = R"(
    glDiscardFramebufferEXT glMultiDrawElementsEXT glMultiDrawArraysEXT glMapBufferOES
    glUnmapBufferOES glGetBufferPointervOES glBindVertexArrayOES glDeleteVertexArraysOES
    glGenVertexArraysOES glIsVertexArrayOES glCurrentPaletteMatrixOES
    glLoadPaletteFromModelViewMatrixOES glMatrixIndexPointerOES glWeightPointerOES
    glIsRenderbufferOES glBindRenderbufferOES glDeleteRenderbuffersOES
    glGenRenderbuffersOES glRenderbufferStorageOES glGetRenderbufferParameterivOES
    glIsFramebufferOES glBindFramebufferOES glDeleteFramebuffersOES glGenFramebuffersOES
    glCheckFramebufferStatusOES glFramebufferTexture2DOES glFramebufferRenderbufferOES
    glGetFramebufferAttachmentParameterivOES glGenerateMipmapOES)";
constexpr char kExtPlayed[] = R"(
    ?glGetBufferPointervOES ?glIs* ?glGetRenderbufferParameterivOES ?glCheckFramebufferStatusOES
    =glMultiDraw* =glUnmapBufferOES)";
constexpr char kExtTranslated[] = "+*.array +*.arrays +glBind*.*buffer +*.texture +*.renderbuffer";
constexpr char kMultisampleEntries[] =
    "glRenderbufferStorageMultisampleQVA glFramebufferTexture2DMultisampleQVA";

/// The mark in front of the first pattern that fits.
char MarkOf(const std::string& text, const std::vector<std::string>& patterns, Played usual) {
    for (const std::string& pattern : patterns) {
        if (fnmatch(pattern.c_str() + 1, text.c_str(), 0) == 0) return pattern[0];
    }
    return static_cast<char>(usual);
}

}  // namespace

Played SFamilyRows::HowPlayed(const std::string& entry) const {
    return static_cast<Played>(MarkOf(entry, played, Played::Yes));
}

std::string SFamilyRows::Table(const std::string& entry, std::string parameter) const {
    if (MarkOf(entry + "." + parameter, translated, Played::No) == '-') return "";
    if (parameter.back() == 's') parameter.pop_back();
    return parameter;
}

const SPrototype* FindPrototype(const std::string& family, const std::string& entry) {
    for (const SPrototype& prototype : Prototypes()) {
        if (prototype.family == family && prototype.entry == entry) return &prototype;
    }
    return nullptr;
}

const SFamilyRows& EglRows() {
    static const SFamilyRows rows = {"Egl", 1001, "", 0, Entries("Egl"), {}, {}};
    return rows;
}

const SFamilyRows& Es2Rows() {
    static const SFamilyRows rows = {
        "Es2", 2001, "", 0, Entries("Es2"), Words(kEs2Played), Words(kEs2Translated)};
    return rows;
}

const SFamilyRows& Es1Rows() {
    static const SFamilyRows rows = {
        "Es1", 3001, "es1.", 0, Entries("Es1"), Words(kEs1Played), Words(kEs1Translated)};
    return rows;
}

const SFamilyRows& Es3Rows() {
    static const SFamilyRows rows = {
        "Es3", 5143, "", 0, Entries("Es3"), Words(kEs3Played), Words(kEs3Translated)};
    return rows;
}

const SFamilyRows& ExtRows() {
    static const SFamilyRows rows = {
        "Ext", 4001, "", 1, Words(kExtEntries), Words(kExtPlayed), Words(kExtTranslated)};
    return rows;
}

const SFamilyRows& MultisampleRows() {
    static const SFamilyRows rows = {"Ext", 4089,          "", 2, Words(kMultisampleEntries),
                                     {},    {"+*.texture"}};
    return rows;
}

}  // namespace kestrail
