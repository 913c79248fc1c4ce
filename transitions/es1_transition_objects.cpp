// Textures, buffers, client arrays and framebuffers of an ES1 transition.
#include "base/enumerants.h"
#include "exec/host_data.h"
#include "transitions/context_steps.h"
#include "transitions/es1_transition_steps.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

using STextureLevels = TStateTable<STextureImage1State>;

// Kept: by place, and by name whatever they show; tools compare seeks.
bool SameTexture(SEs1Transition& t, std::int32_t place) {
    if (t.current == nullptr || place >= t.current->textures->Count()) return false;
    const STextureImage1State* image = ValueAt(*t.target.textures, place)->Find(0);
    const STextureImage1State* old = ValueAt(*t.current->textures, place)->Find(0);
    return image != nullptr && old != nullptr && image->name == old->name;
}

void UploadImage(SEs1Transition& t, std::uint32_t name, const STextureImage1State& image) {
    const GLuint live = LiveOrGenerated(t.names.Textures(), name, t.host.glGenTextures);
    t.host.glBindTexture(GL_TEXTURE_2D, live);
    CHostBytes contents;
    if (image.compressed != 0) {
        const void* data = contents.Whole(image.data, image.imageSize);
        // Hosts know no compressed image without its bytes.
        if (data != nullptr || image.imageSize == 0) {
            t.host.glCompressedTexImage2D(
                GL_TEXTURE_2D, image.level, static_cast<GLenum>(image.internalFormat), image.width,
                image.height, image.border, static_cast<GLsizei>(image.imageSize), data);
        }
    } else {
        const auto bytes = [&image](const SPixelStore& store) {
            return ImageBytes(image.format, image.type, image.width, image.height, store);
        };
        const void* pixels = contents.Pixels(image.data, bytes(TightlyPacked()),
                                             bytes(t.session.eglNames.PixelStore()));
        t.host.glTexImage2D(GL_TEXTURE_2D, image.level, image.internalFormat, image.width,
                            image.height, image.border, image.format, image.type, pixels);
    }
    if (image.level != 0) return;
    for (std::size_t i = 0; i < kTexture1Parameters.size(); ++i) {
        t.host.glTexParameterf(GL_TEXTURE_2D, kTexture1Parameters[i],
                               static_cast<float>(image.parameters[i]));
    }
}

void SetArrays(SEs1Transition& t, const SClientArraysState& arrays) {
    const auto bind = [&t](const SClientArrayState& array) {
        // An array may outlive its buffer in the record.
        const GLuint live = t.names.Buffers().Get(array.buffer);
        t.host.glBindBuffer(GL_ARRAY_BUFFER, live != CEs1Names::kUnknown ? live : array.buffer);
        return AsPointer(array.pointer);
    };
    const auto enable = [&t](GLenum array, std::uint8_t on) {
        (on != 0 ? t.host.glEnableClientState : t.host.glDisableClientState)(array);
    };
    const auto& color = arrays.color;
    t.host.glColorPointer(color.size, color.type, color.stride, bind(color));
    const auto& vertex = arrays.vertex;
    t.host.glVertexPointer(vertex.size, vertex.type, vertex.stride, bind(vertex));
    const auto& normal = arrays.normal;
    t.host.glNormalPointer(normal.type, normal.stride, bind(normal));
    const auto& pointSize = arrays.pointSize;
    t.host.glPointSizePointerOES(pointSize.type, pointSize.stride, bind(pointSize));
    if (t.host.glMatrixIndexPointerOES != nullptr) {
        const auto& index = arrays.matrixIndex;
        t.host.glMatrixIndexPointerOES(index.size, index.type, index.stride, bind(index));
    }
    if (t.host.glWeightPointerOES != nullptr) {
        const auto& weight = arrays.weight;
        t.host.glWeightPointerOES(weight.size, weight.type, weight.stride, bind(weight));
    }
    for (std::uint32_t unit = 0; unit < t.target.Units(); ++unit) {
        const SClientArrayState& coords = arrays.texCoords[unit];
        t.host.glClientActiveTexture(GL_TEXTURE0 + unit);
        if (coords.type != 0) bind(coords);
        if (coords.size != 0) {
            t.host.glTexCoordPointer(coords.size, coords.type, coords.stride,
                                     AsPointer(coords.pointer));
        }
        enable(GL_TEXTURE_COORD_ARRAY, arrays.texCoordEnabled[unit]);
    }
    for (std::size_t i = 0; i < kClientStates.size(); ++i) {
        enable(kClientStates[i], arrays.enabled[i]);
    }
}

/// An extension counts with all of its entry points only.
bool HasFramebuffers(const SEs1Host& host) {
    return host.glGenFramebuffersOES != nullptr && host.glBindFramebufferOES != nullptr &&
           host.glFramebufferRenderbufferOES != nullptr &&
           host.glFramebufferTexture2DOES != nullptr &&
           host.glCheckFramebufferStatusOES != nullptr && host.glGenRenderbuffersOES != nullptr &&
           host.glBindRenderbufferOES != nullptr && host.glRenderbufferStorageOES != nullptr;
}

void Attach(SEs1Transition& t, GLenum place, const SAttachmentState& attachment) {
    if (attachment.kind == GL_RENDERBUFFER_OES) {
        // Kept: the recorded name; tools compare pictures of sought frames.
        t.host.glFramebufferRenderbufferOES(GL_FRAMEBUFFER_OES, place, GL_RENDERBUFFER_OES,
                                            attachment.name);
    } else if (attachment.kind == GL_TEXTURE) {
        t.host.glFramebufferTexture2DOES(GL_FRAMEBUFFER_OES, place, GL_TEXTURE_2D,
                                         t.names.Textures().Get(attachment.name), attachment.level);
    }
}

}  // namespace

