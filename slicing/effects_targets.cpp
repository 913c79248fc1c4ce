// Effects of framebuffers and of what is drawn into them, cleared and read back.
#include <algorithm>
#include <cstdlib>

#include "slicing/effects.h"
#include "slicing/places.h"

namespace kestrail {

void CEffects::Attach(std::uint32_t target, std::uint32_t attachment, const SAttached& attached) {
    const std::uint32_t framebuffer = BoundFramebuffer(target);
    if (Resolves() || framebuffer == 0) return;
    std::uint32_t value = 0;
    if (attached.object != 0) {
        m_attached.push_back(attached);
        value = static_cast<std::uint32_t>(m_attached.size());
    }
    const auto set = [&](std::uint32_t place) {
        Set(framebuffer, ESlot::kAttachment, place, value);
    };
    const bool both = attachment == GL_DEPTH_STENCIL_ATTACHMENT;
    if (both || attachment == GL_DEPTH_ATTACHMENT) set(kDepthAttachment);
    if (both || attachment == GL_STENCIL_ATTACHMENT) set(kStencilAttachment);
    const std::uint32_t color = attachment - GL_COLOR_ATTACHMENT0;
    if (color < 32) set(color);
}

void CEffects::AttachTexture(std::uint32_t target, std::uint32_t attachment, std::uint32_t texture,
                             std::int32_t level, std::uint32_t face) {
    Attach(target, attachment, {Named(EObject::kTexture, texture), level, FaceOf(face), true});
}

void CEffects::AttachLayer(std::uint32_t target, std::uint32_t attachment, std::uint32_t texture,
                           std::int32_t level, std::int32_t layer) {
    Attach(target, attachment, {Named(EObject::kTexture, texture), level, layer + 1, true});
}

void CEffects::AttachRenderbuffer(std::uint32_t target, std::uint32_t attachment,
                                  std::uint32_t name) {
    Attach(target, attachment, {Named(EObject::kRenderbuffer, name), 0, 0, false});
}

void CEffects::DrawBuffers(const Enums& buffers) {
    std::uint32_t colors = 0x80000000u;
    for (std::uint32_t i = 0; i < buffers.ItemCount(); ++i) {
        const std::uint32_t color = buffers.GetItem(i) - GL_COLOR_ATTACHMENT0;
        if (color < 31) colors |= 1u << color;
        if (buffers.GetItem(i) == GL_BACK) colors |= 1;
    }
    const std::uint32_t framebuffer = Framebuffer(false);
    Set(framebuffer != 0 ? framebuffer : m_context, ESlot::kDrawBuffers, 0, colors);
}

void CEffects::ReadBuffer(std::uint32_t source) {
    const std::uint32_t framebuffer = Framebuffer(true);
    const std::uint32_t color = source - GL_COLOR_ATTACHMENT0;
    Set(framebuffer != 0 ? framebuffer : m_context, ESlot::kReadBuffer, 0, color < 31 ? color : 0);
}

void CEffects::ReadFramebuffer(std::uint32_t framebuffer) {
    if (!Resolves()) return;
    ReadWhole(framebuffer);
    for (const std::uint32_t number : m_objects[framebuffer].journals) {
        const SJournal& journal = m_journals[number];
        const std::uint32_t value = journal.slot == ESlot::kAttachment ? Peek(journal) : 0;
        if (value == 0) continue;
        ReadPlace(m_attached[value - 1].object, ESlot::kExistence);
        ReadSlot(m_attached[value - 1].object, ESlot::kStorage);
    }
}

template <typename Visit>
void CEffects::VisitTargets(bool read, std::uint32_t aspects, std::uint32_t colors, Visit visit) {
    const std::uint32_t framebuffer = Framebuffer(read);
    if (framebuffer == 0) {
        const std::uint32_t surface =
            Value(m_context, read ? ESlot::kReadSurface : ESlot::kDrawSurface);
        if (surface == 0) return;
        ReadSlot(surface, ESlot::kAttribute);
        const std::uint32_t size = Peek(surface, ESlot::kStorage);
        for (std::uint32_t aspect = 0; aspect < 3; ++aspect) {
            if ((aspects >> aspect & 1) == 0 || (aspect == 0 && colors == 0)) continue;
            visit(STarget{surface, aspect, static_cast<std::int32_t>(size >> 16),
                          static_cast<std::int32_t>(size & 0xFFFF)},
                  1u << aspect);
        }
        return;
    }
    ReadFramebuffer(framebuffer);
    const auto attached = [&](std::uint32_t place, std::uint32_t aspect) {
        const std::uint32_t value = Peek(framebuffer, ESlot::kAttachment, place);
        if (value == 0) return;
        const SAttached& found = m_attached[value - 1];
        STarget target;
        target.object = found.object;
        target.place = (found.texture ? ImagePlace(found.level, found.layer) : 0) | aspect;
        std::uint32_t size = Peek(found.object, ESlot::kStorage,
                                  found.texture ? ImagePlace(found.level, found.layer) : 0);
        if (const std::uint32_t whole = Peek(found.object, ESlot::kStorage, kAllLevels)) {
            size = Packed(std::max(1, static_cast<std::int32_t>(whole >> 16) >> found.level),
                          std::max(1, static_cast<std::int32_t>(whole & 0xFFFF) >> found.level));
        }
        target.width = static_cast<std::int32_t>(size >> 16);
        target.height = static_cast<std::int32_t>(size & 0xFFFF);
        visit(target, 1u << aspect);
    };
    for (std::uint32_t color = 0; (aspects & kColorAspect) != 0 && color < 31; ++color) {
        if (colors >> color == 0) break;
        if ((colors >> color & 1) != 0) attached(color, 0);
    }
    if ((aspects & kDepthAspect) != 0) attached(kDepthAttachment, 1);
    if ((aspects & kStencilAspect) != 0) attached(kStencilAttachment, 2);
}

std::uint32_t CEffects::DrawnColors() {
    const std::uint32_t framebuffer = Framebuffer(false);
    const std::uint32_t colors =
        Value(framebuffer != 0 ? framebuffer : m_context, ESlot::kDrawBuffers);
    return colors != 0 ? colors & 0x7FFFFFFF : 1;
}

void CEffects::ReadAttached(std::uint32_t aspects, std::uint32_t colors) {
    if (!Resolves()) return;
    VisitTargets(true, aspects, colors, [&](const STarget& target, std::uint32_t) {
        ReadPlace(target.object, ESlot::kContent, target.place);
        // What was sent to all layers, and to an image that is color and depth at once.
        ReadPlace(target.object, ESlot::kContent, target.place >> 32 << 32);
        ReadPlace(target.object, ESlot::kContent, target.place & ~std::uint64_t{15});
    });
}

void CEffects::Discard(std::uint32_t target, const Enums& attachments) {
    if (Resolves()) return;
    for (std::uint32_t i = 0; i < attachments.ItemCount(); ++i) {
        const std::uint32_t attachment = attachments.GetItem(i);
        const std::uint32_t color = attachment - GL_COLOR_ATTACHMENT0;
        std::uint32_t aspects = kColorAspect;
        if (attachment == GL_DEPTH || attachment == GL_DEPTH_ATTACHMENT) aspects = kDepthAspect;
        if (attachment == GL_STENCIL || attachment == GL_STENCIL_ATTACHMENT) {
            aspects = kStencilAspect;
        }
        if (attachment == GL_DEPTH_STENCIL_ATTACHMENT) aspects = kDepthAspect | kStencilAspect;
        VisitTargets(target == GL_READ_FRAMEBUFFER, aspects,
                     color < 31 ? 1u << color : std::uint32_t{attachment == GL_COLOR},
                     [&](const STarget& gone, std::uint32_t) {
                         Cut(Place(gone.object, ESlot::kContent, gone.place, false));
                     });
    }
}

bool CEffects::ScissorLetsThrough(const STarget& target) {
    if (Value(m_context, ESlot::kCapability, GL_SCISSOR_TEST) == 0) return true;
    const std::uint32_t box = Value(m_context, ESlot::kScissor);
    return box != 0 && m_scissors[box - 1].Covers({0, 0, target.width, target.height});
}

void CEffects::WriteTargets(std::uint32_t aspects, std::uint32_t colors, std::uint32_t whole) {
    VisitTargets(false, aspects, colors, [&](const STarget& target, std::uint32_t aspect) {
        if ((whole & aspect) != 0 && ScissorLetsThrough(target)) {
            Set(target.object, ESlot::kContent, target.place);
            return;
        }
        Add(target.object, ESlot::kContent, target.place, 0);
        ReadPlace(target.object, ESlot::kContent, target.place >> 32 << 32);
        ReadPlace(target.object, ESlot::kContent, target.place & ~std::uint64_t{15});
    });
}

void CEffects::Draw() {
    if (Resolves()) {
        ReadWhole(m_context);
        ReadArrays();
        const std::uint32_t program = m_isEs1 ? 0 : Value(m_context, ESlot::kProgramInUse);
        ReadWhole(program);
        ReadSampled(program);
        for (const std::uint32_t number : m_objects[m_context].journals) {
            const SJournal& journal = m_journals[number];
            if (journal.slot == ESlot::kIndexedBuffer) ReadWhole(Peek(journal));
        }
    }
    const auto on = [&](std::uint32_t capability) {
        return Value(m_context, ESlot::kCapability, capability) != 0;
    };
    std::uint32_t aspects = 0;
    if (Value(m_context, ESlot::kColorMask) != 2) aspects |= kColorAspect;
    if (on(GL_DEPTH_TEST)) aspects |= kDepthAspect;
    if (on(GL_STENCIL_TEST)) aspects |= kStencilAspect;
    WriteTargets(aspects, DrawnColors(), 0);
    if (Value(m_context, ESlot::kFeedback) == 0) return;
    for (const std::uint32_t number : m_objects[m_context].journals) {
        const SJournal& journal = m_journals[number];
        if (journal.slot != ESlot::kIndexedBuffer ||
            journal.place >> 32 != GL_TRANSFORM_FEEDBACK_BUFFER) {
            continue;
        }
        Add(Peek(journal), ESlot::kContent, 0, 0);
    }
}

void CEffects::Clear(std::uint32_t mask) {
    if (Resolves()) ReadWhole(m_context);
    std::uint32_t aspects = 0;
    std::uint32_t whole = 0;
    const auto add = [&](std::uint32_t bit, EAspect aspect, std::uint32_t masked) {
        if ((mask & bit) == 0 || masked == 2) return;
        aspects |= aspect;
        if (masked == 0) whole |= aspect;
    };
    add(GL_COLOR_BUFFER_BIT, kColorAspect, Value(m_context, ESlot::kColorMask));
    add(GL_DEPTH_BUFFER_BIT, kDepthAspect, Value(m_context, ESlot::kDepthMask));
    add(GL_STENCIL_BUFFER_BIT, kStencilAspect, Value(m_context, ESlot::kStencilMask, GL_FRONT));
    WriteTargets(aspects, DrawnColors(), whole);
}

void CEffects::ClearBuffer(std::uint32_t buffer, std::int32_t drawBuffer) {
    if (Resolves()) ReadWhole(m_context);
    std::uint32_t aspects = kColorAspect;
    if (buffer == GL_DEPTH) aspects = kDepthAspect;
    if (buffer == GL_STENCIL) aspects = kStencilAspect;
    if (buffer == GL_DEPTH_STENCIL) aspects = kDepthAspect | kStencilAspect;
    std::uint32_t whole = 0;
    if (Value(m_context, ESlot::kColorMask) == 0) whole |= kColorAspect;
    if (Value(m_context, ESlot::kDepthMask) == 0) whole |= kDepthAspect;
    if (Value(m_context, ESlot::kStencilMask, GL_FRONT) == 0) whole |= kStencilAspect;
    const bool known = drawBuffer >= 0 && drawBuffer < 31;
    WriteTargets(aspects, known ? 1u << drawBuffer : 0, whole);
}

void CEffects::Blit(std::uint32_t mask, std::int32_t x0, std::int32_t y0, std::int32_t x1,
                    std::int32_t y1) {
    if (Resolves()) ReadWhole(m_context);
    std::uint32_t aspects = 0;
    if ((mask & GL_COLOR_BUFFER_BIT) != 0) aspects |= kColorAspect;
    if ((mask & GL_DEPTH_BUFFER_BIT) != 0) aspects |= kDepthAspect;
    if ((mask & GL_STENCIL_BUFFER_BIT) != 0) aspects |= kStencilAspect;
    const std::uint32_t source = Framebuffer(true);
    ReadAttached(aspects, 1u << Value(source != 0 ? source : m_context, ESlot::kReadBuffer));
    const SJournal::SArea area = {std::min(x0, x1), std::min(y0, y1), std::abs(x1 - x0),
                                  std::abs(y1 - y0)};
    VisitTargets(false, aspects, DrawnColors(), [&](const STarget& target, std::uint32_t) {
        if (ScissorLetsThrough(target) && area.Covers({0, 0, target.width, target.height})) {
            Set(target.object, ESlot::kContent, target.place);
        } else {
            Add(target.object, ESlot::kContent, target.place, 0);
        }
    });
}

void CEffects::ReadPixels() {
    const std::uint32_t source = Framebuffer(true);
    ReadAttached(kColorAspect | kDepthAspect | kStencilAspect,
                 1u << Value(source != 0 ? source : m_context, ESlot::kReadBuffer));
}

void CEffects::PackPixels() {
    const std::uint32_t buffer = Value(m_context, ESlot::kBoundBuffer, GL_PIXEL_PACK_BUFFER);
    if (buffer == 0) return;
    ReadSlot(m_context, ESlot::kPixelStore);
    ReadPixels();
    Add(buffer, ESlot::kContent, 0, 0);
}

}  // namespace kestrail
