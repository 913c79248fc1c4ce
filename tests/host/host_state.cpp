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
#include <map>
#include <sstream>
#include <string_view>
#include <vector>

namespace kestrail::host {

namespace {

constexpr long long shownItems = 64;
constexpr long long shownBytes = 16;
constexpr std::uintptr_t handleBase = 0x7A0000000000ULL;
constexpr std::uintptr_t handleStep = 0x010000000000ULL;
const char* const handleNames[] = {"display", "config", "surface", "context", "sync"};

// What is below this is an offset or a recorded address of 32 bits, never memory of the process.
constexpr std::uintptr_t lowestAddress = 0x100000000ULL;

struct SRule {
    long long nth = 0;
    SAnswer answer;
};

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
        if (m_file < 0) return;
        if (write(m_file, line.data(), line.size()) < 0) m_file = -1;
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
        std::string line;
        while (std::getline(file, line)) {
            std::istringstream words(line);
            std::string key;
            std::string nth;
            if (!(words >> key >> nth)) continue;
            SRule rule;
            rule.nth = nth == "*" ? 0 : std::strtoll(nth.c_str(), nullptr, 0);
            std::getline(words >> std::ws, rule.answer.text);
            const long long named = EnumerantValue(rule.answer.text);
            rule.answer.value =
                named >= 0 ? named : std::strtoll(rule.answer.text.c_str(), nullptr, 0);
            const std::size_t colon = key.find(':');
            if (colon != std::string::npos) {
                const long long value = EnumerantValue(key.substr(colon + 1));
                if (value >= 0) key = key.substr(0, colon + 1) + std::to_string(value);
            }
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

std::string RealText(double value) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
}

std::string Quoted(std::string_view text) {
    std::string quoted(1, '"');
    quoted += text;
    quoted += '"';
    return quoted;
}

std::string DataText(const void* data, long long size) {
    if (data == nullptr) return "NULL";
    const auto address = reinterpret_cast<std::uintptr_t>(data);
    if (address < lowestAddress) return std::to_string(address);
    std::string text = "<";
    const auto* bytes = static_cast<const unsigned char*>(data);
    char buffer[4];
    for (long long i = 0; i < std::min(size, shownBytes); ++i) {
        std::snprintf(buffer, sizeof buffer, "%02x", bytes[i]);
        text += buffer;
    }
    return text + ":" + std::to_string(size) + ">";
}

template <typename Value, typename Format>
std::string ListText(const Value* values, long long count, Format format) {
    if (values == nullptr) return "NULL";
    if (reinterpret_cast<std::uintptr_t>(values) < lowestAddress) return "bad";
    std::string text = "{";
    for (long long i = 0; i < std::min(count, shownItems); ++i) {
        if (i > 0) text += ", ";
        text += format(values[i]);
    }
    if (count > shownItems) text += ", ...";
    return text + "}";
}

}  // namespace

void* MakeHandle(HandleKind kind, unsigned number) {
    return reinterpret_cast<void*>(handleBase + handleStep * static_cast<unsigned>(kind) + number);
}

CCall::CCall(const char* entry, const char* prefix)
    : m_entry(std::string(prefix) + entry), m_key(entry) {
    m_line = m_entry + "(";
}

void CCall::Begin() {
    if (!m_first) m_line += ", ";
    m_first = false;
}

void CCall::Number(long long value) {
    Begin();
    m_line += std::to_string(value);
}

void CCall::Real(double value) {
    Begin();
    m_line += RealText(value);
}

void CCall::Handle(const void* value) {
    Begin();
    const auto address = reinterpret_cast<std::uintptr_t>(value);
    const std::uintptr_t kind = (address - handleBase) / handleStep;
    if (address >= handleBase && kind < std::size(handleNames)) {
        m_line += std::string(handleNames[kind]) + ":" +
                  std::to_string((address - handleBase) % handleStep);
    } else {
        m_line += std::to_string(address);
    }
}

void CCall::Pointer(const void* value) {
    Begin();
    const auto address = reinterpret_cast<std::uintptr_t>(value);
    const std::string offset = value == nullptr ? "NULL" : std::to_string(address);
    m_line += address < lowestAddress ? offset : "ptr";
}

void CCall::Numbers(const std::int32_t* values, long long count) {
    Begin();
    m_line += ListText(values, count, [](std::int32_t v) { return std::to_string(v); });
}

void CCall::Names(const std::uint32_t* values, long long count) {
    Begin();
    m_line += ListText(values, count, [](std::uint32_t v) { return std::to_string(v); });
}

void CCall::Reals(const float* values, long long count) {
    Begin();
    m_line += ListText(values, count, [](float v) { return RealText(static_cast<double>(v)); });
}

void CCall::Text(const char* text) {
    Begin();
    m_line += text == nullptr ? "NULL" : Quoted(text);
}

void CCall::Data(const void* data, long long size) {
    Begin();
    m_line += DataText(data, size);
}

void CCall::Attributes(const std::int32_t* list) {
    long long count = 0;
    if (list != nullptr) {
        while (list[count] != 0x3038 && count < shownItems) count += 2;
        ++count;
    }
    Numbers(list, count);
}

void CCall::Strings(const char* const* texts, long long count, const std::int32_t* lengths) {
    Begin();
    long long next = 0;
    m_line += ListText(texts, count, [&](const char* text) -> std::string {
        const std::int32_t length = lengths != nullptr ? lengths[next++] : -1;
        if (text == nullptr) return "NULL";
        return Quoted(length < 0 ? std::string_view(text)
                                 : std::string_view(text, static_cast<std::size_t>(length)));
    });
}

void CCall::Note(const std::string& note) {
    m_note += note;
}

void CCall::Qualify(unsigned name) {
    const std::string key = m_key + ":" + std::to_string(name);
    if (Log().HasRules(key)) m_key = key;
}

const SAnswer* CCall::Answer() {
    if (!m_looked) {
        m_looked = true;
        m_answer = Log().Answer(m_key);
    }
    return m_answer;
}

long long CCall::Result(long long usual) {
    const SAnswer* answer = Answer();
    const long long value = answer != nullptr ? answer->value : usual;
    m_note = " = " + std::to_string(value) + m_note;
    End();
    return value;
}

const void* CCall::HandleResult(const void* usual) {
    const SAnswer* answer = Answer();
    const void* value =
        answer != nullptr
            ? reinterpret_cast<const void*>(static_cast<std::uintptr_t>(answer->value))
            : usual;
    CCall shown("");
    shown.Handle(value);
    m_note = " = " + shown.Shown() + m_note;
    End();
    return value;
}

std::string CCall::Shown() const {
    return m_line.substr(m_entry.size() + 1);
}

void CCall::End() {
    std::string line = m_line + ")" + m_note + "\n";
    // A shader's text spans lines; the log keeps one line a call.
    for (std::size_t at = 0; at + 1 < line.size(); ++at) {
        if (line[at] == '\n') line.replace(at, 1, "\\n");
    }
    Log().Write(line);
    const SAnswer* answer = Answer();
    if (answer != nullptr && answer->text == "crash") std::raise(SIGSEGV);
    if (answer != nullptr && answer->text == "exit") std::exit(7);
}

SGlState& State() {
    static SGlState state;
    return state;
}

std::uint32_t NewName(const char* kind) {
    static std::uint32_t last = 100;
    ++Log().m_live[kind];
    return ++last;
}

void NewNames(const char* kind, long long count, std::uint32_t* names) {
    for (long long i = 0; i < count; ++i) names[i] = NewName(kind);
}

void DropNames(const char* kind, long long count, const std::uint32_t* names) {
    // The names 0 and all ones stand for nothing; deleting them leaves the count alone.
    for (long long i = 0; i < count; ++i) {
        if (names[i] != 0 && names[i] != 0xFFFFFFFFU) --Log().m_live[kind];
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

void CountHandle(const char* kind, int change) {
    Log().m_live[kind] += change;
}

unsigned NewHandleNumber(HandleKind kind) {
    static unsigned last[std::size(handleNames)] = {};
    return ++last[static_cast<unsigned>(kind)];
}

long long ParameterCount(unsigned pname) {
    static const std::map<unsigned, long long> counts = {{GL_LIGHT_MODEL_AMBIENT, 4},
                                                         {GL_FOG_COLOR, 4},
                                                         {GL_AMBIENT, 4},
                                                         {GL_DIFFUSE, 4},
                                                         {GL_SPECULAR, 4},
                                                         {GL_POSITION, 4},
                                                         {GL_EMISSION, 4},
                                                         {GL_AMBIENT_AND_DIFFUSE, 4},
                                                         {GL_TEXTURE_ENV_COLOR, 4},
                                                         {GL_TEXTURE_CROP_RECT_OES, 4},
                                                         {GL_SPOT_DIRECTION, 3},
                                                         {GL_POINT_DISTANCE_ATTENUATION, 3}};
    const auto found = counts.find(pname);
    return found == counts.end() ? 1 : found->second;
}

long long TypeSize(unsigned type) {
    if (type == GL_BYTE || type == GL_UNSIGNED_BYTE) return 1;
    return type == GL_SHORT || type == GL_UNSIGNED_SHORT || type == GL_HALF_FLOAT ? 2 : 4;
}

long long ImageSize(long long width, long long height, long long depth, unsigned format,
                    unsigned type) {
    long long pixel = 4;
    if (type == 0x8363 || type == 0x8033 || type == 0x8034) {  // the packed 16-bit types
        pixel = 2;
    } else {
        long long parts = 4;
        if (format == 0x1907) parts = 3;                      // GL_RGB
        if (format == 0x190A) parts = 2;                      // GL_LUMINANCE_ALPHA
        if (format == 0x1906 || format == 0x1909) parts = 1;  // GL_ALPHA, GL_LUMINANCE
        pixel = parts * TypeSize(type);
    }
    if (width <= 0 || height <= 0 || depth <= 0) return 0;
    const long long alignment = State().unpackAlignment;
    const long long row = (width * pixel + alignment - 1) / alignment * alignment;
    return row * (height * depth - 1) + width * pixel;
}

std::string DescribeArrays(const SAttribute* arrays, unsigned count, long long vertices) {
    std::string note;
    for (unsigned i = 0; i < count; ++i) {
        const SAttribute& array = arrays[i];
        if (array.enabled == 0 || array.buffer != 0) continue;
        const long long item = array.size * TypeSize(static_cast<unsigned>(array.type));
        const long long stride = array.stride != 0 ? array.stride : item;
        const long long size = vertices > 0 ? (vertices - 1) * stride + item : 0;
        note += " [" + std::to_string(i) + " " + DataText(array.pointer, size) + "]";
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
    const SAnswer* answer = call.Answer();
    if (data != nullptr)
        *data = answer != nullptr ? static_cast<std::int32_t>(answer->value) : usual;
    call.End();
}

namespace {

struct SClientArrayNames {
    unsigned array;
    unsigned size;
    unsigned type;
    unsigned buffer;
    unsigned pointer;
};

const SClientArrayNames clientArrayNames[] = {
    {0x8076, 0x8081, 0x8082, 0x8898, 0x8090},  // GL_COLOR_ARRAY
    {0x8075, 0x0000, 0x807E, 0x8897, 0x808F},  // GL_NORMAL_ARRAY
    {0x8074, 0x807A, 0x807B, 0x8896, 0x808E},  // GL_VERTEX_ARRAY
    {0x8B9C, 0x0000, 0x898A, 0x8B9F, 0x898C},  // GL_POINT_SIZE_ARRAY_OES
    {0x8844, 0x8846, 0x8847, 0x8B9E, 0x8849},  // GL_MATRIX_INDEX_ARRAY_OES
    {0x86AD, 0x86AB, 0x86A9, 0x889E, 0x86AC},  // GL_WEIGHT_ARRAY_OES
    {0x8078, 0x8088, 0x8089, 0x889A, 0x8092},  // GL_TEXTURE_COORD_ARRAY
};

/// The texture coordinates are those of the client's active unit.
int SlotOf(const SClientArrayNames& names) {
    const auto place = static_cast<int>(&names - clientArrayNames);
    if (names.array != 0x8078) return place;
    const int unit = State().clientActiveTexture - 0x84C0;
    return unit >= 0 && unit < 8 ? place + unit : -1;
}

std::int32_t ClientArrayInteger(unsigned pname) {
    for (const SClientArrayNames& names : clientArrayNames) {
        const int slot = SlotOf(names);
        if (slot < 0) continue;
        const SAttribute& array = State().clientArrays[slot];
        if (pname == names.size) return array.size;
        if (pname == names.type) return array.type;
        if (pname == names.buffer) return array.buffer;
    }
    return 0;
}

}  // namespace

void Integerv(CCall& call, unsigned pname, std::int32_t* data) {
    const SGlState& state = State();
    if (pname == GL_VIEWPORT) {
        if (data != nullptr) std::copy_n(state.viewport, 4, data);
        return call.End();
    }
    const std::map<unsigned, std::int32_t> known = {
        {GL_MAX_VERTEX_ATTRIBS, static_cast<std::int32_t>(maxAttributes)},
        {GL_FRAMEBUFFER_BINDING, state.framebuffer},
        {GL_ARRAY_BUFFER_BINDING, state.arrayBuffer},
        {GL_ELEMENT_ARRAY_BUFFER_BINDING, state.elementBuffer},
        {GL_CURRENT_PROGRAM, state.currentProgram},
        {GL_CLIENT_ACTIVE_TEXTURE, state.clientActiveTexture},
        {GL_MAX_TEXTURE_UNITS, 8},
        {0x9135, 4},  // the most samples of the multisampling extension
        {GL_UNPACK_ALIGNMENT, state.unpackAlignment},
        {GL_PIXEL_UNPACK_BUFFER_BINDING, state.unpackBuffer}};
    const auto stored = state.pixelStore.find(pname);
    const auto found = known.find(pname);
    OneInteger(call,
               found != known.end()               ? found->second
               : stored != state.pixelStore.end() ? stored->second
                                                  : ClientArrayInteger(pname),
               data);
}

void VertexAttribiv(CCall& call, unsigned index, unsigned pname, std::int32_t* data) {
    static const SAttribute none;
    const SAttribute& attribute = index < maxAttributes ? State().attributes[index] : none;
    const std::map<unsigned, std::int32_t> known = {
        {GL_VERTEX_ATTRIB_ARRAY_ENABLED, attribute.enabled},
        {GL_VERTEX_ATTRIB_ARRAY_SIZE, attribute.size},
        {GL_VERTEX_ATTRIB_ARRAY_STRIDE, attribute.stride},
        {GL_VERTEX_ATTRIB_ARRAY_TYPE, attribute.type},
        {GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, attribute.normalized},
        {GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, attribute.buffer}};
    const auto found = known.find(pname);
    OneInteger(call, found != known.end() ? found->second : 0, data);
}

void BufferParameteriv(CCall& call, unsigned pname, std::int32_t* data) {
    std::int32_t usual = 0;
    if (pname == 0x88BC) usual = State().isMapped ? 1 : 0;                          // mapped
    if (pname == 0x8764) usual = static_cast<std::int32_t>(sizeof State().mapped);  // the size
    OneInteger(call, usual, data);
}

int ClientSlot(unsigned array) {
    for (const SClientArrayNames& names : clientArrayNames) {
        if (names.array == array) return SlotOf(names);
    }
    return -1;
}

int IsClientArrayEnabled(unsigned array) {
    const int slot = ClientSlot(array);
    return slot < 0 ? 0 : State().clientArrays[slot].enabled;
}

const void* ClientArrayPointer(unsigned pname) {
    for (const SClientArrayNames& names : clientArrayNames) {
        const int slot = SlotOf(names);
        if (names.pointer == pname && slot >= 0) return State().clientArrays[slot].pointer;
    }
    return nullptr;
}

void SetClientArray(unsigned array, int size, unsigned type, int stride, const void* pointer) {
    const int slot = ClientSlot(array);
    if (slot < 0) return;
    SAttribute& target = State().clientArrays[slot];
    target.size = size;
    target.type = static_cast<std::int32_t>(type);
    target.stride = stride;
    target.buffer = State().arrayBuffer;
    target.pointer = pointer;
}

void SetAttribute(unsigned index, int size, unsigned type, int normalized, int stride,
                  const void* pointer) {
    if (index >= maxAttributes) return;
    SAttribute& target = State().attributes[index];
    target.size = size;
    target.type = static_cast<std::int32_t>(type);
    target.normalized = normalized;
    target.stride = stride;
    target.buffer = State().arrayBuffer;
    target.pointer = pointer;
}

}  // namespace kestrail::host
