#include "state/effects.h"

#include <algorithm>

#include "base/enumerants.h"
#include "state/context_updates.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kAllColors = 0xFFFFFFFFu;

std::uint8_t AspectsOf(std::uint32_t mask) {
    return static_cast<std::uint8_t>(((mask & GL_COLOR_BUFFER_BIT) != 0 ? kColor : 0) |
                                     ((mask & GL_DEPTH_BUFFER_BIT) != 0 ? kDepth : 0) |
                                     ((mask & GL_STENCIL_BUFFER_BIT) != 0 ? kStencil : 0));
}

std::uint32_t ColorBit(std::uint32_t number) {
    return number < SFramebufferState::kMaxDrawBuffers ? 1u << number : 0;
}

std::uint16_t Narrow(std::int64_t number) {
    return static_cast<std::uint16_t>(std::clamp<std::int64_t>(number, 0, 0xFFFF));
}

/// Of corners in any order. Empty when it is larger than any image.
SArea AreaBetween(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
    const auto [left, right] = std::minmax(x0, x1);
    const auto [bottom, top] = std::minmax(y0, y1);
    if (right - left > INT32_MAX || top - bottom > INT32_MAX) return {};
    return {static_cast<std::int32_t>(left), static_cast<std::int32_t>(bottom),
            static_cast<std::int32_t>(right - left), static_cast<std::int32_t>(top - bottom)};
}

}  // namespace

void ListEffects(const CApiCall& call, const CEglState& egl, const CEs1State& es1,
                 const CEs2State& es2, std::vector<SEffect>& effects) {
    if (call.HadFailed()) return;
    const bool isEs1 = call.m_group == kGroupEgl
                           ? egl.contextClientVersion < 2
                           : call.m_group == kGroupEs1 || call.m_group == kGroupExtEs1;
    CEffects found(egl, es1, es2, isEs1, effects);
    call.ListEffects(found);
}

struct CEffects::SRaster {
    bool scissor = false;
    bool depthTest = false;
    bool stencilTest = false;
    std::uint8_t written = 0;  ///< aspects of which the masks let anything through
    std::uint8_t whole = 0;    ///< those of which they let everything through
    SArea scissorBox;
};

CEffects::SRaster CEffects::Raster() const {
    const auto make = [](const auto& state, const auto& capabilities, std::uint32_t stencilMask) {
        const auto on = [&](std::uint32_t capability) {
            return state.capabilities[PlaceIn(capabilities, capability)] != 0;
        };
        SRaster raster;
        raster.scissor = on(GL_SCISSOR_TEST);
        raster.depthTest = on(GL_DEPTH_TEST);
        raster.stencilTest = on(GL_STENCIL_TEST);
        const auto& box = state.scissorBox;
        raster.scissorBox = {box[0], box[1], box[2], box[3]};
        const auto colors = std::count(state.colorMask.begin(), state.colorMask.end(), 0);
        // No stencil has more bits.
        const std::uint32_t bits = stencilMask & 0xFF;
        const auto set = [&](std::uint8_t& aspects, bool color, bool stencil) {
            aspects = static_cast<std::uint8_t>((color ? kColor : 0) |
                                                (state.depthMask != 0 ? kDepth : 0) |
                                                (stencil ? kStencil : 0));
        };
        set(raster.written, colors != 4, bits != 0);
        set(raster.whole, colors == 0, bits == 0xFF);
        return raster;
    };
    return m_isEs1 ? make(m_es1, kEs1Capabilities, m_es1.stencil.writeMask)
                   : make(m_es2, kEs2Capabilities, m_es2.stencilFront.writeMask);
}

SEffect& CEffects::Add(EContent kind, EAccess access, std::uint32_t name) {
    SEffect& effect = m_effects.emplace_back();
    effect.kind = kind;
    effect.access = access;
    effect.name = name;
    return effect;
}

void CEffects::AddUnknown(EContent kind, EAccess access) {
    // One that is gone is not any of them.
    if (access != EAccess::kWipe) Add(kind, access, 0).unknown = true;
}

void CEffects::Named(EAccess access, EContent kind, const Names& names) {
    for (std::uint32_t i = 0; i < names.ItemCount(); ++i) {
        if (names.GetItem(i) != 0) Add(kind, access, names.GetItem(i));
    }
}

void CEffects::Surface(EAccess access, std::uint32_t surface) {
    const SEglSurfaceRecord* known = m_egl.surfaces.Find(surface);
    const bool preserved = known != nullptr && known->preserved;
    Add(EContent::kSurface, access, surface).aspects = access != EAccess::kWipe ? kColor
                                                       : preserved              ? kDepth | kStencil
                                                                                : kAllAspects;
}

