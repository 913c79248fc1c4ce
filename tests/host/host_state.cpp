#include "host_state.h"

#include <GLES/gl.h>
#include <GLES/glext.h>
#include <GLES3/gl3.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

namespace kestrail::host {

namespace {

constexpr long long shownItems = 64;
constexpr long long shownBytes = 16;
constexpr std::uintptr_t handleBase = 0x7A0000000000ULL;
constexpr std::uintptr_t handleStep = 0x010000000000ULL;
const std::string handleKinds[] = {"display", "config", "surface", "context", "sync"};

// What is below this is an offset or a recorded address of 32 bits, never memory of the process.
constexpr std::uintptr_t lowestAddress = 0x100000000ULL;

struct SRule {
    long long nth = 0;
    SAnswer answer;
};

long long NumberOf(const std::string& text) {
    const long long named = EnumerantValue(text);
    return named >= 0 ? named : std::strtoll(text.c_str(), nullptr, 0);
}

class CHostLog {
public:
    CHostLog() {
        if (const char* path = std::getenv("KESTRAIL_HOST_LOG")) {
            m_file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        }
        if (const char* path = std::getenv("KESTRAIL_HOST_SCRIPT")) ReadScript(path);
    }

    ~CHostLog() {
        for (const auto& [kind, count] : m_live) {
            Write("live " + kind + " " + std::to_string(count) + "\n");
        }
    }

    CHostLog(const CHostLog&) = delete;
    CHostLog& operator=(const CHostLog&) = delete;

    void Write(const std::string& line) {
        if (m_file >= 0 && write(m_file, line.data(), line.size()) < 0) m_file = -1;
    }

    bool HasRules(const std::string& key) const { return m_rules.count(key) != 0; }

    const SAnswer* Answer(const std::string& key) {
        const auto rules = m_rules.find(key);
        if (rules == m_rules.end()) return nullptr;
        const long long turn = ++m_turns[key];
        const SAnswer* found = nullptr;
        for (const SRule& rule : rules->second) {
            if (rule.nth == turn) return &rule.answer;
            if (rule.nth == 0) found = &rule.answer;
        }
        return found;
    }

    std::map<std::string, long long> m_live;

private:
    void ReadScript(const char* path) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line);
            std::string key;
            std::string nth;
            if (!(words >> key >> nth)) continue;
            SRule rule{nth == "*" ? 0 : NumberOf(nth), {}};
            std::getline(words >> std::ws, rule.answer.text);
            rule.answer.value = NumberOf(rule.answer.text);
            const std::size_t name = key.find(':') + 1;
            if (name != 0) key = key.substr(0, name) + Number(NumberOf(key.substr(name)));
            m_rules[key].push_back(rule);
        }
    }

    int m_file = -1;
    std::map<std::string, std::vector<SRule>> m_rules;
    std::map<std::string, long long> m_turns;
};

CHostLog& Log() {
    static CHostLog log;
    return log;
}

template <typename... Values>
std::string Formatted(const char* format, Values... values) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, format, values...);
    return buffer;
}

template <typename Value, typename Format>
std::string ListText(const Value* values, long long count, Format format) {
    if (values == nullptr) return "NULL";
    if (reinterpret_cast<std::uintptr_t>(values) < lowestAddress) return "bad";
    std::string text = "{";
    for (long long i = 0; i < std::min(count, shownItems); ++i) {
        text += (i > 0 ? ", " : "") + format(values[i]);
    }
    return text + (count > shownItems ? ", ...}" : "}");
}

}  // namespace

std::string Number(long long value) {
    return std::to_string(value);
}

std::string Real(double value) {
    return Formatted("%g", value);
}

std::string Handle(const void* value) {
    const auto address = reinterpret_cast<std::uintptr_t>(value);
    const std::uintptr_t kind = (address - handleBase) / handleStep;
    if (address < handleBase || kind >= std::size(handleKinds)) return std::to_string(address);
    return handleKinds[kind] + ":" + std::to_string((address - handleBase) % handleStep);
}

