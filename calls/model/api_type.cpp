#include "calls/model/api_type.h"

#include <iterator>
#include <stdexcept>

#include "base/enumerants.h"
#include "calls/text/enum_names.h"
#include "calls/text/format_kind.h"

namespace kestrail {
namespace {

constexpr const char* kErrorNames[] = {"GL_INVALID_ENUM",      "GL_INVALID_VALUE",
                                       "GL_INVALID_OPERATION", "GL_STACK_OVERFLOW",
                                       "GL_STACK_UNDERFLOW",   "GL_OUT_OF_MEMORY"};

constexpr const char* kBeginModeNames[] = {"GL_POINTS",      "GL_LINES",     "GL_LINE_LOOP",
                                           "GL_LINE_STRIP",  "GL_TRIANGLES", "GL_TRIANGLE_STRIP",
                                           "GL_TRIANGLE_FAN"};

constexpr const char* kBlendFactorNames[] = {
    "GL_SRC_COLOR",           "GL_ONE_MINUS_SRC_COLOR", "GL_SRC_ALPHA",
    "GL_ONE_MINUS_SRC_ALPHA", "GL_DST_ALPHA",           "GL_ONE_MINUS_DST_ALPHA",
    "GL_DST_COLOR",           "GL_ONE_MINUS_DST_COLOR", "GL_SRC_ALPHA_SATURATE"};

void AppendHexNumber(TextWriter& out, std::uint32_t value) {
    out.Append("0x");
    out.AppendUpperHex(value);
}

/// "%d" of the value.
void AppendAsInt(TextWriter& out, std::uint32_t value) {
    out.AppendSigned(static_cast<std::int32_t>(value));
}

void AppendFixedPoint(TextWriter& out, std::int32_t value) {
    out.AppendFixed(static_cast<float>(value) / 65536.0F);
}

CKSTLString ToString(const TextWriter& text) {
    return CKSTLString(text.Data(), static_cast<std::uint32_t>(text.Size()));
}

}  // namespace

void ThrowFloatWidth() {
    throw std::logic_error("GetEsTypeSize(INDEX) != sizeof(float)");
}

void SApiTypeBase::GetText(CKSTLString& text, CKSTLString* detail) const {
    TextWriter writer;
    AppendText(writer);
    text = ToString(writer);
    if (detail == nullptr) return;
    writer.Clear();
    AppendNumericText(writer);
    *detail = ToString(writer);
}

void SApiTypeBase::GetDetailText(CKSTLString& text) const {
    TextWriter writer;
    AppendDetailText(writer);
    text = ToString(writer);
}

void TPointer::AppendText(TextWriter& out) const {
    if (value == 0) return out.Append("NULL");
    out.Append("0x");
    out.AppendHex(value);
}

void TGLenum::AppendText(TextWriter& out) const {
    const std::string_view name = GlEnumName(value);
    if (name.empty()) return out.AppendUnsigned(value);
    out.Append(name);
}
void TGLenum::AppendNumericText(TextWriter& out) const {
    AppendHexNumber(out, value);
}

void TGLError::AppendText(TextWriter& out) const {
    if (value == 0) return out.Append("GL_NO_ERROR");
    if (value - GL_INVALID_ENUM >= std::size(kErrorNames)) return AppendAsInt(out, value);
    out.Append(kErrorNames[value - GL_INVALID_ENUM]);
}
void TGLError::AppendNumericText(TextWriter& out) const {
    AppendHexNumber(out, value);
}

void TGLBeginMode::AppendText(TextWriter& out) const {
    if (value >= std::size(kBeginModeNames)) return AppendAsInt(out, value);
    out.Append(kBeginModeNames[value]);
}
void TGLBeginMode::AppendNumericText(TextWriter& out) const {
    AppendHexNumber(out, value);
}

void TGLBlendFactor::AppendText(TextWriter& out) const {
    if (value <= 1) return out.Append(value == 0 ? "GL_ZERO" : "GL_ONE");
    if (value - GL_SRC_COLOR >= std::size(kBlendFactorNames)) return AppendAsInt(out, value);
    out.Append(kBlendFactorNames[value - GL_SRC_COLOR]);
}
void TGLBlendFactor::AppendNumericText(TextWriter& out) const {
    AppendHexNumber(out, value);
}

void TGLboolean::AppendText(TextWriter& out) const {
    if (value > 1) return out.AppendUnsigned(value);
    out.Append(value == 1 ? "GL_TRUE" : "GL_FALSE");
}
void TGLboolean::AppendNumericText(TextWriter& out) const {
    out.AppendUnsigned(value);
}

void TGLbitfield::AppendText(TextWriter& out) const {
    AppendKind(out, kKindClearMask, value);
}
void TGLbitfield::AppendNumericText(TextWriter& out) const {
    AppendHexNumber(out, value);
}

void TGLfixed::AppendText(TextWriter& out) const {
    AppendFixedPoint(out, value);
}
void TGLclampx::AppendText(TextWriter& out) const {
    AppendFixedPoint(out, value);
}

void TEGLintEnum::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglEnum, static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
}
void TEGLintEnum::AppendNumericText(TextWriter& out) const {
    out.AppendSigned(value);
}

void TEGLBoolean::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglBoolean, value);
}
void TEGLBoolean::AppendNumericText(TextWriter& out) const {
    out.AppendUnsigned(value);
}

void TEGLenum::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglEnum, value);
}
void TEGLenum::AppendNumericText(TextWriter& out) const {
    if (value == 0) return out.Append('0');
    out.Append("0X");
    out.AppendUpperHex(value);
}

void TEGLContext::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglContext, value);
}
void TEGLContext::AppendNumericText(TextWriter& out) const {
    out.AppendUnsigned(value);
}

void TEGLDisplay::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglDisplay, value);
}
void TEGLDisplay::AppendNumericText(TextWriter& out) const {
    out.AppendUnsigned(value);
}

void TEGLSurface::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglSurface, value);
}
void TEGLSurface::AppendNumericText(TextWriter& out) const {
    out.AppendUnsigned(value);
}

void TEGLNativeDisplayType::AppendText(TextWriter& out) const {
    AppendKind(out, kKindEglNativeDisplay, value);
}
void TEGLNativeDisplayType::AppendNumericText(TextWriter& out) const {
    out.AppendUnsigned(value);
}

}  // namespace kestrail