void CEffects::AgedSurface(EAccess access, std::uint32_t surface, std::int32_t attribute) {
    if (attribute != EGL_BUFFER_AGE_EXT) return;
    AddUnknown(EContent::kSurface, access);
    m_effects.back().name = surface;
}

const SFramebufferState* CEffects::FindFramebuffer(std::uint32_t name) const {
    const auto& framebuffers = m_isEs1 ? m_es1.framebuffers : m_es2.framebuffers;
    return framebuffers->Find(name);
}

void CEffects::Attached(EAccess access, const SAttachmentState& attachment, std::uint8_t aspects,
                        const SArea& area) {
    if (aspects == 0 || attachment.kind == 0 || attachment.name == 0) return;
    const bool texture = attachment.kind == GL_TEXTURE;
    SEffect& effect =
        Add(texture ? EContent::kTexture : EContent::kRenderbuffer, access, attachment.name);
    effect.aspects = aspects;
    effect.area = area;
    if (!texture) return;
    const std::uint16_t level = Narrow(attachment.level);
    const std::uint32_t face =
        attachment.cubeFace != 0 ? attachment.cubeFace - GL_TEXTURE_CUBE_MAP_POSITIVE_X : 0;
    effect.levels = {level, level};
    effect.layers = {Narrow(face), Narrow(face)};
}

void CEffects::Framebuffer(EAccess access, bool read, std::uint8_t aspects, std::uint32_t colors,
                           const SArea& area) {
    if (colors == 0) aspects &= static_cast<std::uint8_t>(~kColor);
    if (aspects == 0) return;
    const std::uint32_t name = m_isEs1 ? m_es1.boundFramebuffer
                               : read  ? m_es2.content.readFramebuffer
                                       : m_es2.content.drawFramebuffer;
    if (name == 0) {
        SEffect& effect = Add(EContent::kSurface, access,
                              read ? m_egl.currentReadSurface : m_egl.currentDrawSurface);
        effect.aspects = aspects;
        effect.area = area;
        return;
    }
    const SFramebufferState* found = FindFramebuffer(name);
    if (found == nullptr || found->incomplete) {
        AddUnknown(EContent::kTexture, access);
        AddUnknown(EContent::kRenderbuffer, access);
        return;
    }
    for (std::uint32_t i = 0; i < found->colors->size(); ++i) {
        if ((colors & ColorBit(i)) != 0) {
            Attached(access, (*found->colors)[i], aspects & kColor, area);
        }
    }
    const std::uint8_t both = aspects & (kDepth | kStencil);
    // Attached in both ways, it is the later one that counts, which the record doesn't tell.
    const bool unclear =
        found->depthStencil.kind != 0 && (found->depth.kind != 0 || found->stencil.kind != 0);
    if (unclear && access == EAccess::kWipe) return;
    Attached(access, found->depth, both & kDepth, area);
    Attached(access, found->stencil, both & kStencil, area);
    Attached(access, found->depthStencil, both, area);
}

std::uint32_t CEffects::DrawnColors() const {
    if (m_isEs1) return 1;
    const std::uint32_t name = m_es2.content.drawFramebuffer;
    if (name == 0) return m_es2.content.surfaceDrawn ? 1 : 0;
    const SFramebufferState* found = FindFramebuffer(name);
    if (found == nullptr || found->drawBuffers->empty()) return 1;
    std::uint32_t colors = 0;
    for (const std::uint32_t buffer : *found->drawBuffers) {
        colors |= ColorBit(buffer - GL_COLOR_ATTACHMENT0);
    }
    return colors;
}

void CEffects::Drawn(EAccess access) {
    const SRaster raster = Raster();
    const std::uint8_t tested = static_cast<std::uint8_t>(kColor | (raster.depthTest ? kDepth : 0) |
                                                          (raster.stencilTest ? kStencil : 0));
    // Kept off by its mask, it is compared with all the same; so may a face be that has another
    // one.
    const std::uint8_t written = tested & (raster.written | kStencil);
    Framebuffer(EAccess::kRead, false, tested & ~written & kDepth, 0, {});
    Framebuffer(access, false, written, DrawnColors(), {});
    if (!m_isEs1 && m_es2.content.feedback) AddUnknown(EContent::kBuffer, access);
}

void CEffects::Clear(EAccess access, std::uint8_t aspects, std::uint32_t colors) {
    const SRaster raster = Raster();
    aspects &= raster.written;
    const std::uint8_t whole = aspects & raster.whole;
    if (access == EAccess::kWipe) {
        if (!raster.scissor) Framebuffer(access, false, whole, colors, {});
        return;
    }
    Framebuffer(access, false, whole, colors, raster.scissor ? raster.scissorBox : SArea{});
    Framebuffer(access, false, aspects & ~whole, colors, {});
}

void CEffects::Cleared(EAccess access, std::uint32_t mask) {
    Clear(access, AspectsOf(mask), DrawnColors());
}