std::string Pointer(const void* value) {
    if (value == nullptr) return "NULL";
    const auto address = reinterpret_cast<std::uintptr_t>(value);
    return address < lowestAddress ? std::to_string(address) : "ptr";
}

std::string Values(const std::int32_t* values, long long count) {
    return ListText(values, count, Number);
}

std::string Values(const std::uint32_t* values, long long count) {
    return ListText(values, count, Number);
}

std::string Values(const float* values, long long count) {
    return ListText(values, count, Real);
}

std::string Text(const char* text) {
    return text == nullptr ? "NULL" : '"' + std::string(text) + '"';
}

std::string Data(const void* data, long long size) {
    if (reinterpret_cast<std::uintptr_t>(data) < lowestAddress) return Pointer(data);
    std::string text = "<";
    for (long long i = 0; i < std::min(size, shownBytes); ++i) {
        text += Formatted("%02x", static_cast<const unsigned char*>(data)[i]);
    }
    return text + ":" + std::to_string(size) + ">";
}

std::string Attributes(const std::int32_t* list) {
    long long count = 0;
    while (list != nullptr && list[count] != 0x3038 && count < shownItems) count += 2;
    return Values(list, count + 1);
}

std::string Strings(const char* const* texts, long long count, const std::int32_t* lengths) {
    long long next = 0;
    return ListText(texts, count, [&](const char* text) {
        const std::int32_t length = lengths != nullptr ? lengths[next++] : -1;
        if (text == nullptr || length < 0) return Text(text);
        return '"' + std::string(text, static_cast<std::size_t>(length)) + '"';
    });
}

void* MakeHandle(const std::string& kind, unsigned number) {
    const auto place = std::find(std::begin(handleKinds), std::end(handleKinds), kind);
    const auto row = static_cast<std::uintptr_t>(place - std::begin(handleKinds));
    return reinterpret_cast<void*>(handleBase + handleStep * row + number);
}

void* NewHandle(const std::string& kind) {
    static std::map<std::string, unsigned> last;
    CountHandle(kind + "s", 1);
    return MakeHandle(kind, ++last[kind]);
}

void CCall::Add(const std::string& argument) {
    m_line += (m_first ? "" : ", ") + argument;
    m_first = false;
}

void CCall::Qualify(unsigned name) {
    const std::string key = m_key + ":" + std::to_string(name);
    if (Log().HasRules(key)) m_key = key;
}

const SAnswer* CCall::Answer() {
    if (!m_answer) m_answer = Log().Answer(m_key);
    return *m_answer;
}

const char* CCall::AnswerText(const char* usual) {
    if (Answer() == nullptr) return usual;
    return Answer()->text == "null" ? nullptr : Answer()->text.c_str();
}

long long CCall::Result(long long usual) {
    const long long value = Answer() != nullptr ? Answer()->value : usual;
    m_note = " = " + Number(value) + m_note;
    End();
    return value;
}

void* CCall::HandleResult(const void* usual) {
    const void* value =
        Answer() != nullptr ? reinterpret_cast<const void*>(Answer()->value) : usual;
    m_note = " = " + Handle(value) + m_note;
    End();
    return const_cast<void*>(value);
}

void CCall::End() {
    std::string line = m_line + ")" + m_note;
    // A shader's text spans lines; the log keeps one line a call.
    for (std::size_t at = 0; (at = line.find('\n', at)) != std::string::npos;) {
        line.replace(at, 1, "\\n");
    }
    Log().Write(line + "\n");
    const std::string word = Answer() != nullptr ? Answer()->text : "";
    if (word.rfind("error ", 0) == 0)
        State().error = static_cast<unsigned>(NumberOf(word.substr(6)));
    if (word == "crash") std::raise(SIGSEGV);
    if (word == "exit") std::exit(7);
}

SGlState& State() {
    static SGlState state;
    return state;
}

std::uint32_t NewName(const std::string& kind) {
    static std::uint32_t last = 100;
    CountHandle(kind, 1);
    return ++last;
}

void NewNames(const char* kind, long long count, std::uint32_t* names) {
    for (long long i = 0; i < count; ++i) names[i] = NewName(kind);
}

