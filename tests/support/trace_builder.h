// Builds trace files byte by byte, of any version from 7 on, sound or damaged. It is the oracle
// that the reader is tested against and the writer of the sample traces, so it shares no code with
// the reader: every layout is written down here once more.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrail {

using Bytes = std::vector<std::uint8_t>;
using WidthTable = std::vector<std::int8_t>;

/// The width table of version 14: one signed byte for each of the tags 0 to 32.
WidthTable StandardWidths();

/// The type tags by which the width table is indexed.
namespace tag {
enum Tag : unsigned {
    Pointer = 0,
    EglInt = 1,
    EglBoolean = 2,
    EglConfig = 4,
    EglContext = 5,
    EglDisplay = 6,
    EglSurface = 7,
    EglNativeDisplay = 9,
    EglNativeWindow = 11,
    Enum = 12,
    Boolean = 13,
    Bitfield = 14,
    Int = 17,
    Sizei = 18,
    Ubyte = 19,
    Uint = 21,
    Float = 22,
    Clampf = 23,
    Fixed = 24,
    Intptr = 25,
    Sizeiptr = 26,
    Clampx = 27,
    Uint64 = 31,
};
}  // namespace tag

/// The payload of one record. Values are appended in stream order, each in the width that the table
/// gives for its tag; the family's own fields come first (CTraceBuilder::Egl, Gl and Ext write
/// them).
class CRecordBuilder {
public:
    CRecordBuilder(const WidthTable& widths, std::uint32_t version)
        : m_widths(widths), m_version(version) {}

    /// A value in the width of its tag, least significant byte first; bytes above the eighth are 0.
    CRecordBuilder& Value(unsigned typeTag, std::uint64_t value);
    /// A float as its four bytes, filled with zeros where the tag's width is more than four.
    CRecordBuilder& Real(unsigned typeTag, float value) {
        return Value(typeTag, std::bit_cast<std::uint32_t>(value));
    }

    CRecordBuilder& Enum(std::uint32_t value) { return Value(tag::Enum, value); }
    CRecordBuilder& Boolean(bool value) { return Value(tag::Boolean, value ? 1U : 0U); }
    CRecordBuilder& Bitfield(std::uint32_t value) { return Value(tag::Bitfield, value); }
    CRecordBuilder& Int(std::int64_t value) { return Signed(tag::Int, value); }
    CRecordBuilder& Sizei(std::int64_t value) { return Signed(tag::Sizei, value); }
    CRecordBuilder& Ubyte(std::uint8_t value) { return Value(tag::Ubyte, value); }
    CRecordBuilder& Uint(std::uint32_t value) { return Value(tag::Uint, value); }
    CRecordBuilder& Float(float value) { return Real(tag::Float, value); }
    CRecordBuilder& Clampf(float value) { return Real(tag::Clampf, value); }
    CRecordBuilder& Fixed(std::int64_t value) { return Signed(tag::Fixed, value); }
    CRecordBuilder& Intptr(std::int64_t value) { return Signed(tag::Intptr, value); }
    CRecordBuilder& Sizeiptr(std::int64_t value) { return Signed(tag::Sizeiptr, value); }
    CRecordBuilder& Pointer(std::uint64_t value) { return Value(tag::Pointer, value); }
    CRecordBuilder& EglInt(std::int64_t value) { return Signed(tag::EglInt, value); }
    CRecordBuilder& EglBoolean(bool value) { return Value(tag::EglBoolean, value ? 1U : 0U); }
    CRecordBuilder& Config(std::uint64_t value) { return Value(tag::EglConfig, value); }
    CRecordBuilder& Context(std::uint64_t value) { return Value(tag::EglContext, value); }
    CRecordBuilder& Display(std::uint64_t value) { return Value(tag::EglDisplay, value); }
    CRecordBuilder& Surface(std::uint64_t value) { return Value(tag::EglSurface, value); }

    /// Fixed-width fields, whatever the table says.
    CRecordBuilder& U32(std::uint32_t value) { return Little(value, 4); }
    CRecordBuilder& U64(std::uint64_t value) { return Little(value, 8); }
    CRecordBuilder& Raw(const void* data, std::size_t size);
    CRecordBuilder& Raw(const Bytes& bytes) { return Raw(bytes.data(), bytes.size()); }

