#include "host/extension_entries.h"

namespace kestrail {
namespace {

#define PLACE(entry) \
    { #entry, offsetof(SExtensionEntries, entry) }

constexpr SEntryPlace kMatrixPalette[] = {
    PLACE(glCurrentPaletteMatrixOES),
    PLACE(glLoadPaletteFromModelViewMatrixOES),
    PLACE(glMatrixIndexPointerOES),
    PLACE(glWeightPointerOES),
};
constexpr SEntryPlace kMapBuffer[] = {
    PLACE(glMapBufferOES),
    PLACE(glUnmapBufferOES),
    PLACE(glGetBufferPointervOES),
};
constexpr SEntryPlace kFramebufferObject[] = {
    PLACE(glIsRenderbufferOES),          PLACE(glBindRenderbufferOES),
    PLACE(glDeleteRenderbuffersOES),     PLACE(glGenRenderbuffersOES),
    PLACE(glRenderbufferStorageOES),     PLACE(glGetRenderbufferParameterivOES),
    PLACE(glIsFramebufferOES),           PLACE(glBindFramebufferOES),
    PLACE(glDeleteFramebuffersOES),      PLACE(glGenFramebuffersOES),
    PLACE(glCheckFramebufferStatusOES),  PLACE(glFramebufferTexture2DOES),
    PLACE(glFramebufferRenderbufferOES), PLACE(glGetFramebufferAttachmentParameterivOES),
    PLACE(glGenerateMipmapOES),
};
constexpr SEntryPlace kMultiDrawArrays[] = {
    PLACE(glMultiDrawElementsEXT),
    PLACE(glMultiDrawArraysEXT),
};
constexpr SEntryPlace kVertexArrayObject[] = {
    PLACE(glBindVertexArrayOES),
    PLACE(glDeleteVertexArraysOES),
    PLACE(glGenVertexArraysOES),
    PLACE(glIsVertexArrayOES),
};
constexpr SEntryPlace kDiscardFramebuffer[] = {
    PLACE(glDiscardFramebufferEXT),
};
constexpr SEntryPlace kMultisampled[] = {
    PLACE(glFramebufferTexture2DMultisampleQVA),
    PLACE(glRenderbufferStorageMultisampleQVA),
};

#undef PLACE

constexpr SExtension kExtensions[] = {
    {"GL_OES_matrix_palette", true, false, kMatrixPalette},
    {"GL_OES_mapbuffer", true, true, kMapBuffer},
    {"GL_OES_framebuffer_object", true, false, kFramebufferObject},
    {"GL_EXT_multi_draw_arrays", true, true, kMultiDrawArrays},
    {"GL_OES_vertex_array_object", true, true, kVertexArrayObject},
    {"GL_EXT_discard_framebuffer", true, true, kDiscardFramebuffer},
    {"GL_QVA_multisampled_render_to_texture", false, true, kMultisampled},
};

}  // namespace

std::span<const SExtension> Extensions() {
    return kExtensions;
}

}  // namespace kestrail