void DropNames(const char* kind, long long count, const std::uint32_t* names) {
    // The names 0 and all ones stand for nothing; deleting them leaves the count alone.
    for (long long i = 0; i < count; ++i) {
        if (names[i] != 0 && names[i] != 0xFFFFFFFFU) CountHandle(kind, -1);
    }
}

std::int32_t NewLocation() {
    static std::int32_t last = 1000;
    return ++last;
}

std::int32_t NewAttribute() {
    static std::int32_t next = -1;
    next = (next + 1) % 7;
    return 9 + next;
}

void CountHandle(const std::string& kind, int change) {
    Log().m_live[kind] += change;
}

long long ParameterCount(unsigned pname) {
    static const std::set<unsigned> fours = {GL_LIGHT_MODEL_AMBIENT,
                                             GL_FOG_COLOR,
                                             GL_AMBIENT,
                                             GL_DIFFUSE,
                                             GL_SPECULAR,
                                             GL_POSITION,
                                             GL_EMISSION,
                                             GL_AMBIENT_AND_DIFFUSE,
                                             GL_TEXTURE_ENV_COLOR,
                                             GL_TEXTURE_CROP_RECT_OES};
    if (pname == GL_SPOT_DIRECTION || pname == GL_POINT_DISTANCE_ATTENUATION) return 3;
    return fours.count(pname) != 0 ? 4 : 1;
}

long long TypeSize(unsigned type) {
    if (type == GL_BYTE || type == GL_UNSIGNED_BYTE) return 1;
    return type == GL_SHORT || type == GL_UNSIGNED_SHORT || type == GL_HALF_FLOAT ? 2 : 4;
}

long long ImageSize(long long width, long long height, long long depth, unsigned format,
                    unsigned type) {
    static const std::map<unsigned, long long> parts = {
        {GL_RGB, 3}, {GL_LUMINANCE_ALPHA, 2}, {GL_ALPHA, 1}, {GL_LUMINANCE, 1}};
    if (width <= 0 || height <= 0 || depth <= 0) return 0;
    const bool packed = type == GL_UNSIGNED_SHORT_5_6_5 || type == GL_UNSIGNED_SHORT_4_4_4_4 ||
                        type == GL_UNSIGNED_SHORT_5_5_5_1;
    const auto found = parts.find(format);
    const long long pixel =
        packed ? 2 : (found != parts.end() ? found->second : 4) * TypeSize(type);
    const long long alignment = State().integers[GL_UNPACK_ALIGNMENT];
    const long long row = (width * pixel + alignment - 1) / alignment * alignment;
    return row * (height * depth - 1) + width * pixel;
}

std::string DescribeArrays(const std::vector<SAttribute>& arrays, long long vertices) {
    std::string note;
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        const SAttribute& array = arrays[i];
        if (!array.enabled || array.buffer != 0) continue;
        const long long item = array.size * TypeSize(array.type);
        const long long stride = array.stride != 0 ? array.stride : item;
        const long long size = vertices > 0 ? (vertices - 1) * stride + item : 0;
        note += " [" + std::to_string(i) + " " + Data(array.pointer, size) + "]";
    }
    return note;
}

long long HighestIndex(const void* indices, unsigned type, long long count) {
    if (reinterpret_cast<std::uintptr_t>(indices) < lowestAddress) return -1;
    long long highest = -1;
    for (long long i = 0; i < count; ++i) {
        long long index = 0;
        const auto size = static_cast<std::size_t>(TypeSize(type));
        std::memcpy(&index, static_cast<const char*>(indices) + i * TypeSize(type), size);
        highest = std::max(highest, index);
    }
    return highest;
}

void OneInteger(CCall& call, std::int32_t usual, std::int32_t* data) {
    Put(data, call.Answer() != nullptr ? call.Answer()->value : usual);
}

namespace {

struct SClientArrayNames {
    unsigned array;
    unsigned size;
    unsigned type;
    unsigned buffer;
    unsigned pointer;
    unsigned stride;