void CEffects::Cleared(EAccess access, std::uint32_t buffer, std::int32_t drawBuffer) {
    const std::uint8_t aspects = buffer == GL_COLOR     ? kColor
                                 : buffer == GL_DEPTH   ? kDepth
                                 : buffer == GL_STENCIL ? kStencil
                                                        : kDepth | kStencil;
    Clear(access, aspects, DrawnColors() & ColorBit(static_cast<std::uint32_t>(drawBuffer)));
}

void CEffects::Attachments(EAccess access, std::uint32_t target, const Enums& attachments) {
    const bool read = target == GL_READ_FRAMEBUFFER;
    for (std::uint32_t i = 0; i < attachments.ItemCount(); ++i) {
        const std::uint32_t attachment = attachments.GetItem(i);
        switch (attachment) {
            case GL_DEPTH:
            case GL_DEPTH_ATTACHMENT:
                Framebuffer(access, read, kDepth, 0, {});
                break;
            case GL_STENCIL:
            case GL_STENCIL_ATTACHMENT:
                Framebuffer(access, read, kStencil, 0, {});
                break;
            case GL_DEPTH_STENCIL_ATTACHMENT:
                Framebuffer(access, read, kDepth | kStencil, 0, {});
                break;
            case GL_COLOR:
                Framebuffer(access, read, kColor, 1, {});
                break;
            default:
                Framebuffer(access, read, kColor, ColorBit(attachment - GL_COLOR_ATTACHMENT0), {});
        }
    }
}

void CEffects::Blitted(EAccess access, std::uint32_t mask, std::int32_t x0, std::int32_t y0,
                       std::int32_t x1, std::int32_t y1) {
    const bool read = access == EAccess::kRead;
    const SArea area = read || !Raster().scissor ? AreaBetween(x0, y0, x1, y1) : SArea{};
    Framebuffer(access, read, AspectsOf(mask), read ? kAllColors : DrawnColors(), area);
}

void CEffects::Pixels(EAccess access, const SArea& area) {
    Framebuffer(access, true, kColor, kAllColors, area);
}

void CEffects::Packed(EAccess access) {
    if (m_isEs1) return;
    const std::uint32_t name = m_es2.content.buffers[SContentBindings::kPack];
    if (name != 0) Add(EContent::kBuffer, access, name);
}

std::uint32_t CEffects::SampledUnits() const {
    // Any integer may be a sampler's unit, which is 0 as long as nobody sets it.
    std::uint32_t units = 1;
    const auto* uniforms = m_es2.uniforms->Find(m_es2.currentProgram.name);
    if (uniforms == nullptr) return units;
    const auto& values = (*uniforms)->values;
    for (std::int32_t i = 0; i < values.Count(); ++i) {
        const SUniformState& uniform = *values.ValueAt(i);
        if (uniform.kind != SUniformState::kInteger || uniform.components != 1) continue;
        for (std::uint32_t item = 0; item < uniform.values.Count(); ++item) {
            const auto unit = static_cast<std::uint32_t>(uniform.values.Integers()[item]);
            if (unit < kTextureUnits) units |= 1u << unit;
        }
    }
    const auto used = static_cast<std::uint32_t>(m_es2.textureUnitsUsed);
    return units & (kAllColors >> (kTextureUnits - std::clamp(used, 1u, kTextureUnits)));
}

void CEffects::Sampled(EAccess access) {
    if (m_isEs1) {
        for (std::size_t unit = 0; unit < kTextureUnits; ++unit) {
            if (m_es1.texture2DEnabled[unit] == 0) continue;
            Add(EContent::kTexture, access, m_es1.binding2D[unit]);
        }
        return;
    }
    std::uint32_t units = SampledUnits();
    for (std::size_t unit = 0; units != 0; ++unit, units >>= 1) {
        if ((units & 1) == 0) continue;
        Add(EContent::kTexture, access, (*m_es2.binding2D)[unit]);
        for (const auto* others : {&m_es2.bindingCube, &m_es2.binding3D, &m_es2.binding2DArray}) {
            const std::uint32_t name = (**others)[unit];
            if (name != 0) Add(EContent::kTexture, access, name);
        }
    }
}

void CEffects::Vertices(EAccess access) {
    const auto read = [&](bool enabled, std::uint32_t buffer) {
        if (enabled && buffer != 0) Add(EContent::kBuffer, access, buffer);
    };
    if (!m_isEs1) {
        for (const SAttribPointerState& array : m_es2.CurrentVertexArray().attributes) {
            read(array.enabled != 0, array.buffer);
        }
        if (m_es2.content.otherBuffers) AddUnknown(EContent::kBuffer, access);
        return;
    }
    const SClientArraysState& arrays = m_es1.CurrentVertexArray();
    const SClientArrayState* const byState[] = {&arrays.color,       &arrays.normal,
                                                &arrays.vertex,      &arrays.pointSize,
                                                &arrays.matrixIndex, &arrays.weight};
    for (std::size_t i = 0; i < arrays.enabled.size(); ++i) {
        read(arrays.enabled[i] != 0, byState[i]->buffer);
    }
    for (std::size_t unit = 0; unit < kTextureUnits; ++unit) {
        read(arrays.texCoordEnabled[unit] != 0, arrays.texCoords[unit].buffer);
    }
}

