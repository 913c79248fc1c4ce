#include "base/enumerants.h"
#include "calls/text/enum_names.h"

namespace kestrail {
namespace {

constexpr const char* kLockSurfaceBits[] = {"EGL_READ_SURFACE_BIT_KHR",
                                            "EGL_WRITE_SURFACE_BIT_KHR"};
constexpr const char* kLockSurface[] = {"EGL_LOCK_SURFACE_BIT_KHR"};
constexpr const char* kOptimalFormat[] = {"EGL_OPTIMAL_FORMAT_BIT_KHR"};
constexpr const char* kErrors[] = {
    "EGL_SUCCESS",       "EGL_NOT_INITIALIZED", "EGL_BAD_ACCESS",        "EGL_BAD_ALLOC",
    "EGL_BAD_ATTRIBUTE", "EGL_BAD_CONFIG",      "EGL_BAD_CONTEXT",       "EGL_BAD_CURRENT_SURFACE",
    "EGL_BAD_DISPLAY",   "EGL_BAD_MATCH",       "EGL_BAD_NATIVE_PIXMAP", "EGL_BAD_NATIVE_WINDOW",
    "EGL_BAD_PARAMETER", "EGL_BAD_SURFACE",     "EGL_CONTEXT_LOST"};
constexpr const char* kConfigAttributes[] = {"EGL_BUFFER_SIZE",
                                             "EGL_ALPHA_SIZE",
                                             "EGL_BLUE_SIZE",
                                             "EGL_GREEN_SIZE",
                                             "EGL_RED_SIZE",
                                             "EGL_DEPTH_SIZE",
                                             "EGL_STENCIL_SIZE",
                                             "EGL_CONFIG_CAVEAT",
                                             "EGL_CONFIG_ID",
                                             "EGL_LEVEL",
                                             "EGL_MAX_PBUFFER_HEIGHT",
                                             "EGL_MAX_PBUFFER_PIXELS",
                                             "EGL_MAX_PBUFFER_WIDTH",
                                             "EGL_NATIVE_RENDERABLE",
                                             "EGL_NATIVE_VISUAL_ID",
                                             "EGL_NATIVE_VISUAL_TYPE",
                                             "EGL_PRESERVED_RESOURCES",
                                             "EGL_SAMPLES",
                                             "EGL_SAMPLE_BUFFERS",
                                             "EGL_SURFACE_TYPE",
                                             "EGL_TRANSPARENT_TYPE",
                                             "EGL_TRANSPARENT_BLUE_VALUE",
                                             "EGL_TRANSPARENT_GREEN_VALUE",
                                             "EGL_TRANSPARENT_RED_VALUE",
                                             "EGL_NONE",
                                             "EGL_BIND_TO_TEXTURE_RGB",
                                             "EGL_BIND_TO_TEXTURE_RGBA",
                                             "EGL_MIN_SWAP_INTERVAL",
                                             "EGL_MAX_SWAP_INTERVAL",
                                             "EGL_LUMINANCE_SIZE",
                                             "EGL_ALPHA_MASK_SIZE",
                                             "EGL_COLOR_BUFFER_TYPE",
                                             "EGL_RENDERABLE_TYPE",
                                             "EGL_MATCH_NATIVE_PIXMAP",
                                             "EGL_CONFORMANT",
                                             "EGL_MATCH_FORMAT_KHR"};
constexpr const char* kAttributeValues[] = {"EGL_SLOW_CONFIG",
                                            "EGL_NON_CONFORMANT_CONFIG",
                                            "EGL_TRANSPARENT_RGB",
                                            "EGL_VENDOR",
                                            "EGL_VERSION",
                                            "EGL_EXTENSIONS",
                                            "EGL_HEIGHT",
                                            "EGL_WIDTH",
                                            "EGL_LARGEST_PBUFFER",
                                            "EGL_DRAW",
                                            "EGL_READ",
                                            "EGL_CORE_NATIVE_ENGINE",
                                            "EGL_NO_TEXTURE",
                                            "EGL_TEXTURE_RGB",
                                            "EGL_TEXTURE_RGBA",
                                            "EGL_TEXTURE_2D"};
constexpr const char* kSurfaceAttributes[] = {
    "EGL_TEXTURE_FORMAT",         "EGL_TEXTURE_TARGET",        "EGL_MIPMAP_TEXTURE",
    "EGL_MIPMAP_LEVEL",           "EGL_BACK_BUFFER",           "EGL_SINGLE_BUFFER",
    "EGL_RENDER_BUFFER",          "EGL_VG_COLORSPACE",         "EGL_VG_ALPHA_FORMAT",
    "EGL_VG_COLORSPACE_sRGB",     "EGL_VG_COLORSPACE_LINEAR",  "EGL_VG_ALPHA_FORMAT_NONPRE",
    "EGL_VG_ALPHA_FORMAT_PRE",    "EGL_CLIENT_APIS",           "EGL_RGB_BUFFER",
    "EGL_LUMINANCE_BUFFER",       "EGL_HORIZONTAL_RESOLUTION", "EGL_VERTICAL_RESOLUTION",
    "EGL_PIXEL_ASPECT_RATIO",     "EGL_SWAP_BEHAVIOR",         "EGL_BUFFER_PRESERVED",
    "EGL_BUFFER_DESTROYED",       "EGL_OPENVG_IMAGE",          "EGL_CONTEXT_CLIENT_TYPE",
    "EGL_CONTEXT_CLIENT_VERSION", "EGL_MULTISAMPLE_RESOLVE",   "EGL_MULTISAMPLE_RESOLVE_DEFAULT",
    "EGL_MULTISAMPLE_RESOLVE_BOX"};
constexpr const char* kApis[] = {"EGL_OPENGL_ES_API", "EGL_OPENVG_API", "EGL_OPENGL_API"};
constexpr const char* kLockSurfaceValues[] = {"EGL_FORMAT_RGB_565_EXACT_KHR",
                                              "EGL_FORMAT_RGB_565_KHR",
                                              "EGL_FORMAT_RGBA_8888_EXACT_KHR",
                                              "EGL_FORMAT_RGBA_8888_KHR",
                                              "EGL_MAP_PRESERVE_PIXELS_KHR",
                                              "EGL_LOCK_USAGE_HINT_KHR",
                                              "EGL_BITMAP_POINTER_KHR",
                                              "EGL_BITMAP_PITCH_KHR",
                                              "EGL_BITMAP_ORIGIN_KHR",
                                              "EGL_BITMAP_PIXEL_RED_OFFSET_KHR",
                                              "EGL_BITMAP_PIXEL_GREEN_OFFSET_KHR",
                                              "EGL_BITMAP_PIXEL_BLUE_OFFSET_KHR",
                                              "EGL_BITMAP_PIXEL_ALPHA_OFFSET_KHR",
                                              "EGL_BITMAP_PIXEL_LUMINANCE_OFFSET_KHR"};
constexpr const char* kImagePreserved[] = {"EGL_IMAGE_PRESERVED_KHR"};

/// A run of values with a name each, from `low` to `high`.
struct SEnumRange {
    std::uint64_t low;
    std::uint64_t high;
    const char* const* names;
};

template <std::uint64_t Count>
constexpr SEnumRange Range(std::uint64_t low, const char* const (&names)[Count]) {
    return {low, low + Count - 1, names};
}

constexpr SEnumRange g_eglEnumRanges[] = {
    Range(EGL_READ_SURFACE_BIT_KHR, kLockSurfaceBits),
    Range(EGL_LOCK_SURFACE_BIT_KHR, kLockSurface),
    Range(EGL_OPTIMAL_FORMAT_BIT_KHR, kOptimalFormat),
    Range(EGL_SUCCESS, kErrors),
    Range(EGL_BUFFER_SIZE, kConfigAttributes),
    Range(EGL_SLOW_CONFIG, kAttributeValues),
    Range(EGL_TEXTURE_FORMAT, kSurfaceAttributes),
    Range(EGL_OPENGL_ES_API, kApis),
    Range(EGL_FORMAT_RGB_565_EXACT_KHR, kLockSurfaceValues),
    Range(EGL_IMAGE_PRESERVED_KHR, kImagePreserved),
};

}  // namespace

std::string_view EglEnumName(std::uint64_t value) {
    for (const SEnumRange& range : g_eglEnumRanges) {
        if (value >= range.low && value <= range.high) return range.names[value - range.low];
    }
    return {};
}

}  // namespace kestrail
