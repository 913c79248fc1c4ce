// Entry points that a host library need not have. Those of extensions are found only once a context
// is current; the optional ones are hooks that only an emulation library exports. Null when absent.
#pragma once

#include <cstddef>
#include <span>

#include "base/enumerants.h"
#include "host/entry_table.h"

namespace kestrail {

/// One record for ES1 and ES2: entry points of extensions that an API does not have stay null in
/// its table.
struct SExtensionEntries {
    PFNGLCURRENTPALETTEMATRIXOESPROC glCurrentPaletteMatrixOES;
    PFNGLLOADPALETTEFROMMODELVIEWMATRIXOESPROC glLoadPaletteFromModelViewMatrixOES;
    PFNGLMATRIXINDEXPOINTEROESPROC glMatrixIndexPointerOES;
    PFNGLWEIGHTPOINTEROESPROC glWeightPointerOES;

    PFNGLMAPBUFFEROESPROC glMapBufferOES;
    PFNGLUNMAPBUFFEROESPROC glUnmapBufferOES;
    PFNGLGETBUFFERPOINTERVOESPROC glGetBufferPointervOES;

    PFNGLISRENDERBUFFEROESPROC glIsRenderbufferOES;
    PFNGLBINDRENDERBUFFEROESPROC glBindRenderbufferOES;
    PFNGLDELETERENDERBUFFERSOESPROC glDeleteRenderbuffersOES;
    PFNGLGENRENDERBUFFERSOESPROC glGenRenderbuffersOES;
    PFNGLRENDERBUFFERSTORAGEOESPROC glRenderbufferStorageOES;
    PFNGLGETRENDERBUFFERPARAMETERIVOESPROC glGetRenderbufferParameterivOES;
    PFNGLISFRAMEBUFFEROESPROC glIsFramebufferOES;
    PFNGLBINDFRAMEBUFFEROESPROC glBindFramebufferOES;
    PFNGLDELETEFRAMEBUFFERSOESPROC glDeleteFramebuffersOES;
    PFNGLGENFRAMEBUFFERSOESPROC glGenFramebuffersOES;
    PFNGLCHECKFRAMEBUFFERSTATUSOESPROC glCheckFramebufferStatusOES;
    PFNGLFRAMEBUFFERTEXTURE2DOESPROC glFramebufferTexture2DOES;
    PFNGLFRAMEBUFFERRENDERBUFFEROESPROC glFramebufferRenderbufferOES;
    PFNGLGETFRAMEBUFFERATTACHMENTPARAMETERIVOESPROC glGetFramebufferAttachmentParameterivOES;
    PFNGLGENERATEMIPMAPOESPROC glGenerateMipmapOES;

    PFNGLMULTIDRAWELEMENTSEXTPROC glMultiDrawElementsEXT;
    PFNGLMULTIDRAWARRAYSEXTPROC glMultiDrawArraysEXT;

    PFNGLBINDVERTEXARRAYOESPROC glBindVertexArrayOES;
    PFNGLDELETEVERTEXARRAYSOESPROC glDeleteVertexArraysOES;
    PFNGLGENVERTEXARRAYSOESPROC glGenVertexArraysOES;
    PFNGLISVERTEXARRAYOESPROC glIsVertexArrayOES;

    PFNGLDISCARDFRAMEBUFFEREXTPROC glDiscardFramebufferEXT;

    PFNGLFRAMEBUFFERTEXTURE2DMULTISAMPLEEXTPROC glFramebufferTexture2DMultisampleQVA;
    PFNGLRENDERBUFFERSTORAGEMULTISAMPLEEXTPROC glRenderbufferStorageMultisampleQVA;
};

struct SExtension {
    const char* name;
    bool es1;
    bool es2;
    std::span<const SEntryPlace> entries;  ///< places in SExtensionEntries
};

/// All extensions with entry points, in the order in which they are looked for.
std::span<const SExtension> Extensions();

/// No prototypes are published for these, and nothing calls them.
struct SOptionalEntries {
    EntryAddress Zvrane_ToggleWireframe;
    EntryAddress Zvrane_GetTexImage;
    EntryAddress Zvrane_GetTexLevelParameteriv;
    EntryAddress Zvrane_GetTexLevelParameterfv;
};

inline constexpr SEntryPlace kOptionalEntries[] = {
    {"Zvrane_ToggleWireframe", offsetof(SOptionalEntries, Zvrane_ToggleWireframe)},
    {"Zvrane_GetTexImage", offsetof(SOptionalEntries, Zvrane_GetTexImage)},
    {"Zvrane_GetTexLevelParameteriv", offsetof(SOptionalEntries, Zvrane_GetTexLevelParameteriv)},
    {"Zvrane_GetTexLevelParameterfv", offsetof(SOptionalEntries, Zvrane_GetTexLevelParameterfv)},
};

}  // namespace kestrail