    bool Holds(unsigned name) const {
        return name != 0 && (name == array || name == size || name == type || name == buffer ||
                             name == pointer || name == stride);
    }
};

const SClientArrayNames clientArrayNames[] = {
    {0x8076, 0x8081, 0x8082, 0x8898, 0x8090, 0x8083},  // GL_COLOR_ARRAY
    {0x8075, 0x0000, 0x807E, 0x8897, 0x808F, 0x807F},  // GL_NORMAL_ARRAY
    {0x8074, 0x807A, 0x807B, 0x8896, 0x808E, 0x807C},  // GL_VERTEX_ARRAY
    {0x8B9C, 0x0000, 0x898A, 0x8B9F, 0x898C, 0x898B},  // GL_POINT_SIZE_ARRAY_OES
    {0x8844, 0x8846, 0x8847, 0x8B9E, 0x8849, 0x8848},  // GL_MATRIX_INDEX_ARRAY_OES
    {0x86AD, 0x86AB, 0x86A9, 0x889E, 0x86AC, 0x86AA},  // GL_WEIGHT_ARRAY_OES
    {0x8078, 0x8088, 0x8089, 0x889A, 0x8092, 0x808A},  // GL_TEXTURE_COORD_ARRAY
};

const SClientArrayNames* FindNames(unsigned name) {
    return std::find_if(std::begin(clientArrayNames), std::end(clientArrayNames),
                        [&](const SClientArrayNames& names) { return names.Holds(name); });
}

SAttribute& At(std::vector<SAttribute>& arrays, std::size_t place) {
    static SAttribute none;
    return place < arrays.size() ? arrays[place] : (none = {});
}

std::int32_t ClientArrayInteger(unsigned pname) {
    const SClientArrayNames* const names = FindNames(pname);
    if (names == std::end(clientArrayNames)) return 0;
    const SAttribute& array = ClientArray(pname);
    if (pname == names->size) return array.size;
    if (pname == names->type) return static_cast<std::int32_t>(array.type);
    if (pname == names->stride) return array.stride;
    return pname == names->buffer ? array.buffer : 0;
}

}  // namespace

SAttribute& Attribute(unsigned index) {
    return At(State().attributes, index);
}

SAttribute& ClientArray(unsigned name) {
    SGlState& state = State();
    const auto place = static_cast<std::size_t>(FindNames(name) - clientArrayNames);
    if (place < 6) return state.clientArrays[place];
    // The texture coordinates are those of the client's active unit.
    const int unit = state.integers[GL_CLIENT_ACTIVE_TEXTURE] - GL_TEXTURE0;
    return At(state.clientArrays, place + static_cast<unsigned>(place == 6 ? unit : 14));
}

void SetArray(SAttribute& array, int size, unsigned type, int normalized, int stride,
              const void* pointer) {
    const std::int32_t buffer = State().integers[GL_ARRAY_BUFFER_BINDING];
    array = {array.enabled, size, type, normalized, stride, buffer, const_cast<void*>(pointer)};
}

void Integerv(CCall& call, unsigned pname, std::int32_t* data) {
    const SGlState& state = State();
    if (pname == GL_VIEWPORT) {
        if (data != nullptr) std::copy_n(state.viewport.data(), 4, data);
        return;
    }
    const auto found = state.integers.find(pname);
    OneInteger(call, found != state.integers.end() ? found->second : ClientArrayInteger(pname),
               data);
}

std::int32_t AttributeInteger(unsigned index, unsigned pname) {
    const SAttribute& attribute = Attribute(index);
    const std::map<unsigned, std::int32_t> known = {
        {GL_VERTEX_ATTRIB_ARRAY_ENABLED, attribute.enabled ? 1 : 0},
        {GL_VERTEX_ATTRIB_ARRAY_SIZE, attribute.size},
        {GL_VERTEX_ATTRIB_ARRAY_STRIDE, attribute.stride},
        {GL_VERTEX_ATTRIB_ARRAY_TYPE, static_cast<std::int32_t>(attribute.type)},
        {GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, attribute.normalized},
        {GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, attribute.buffer}};
    const auto found = known.find(pname);
    return found != known.end() ? found->second : 0;
}

}  // namespace kestrail::host
