// What the recording stand-in libraries share: the log of calls, the scripted answers, and as much
// of a driver's state as a player asks for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrail::host {

/// One answer of the script: a number, or a word such as "fail", or a text. "error CODE" is 0, and
/// what the driver's glGetError gives next.
struct SAnswer {
    long long value = 0;
    std::string text;
};

/// Handles lie above 4 GiB, so that one cut to 32 bits is seen. Kinds: display, config, surface,
/// context and sync.
void* MakeHandle(const std::string& kind, unsigned number);
void* NewHandle(const std::string& kind);

/// How arguments stand in the log.
std::string Number(long long value);
std::string Real(double value);
/// A handle of ours by kind and number; anything else as a number.
std::string Handle(const void* value);
/// NULL, a small number for an offset, or "ptr".
std::string Pointer(const void* value);
std::string Values(const std::int32_t* values, long long count);
std::string Values(const std::uint32_t* values, long long count);
std::string Values(const float* values, long long count);
std::string Text(const char* text);
/// The first bytes in hexadecimal and the size; `size` is what the driver would read.
std::string Data(const void* data, long long size);
std::string Attributes(const std::int32_t* list);
std::string Strings(const char* const* texts, long long count, const std::int32_t* lengths);

/// One call on its way into the log. The line is written before the scripted crash, if any, so that
/// the log names the guilty call.
class CCall {
public:
    CCall(const char* entry, const char* prefix)
        : m_key(entry), m_line(std::string(prefix) + entry + "(") {}

    void Add(const std::string& argument);
    /// Text behind the argument list, such as the arrays of a draw.
    void Note(const std::string& note) { m_note += note; }
    /// The script's key becomes `entry:pname` where the script has one.
    void Qualify(unsigned name);
    /// Null if the script has nothing for this call.
    const SAnswer* Answer();
    /// The scripted text or `usual`; null for the word "null".
    const char* AnswerText(const char* usual);
    /// The scripted answer or `usual`; it stands behind the line.
    long long Result(long long usual);
    void* HandleResult(const void* usual);
    /// Writes the line.
    void End();

private:
    std::string m_key;
    std::string m_line;
    std::string m_note;
    std::optional<const SAnswer*> m_answer;
    bool m_first = true;
};

struct SAttribute {
    bool enabled = false;
    std::int32_t size = 4;
    unsigned type = 0x1406;
    std::int32_t normalized = 0;
    std::int32_t stride = 0;
    std::int32_t buffer = 0;
    void* pointer = nullptr;
};

struct SGlState {
    std::vector<SAttribute> attributes{16};
    /// Colour, normal, vertex, point size, matrix index, weight, and the texture coordinates of
    /// eight units.
    std::vector<SAttribute> clientArrays{14};
    /// What glGetIntegerv says.
    std::map<unsigned, std::int32_t> integers = {
        {0x0CF5, 4},       // GL_UNPACK_ALIGNMENT
        {0x84E1, 0x84C0},  // GL_CLIENT_ACTIVE_TEXTURE
        {0x84E2, 8},       // GL_MAX_TEXTURE_UNITS
        {0x8869, 16},      // GL_MAX_VERTEX_ATTRIBS
        {0x9135, 4},       // the most samples of the multisampling extension
    };
    std::array<std::int32_t, 4> viewport = {0, 0, 300, 300};
    alignas(16) unsigned char mapped[1 << 16] = {};
    bool isMapped = false;
    int version = 1;     ///< that the last context was made for
    unsigned error = 0;  ///< that a scripted `error CODE` of a call has left
};

SGlState& State();

/// One that doesn't exist can be written to, and stays as one is at first.
SAttribute& Attribute(unsigned index);
/// By any of the enumerants that belong to an ES1 array.
SAttribute& ClientArray(unsigned name);
void SetArray(SAttribute& array, int size, unsigned type, int normalized, int stride,
              const void* pointer);

/// A fresh name of that kind; names of all kinds come from one counter that starts at 101.
std::uint32_t NewName(const std::string& kind);
void NewNames(const char* kind, long long count, std::uint32_t* names);
void DropNames(const char* kind, long long count, const std::uint32_t* names);
/// A fresh uniform location, from 1001 on.
std::int32_t NewLocation();
/// An attribute location, 9 to 15 in turn: inside the driver's limit, yet unlike what is recorded.
std::int32_t NewAttribute();
void CountHandle(const std::string& kind, int change);

/// Scalars behind a parameter name of the -v calls.
long long ParameterCount(unsigned pname);
/// Bytes of an image in client memory.
long long ImageSize(long long width, long long height, long long depth, unsigned format,
                    unsigned type);
long long TypeSize(unsigned type);

/// What a driver reads for a draw of the vertices up to `vertices`: one note an array.
std::string DescribeArrays(const std::vector<SAttribute>& arrays, long long vertices);
long long HighestIndex(const void* indices, unsigned type, long long count);

void Integerv(CCall& call, unsigned pname, std::int32_t* data);
std::int32_t AttributeInteger(unsigned index, unsigned pname);
void OneInteger(CCall& call, std::int32_t usual, std::int32_t* data);

template <typename Value, typename Given>
void Put(Value* target, Given value) {
    if (target != nullptr) *target = static_cast<Value>(value);
}

/// Generated: the value of a published enumerant, or -1.
long long EnumerantValue(const std::string& name);

}  // namespace kestrail::host