void TransitionEs1Textures(SEs1Transition& t) {
    const auto& textures = *t.target.textures;
    for (std::int32_t i = 0; i < textures.Count(); ++i) {
        if (SameTexture(t, i)) continue;
        const STextureLevels& levels = *ValueAt(textures, i);
        for (std::int32_t l = 0; l < levels.Count(); ++l) {
            UploadImage(t, textures.KeyAt(i), ValueAt(levels, l));
        }
    }
}

void TransitionEs1Units(SEs1Transition& t) {
    for (std::uint32_t unit = 0; unit < t.target.Units(); ++unit) {
        t.host.glActiveTexture(GL_TEXTURE0 + unit);
        // Kept: the recorded name; tools compare pictures of sought frames.
        t.host.glBindTexture(GL_TEXTURE_2D, t.target.binding2D[unit]);
        const SVector4& coord = (*t.target.currentTexCoord)[unit];
        t.host.glMultiTexCoord4f(GL_TEXTURE0 + unit, coord[0], coord[1], coord[2], coord[3]);
        Switch(t.host, GL_TEXTURE_2D, t.target.texture2DEnabled[unit] != 0);
    }
    t.host.glActiveTexture(t.target.activeTexture);
}

void TransitionEs1Buffers(SEs1Transition& t) {
    const auto& buffers = *t.target.buffers;
    for (std::int32_t i = 0; i < buffers.Count(); ++i) {
        const SBufferState& buffer = ValueAt(buffers, i);
        // Kept: by place, and by what they hold whatever the name; tools compare seeks.
        const bool known = t.current != nullptr && i < t.current->buffers->Count();
        if (known && ValueAt(*t.current->buffers, i).data.Identity() == buffer.data.Identity())
            continue;
        UploadBuffer(t.host, t.names.Buffers(), buffers.KeyAt(i), buffer);
    }
}

void TransitionEs1ClientArrays(SEs1Transition& t) {
    const bool objects =
        t.host.glGenVertexArraysOES != nullptr && t.host.glBindVertexArrayOES != nullptr;
    for (std::int32_t i = 0; i < t.target.vertexArrays->Count(); ++i) {
        const std::uint32_t name = t.target.vertexArrays->KeyAt(i);
        if (name != 0 && objects) {
            GLuint live = 0;
            // Kept: a new one at every seek, and none is deleted; tools compare seeks.
            t.host.glGenVertexArraysOES(1, &live);
            t.names.VertexArrays().Set(name, live);
            t.host.glBindVertexArrayOES(live);
        }
        SetArrays(t, *ValueAt(*t.target.vertexArrays, i));
    }
    t.BindRecordedBuffers();
    if (t.host.glBindVertexArrayOES != nullptr) {
        t.host.glBindVertexArrayOES(t.names.VertexArrays().Get(t.target.currentVertexArray));
    }
    t.host.glClientActiveTexture(t.target.clientActiveTexture);
}

void TransitionEs1Framebuffers(SEs1Transition& t) {
    if (!HasFramebuffers(t.host)) return;
    const auto& renderbuffers = *t.target.renderbuffers;
    for (std::int32_t i = 0; i < renderbuffers.Count(); ++i) {
        const SRenderbufferState& buffer = ValueAt(renderbuffers, i);
        const GLuint live = LiveOrGenerated(t.names.Renderbuffers(), renderbuffers.KeyAt(i),
                                            t.host.glGenRenderbuffersOES);
        if (buffer.everBound == 0) continue;
        t.host.glBindRenderbufferOES(GL_RENDERBUFFER_OES, live);
        t.host.glRenderbufferStorageOES(GL_RENDERBUFFER_OES, buffer.internalFormat, buffer.width,
                                        buffer.height);
    }
    const auto& framebuffers = *t.target.framebuffers;
    for (std::int32_t i = 0; i < framebuffers.Count(); ++i) {
        const SFramebufferState& framebuffer = ValueAt(framebuffers, i);
        const GLuint live = LiveOrGenerated(t.names.Framebuffers(), framebuffers.KeyAt(i),
                                            t.host.glGenFramebuffersOES);
        if (framebuffer.everBound == 0) continue;
        t.host.glBindFramebufferOES(GL_FRAMEBUFFER_OES, live);
        const bool colored = !framebuffer.colors->empty();
        Attach(t, GL_COLOR_ATTACHMENT0_OES,
               colored ? framebuffer.colors->front() : SAttachmentState());
        Attach(t, GL_DEPTH_ATTACHMENT_OES, framebuffer.depth);
        Attach(t, GL_STENCIL_ATTACHMENT_OES, framebuffer.stencil);
        t.host.glCheckFramebufferStatusOES(GL_FRAMEBUFFER_OES);
    }
    const GLuint framebuffer = t.names.Framebuffers().Get(t.target.boundFramebuffer);
    if (framebuffers.Count() > 0 && framebuffer != CEs1Names::kUnknown) {
        t.host.glBindFramebufferOES(GL_FRAMEBUFFER_OES, framebuffer);
    }
    const GLuint renderbuffer = t.names.Renderbuffers().Get(t.target.boundRenderbuffer);
    if (renderbuffers.Count() > 0 && renderbuffer != CEs1Names::kUnknown) {
        t.host.glBindRenderbufferOES(GL_RENDERBUFFER_OES, renderbuffer);
    }
}

}  // namespace kestrail
