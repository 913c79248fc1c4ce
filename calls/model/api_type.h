// The values that calls are made of. A value's class says how wide it is on file (its tag indexes
// the trace's table of widths), how it is held in memory and how it prints.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "base/kstl_string.h"
#include "base/text_writer.h"
#include "tracefile/bytes/record_writer.h"
#include "tracefile/bytes/trace.h"
#include "tracefile/bytes/typed_reads.h"

namespace kestrail {

class SApiTypeBase {
public:
    virtual ~SApiTypeBase() = default;

    /// Appends the short form, the one of the line of a call.
    virtual void AppendText(TextWriter& out) const = 0;
    /// Appends the numeric or full form.
    virtual void AppendNumericText(TextWriter& out) const { AppendText(out); }
    /// Appends the form of several lines that strings and arrays have.
    virtual void AppendDetailText(TextWriter& out) const { AppendText(out); }

    /// Assigns the short form to `text` and, unless `detail` is null, the full form to `*detail`.
    void GetText(CKSTLString& text, CKSTLString* detail) const;
    void GetDetailText(CKSTLString& text) const;

protected:
    SApiTypeBase() = default;
    SApiTypeBase(const SApiTypeBase&) = default;
    SApiTypeBase& operator=(const SApiTypeBase&) = default;
    SApiTypeBase(SApiTypeBase&&) = default;
    SApiTypeBase& operator=(SApiTypeBase&&) = default;
};

[[noreturn]] void ThrowFloatWidth();

/// Reads of one stored value, by the native type. A float must be stored in 4 bytes: another width
/// throws std::logic_error.
inline std::uint32_t ReadStored(CTrace& trace, std::int32_t width, std::uint32_t) {
    return ReadUInt32(trace.Stream(), width, true);
}
inline std::int32_t ReadStored(CTrace& trace, std::int32_t width, std::int32_t) {
    return ReadInt32(trace.Stream(), width, true);
}
inline float ReadStored(CTrace& trace, std::int32_t width, float) {
    if (width != sizeof(float)) ThrowFloatWidth();
    return ReadFloat(trace.Stream(), 0, true);
}

template <unsigned N, typename T>
class TApiType : public SApiTypeBase {
public:
    using ValueType = T;
    static constexpr std::uint16_t kTag = N;

    T value{};

    T GetValue() const { return value; }

    static T ReadValue(CTrace& trace) { return ReadStored(trace, trace.GetEsTypeSize(N), T{}); }
    void Read(CTrace& trace) { value = ReadValue(trace); }
    void Write(CRecordWriter& out) const { Put(out, value); }
    /// What is written of a value that isn't held here. `Sink` is a CRecordWriter or has the same:
    /// the widths of types, Number, UInt32 and Bytes. Of a pointer, or a handle, the lower half is
    /// kept, but never 0 for one that isn't null.
    template <typename Sink, typename Given>
    static void Put(Sink& out, Given given) {
        const std::int32_t width = out.Widths()[N];
        if constexpr (std::is_floating_point_v<T>) {
            if (width != sizeof(T)) ThrowFloatWidth();
            const T stored = given;
            out.Bytes(&stored, sizeof(stored));
        } else if constexpr (std::is_pointer_v<Given>) {
            const auto address = reinterpret_cast<std::uintptr_t>(given);
            const auto low = static_cast<std::uint32_t>(address);
            out.Number(width, low == 0 && address != 0 ? 1 : low);
        } else {
            out.Number(width, static_cast<std::int64_t>(given));
        }
    }
    /// Takes the value from bytes of the usual width, and passes them.
    void Take(const std::uint8_t*& from) {
        constexpr std::uint32_t kWidth = CWidthTable::Usual(N);
        if constexpr (kWidth == 1) {
            value = *from;
        } else {
            std::memcpy(&value, from, kWidth);
        }
        from += kWidth;
    }
};

/// Calls and values are read and written by a chain, one link for each member.
template <typename Value>
CTrace& operator>>(CTrace& trace, Value& value) {
    value.Read(trace);
    return trace;
}

template <typename Value>
CRecordWriter& operator<<(CRecordWriter& out, const Value& value) {
    value.Write(out);
    return out;
}

/// Reads single values that follow each other: all at once where they stand at hand in their usual
/// widths.
template <typename... Values>
void ReadRun(CTrace& trace, Values&... values) {
    if constexpr (((CWidthTable::Usual(Values::kTag) != 0) && ...)) {
        constexpr std::uint32_t kBytes = (CWidthTable::Usual(Values::kTag) + ...);
        const std::uint8_t* from = nullptr;
        if (trace.Widths().IsUsual()) from = trace.Stream().TakeAtHand(kBytes);
        if (from != nullptr) [[likely]] {
            return (values.Take(from), ...);
        }
    }
    (values.Read(trace), ...);
}

template <unsigned N>
class TuintType : public TApiType<N, std::uint32_t> {
public:
    void AppendText(TextWriter& out) const override { out.AppendUnsigned(this->value); }
};

template <unsigned N>
class TintType : public TApiType<N, std::int32_t> {
public:
    void AppendText(TextWriter& out) const override { out.AppendSigned(this->value); }
};

template <unsigned N>
class TfloatType : public TApiType<N, float> {
public:
    void AppendText(TextWriter& out) const override { out.AppendFixed(this->value); }
};

// The values that print as plain numbers, by the type that they were recorded as. Those of 64 bits
// keep their lower 32.
using TEGLint = TintType<1>;
using TEGLConfig = TuintType<4>;
using TEGLClientBuffer = TuintType<8>;
using TEGLNativePixmapType = TuintType<10>;
using TEGLNativeWindowType = TuintType<11>;
using TGLint = TintType<17>;
using TGLsizei = TintType<18>;
using TGLubyte = TuintType<19>;
using TGLuint = TuintType<21>;
using TGLfloat = TfloatType<22>;
using TGLclampf = TfloatType<23>;
using TGLintptr = TintType<25>;
using TGLsizeiptr = TintType<26>;
using TEGLImageKHR = TuintType<28>;
using TGLeglImageOES = TuintType<29>;
using TGLint64 = TuintType<30>;
using TGLuint64 = TuintType<31>;

/// A pointer as the recorded process saw it: a number, never dereferenced.
class TPointer : public TuintType<0> {
public:
    void AppendText(TextWriter& out) const override;
};

class TGLenum : public TuintType<12> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TGLError : public TuintType<12> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TGLBeginMode : public TuintType<12> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TGLBlendFactor : public TuintType<12> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TGLboolean : public TuintType<13> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TGLbitfield : public TuintType<14> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

/// 16.16 fixed point, printed as a real number.
class TGLfixed : public TintType<24> {
public:
    void AppendText(TextWriter& out) const override;
};

class TGLclampx : public TintType<27> {
public:
    void AppendText(TextWriter& out) const override;
};

/// An EGLint that stands for an EGL name.
class TEGLintEnum : public TintType<1> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TEGLBoolean : public TuintType<2> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TEGLenum : public TuintType<3> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TEGLContext : public TuintType<5> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TEGLDisplay : public TuintType<6> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TEGLSurface : public TuintType<7> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

class TEGLNativeDisplayType : public TuintType<9> {
public:
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
};

}  // namespace kestrail
