// Names of enumerants, from the published headers.
#pragma once

#include <cstdint>
#include <string_view>

namespace kestrail {

/// The name of an OpenGL ES enumerant; empty for a value without one. 1 has none: what it means
/// depends on the parameter.
std::string_view GlEnumName(std::uint32_t value);

/// The name of an EGL error, attribute or attribute value; empty for a value without one.
std::string_view EglEnumName(std::uint64_t value);

}  // namespace kestrail
