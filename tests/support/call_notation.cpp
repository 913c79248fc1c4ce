#include "tests/support/call_notation.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "tests/host/host_state.h"

namespace kestrail {
namespace {

// What differs from the prototype, or has none: identifier, name, result, fields. A number behind
// an at sign is the version from which on the field is there.
const char* const exceptions = R"(
1002 eglCopyBuffers EglBoolean Display Surface EglNativePixmap raw
1003 eglCreateContext Context Display Config Context attributes attributes
1004 eglCreatePbufferSurface Surface Display Config attributes
1005 eglCreatePixmapSurface Surface Display Config EglNativePixmap raw attributes
1006 eglCreateWindowSurface Surface Display Config window attributes attributes
1018 eglMakeCurrent EglBoolean Display Surface Surface Context Config@9 attributes@9
1022 eglSwapBuffers EglBoolean Display Surface Uint@9 Uint@10 Uint@10 data@10
1027 eglReleaseTexImage EglBoolean Display Surface EglInt EglInt
1104 eglCreateImageKHR EglImage Display Context EglEnum EglClientBuffer attributes
2042 es2.glDrawElements void Enum Sizei Enum data Pointer
2106 es2.glTexImage2D void Enum Int Int Sizei Sizei Int Enum Enum data Int
3037 es1.glDrawElements void Enum Sizei Enum data Pointer
3133 es1.glTexImage2D void Enum Int Int Sizei Sizei Int Enum Enum data Int
4002 glMultiDrawElementsEXT void Enum [Sizei] Enum [Pointer] Sizei
4005 glUnmapBufferOES Boolean Enum data
4030 glTexBindStreamQVA void Int Int
4038 glSetFenceNV void Uint Enum
4042 glAlphaFuncxOES void Enum Clampx
4080 glTranslatexOES void Fixed Fixed Fixed
5177 glEndTransformFeedback void data
5212 glDrawElementsInstanced void Enum Sizei Enum Sizei data Pointer
)";

// The words for fields of one scalar: word, tag of the width table, C type.
const char* const scalars = R"(
Pointer:0:void* Pointer:0:GLsync EglInt:1:EGLint EglBoolean:2:EGLBoolean EglEnum:3:EGLenum
Config:4:EGLConfig Context:5:EGLContext Display:6:EGLDisplay Surface:7:EGLSurface
EglClientBuffer:8:EGLClientBuffer EglNativeDisplay:9:EGLNativeDisplayType
EglNativePixmap:10:EGLNativePixmapType Enum:12:GLenum Boolean:13:GLboolean Bitfield:14:GLbitfield
Int:17:GLint Sizei:18:GLsizei Ubyte:19:GLubyte Uint:21:GLuint Float:22:GLfloat Clampf:23:GLclampf
Fixed:24:GLfixed Intptr:25:GLintptr Sizeiptr:26:GLsizeiptr Clampx:27:GLclampx
EglImage:28:EGLImageKHR EglImageOes:29:GLeglImageOES Int64:30:GLint64 Uint64:31:GLuint64
)";

/// The scalars with their tags as the values, or with the C types as the keys.
template <typename Value, typename Pair>
std::map<std::string, Value> Scalars(Pair pair) {
    std::map<std::string, Value> map;
    std::istringstream words(scalars);
    for (std::string word; words >> word;) {
        const std::size_t tag = word.find(':'), type = word.rfind(':');
        map.insert(
            pair(word.substr(0, tag), word.substr(tag + 1, type - tag - 1), word.substr(type + 1)));
    }
    return map;
}

const std::map<std::string, unsigned>& Tags() {
    static const auto tags = Scalars<unsigned>([](const auto& word, const auto& tag, const auto&) {
        return std::make_pair(word, static_cast<unsigned>(std::stoul(tag)));
    });
    return tags;
}

/// The word for a C type that stands for one scalar, without const and star.
std::string ScalarWord(std::string type) {
    static const auto words =
        Scalars<std::string>([](const auto& word, const auto&, const auto& named) {
            return std::make_pair(named, word);
        });
    std::erase(type, ' ');
    const auto found = words.find(type);
    return found == words.end() ? "" : found->second;
}

std::string VectorWord(const SPrototype& prototype, const std::string& name,
                       const std::string& scalar) {
    const bool isValue = name == "value" || name == "v";
    if (name == "m" || name == "eqn" || name == "equation" || (name == "v" && scalar == "Float")) {
        return "(" + scalar + "*" + std::to_string(ItemSize(prototype, name)) + ")";
    }
    // What ES 3.0 added counts scalars, the rest counts items.
    if (!isValue || prototype.family == "Es3") return "[" + scalar + "]";
    return "[" + scalar + "*" + std::to_string(ItemSize(prototype, name)) + "]";
}