    /// A block of bytes or pixels: pointer, size, bytes. The bytes stand there for a null pointer
    /// too.
    CRecordBuilder& Data(std::uint64_t pointer, const void* data, std::size_t size);
    CRecordBuilder& Data(std::uint64_t pointer, const Bytes& bytes = {}) {
        return Data(pointer, bytes.data(), bytes.size());
    }
    /// A string: pointer, length, and the characters unless the pointer is null.
    CRecordBuilder& String(std::uint64_t pointer, std::string_view text);
    /// The head of a counted array (pointer and count); the elements are up to the caller.
    CRecordBuilder& ArrayHead(std::uint64_t pointer, std::uint32_t count) {
        return Pointer(pointer).U32(count);
    }
    /// A counted array. `perItem` is the number of scalars in one item; the count on file is in
    /// items. A null pointer writes no elements.
    CRecordBuilder& Array(unsigned typeTag, std::uint64_t pointer,
                          const std::vector<std::int64_t>& scalars, std::size_t perItem = 1) {
        ArrayHead(pointer, static_cast<std::uint32_t>(scalars.size() / perItem));
        return Scalars(typeTag, pointer, scalars);
    }
    CRecordBuilder& Reals(unsigned typeTag, std::uint64_t pointer,
                          const std::vector<float>& scalars, std::size_t perItem = 1) {
        return Array(typeTag, pointer, BitsOf(scalars), perItem);
    }
    CRecordBuilder& Strings(std::uint64_t pointer, const std::vector<std::string>& texts);
    /// One item behind a pointer, without a count; a null pointer writes no elements.
    CRecordBuilder& Item(unsigned typeTag, std::uint64_t pointer,
                         const std::vector<std::int64_t>& scalars) {
        return Pointer(pointer).Scalars(typeTag, pointer, scalars);
    }
    CRecordBuilder& RealItem(unsigned typeTag, std::uint64_t pointer,
                             const std::vector<float>& scalars) {
        return Item(typeTag, pointer, BitsOf(scalars));
    }
    /// An EGL attribute list, its EGL_NONE included in `list`; an empty list is a null pointer.
    CRecordBuilder& Attributes(const std::vector<std::int64_t>& list,
                               std::uint64_t pointer = 0x10000) {
        return Array(tag::EglInt, list.empty() ? 0 : pointer, list);
    }
    /// A native window: handle by width, then width and height.
    CRecordBuilder& Window(std::uint64_t handle, std::uint32_t width, std::uint32_t height) {
        return Value(tag::EglNativeWindow, handle).U32(width).U32(height);
    }
    /// One captured array at the end of a draw; the attribute index stands there from version 14
    /// on.
    CRecordBuilder& ClientArray(std::int64_t index, std::uint64_t pointer, const Bytes& bytes);

    const Bytes& Content() const { return m_bytes; }

private:
    CRecordBuilder& Little(std::uint64_t value, std::size_t width);
    CRecordBuilder& Scalars(unsigned typeTag, std::uint64_t pointer,
                            const std::vector<std::int64_t>& scalars) {
        for (std::size_t i = 0; pointer != 0 && i < scalars.size(); ++i) {
            Signed(typeTag, scalars[i]);
        }
        return *this;
    }
    static std::vector<std::int64_t> BitsOf(const std::vector<float>& reals) {
        std::vector<std::int64_t> bits;
        bits.reserve(reals.size());
        for (const float real : reals) bits.push_back(std::bit_cast<std::uint32_t>(real));
        return bits;
    }
    CRecordBuilder& Signed(unsigned typeTag, std::int64_t value) {
        return Value(typeTag, static_cast<std::uint64_t>(value));
    }

    WidthTable m_widths;
    std::uint32_t m_version;
    Bytes m_bytes;
};

/// What the header and the footer say, and what records are written by. May be changed at any time;
/// widths hold for the records begun behind the change.
struct STraceSettings {
    std::string magic = "Kestrail";
    std::uint32_t mark = 0xFFFE0100U;
    std::uint8_t dataFlag = 1, secondFlag = 1;
    std::uint32_t typeSet = 2;
    /// In version 7 the table's length isn't on file: 28 entries want a type set of 1, 27 any
    /// other.
    WidthTable widths = StandardWidths();
    /// A table length byte that differs from the table's own size.
    std::optional<std::int8_t> widthCount;
    /// From version 12 on unless it is left off here.
    bool footer = true;
    std::int8_t firstMark = 19, secondMark = 16;
    /// Replaces the offset that the state section's place gives.
    std::optional<std::uint64_t> stateOffset;
    /// The attributes of the configuration that contexts and surfaces are recorded with.
    std::vector<std::int64_t> configAttributes;
};

