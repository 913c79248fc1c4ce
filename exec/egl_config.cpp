#include "exec/egl_config.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "host/hosts.h"

namespace kestrail {
namespace {

/// In the order in which they stand in a relaxed list; they are given up from the end.
constexpr EGLint kAttributeOrder[] = {
    EGL_STENCIL_SIZE,
    EGL_DEPTH_SIZE,
    EGL_BUFFER_SIZE,
    EGL_LUMINANCE_SIZE,
    EGL_BLUE_SIZE,
    EGL_GREEN_SIZE,
    EGL_RED_SIZE,
    EGL_ALPHA_SIZE,
    EGL_ALPHA_MASK_SIZE,
    EGL_SAMPLE_BUFFERS,
    EGL_SAMPLES,
    EGL_SURFACE_TYPE,
    EGL_COLOR_BUFFER_TYPE,
    EGL_LEVEL,
    EGL_CONFORMANT,
    EGL_TRANSPARENT_BLUE_VALUE,
    EGL_TRANSPARENT_GREEN_VALUE,
    EGL_TRANSPARENT_RED_VALUE,
    EGL_TRANSPARENT_TYPE,
    EGL_MAX_SWAP_INTERVAL,
    EGL_MIN_SWAP_INTERVAL,
    EGL_BIND_TO_TEXTURE_RGBA,
    EGL_BIND_TO_TEXTURE_RGB,
    EGL_CONFIG_CAVEAT,
    EGL_NATIVE_VISUAL_TYPE,
};

int LowWord(EGLConfig config) {
    return static_cast<int>(reinterpret_cast<std::uintptr_t>(config));
}

/// A recorded list, taken apart.
struct SRecordedConfig {
    EGLint renderable = 0;
    bool windowAndPbuffer = false;  ///< EGL_SURFACE_TYPE is exactly these two
    std::vector<EGLint> relaxed;    ///< name and value pairs, ended by EGL_NONE
    std::size_t base = 0;           ///< the first pair that may be given up
};

SRecordedConfig TakeApart(const EGLint* attributes) {
    // Kept: other bits become that of ES2, which all drivers have.
    constexpr EGLint kHighestRenderable = EGL_OPENGL_ES2_BIT;
    SRecordedConfig config;
    std::array<const EGLint*, std::size(kAttributeOrder)> found{};
    for (const EGLint* pair = attributes; *pair != EGL_NONE; pair += 2) {
        if (*pair == EGL_RENDERABLE_TYPE) {
            config.renderable = std::min(pair[1], kHighestRenderable);
            continue;
        }
        if (*pair == EGL_SURFACE_TYPE && pair[1] == (EGL_WINDOW_BIT | EGL_PBUFFER_BIT)) {
            config.windowAndPbuffer = true;
        }
        const auto* place =
            std::find(std::begin(kAttributeOrder), std::end(kAttributeOrder), *pair);
        if (place != std::end(kAttributeOrder)) {
            found[static_cast<std::size_t>(place - std::begin(kAttributeOrder))] = pair;
        }
    }
    if (config.renderable != 0) config.relaxed = {EGL_RENDERABLE_TYPE, config.renderable};
    config.base = config.relaxed.size();
    for (const EGLint* pair : found) {
        if (pair != nullptr) config.relaxed.insert(config.relaxed.end(), {pair[0], pair[1]});
    }
    config.relaxed.push_back(EGL_NONE);
    return config;
}

/// Weakens one pair, or cuts the list there.
void Relax(EGLint* pair, EGLint renderable) {
    switch (pair[0]) {
        case EGL_BUFFER_SIZE:
        case EGL_ALPHA_SIZE:
        case EGL_BLUE_SIZE:
        case EGL_GREEN_SIZE:
        case EGL_RED_SIZE:
        case EGL_DEPTH_SIZE:
        case EGL_STENCIL_SIZE:
        case EGL_SAMPLES:
        case EGL_LUMINANCE_SIZE:
            pair[1] = std::min(pair[1], 1);
            break;
        case EGL_SAMPLE_BUFFERS:
            pair[1] = 0;
            break;
        case EGL_SURFACE_TYPE:
            if (pair[1] > EGL_WINDOW_BIT) pair[1] &= EGL_WINDOW_BIT;
            break;
        case EGL_ALPHA_MASK_SIZE:
            if (renderable == EGL_OPENVG_BIT) {
                pair[0] = EGL_NONE;
            } else {
                pair[1] = 0;
            }
            break;
        default:
            pair[0] = EGL_NONE;
            break;
    }
}

struct SChoice {
    EGLConfig config = nullptr;
    EGLBoolean result = EGL_FALSE;
    EGLint count = 0;
};

SChoice Choose(SEglHost& host, EGLDisplay display, const EGLint* attributes) {
    SChoice choice;
    choice.result = host.eglChooseConfig(display, attributes, &choice.config, 1, &choice.count);
    return choice;
}

bool Found(const SChoice& choice, EGLint error) {
    return error == EGL_SUCCESS && choice.result == EGL_TRUE && choice.count > 0;
}

/// The last resorts: a list of the barest needs, then whatever the host has.
EGLConfig ChooseBare(SSession& session, EGLDisplay display, const SRecordedConfig& recorded) {
    SEglHost& host = session.hosts.Egl();
    session.diagnostics.Message("Could not determine equivalent EGLConfig: Using bare config\n");
    std::vector<EGLint> bare = {EGL_SURFACE_TYPE, recorded.windowAndPbuffer
                                                      ? EGL_WINDOW_BIT | EGL_PBUFFER_BIT
                                                      : EGL_WINDOW_BIT};
    if (recorded.renderable != 0) {
        bare.insert(bare.end(), {EGL_RENDERABLE_TYPE, recorded.renderable});
    }
    bare.insert(bare.end(), {EGL_BUFFER_SIZE, 24, EGL_NONE});
    SChoice choice = Choose(host, display, bare.data());
    if (Found(choice, host.eglGetError())) return choice.config;

    session.diagnostics.Message("Bare config not valid, getting any available configs...\n");
    choice = SChoice{};
    choice.result = host.eglGetConfigs(display, &choice.config, 1, &choice.count);
    if (Found(choice, host.eglGetError())) return choice.config;

    session.diagnostics.Message(
        "Could not find any valid EGLConfigs. Please try a different playback platform.\n");
    throw "Impossible to create a proper EGL Context";
}

struct SDumpWord {
    EGLint value;
    const char* text;
};

void DumpNumber(Diagnostics& to, const char* name, EGLint value) {
    to.Message("%s=%d", name, value);
}

// Kept: the word of the value is on a line of its own; readers match it.
void DumpWord(Diagnostics& to, const char* name, EGLint value,
              std::initializer_list<SDumpWord> words) {
    to.Message("%s=", name);
    for (const SDumpWord& word : words) {
        if (word.value == value) return to.Message("%s", word.text);
    }
    to.Message("%d (Undefined)", value);
}

void DumpBits(Diagnostics& to, const char* name, EGLint value,
              std::initializer_list<SDumpWord> bits) {
    to.Message("%s=", name);
    for (const SDumpWord& bit : bits) {
        if ((value & bit.value) != 0) to.Message("%s", bit.text);
    }
}

void DumpPlainValue(Diagnostics& to, const char* name, EGLint value) {
    to.Message("%s=", name);
    to.Message("%d", value);
}

void DumpBoolean(Diagnostics& to, const char* name, EGLint value) {
    DumpWord(to, name, value,
             {{EGL_DONT_CARE, "EGL_DONT_CARE"}, {EGL_TRUE, "EGL_TRUE"}, {EGL_FALSE, "EGL_FALSE"}});
}

void DumpApis(Diagnostics& to, const char* name, EGLint value) {
    DumpBits(to, name, value,
             {{EGL_OPENGL_ES_BIT, "EGL_OPENGL_ES_BIT "},
              {EGL_OPENVG_BIT, "EGL_OPENVG_BIT "},
              {EGL_OPENGL_ES2_BIT, "EGL_OPENGL_ES2_BIT "},
              {EGL_OPENGL_BIT, "EGL_OPENGL_BIT "}});
}

/// False for a code that names no attribute of a configuration.
bool DumpAttribute(Diagnostics& to, EGLint code, EGLint value) {
    static constexpr const char* kNumbers[] = {
        "EGL_BUFFER_SIZE", "EGL_ALPHA_SIZE", "EGL_BLUE_SIZE",   "EGL_GREEN_SIZE",
        "EGL_RED_SIZE",    "EGL_DEPTH_SIZE", "EGL_STENCIL_SIZE"};
    static constexpr const char* kLimits[] = {"EGL_CONFIG_ID", "EGL_LEVEL",
                                              "EGL_MAX_PBUFFER_HEIGHT", "EGL_MAX_PBUFFER_PIXELS",
                                              "EGL_MAX_PBUFFER_WIDTH"};
    static constexpr const char* kTransparent[] = {
        "EGL_TRANSPARENT_BLUE_VALUE", "EGL_TRANSPARENT_GREEN_VALUE", "EGL_TRANSPARENT_RED_VALUE"};
    static constexpr const char* kIntervals[] = {"EGL_MIN_SWAP_INTERVAL", "EGL_MAX_SWAP_INTERVAL",
                                                 "EGL_LUMINANCE_SIZE", "EGL_ALPHA_MASK_SIZE"};
    if (code >= EGL_BUFFER_SIZE && code <= EGL_STENCIL_SIZE) {
        DumpNumber(to, kNumbers[code - EGL_BUFFER_SIZE], value);
    } else if (code >= EGL_CONFIG_ID && code <= EGL_MAX_PBUFFER_WIDTH) {
        DumpNumber(to, kLimits[code - EGL_CONFIG_ID], value);
    } else if (code >= EGL_TRANSPARENT_BLUE_VALUE && code <= EGL_TRANSPARENT_RED_VALUE) {
        DumpPlainValue(to, kTransparent[code - EGL_TRANSPARENT_BLUE_VALUE], value);
    } else if (code >= EGL_MIN_SWAP_INTERVAL && code <= EGL_ALPHA_MASK_SIZE) {
        DumpNumber(to, kIntervals[code - EGL_MIN_SWAP_INTERVAL], value);
    } else {
        switch (code) {
            case EGL_CONFIG_CAVEAT:
                DumpWord(to, "EGL_CONFIG_CAVEAT", value,
                         {{EGL_NONE, "EGL_NONE"},
                          {EGL_SLOW_CONFIG, "EGL_SLOW_CONFIG"},
                          {EGL_NON_CONFORMANT_CONFIG, "EGL_NON_CONFORMANT_CONFIG"}});
                break;
            case EGL_NATIVE_RENDERABLE:
                DumpBoolean(to, "EGL_NATIVE_RENDERABLE", value);
                break;
            case EGL_NATIVE_VISUAL_ID:
                DumpNumber(to, "EGL_NATIVE_VISUAL_ID", value);
                break;
            case EGL_NATIVE_VISUAL_TYPE:
                DumpPlainValue(to, "EGL_NATIVE_VISUAL_TYPE", value);
                break;
            case EGL_SAMPLES:
                DumpNumber(to, "EGL_SAMPLES", value);
                break;
            case EGL_SAMPLE_BUFFERS:
                DumpNumber(to, "EGL_SAMPLE_BUFFERS", value);
                break;
            case EGL_SURFACE_TYPE:
                DumpBits(to, "EGL_SURFACE_TYPE", value,
                         {{EGL_PBUFFER_BIT, "EGL_PBUFFER_BIT "},
                          {EGL_PIXMAP_BIT, "EGL_PIXMAP_BIT "},
                          {EGL_WINDOW_BIT, "EGL_WINDOW_BIT "},
                          {EGL_VG_COLORSPACE_LINEAR_BIT, "EGL_VG_COLORSPACE_LINEAR_BIT "},
                          {EGL_VG_ALPHA_FORMAT_PRE_BIT, "EGL_VG_ALPHA_FORMAT_PRE_BIT "},
                          {EGL_MULTISAMPLE_RESOLVE_BOX_BIT, "EGL_MULTISAMPLE_RESOLVE_BOX_BIT "},
                          {EGL_SWAP_BEHAVIOR_PRESERVED_BIT, "EGL_SWAP_BEHAVIOR_PRESERVED_BIT "}});
                break;
            case EGL_TRANSPARENT_TYPE:
                DumpWord(to, "EGL_TRANSPARENT_TYPE", value,
                         {{EGL_NONE, "EGL_NONE"}, {EGL_TRANSPARENT_RGB, "EGL_TRANSPARENT_RGB"}});
                break;
            case EGL_BIND_TO_TEXTURE_RGB:
                DumpBoolean(to, "EGL_BIND_TO_TEXTURE_RGB", value);
                break;
            case EGL_BIND_TO_TEXTURE_RGBA:
                DumpBoolean(to, "EGL_BIND_TO_TEXTURE_RGBA", value);
                break;
            case EGL_COLOR_BUFFER_TYPE:
                DumpWord(to, "EGL_COLOR_BUFFER_TYPE", value,
                         {{EGL_RGB_BUFFER, "EGL_RGB_BUFFER"},
                          {EGL_LUMINANCE_BUFFER, "EGL_LUMINANCE_BUFFER"}});
                break;
            case EGL_RENDERABLE_TYPE:
                DumpApis(to, "EGL_RENDERABLE_TYPE", value);
                break;
            case EGL_CONFORMANT:
                DumpApis(to, "EGL_CONFORMANT", value);
                break;
            default:
                return false;
        }
    }
    return true;
}

}  // namespace

void DumpEglConfig(SSession& session, EGLConfig config, EGLDisplay display) {
    SEglHost& host = session.hosts.Egl();
    session.diagnostics.Message("\n Final Config: %d", LowWord(config));
    for (EGLint code = EGL_BUFFER_SIZE; code <= EGL_CONFORMANT; ++code) {
        EGLint value = 0;
        host.eglGetConfigAttrib(display, config, code, &value);
        if (DumpAttribute(session.diagnostics, code, value)) session.diagnostics.Message("%s", "");
    }
    session.diagnostics.Message("%s", "");
}

EGLConfig FindEglConfig(SSession& session, EGLDisplay display, std::int64_t recordedConfig,
                        const EGLint* attributes) {
    CEglNames& names = session.eglNames;
    const auto recorded = static_cast<CEglNames::Recorded>(recordedConfig);
    if (const EGLConfig* known = names.FindConfig(display, recorded)) return *known;
    if (attributes == nullptr || attributes[0] == EGL_NONE) return nullptr;

    SEglHost& host = session.hosts.Egl();
    SChoice choice = Choose(host, display, attributes);
    const EGLint firstError = host.eglGetError();
    // Kept: a second look, behind one that cleared the error; drivers that set one and answer pass.
    if (Found(choice, host.eglGetError())) {
        names.SetConfig(display, recorded, choice.config);
        return choice.config;
    }
    // Kept: misspelt, and from the second on each value is one off; readers match it.
    session.diagnostics.Message(
        "Original EGLConfig is not valid (%d), attempting to find a similar valid config. "
        "Error: 0x%x Return value=%d Comfigs found=%d",
        static_cast<int>(recorded), static_cast<unsigned>(recorded >> 32), firstError,
        static_cast<int>(choice.result));

    SRecordedConfig config = TakeApart(attributes);
    const std::size_t end = config.relaxed.size() - 1;
    for (std::size_t i = end; i >= config.base + 2; i -= 2) {
        choice = Choose(host, display, config.relaxed.data());
        if (Found(choice, host.eglGetError())) {
            session.diagnostics.Message("\n Valid config found. Using config: %d",
                                        LowWord(choice.config));
            DumpEglConfig(session, choice.config, display);
            names.SetConfig(display, recorded, choice.config);
            return choice.config;
        }
        // Kept: what the last round gives up is never asked for; drivers choose the same configs.
        Relax(&config.relaxed[i - 2], config.renderable);
    }
    const EGLConfig bare = ChooseBare(session, display, config);
    names.SetConfig(display, recorded, bare);
    return bare;
}

}  // namespace kestrail