std::string SlotWord(const SPrototype& prototype, std::size_t i) {
    const std::string& type = prototype.types[i];
    const std::string& name = prototype.names[i];
    if (type.find('*') == std::string::npos) return ScalarWord(type);
    if (name == "pointer" && type == "const void *") return "Pointer";
    if (type == "const void *" || type == "void *") return "data";
    if (type.find("char *const*") != std::string::npos) return "strings";
    if (type.find("char *") != std::string::npos) return "string";
    if (type == "const EGLint *") return "attributes";
    if (type == "void **") return "[Pointer]";
    const std::size_t first = type.rfind("const ", 0) == 0 ? 6 : 0;
    const std::string scalar = ScalarWord(type.substr(first, type.find(" *") - first));
    return first == 0 ? "[" + scalar + "]" : VectorWord(prototype, name, scalar);
}

SCallLayout ByPrototype(const SPrototype& prototype, std::uint16_t id) {
    SCallLayout layout{id, prototype.entry, ScalarWord(prototype.result), {}};
    if (prototype.result.find("char *") != std::string::npos ||
        prototype.result.find("GLubyte *") != std::string::npos) {
        layout.result = "string";
    }
    if (prototype.entry == "eglGetProcAddress") layout.result = "Pointer";
    for (std::size_t i = 0; i < prototype.types.size(); ++i) {
        layout.slots.push_back(SlotWord(prototype, i));
    }
    return layout;
}

/// By family and name; exceptions first.
std::map<std::string, SCallLayout> MakeLayouts() {
    std::map<std::string, SCallLayout> layouts;
    static const std::map<int, std::string> families = {
        {1, "egl."}, {2, "es2."}, {3, "es1."}, {4, "ext."}, {5, "es3."}};
    std::istringstream lines(exceptions);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> words = SplitWords(line);
        if (words.empty()) continue;
        const auto id = static_cast<std::uint16_t>(NumberOf(words[0]));
        const std::string name = words[1].substr(words[1].rfind('.') + 1);
        layouts[families.at(id / 1000) + name] = {
            id, name, words[2] == "void" ? "" : words[2], {words.begin() + 3, words.end()}};
    }
    for (const SFamilyRows* rows :
         {&EglRows(), &Es1Rows(), &Es2Rows(), &Es3Rows(), &ExtRows(), &MultisampleRows()}) {
        for (std::size_t i = 0; i < rows->entries.size(); ++i) {
            const auto id = static_cast<std::uint16_t>(rows->first + i);
            const SPrototype* prototype = FindPrototype(rows->family, rows->entries[i]);
            if (prototype == nullptr) continue;
            layouts.emplace(families.at(id / 1000) + prototype->entry, ByPrototype(*prototype, id));
        }
    }
    return layouts;
}

/// What stands in front of the bracket, brace or quote as a pointer; 0x10 for nothing.
std::uint64_t PointerOf(const std::string& word, std::size_t end) {
    const std::string head = word.substr(0, end);
    if (head == "null") return 0;
    return head.empty() ? 0x10 : static_cast<std::uint64_t>(NumberOf(head));
}

std::string TextOf(const std::string& word) {
    std::string text;
    for (std::size_t i = word.find('"') + 1; i + 1 < word.size(); ++i) {
        const std::size_t escape = word[i] == '\\' ? std::string("nrt").find(word[++i]) : 3;
        text += escape < 3 ? "\n\r\t"[escape] : word[i];
    }
    return text;
}

std::vector<std::string> Listed(const std::string& word) {
    const std::size_t open = word.find('{');
    if (open == std::string::npos) return {};
    std::vector<std::string> listed;
    for (std::string& one : SplitWords(word.substr(open + 1, word.rfind('}') - open - 1))) {
        const std::size_t star = one[0] == '"' ? std::string::npos : one.find('*');
        const auto times = star == std::string::npos ? 1 : NumberOf(one.substr(star + 1));
        listed.insert(listed.end(), static_cast<std::size_t>(times), one.substr(0, star));
    }
    return listed;
}

/// A number, or the bits of a real one.
std::int64_t ScalarOf(unsigned typeTag, const std::string& word) {
    const bool real = typeTag == tag::Float || typeTag == tag::Clampf;
    return real ? std::bit_cast<std::uint32_t>(std::stof(word)) : NumberOf(word);
}

