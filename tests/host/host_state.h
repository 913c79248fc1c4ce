// What the recording stand-in libraries share: the log of calls, the scripted answers, and as much
// of a driver's state as a player asks for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace kestrail::host {

/// One answer of the script: a number, or a word such as "fail", or a text.
struct SAnswer {
    long long value = 0;
    std::string text;
};

/// Handles lie above 4 GiB, so that one cut to 32 bits is seen.
enum class HandleKind : unsigned { Display, Config, Surface, Context, Sync };
void* MakeHandle(HandleKind kind, unsigned number);

/// One call on its way into the log. The line is written before the scripted crash, if any, so that
/// the log names the guilty call.
class CCall {
public:
    explicit CCall(const char* entry, const char* prefix = "");

    void Number(long long value);
    void Real(double value);
    /// A handle of ours by kind and number; anything else as a number.
    void Handle(const void* value);
    /// NULL, a small number for an offset, or "ptr".
    void Pointer(const void* value);
    void Numbers(const std::int32_t* values, long long count);
    void Names(const std::uint32_t* values, long long count);
    void Enums(const std::uint32_t* values, long long count) { Names(values, count); }
    void Reals(const float* values, long long count);
    void Text(const char* text);
    /// The first bytes in hexadecimal and the size; `size` is what the driver would read.
    void Data(const void* data, long long size);
    void Attributes(const std::int32_t* list);
    void Strings(const char* const* texts, long long count, const std::int32_t* lengths);
    /// Text behind the argument list, such as the arrays of a draw.
    void Note(const std::string& note);

    /// The script's key becomes `entry:pname` where the script has one.
    void Qualify(unsigned name);
    /// Null if the script has nothing for this call.
    const SAnswer* Answer();
    /// The scripted answer or `usual`; it stands behind the line.
    long long Result(long long usual);
    const void* HandleResult(const void* usual);
    /// The arguments logged so far.
    std::string Shown() const;
    /// Writes the line.
    void End();

private:
    void Begin();

    std::string m_entry;
    std::string m_line;
    std::string m_note;
    std::string m_key;
    const SAnswer* m_answer = nullptr;
    bool m_looked = false;
    bool m_first = true;
};

struct SAttribute {
    std::int32_t enabled = 0;
    std::int32_t size = 4;
    std::int32_t type = 0x1406;
    std::int32_t normalized = 0;
    std::int32_t stride = 0;
    std::int32_t divisor = 0;
    std::int32_t buffer = 0;
    const void* pointer = nullptr;
};

constexpr unsigned maxAttributes = 16;
constexpr unsigned maxClientArrays = 14;

struct SGlState {
    SAttribute attributes[maxAttributes];
    SAttribute clientArrays[maxClientArrays];
    std::int32_t clientActiveTexture = 0x84C0;
    std::int32_t arrayBuffer = 0;
    std::int32_t elementBuffer = 0;
    std::int32_t unpackBuffer = 0;
    std::int32_t framebuffer = 0;
    std::int32_t viewport[4] = {0, 0, 300, 300};
    std::int32_t unpackAlignment = 4;
    std::map<unsigned, std::int32_t> pixelStore;
    std::int32_t currentProgram = 0;
    // What surfaces report as their size unless the script says otherwise.
    std::int32_t width = 300;
    std::int32_t height = 300;
    alignas(16) unsigned char mapped[1 << 16] = {};
    bool isMapped = false;
};

SGlState& State();

/// A fresh name of that kind; names of all kinds come from one counter that starts at 101.
std::uint32_t NewName(const char* kind);
void NewNames(const char* kind, long long count, std::uint32_t* names);
void DropNames(const char* kind, long long count, const std::uint32_t* names);
/// A fresh uniform location, from 1001 on.
std::int32_t NewLocation();
/// An attribute location, 9 to 15 in turn: inside the driver's limit, yet unlike what is recorded.
std::int32_t NewAttribute();
void CountHandle(const char* kind, int change);
unsigned NewHandleNumber(HandleKind kind);

/// Scalars behind a parameter name of the -v calls.
long long ParameterCount(unsigned pname);
/// Bytes of an image in client memory.
long long ImageSize(long long width, long long height, long long depth, unsigned format,
                    unsigned type);
long long TypeSize(unsigned type);

/// What a driver reads for a draw of the vertices up to `vertices`: one note an array.
std::string DescribeArrays(const SAttribute* arrays, unsigned count, long long vertices);
long long HighestIndex(const void* indices, unsigned type, long long count);

void Integerv(CCall& call, unsigned pname, std::int32_t* data);
void VertexAttribiv(CCall& call, unsigned index, unsigned pname, std::int32_t* data);
void OneInteger(CCall& call, std::int32_t usual, std::int32_t* data);

void BufferParameteriv(CCall& call, unsigned pname, std::int32_t* data);

/// A slot of `clientArrays` for an ES1 array enumerant, or -1: colour, normal, vertex, point size,
/// matrix index, weight, and the texture coordinates of eight units.
int ClientSlot(unsigned array);
/// What glIsEnabled and glGetPointerv of ES1 say of client arrays.
int IsClientArrayEnabled(unsigned array);
const void* ClientArrayPointer(unsigned pname);
void SetClientArray(unsigned array, int size, unsigned type, int stride, const void* pointer);
void SetAttribute(unsigned index, int size, unsigned type, int normalized, int stride,
                  const void* pointer);

/// Generated: the value of a published enumerant, or -1.
long long EnumerantValue(const std::string& name);

}  // namespace kestrail::host
