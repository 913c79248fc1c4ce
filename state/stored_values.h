// How the records hold the single values and the numbers of calls.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "calls/model/array_values.h"

namespace kestrail {

// Kept: 12 and in whole numbers, not 65536; tools compare pictures of sought frames.
inline constexpr std::int32_t kFixedDivisor = 12;

/// The number that a record holds for a raw fixed-point value.
inline float FixedValue(std::int32_t raw) {
    const std::int32_t whole = raw / kFixedDivisor;
    return static_cast<float>(whole);
}

template <typename Value>
auto Stored(const Value& value) {
    return value.GetValue();
}
inline std::uint8_t Stored(const TGLboolean& value) {
    return value.GetValue() != 0 ? 1 : 0;
}
inline float Stored(const TGLfixed& value) {
    return FixedValue(value.GetValue());
}
inline float Stored(const TGLclampx& value) {
    return FixedValue(value.GetValue());
}
/// The only bytes are components of a colour.
inline float Stored(const TGLubyte& value) {
    return static_cast<float>(value.GetValue()) / 255.0F;
}

/// The numbers of a call, one or an array, of any type, so that the forms of a call share their
/// update. They stay where they are in the call.
class CNumbers {
public:
    // NOLINTBEGIN(google-explicit-constructor): a parameter is handed over as what it is.
    template <typename Type>
    CNumbers(const Type& value) : CNumbers(kFormOf<Type>, &value.value, 1) {}
    template <typename Type>
    CNumbers(const SArrayPtr<Type, 1, 1>& array)
        : CNumbers(kFormOf<Type>, array.GetRawArray(), array.ItemCount()) {}
    template <typename Type, unsigned N, unsigned M>
    CNumbers(const SPtr<Type, N, M>& item)
        : CNumbers(kFormOf<Type>, item.GetRawArray(), item.ItemCount() * N * M) {}
    // NOLINTEND(google-explicit-constructor)

    std::uint32_t Count() const { return m_count; }
    bool AreFixed() const { return m_form == EForm::kFixed; }
    /// As a record holds it.
    float Real(std::uint32_t i = 0) const {
        if (m_form == EForm::kReal) return static_cast<const float*>(m_elements)[i];
        const std::int32_t raw = static_cast<const std::int32_t*>(m_elements)[i];
        return AreFixed() ? FixedValue(raw) : static_cast<float>(raw);
    }
    /// Fixed point raw, as enumerants come through it.
    float Unscaled() const { return AreFixed() ? static_cast<float>(Integer()) : Real(); }
    /// Fixed point raw, too. The ends of the range stand for what lies beyond, the lower one for
    /// what is no number.
    std::int32_t Integer() const {
        if (m_form != EForm::kReal) return *static_cast<const std::int32_t*>(m_elements);
        constexpr float kLimit = 2147483648.0F;
        if (!(Real() >= -kLimit)) return INT32_MIN;
        return Real() < kLimit ? static_cast<std::int32_t>(Real()) : INT32_MAX;
    }
    /// Stores the first `wanted` numbers, as far as they are there; false when none is.
    bool Store(float* target, std::uint32_t wanted) const {
        for (std::uint32_t i = 0; i < std::min(m_count, wanted); ++i) target[i] = Real(i);
        return m_count != 0;
    }

private:
    enum class EForm : std::uint8_t { kReal, kInteger, kFixed };
    template <typename Type>
    static constexpr EForm kFormOf = std::is_same_v<typename Type::ValueType, float> ? EForm::kReal
                                     : std::is_same_v<Type, TGLfixed>                ? EForm::kFixed
                                                                      : EForm::kInteger;

    CNumbers(EForm form, const void* elements, std::uint32_t count)
        : m_elements(elements), m_count(count), m_form(form) {}

    const void* m_elements = nullptr;
    std::uint32_t m_count = 0;
    EForm m_form = EForm::kReal;
};

}  // namespace kestrail
