#include "tests/program/table_call.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include "tests/support/call_notation.h"

namespace kestrail {
namespace {

// Table, recorded name, live name, and the call that makes it. ES 3.0 begins as ES 2.0 does.
const std::map<std::string, const char*> openings = {{"Es1", R"(
        buffer 7 101 es1.glGenBuffers 1 {7}
        texture 10 102 es1.glGenTextures 1 {10}
        new 55 103)"},
                                                     {"Es2", R"(
        buffer 7 101 glGenBuffers 1 {7}
        framebuffer 8 102 glGenFramebuffers 1 {8}
        renderbuffer 9 103 glGenRenderbuffers 1 {9}
        texture 10 104 glGenTextures 1 {10}
        program 11 105 glCreateProgram = 11
        shader 12 106 glCreateShader GL_VERTEX_SHADER = 12
        program 11 105 glUseProgram 11
        location 3 1001 glGetUniformLocation 11 "uniform" = 3
        index 2 9 glGetAttribLocation 11 "attribute" = 2
        program 11 105 glAttachShader 11 12
        new 55 107)"},
                                                     {"Es3", R"(
        array 13 107 glGenVertexArrays 1 {13}
        sampler 14 108 glGenSamplers 1 {14}
        sync 15 sync:1 glFenceSync GL_SYNC_GPU_COMMANDS_COMPLETE 0 = 15
        new 55 109)"},
                                                     {"Ext", R"(
        texture 10 101 es1.glGenTextures 1 {10}
        renderbuffer 9 102 glGenRenderbuffersOES 1 {9} @1
        framebuffer 8 103 glGenFramebuffersOES 1 {8} @1
        array 13 104 glGenVertexArraysOES 1 {13} @1
        new 55 105)"}};

void AddOpening(SOpening& opening, const std::string& text) {
    std::istringstream lines(text);
    std::string table;
    std::string name;
    std::string live;
    for (std::string call; lines >> table >> name >> live && std::getline(lines, call);) {
        if (!call.empty()) AddCall(opening.trace, call);
        opening.names[table] = {name, live};
    }
    opening.names[table] = {name, live};
}

std::string RealText(float value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

/// A value as it stands in the line, and as the host must see it.
using Value = std::pair<std::string, std::string>;

Value Same(const std::string& word) {
    return {word, word[0] == '{' ? std::regex_replace(word, std::regex(" "), ", ") : word};
}

struct STableValues {
    const SOpening& opening;
    const SFamilyRows& rows;
    const SPrototype& prototype;

    Value ValueOf(const std::string& slot, std::size_t place) const {
        // What the record keeps beside the prototype's parameters, such as the unpack alignment.
        if (place >= prototype.types.size()) return {slot == "data" ? "[00*4]" : "4", ""};
        const std::string& type = prototype.types[place];
        const std::string& name = prototype.names[place];
        const bool list = slot[0] == '[' || slot[0] == '(';
        if (type.back() == '*' && type.rfind("const", 0) != 0) {
            if (Starts("glGen") && slot == "[Uint]") return Named("new", list);
            return {slot == "data" ? "[00*64]" : slot == "string" ? "\"text\"" : "{1}", "ptr"};
        }
        const std::string table = slot == "Enum" ? "" : rows.Table(prototype.entry, name);
        if (!table.empty()) return Named(table, list);
        if (name == "pointer") return {"0x1234", "4660"};
        if (name == "length" && list) return Same("{6}");
        if (slot == "string") return Same("\"some name\"");
        if (slot == "strings") return Same("{\"source\"}");
        if (slot == "data") return DataOf(name);
        return Same(list ? VectorOf(slot, name) : ScalarOf(slot, name, static_cast<int>(place)));
    }

    bool Starts(const std::string& start) const { return prototype.entry.rfind(start, 0) == 0; }

    Value Named(const std::string& table, bool list) const {
        const auto& [recorded, live] = opening.names.at(table);
        return list ? Value("{" + recorded + "}", "{" + live + "}") : Value(recorded, live);
    }

    Value DataOf(const std::string& name) const {
        if (name != "pixels") return {"[01020304]", "<01020304:4>"};
        const auto& names = prototype.names;
        const bool deep = std::count(names.begin(), names.end(), "depth") != 0;
        const std::string size = deep ? "96" : "32";
        return {"[ee*" + size + "]", "<eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee:" + size + ">"};
    }

    std::string VectorOf(const std::string& slot, const std::string& name) const {
        const bool several = name == "attachments" || (name == "value" && Starts("glUniform"));
        std::string word = "{";
        for (std::size_t i = 0; i < ItemSize(prototype, name) * (several ? 2 : 1); ++i) {
            word += (i == 0 ? "" : " ");
            word += slot.find("Float") == 1 ? RealText(0.25F * static_cast<float>(i))
                                            : std::to_string(i + 3);
        }
        return word + "}";
    }

    std::string ScalarOf(const std::string& slot, const std::string& name, int place) const {
        if (slot == "Float" || slot == "Clampf") return RealText(0.5F + static_cast<float>(place));
        // More samples than the host's most would be cut.
        if (name == "samples" && rows.api == 2) return "3";
        if (name == "buffer" && Starts("glClearBuffer")) return "6144";
        if (slot == "Int" || slot == "Fixed") return std::to_string(-200 - place);
        // What says how much stands behind a pointer has to be true.
        static const std::map<std::string, std::string> sizes = {
            {"n", "1"},     {"size", "4"},   {"imageSize", "4"}, {"length", "4"},
            {"width", "2"}, {"height", "1"}, {"depth", "3"},     {"numAttachments", "2"}};
        const bool pointers =
            std::any_of(prototype.types.begin(), prototype.types.end(),
                        [](const std::string& type) { return type.back() == '*'; });
        if (slot.rfind("Sizei", 0) == 0 && pointers) {
            if (name == "count") return Starts("glUniform") ? "2" : "1";
            const auto size = sizes.find(name);
            if (size != sizes.end()) return size->second;
        }
        return std::to_string((slot == "Boolean" || slot == "Ubyte" ? 100 : 0x2000) + place);
    }
};

}  // namespace

SOpening Open(const SFamilyRows& rows, std::uint32_t version) {
    SOpening opening{CTraceBuilder(version), {}};
    opening.trace.StartUp(2, 300, 300);
    const std::string family = rows.api == 2 ? "Es2" : rows.family;
    if (family == "Es3") AddOpening(opening, openings.at("Es2"));
    AddOpening(opening, openings.at(family));
    return opening;
}

STableCall MakeTableCall(const SOpening& opening, const SFamilyRows& rows,
                         const std::string& entry) {
    std::string family = rows.family;
    family[0] = 'e';
    const SCallLayout& layout = FindLayout(entry, family);
    const SPrototype& prototype = *FindPrototype(rows.family, entry);
    const STableValues values{opening, rows, prototype};
    STableCall call{family + "." + entry, rows.prefix + entry + "("};
    for (std::size_t i = 0; i < layout.slots.size(); ++i) {
        const auto [word, seen] = values.ValueOf(layout.slots[i], i);
        call.line += " " + word;
        if (i < prototype.types.size()) call.expected += (i == 0 ? "" : ", ") + seen;
    }
    call.expected += ")";
    if (layout.result == "string") call.line += " = \"text\"";
    if (layout.result == "Uint" || layout.result == "Pointer") call.line += " = 55";
    if (rows.api != 0) call.line += " @" + std::to_string(rows.api);
    return call;
}

}  // namespace kestrail