void CEffects::BoundTexture(EAccess access, std::uint32_t target, SSpan levels, SSpan layers,
                            const SArea& area) {
    const bool face =
        target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
    const std::uint32_t unit = (m_isEs1 ? m_es1.activeTexture : m_es2.activeTexture) - GL_TEXTURE0;
    const SUnitBindings* units = nullptr;
    if (m_isEs1) {
        if (target == GL_TEXTURE_2D) units = &m_es1.binding2D;
    } else {
        if (target == GL_TEXTURE_2D) units = &*m_es2.binding2D;
        if (target == GL_TEXTURE_CUBE_MAP || face) units = &*m_es2.bindingCube;
        if (target == GL_TEXTURE_3D) units = &*m_es2.binding3D;
        if (target == GL_TEXTURE_2D_ARRAY) units = &*m_es2.binding2DArray;
    }
    if (units == nullptr || unit >= kTextureUnits) return AddUnknown(EContent::kTexture, access);
    SEffect& effect = Add(EContent::kTexture, access, (*units)[unit]);
    effect.levels = levels;
    effect.layers = layers;
    effect.area = area;
    if (face) {
        effect.layers.first = effect.layers.last = Narrow(target - GL_TEXTURE_CUBE_MAP_POSITIVE_X);
    }
}

void CEffects::Texture(EAccess access, const SPart& part) {
    const std::uint32_t unpack = m_isEs1 ? 0 : m_es2.content.buffers[SContentBindings::kUnpack];
    if (access == EAccess::kSend && unpack != 0) {
        Add(EContent::kBuffer, EAccess::kRead, unpack);
        access = EAccess::kWrite;
    }
    SSpan levels, layers;
    if (part.level >= 0) levels = {Narrow(part.level), Narrow(part.level)};
    if (part.zoffset >= 0) {
        layers = {Narrow(part.zoffset),
                  Narrow(std::int64_t{part.zoffset} + std::max(part.depth, 1) - 1)};
    }
    BoundTexture(access, part.target, levels, layers,
                 {part.xoffset, part.yoffset, part.width, part.height});
    // ES1 makes the other levels by itself if a texture says so.
    if (m_isEs1 && m_es1.makesMipmaps && access != EAccess::kWipe && part.level == 0) {
        BoundTexture(EAccess::kWrite, part.target, {1, 0xFFFF}, layers, {});
    }
}

void CEffects::Mipmaps(EAccess access, std::uint32_t target) {
    BoundTexture(EAccess::kRead, target, {}, {}, {});
    SEffect& read = m_effects.back();
    if (read.unknown) return AddUnknown(EContent::kTexture, access);
    const STextureImageState* image = m_isEs1 ? nullptr : m_es2.FindImage(read.name, 0, 0);
    const auto place = TextureParameterIndex(GL_TEXTURE_BASE_LEVEL);
    const std::uint16_t base = image != nullptr ? Narrow(image->parameters[place]) : 0;
    read.levels = {base, base};
    const SSpan made = {Narrow(base + 1), 0xFFFF};
    BoundTexture(EAccess::kWipe, target, made, {}, {});
    BoundTexture(access, target, made, {}, {});
}

void CEffects::Foreign(EAccess access) {
    AddUnknown(EContent::kTexture, access);
    AddUnknown(EContent::kRenderbuffer, access);
}

void CEffects::Renderbuffer(EAccess access) {
    const std::uint32_t name = m_isEs1 ? m_es1.boundRenderbuffer : m_es2.boundRenderbuffer;
    if (name != 0) Add(EContent::kRenderbuffer, access, name);
}

void CEffects::Buffer(EAccess access, std::uint32_t target) {
    std::uint32_t name = 0;
    if (target == GL_ELEMENT_ARRAY_BUFFER) {
        name = m_isEs1 ? m_es1.CurrentVertexArray().elementBuffer
                       : m_es2.CurrentVertexArray().elementBuffer;
    } else if (m_isEs1) {
        name = m_es1.arrayBuffer;
    } else {
        const std::size_t place = PlaceIn(SContentBindings::kBuffers, target);
        if (place == m_es2.content.buffers.size()) return AddUnknown(EContent::kBuffer, access);
        name = m_es2.content.buffers[place];
    }
    if (name != 0) Add(EContent::kBuffer, access, name);
}

}  // namespace kestrail
