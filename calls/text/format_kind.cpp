#include "calls/text/format_kind.h"

#include <iterator>

#include "base/enumerants.h"
#include "calls/text/enum_names.h"

namespace kestrail {
namespace {

constexpr SFlagName kSurfaceTypes[] = {
    {"EGL_PBUFFER_BIT", EGL_PBUFFER_BIT},
    {"EGL_PIXMAP_BIT", EGL_PIXMAP_BIT},
    {"EGL_WINDOW_BIT", EGL_WINDOW_BIT},
    {"EGL_VG_COLORSPACE_LINEAR_BIT", EGL_VG_COLORSPACE_LINEAR_BIT},
    {"EGL_VG_ALPHA_FORMAT_PRE_BIT", EGL_VG_ALPHA_FORMAT_PRE_BIT},
    {"EGL_MULTISAMPLE_RESOLVE_BOX_BIT", EGL_MULTISAMPLE_RESOLVE_BOX_BIT},
    {"EGL_SWAP_BEHAVIOR_PRESERVED_BIT", EGL_SWAP_BEHAVIOR_PRESERVED_BIT},
};
constexpr SFlagName kRenderableTypes[] = {
    {"EGL_OPENGL_ES_BIT", EGL_OPENGL_ES_BIT},
    {"EGL_OPENVG_BIT", EGL_OPENVG_BIT},
    {"EGL_OPENGL_ES2_BIT", EGL_OPENGL_ES2_BIT},
    {"EGL_OPENGL_BIT", EGL_OPENGL_BIT},
};
constexpr SFlagName kClearMask[] = {
    {"GL_DEPTH_BUFFER_BIT", GL_DEPTH_BUFFER_BIT},
    {"GL_STENCIL_BUFFER_BIT", GL_STENCIL_BUFFER_BIT},
    {"GL_COLOR_BUFFER_BIT", GL_COLOR_BUFFER_BIT},
};

void AppendHandle(TextWriter& out, std::uint64_t value, const char* none, const char* type) {
    if (value == 0) return out.Append(none);
    out.Append(type);
    out.Append('(');
    out.AppendUnsigned(value);
    out.Append(')');
}

void AppendEglEnum(TextWriter& out, std::uint64_t value) {
    const std::string_view name = EglEnumName(value);
    if (name.empty()) return out.AppendUnsigned(value);
    out.Append(name);
}

}  // namespace

void AppendFlags(TextWriter& out, std::uint64_t value, const SFlagName* table, unsigned count) {
    if (value == 0) return out.Append('0');
    bool named = false;
    for (unsigned i = 0; i < count; ++i) {
        if ((value & table[i].bit) != table[i].bit) continue;
        if (named) out.Append(" | ");
        out.Append(table[i].name);
        value -= table[i].bit;
        named = true;
    }
    if (value == 0) return;
    if (named) out.Append(" | ");
    out.Append("0X");
    out.AppendUpperHex(value);
}

void AppendKind(TextWriter& out, int kind, std::uint64_t value) {
    switch (kind) {
        case kKindInt32:
            return out.AppendSigned(static_cast<std::int32_t>(value));
        case kKindUInt32:
            return out.AppendUnsigned(static_cast<std::uint32_t>(value));
        case kKindInt64:
            return out.AppendSigned(static_cast<std::int64_t>(value));
        case kKindHex32:
            return out.AppendFormat("0x%.8X", static_cast<unsigned>(value));
        case kKindHex64:
            return out.AppendFormat("0x%.16llX", static_cast<unsigned long long>(value));
        case kKindEglBoolean:
            if (value <= 1) return out.Append(value != 0 ? "EGL_TRUE" : "EGL_FALSE");
            return AppendHandle(out, value, "", "EGLBoolean");
        case kKindEglNativeDisplay:
            return AppendHandle(out, value, "EGL_DEFAULT_DISPLAY", "EGLNativeDisplayType");
        case kKindEglContext:
            return AppendHandle(out, value, "EGL_NO_CONTEXT", "EGLContext");
        case kKindEglDisplay:
            return AppendHandle(out, value, "EGL_NO_DISPLAY", "EGLDisplay");
        case kKindEglSurface:
            return AppendHandle(out, value, "EGL_NO_SURFACE", "EGLSurface");
        case kKindEglEnum:
            return AppendEglEnum(out, value);
        case kKindEglSurfaceType:
            return AppendFlags(out, value, kSurfaceTypes, std::size(kSurfaceTypes));
        case kKindEglRenderableType:
            return AppendFlags(out, value, kRenderableTypes, std::size(kRenderableTypes));
        case kKindClearMask:
            return AppendFlags(out, value, kClearMask, std::size(kClearMask));
        default:
            return out.AppendUnsigned(value);
    }
}

CKSTLString FormatKind(int kind, std::uint64_t value) {
    TextWriter text;
    AppendKind(text, kind, value);
    return CKSTLString(text.Data(), static_cast<std::uint32_t>(text.Size()));
}

CKSTLString FormatFlags(std::uint64_t value, const SFlagName* table, unsigned count) {
    TextWriter text;
    AppendFlags(text, value, table, count);
    return CKSTLString(text.Data(), static_cast<std::uint32_t>(text.Size()));
}

}  // namespace kestrail
