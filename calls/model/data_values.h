// Values that own captured bytes: blocks of data, images, strings. Each keeps the pointer that the
// application passed, since a null pointer, an offset into a bound buffer and captured bytes are
// three different arguments.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include "calls/model/api_type.h"

namespace kestrail {

/// Throws std::logic_error when `size`, read from a record, is larger than the record.
void CheckRecordedSize(const CTrace& trace, std::uint32_t size);

/// A pointer and a counted block of bytes behind it.
class SBlock : public SApiTypeBase {
public:
    TPointer pointer;
    std::uint32_t size = 0;

    SBlock() = default;
    SBlock(SBlock&& other) noexcept { *this = std::move(other); }
    SBlock& operator=(SBlock&& other) noexcept {
        std::swap(pointer.value, other.pointer.value);
        std::swap(size, other.size);
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~SBlock() override { Release(); }

    /// The captured bytes; null when there are none.
    std::uint8_t* GetData() const { return m_data; }
    /// Whether the bytes stand where their call does: they must not outlive it.
    bool StandsWithCall() const { return size <= kSmall; }
    std::uint32_t GetSize() const { return size; }

    /// Pointer by width, size in 4 bytes, then the bytes, whether the pointer is null or not.
    void Read(CTrace& trace);
    void Write(CRecordWriter& out) const;
    /// What is written of a pointer and of bytes for it, or of none.
    template <typename Sink, typename Pointer>
    static void Put(Sink& out, Pointer given, const void* bytes, std::size_t length) {
        const std::size_t held = bytes == nullptr ? 0 : length;
        TPointer::Put(out, given);
        out.UInt32(static_cast<std::uint32_t>(held));
        out.Bytes(bytes, held);
    }
    template <typename Sink>
    static void Put(Sink& out, const void* bytes, std::int64_t length) {
        Put(out, bytes, bytes, length < 0 ? 0 : static_cast<std::size_t>(length));
    }
    void AppendNumericText(TextWriter& out) const override { pointer.AppendText(out); }

private:
    static constexpr std::uint32_t kSmall = 4096;

    void Release();

    std::uint8_t* m_data = nullptr;
};

class SDataPtr : public SBlock {
public:
    void AppendText(TextWriter& out) const override;
};

/// A block of pixels; their layout stands in the surrounding call.
class SImage2D : public SBlock {
public:
    void AppendText(TextWriter& out) const override;
};

class SImage3D : public SImage2D {};

template <typename T, unsigned N, unsigned M>
class SArrayPtr;

class SString : public SApiTypeBase {
public:
    TPointer pointer;
    std::uint32_t length = 0;

    /// The characters with a terminator; an empty string when none were recorded.
    const char* GetCString() const { return m_data ? m_data.get() : ""; }

    /// Pointer by width, length in 4 bytes, then the characters unless the pointer is null.
    void Read(CTrace& trace);
    void Write(CRecordWriter& out) const;
    /// What is written of an application's text.
    template <typename Sink>
    static void Put(Sink& out, const void* text, std::size_t length) {
        SBlock::Put(out, text, text, length);
    }
    template <typename Sink>
    static void Put(Sink& out, const void* text) {
        Put(out, text, text != nullptr ? std::strlen(static_cast<const char*>(text)) : 0);
    }
    /// Takes the strings of `parts` in their order, without separators.
    void Join(const SArrayPtr<SString, 1, 1>& parts);

    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
    void AppendDetailText(TextWriter& out) const override;

private:
    std::unique_ptr<char[]> m_data;
};

/// Appends `text` between double quotes, folded into lines of about `width` characters. A text of
/// more than `width` lines is cut there with `stop`; without it the width grows by a quarter and
/// the walk begins anew behind what is made already, up to `3 * width` lines in all.
void AppendFolded(TextWriter& out, std::string_view text, int width, bool stop);

}  // namespace kestrail
