#include "exec/extension_resolver.h"

#include <cstring>
#include <string_view>

#include "base/enumerants.h"
#include "host/egl_host.h"
#include "host/es1_host.h"
#include "host/es2_host.h"

namespace kestrail {
namespace {

template <typename Entry>
void Fetch(SEglHost& egl, Entry& entry, const char* name) {
    entry = reinterpret_cast<Entry>(egl.eglGetProcAddress(name));
}

#define KESTRAIL_FETCH(name) Fetch(egl, host.name, #name)

/// The extensions that both APIs have.
template <typename Host>
void FetchShared(SEglHost& egl, Host& host, const char* list) {
    if (HasExtension(list, "GL_OES_mapbuffer")) {
        KESTRAIL_FETCH(glMapBufferOES);
        KESTRAIL_FETCH(glUnmapBufferOES);
        KESTRAIL_FETCH(glGetBufferPointervOES);
    }
}

template <typename Host>
void FetchSharedTail(SEglHost& egl, Host& host, const char* list) {
    if (HasExtension(list, "GL_EXT_multi_draw_arrays")) {
        KESTRAIL_FETCH(glMultiDrawElementsEXT);
        KESTRAIL_FETCH(glMultiDrawArraysEXT);
    }
    if (HasExtension(list, "GL_OES_vertex_array_object")) {
        KESTRAIL_FETCH(glBindVertexArrayOES);
        KESTRAIL_FETCH(glDeleteVertexArraysOES);
        KESTRAIL_FETCH(glGenVertexArraysOES);
        KESTRAIL_FETCH(glIsVertexArrayOES);
    }
    if (HasExtension(list, "GL_EXT_discard_framebuffer")) KESTRAIL_FETCH(glDiscardFramebufferEXT);
}

void Resolve(SEglHost& egl, SEs1Host& host, const char* list) {
    if (HasExtension(list, "GL_OES_matrix_palette")) {
        KESTRAIL_FETCH(glCurrentPaletteMatrixOES);
        KESTRAIL_FETCH(glLoadPaletteFromModelViewMatrixOES);
        KESTRAIL_FETCH(glMatrixIndexPointerOES);
        KESTRAIL_FETCH(glWeightPointerOES);
    }
    FetchShared(egl, host, list);
    if (HasExtension(list, "GL_OES_framebuffer_object")) {
        KESTRAIL_FETCH(glIsRenderbufferOES);
        KESTRAIL_FETCH(glBindRenderbufferOES);
        KESTRAIL_FETCH(glDeleteRenderbuffersOES);
        KESTRAIL_FETCH(glGenRenderbuffersOES);
        KESTRAIL_FETCH(glRenderbufferStorageOES);
        KESTRAIL_FETCH(glGetRenderbufferParameterivOES);
        KESTRAIL_FETCH(glIsFramebufferOES);
        KESTRAIL_FETCH(glBindFramebufferOES);
        KESTRAIL_FETCH(glDeleteFramebuffersOES);
        KESTRAIL_FETCH(glGenFramebuffersOES);
        KESTRAIL_FETCH(glCheckFramebufferStatusOES);
        KESTRAIL_FETCH(glFramebufferTexture2DOES);
        KESTRAIL_FETCH(glFramebufferRenderbufferOES);
        KESTRAIL_FETCH(glGetFramebufferAttachmentParameterivOES);
        KESTRAIL_FETCH(glGenerateMipmapOES);
    }
    FetchSharedTail(egl, host, list);
}

void Resolve(SEglHost& egl, SEs2Host& host, const char* list) {
    FetchShared(egl, host, list);
    FetchSharedTail(egl, host, list);
    if (HasExtension(list, "GL_QVA_multisampled_render_to_texture")) {
        KESTRAIL_FETCH(glFramebufferTexture2DMultisampleQVA);
        KESTRAIL_FETCH(glRenderbufferStorageMultisampleQVA);
    }
}

#undef KESTRAIL_FETCH

template <typename Names, typename Host>
void Ensure(Names& names, Host& host) {
    if (names.ExtensionsResolved()) return;
    const auto* list = reinterpret_cast<const char*>(host.glGetString(GL_EXTENSIONS));
    if (list == nullptr) return;
    Resolve(*GetEglHost(), host, list);
    names.ExtensionsResolved() = true;
}

}  // namespace

bool HasExtension(const char* list, const char* name) {
    const std::string_view word(name);
    if (list == nullptr || word.empty() || word.find(' ') != std::string_view::npos) return false;
    const char* from = list;
    while (const char* hit = std::strstr(from, name)) {
        const char* behind = hit + word.size();
        // Kept: right behind a partial hit a word starts too; drivers' lists are read like that.
        const bool starts = hit == from || hit[-1] == ' ';
        if (starts && (*behind == ' ' || *behind == '\0')) return true;
        from = behind;
    }
    return false;
}

void EnsureExtensionResolver(CEs1Names& names) {
    Ensure(names, *GetEs1Host());
}
void EnsureExtensionResolver(CEs2Names& names) {
    Ensure(names, *GetEs2Host());
}

}  // namespace kestrail