/// A trace file in the making; records are kept in the order in which they are added.
class CTraceBuilder {
public:
    explicit CTraceBuilder(std::uint32_t version = 14);

    STraceSettings settings;

    CTraceBuilder& Disable(std::uint32_t callNumber) {
        m_disabled.push_back(callNumber);
        return *this;
    }
    CTraceBuilder& OverrideText(std::uint32_t callNumber, std::string_view text) {
        m_overrides.emplace_back(callNumber, text);
        return *this;
    }

    /// A payload that begins with the family's own fields.
    CRecordBuilder Egl(std::int32_t error = 0x3000) const { return Plain().EglInt(error); }
    CRecordBuilder Gl(std::uint32_t error = 0) const { return Plain().Enum(error); }
    CRecordBuilder Ext(std::uint32_t error = 0, std::uint8_t api = 2) const {
        return Plain().Enum(error).Ubyte(api);
    }
    CRecordBuilder Plain() const { return CRecordBuilder(settings.widths, m_version); }

    CTraceBuilder& Add(std::uint16_t id, const CRecordBuilder& record);
    /// A record whose size field may lie.
    CTraceBuilder& AddSized(std::uint32_t size, std::uint16_t id, const Bytes& payload);
    /// Bytes without a frame.
    CTraceBuilder& AddRaw(const Bytes& bytes);
    CTraceBuilder& Thread(std::uint64_t thread = 1) { return Add(1, Plain().U64(thread)); }
    /// A section marker, 2 to 5.
    CTraceBuilder& Marker(std::uint16_t id) { return Add(id, Plain()); }
    /// What follows goes to the state section behind the call records, until EndState.
    CTraceBuilder& BeginState() {
        m_inState = true;
        return *this;
    }
    CTraceBuilder& EndState() {
        m_inState = false;
        return *this;
    }

    // EGL start-up on the handles below, and the frame's end.
    static constexpr std::uint32_t display = 0x100;
    static constexpr std::uint32_t config = 0x200;
    static constexpr std::uint32_t context = 0x300;
    static constexpr std::uint32_t surface = 0x400;

    CTraceBuilder& GetDisplay() {
        return Add(1014, Egl().Display(display).Value(tag::EglNativeDisplay, 0));
    }
    CTraceBuilder& Initialize();
    CTraceBuilder& CreateContext(int clientVersion, std::uint32_t ctx = context);
    CTraceBuilder& CreateWindowSurface(std::uint32_t width, std::uint32_t height,
                                       std::uint32_t srf = surface);
    CTraceBuilder& MakeCurrent(std::uint32_t srf = surface, std::uint32_t ctx = context);
    /// `picture` holds width x height RGBA pixels, bottom row first; empty for a frame without one.
    CTraceBuilder& SwapBuffers(std::uint32_t width = 0, std::uint32_t height = 0,
                               const Bytes& picture = {}, std::uint32_t srf = surface);
    /// Display, context, window surface and eglMakeCurrent in one.
    CTraceBuilder& StartUp(int clientVersion, std::uint32_t width, std::uint32_t height);
    /// The file is changed at that offset, or ends there.
    CTraceBuilder& Patch(std::size_t offset, std::uint32_t value) {
        m_patches.emplace_back(offset, value);
        return *this;
    }
    CTraceBuilder& CutAt(std::size_t size) {
        m_cutAt = size;
        return *this;
    }

    std::uint32_t Version() const { return m_version; }
    /// Number of calls added so far to the section in hand, markers and thread records left out.
    std::uint32_t CallCount() const { return m_callCount; }

    Bytes Build() const;
    /// False if the file couldn't be written whole.
    bool Write(const std::string& path) const;

private:
    Bytes BuildHeader() const;
    Bytes& Section() { return m_inState ? m_state : m_calls; }

    std::uint32_t m_version;
    std::vector<std::uint32_t> m_disabled;
    std::vector<std::pair<std::uint32_t, std::string>> m_overrides;
    Bytes m_calls;
    Bytes m_state;
    bool m_inState = false;
    std::uint32_t m_callCount = 0;
    std::uint32_t m_frame = 0;
    std::vector<std::pair<std::size_t, std::uint32_t>> m_patches;
    std::size_t m_cutAt = ~std::size_t{0};
};

}  // namespace kestrail