void AddArray(CRecordBuilder& record, const std::string& slot, const std::string& word) {
    const std::size_t star = slot.find('*');
    const std::string scalar = slot.substr(1, std::min(star, slot.size() - 1) - 1);
    const std::size_t perItem =
        star == std::string::npos
            ? 1
            : static_cast<std::size_t>(NumberOf(slot.substr(star + 1, slot.size() - star - 2)));
    const unsigned typeTag = Tags().at(scalar);
    std::vector<std::int64_t> values;
    for (const std::string& value : Listed(word)) values.push_back(ScalarOf(typeTag, value));
    const std::uint64_t pointer = PointerOf(word, word.find('{'));
    slot[0] == '(' ? record.Item(typeTag, pointer, values)
                   : record.Array(typeTag, pointer, values, perItem);
}

void AddWindow(CRecordBuilder& record, const std::string& word) {
    std::smatch match;
    if (!std::regex_match(word, match, std::regex("(\\w+):(\\d+)x(\\d+)"))) {
        throw std::runtime_error(word + ": a window is HANDLE:WIDTHxHEIGHT");
    }
    record.Window(static_cast<std::uint64_t>(NumberOf(match[1])),
                  static_cast<std::uint32_t>(NumberOf(match[2])),
                  static_cast<std::uint32_t>(NumberOf(match[3])));
}

void AddValue(CRecordBuilder& record, const std::string& slot, const std::string& word) {
    const auto scalar = Tags().find(slot);
    if (scalar != Tags().end()) {
        record.Value(scalar->second, static_cast<std::uint64_t>(ScalarOf(scalar->second, word)));
    } else if (slot == "data") {
        record.Data(PointerOf(word, word.find('[')), BytesOf(word));
    } else if (slot == "raw") {
        record.Raw(BytesOf(word));
    } else if (slot == "string") {
        record.String(PointerOf(word, word.find('"')), TextOf(word));
    } else if (slot == "strings") {
        std::vector<std::string> texts;
        for (const std::string& text : Listed(word)) texts.push_back(TextOf(text));
        record.Strings(PointerOf(word, word.find('{')), texts);
    } else if (slot == "attributes") {
        std::vector<std::int64_t> list;
        for (const std::string& value : Listed(word)) list.push_back(NumberOf(value));
        record.Attributes(list);
    } else if (slot == "window") {
        AddWindow(record, word);
    } else {
        AddArray(record, slot, word);
    }
}

/// What stands behind a line's values.
struct STail {
    std::string result;
    std::string error;
    std::string api;
};

STail TakeTail(std::vector<std::string>& words) {
    STail tail;
    while (words.size() > 1) {
        const std::string& last = words.back();
        if (last[0] == '!') {
            tail.error = last.substr(1);
        } else if (last[0] == '@') {
            tail.api = last.substr(1);
        } else if (words.size() > 2 && words[words.size() - 2] == "=") {
            tail.result = last;
            words.pop_back();
        } else {
            break;
        }
        words.pop_back();
    }
    return tail;
}

void AddArrays(CRecordBuilder& record, const std::vector<std::string>& words, std::size_t first) {
    for (std::size_t i = first; i < words.size(); ++i) {
        const std::size_t colon = words[i].find(':');
        if (colon == std::string::npos) throw std::runtime_error(words[i] + ": one value too many");
        const std::string data = words[i].substr(colon + 1);
        record.ClientArray(NumberOf(words[i].substr(0, colon)), PointerOf(data, data.find('[')),
                           BytesOf(data));
    }
}

}  // namespace

std::vector<std::string> SplitWords(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char letter = line[i];
        if (letter == '"' && (i == 0 || line[i - 1] != '\\')) quoted = !quoted;
        if (!quoted && (letter == '[' || letter == '{')) ++depth;
        if (!quoted && (letter == ']' || letter == '}')) --depth;
        if (letter == ' ' && depth == 0 && !quoted) {
            if (!word.empty()) words.push_back(word);
            word.clear();
        } else {
            word += letter;
        }
    }
    if (!word.empty()) words.push_back(word);
    return words;
}

std::int64_t NumberOf(const std::string& word) {
    static const std::map<std::string, std::int64_t> handles = {{"DPY", CTraceBuilder::display},
                                                                {"CFG", CTraceBuilder::config},
                                                                {"CTX", CTraceBuilder::context},
                                                                {"SRF", CTraceBuilder::surface}};
    const auto handle = handles.find(word);
    if (handle != handles.end()) return handle->second;
    std::int64_t sum = 0;
    std::istringstream parts(word);
    for (std::string part; std::getline(parts, part, '|');) {
        std::int64_t value = host::EnumerantValue(part);
        if (value < 0) {
            std::size_t used = 0;
            try {
                value = std::stoll(part, &used, 0);
            } catch (const std::logic_error&) {
                used = 0;
            }
            if (used != part.size() || part.empty()) {
                throw std::runtime_error(word + ": neither a number nor a known name");
            }
        }
        sum |= value;
    }
    return sum;
}

