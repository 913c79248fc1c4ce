// What the state updates of several calls, of ES2 and of ES3, have in common.
#pragma once

#include <cstdint>
#include <type_traits>

#include "state/context_updates.h"
#include "state/es2/es2_state.h"
#include "state/stored_values.h"
#include "state/sub_image.h"

namespace kestrail {

/// Where an image belongs: the texture's recorded name and the face.
struct SImagePlace {
    std::uint32_t name = 0;
    std::uint32_t face = 0;
};

/// Stores `image` at the place and its own level, with the parameters of the image it replaces.
/// False for a level below 0.
bool ReplaceImage(CEs2State& state, const SImagePlace& place, STextureImageState& image);

/// Brings the pixels into the image at (name, face, level). False, and nothing changed, when there
/// is no such image or they don't fit into it.
bool UpdateSubImage(CEs2State& state, const SImagePlace& place, std::uint32_t level,
                    const SImagePart& part, const SUpdates& updates);

/// The bytes that the image's layout takes, at most all ones.
std::uint64_t LayoutSize(const STextureImageState& image);

bool SetTexParameter(CEs2State& state, const TGLenum& target, const TGLenum& pname,
                     const CNumbers& numbers);

/// Sets a uniform of the current program. One whose location was never asked for has no name to
/// find it by in another run, so it has no place in the record.
bool StoreUniform(CEs2State& state, std::int32_t location, std::uint32_t kind,
                  std::int32_t components, const void* values, std::uint32_t count);

template <typename T>
constexpr std::uint32_t kKindOf =
    std::is_same_v<T, float> ? SUniformState::kFloat : SUniformState::kInteger;

template <typename Value, typename... Values>
bool SetUniform(CEs2State& state, const TGLint& location, const Value& first,
                const Values&... others) {
    const typename Value::ValueType values[] = {first.GetValue(), others.GetValue()...};
    constexpr std::uint32_t kCount = 1 + sizeof...(Values);
    return StoreUniform(state, location.GetValue(), kKindOf<typename Value::ValueType>, kCount,
                        values, kCount);
}

template <typename Array>
bool SetUniforms(CEs2State& state, const TGLint& location, const TGLsizei& count,
                 const Array& array, std::uint32_t kind = kKindOf<typename Array::ValueType>) {
    const std::int32_t items = count.GetValue();
    if (items == 0) return true;
    if (items < 0 || static_cast<std::uint32_t>(items) > array.ItemCount()) return false;
    return StoreUniform(state, location.GetValue(), kind,
                        static_cast<std::int32_t>(Array::kItemSize), array.GetRawArray(),
                        static_cast<std::uint32_t>(items) * Array::kItemSize);
}

template <typename Array>
bool SetMatrices(CEs2State& state, const TGLint& location, const TGLsizei& count,
                 const TGLboolean& /*transpose*/, const Array& array) {
    return SetUniforms(state, location, count, array, SUniformState::kMatrix);
}

bool StoreAttribute(CEs2State& state, std::uint32_t index, const float* values,
                    std::uint32_t count);

template <typename... Values>
bool SetAttribute(CEs2State& state, const TGLuint& index, const Values&... components) {
    const float values[] = {components.GetValue()...};
    return StoreAttribute(state, index.GetValue(), values, sizeof...(Values));
}

template <unsigned N>
bool SetAttribute(CEs2State& state, const TGLuint& index, const SPtr<TGLfloat, N, 1>& values) {
    return StoreAttribute(state, index.GetValue(), values.GetRawArray(), N);
}

}  // namespace kestrail