Bytes BytesOf(const std::string& word) {
    Bytes bytes;
    const std::size_t open = word.find('[');
    if (open == std::string::npos) return bytes;
    std::istringstream parts(word.substr(open + 1, word.rfind(']') - open - 1));
    for (std::string part; parts >> part;) {
        const std::size_t star = part.find('*');
        Bytes once;
        for (std::size_t i = 0; i + 1 < std::min(star, part.size() + 1); i += 2) {
            once.push_back(static_cast<std::uint8_t>(std::stoul(part.substr(i, 2), nullptr, 16)));
        }
        const auto times = star == std::string::npos ? 1 : NumberOf(part.substr(star + 1));
        for (std::int64_t i = 0; i < times; ++i)
            bytes.insert(bytes.end(), once.begin(), once.end());
    }
    return bytes;
}

std::string WithValues(const std::string& text) {
    static const std::regex name("\\bE?GL_[A-Z]\\w*");
    std::string out;
    auto at = text.cbegin();
    for (std::sregex_iterator i(text.begin(), text.end(), name), end; i != end; ++i) {
        const std::int64_t value = host::EnumerantValue(i->str());
        out.append(at, text.cbegin() + i->position());
        out += value < 0 ? i->str() : std::to_string(value);
        at = text.cbegin() + i->position() + i->length();
    }
    return out.append(at, text.cend());
}

std::size_t ItemSize(const SPrototype& prototype, const std::string& name) {
    const std::string& entry = prototype.entry;
    if (name == "m") return 16;
    if (name == "eqn" || name == "equation" || entry.rfind("glClearBuffer", 0) == 0) return 4;
    const std::size_t first = entry.find_first_of("1234");
    if ((name != "value" && name != "v") || first == std::string::npos) return 1;
    const auto digit = [&](std::size_t at) { return static_cast<std::size_t>(entry[at] - '0'); };
    const bool matrix = entry.rfind("glUniformMatrix", 0) == 0;
    return digit(first) * (matrix ? digit(entry.find_last_of("1234")) : 1);
}

const SCallLayout& FindLayout(const std::string& name, const std::string& family) {
    static const std::map<std::string, SCallLayout> layouts = MakeLayouts();
    for (const std::string& prefix :
         {family + ".", std::string("egl."), std::string("es2."), std::string("es3."),
          std::string("ext."), std::string("es1.")}) {
        const auto found = layouts.find(prefix + name);
        if (found != layouts.end()) return found->second;
    }
    throw std::runtime_error(name + ": no such call");
}

unsigned TagOf(const std::string& slot) {
    return Tags().at(slot);
}

void AddCall(CTraceBuilder& trace, const std::string& line, bool es1Trace) {
    std::vector<std::string> words = SplitWords(line);
    const STail tail = TakeTail(words);
    const std::size_t dot = words[0].find('.');
    const std::string usual = es1Trace ? "es1" : "es2";
    const std::string family = dot == std::string::npos ? usual : words[0].substr(0, dot);
    const SCallLayout& layout = FindLayout(words[0].substr(dot + 1), family);
    CRecordBuilder record = trace.Plain();
    if (layout.id < 2000) {
        record.EglInt(tail.error.empty() ? 0x3000 : NumberOf(tail.error));
    } else {
        record.Enum(tail.error.empty() ? 0 : static_cast<std::uint32_t>(NumberOf(tail.error)));
    }
    if (layout.id / 1000 == 4) {
        const std::int64_t api = tail.api.empty() ? (es1Trace ? 1 : 2) : NumberOf(tail.api);
        record.Ubyte(static_cast<std::uint8_t>(api));
    }
    if (!layout.result.empty()) {
        const bool truth = layout.result == "EglBoolean" || layout.result == "Boolean";
        AddValue(record, layout.result,
                 !tail.result.empty()        ? tail.result
                 : truth                     ? "1"
                 : layout.result == "string" ? "null"
                                             : "0");
    }
    std::size_t next = 1;
    for (const std::string& slot : layout.slots) {
        const std::size_t at = slot.find('@');
        if (at != std::string::npos && trace.Version() < std::stoul(slot.substr(at + 1))) continue;
        if (next == words.size()) throw std::runtime_error(line + ": a value is missing: " + slot);
        AddValue(record, slot.substr(0, at), words[next++]);
    }
    AddArrays(record, words, next);
    trace.Add(layout.id, record);
}

}  // namespace kestrail
