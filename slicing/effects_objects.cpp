// Effects of displays, contexts and surfaces, of names, and of what is bound.
#include <algorithm>

#include "slicing/effects.h"
#include "slicing/places.h"

namespace kestrail {

void CEffects::Display(std::uint32_t display) {
    Named(EObject::kDisplay, display);
}

void CEffects::InitializeDisplay(std::uint32_t display) {
    Add(Named(EObject::kDisplay, display), ESlot::kExistence, 0, 0);
}

void CEffects::BindApi() {
    Set(kProcess, ESlot::kBoundApi);
}

void CEffects::CreateContext(std::uint32_t display, std::uint32_t share, std::uint32_t context) {
    Named(EObject::kDisplay, display);
    ReadPlace(kProcess, ESlot::kBoundApi);
    const std::uint32_t other = share != 0 ? Named(EObject::kContext, share) : 0;
    Create(EObject::kContext, context);
    const std::uint32_t made = Find(EObject::kContext, context);
    if (!Resolves() && made != 0)
        m_objects[made].group = other != 0 ? m_objects[other].group : made;
}

void CEffects::CreateSurface(std::uint32_t display, std::uint32_t surface) {
    Named(EObject::kDisplay, display);
    Create(EObject::kSurface, surface);
}

void CEffects::KeepSurface(std::uint32_t surface) {
    Set(Find(EObject::kSurface, surface), ESlot::kStorage, kKept, 1);
}

void CEffects::SizeSurface(std::uint32_t surface, std::int32_t width, std::int32_t height) {
    Set(Find(EObject::kSurface, surface), ESlot::kStorage, 0, Packed(width, height));
}

void CEffects::MakeCurrent(std::uint32_t context, std::uint32_t draw, std::uint32_t read) {
    const std::uint32_t current = context != 0 ? Named(EObject::kContext, context) : kNoContext;
    const std::uint32_t drawn = Named(EObject::kSurface, draw);
    const std::uint32_t other = draw != read ? Named(EObject::kSurface, read) : drawn;
    Set(kProcess, ESlot::kCurrentContext, 0, current);
    Set(current, ESlot::kDrawSurface, 0, drawn);
    Set(current, ESlot::kReadSurface, 0, other);
    if (!Resolves()) m_current = current;
}

void CEffects::SurfaceAttribute(std::uint32_t surface, std::uint32_t attribute,
                                std::uint32_t value) {
    Set(Named(EObject::kSurface, surface), ESlot::kAttribute, attribute, value);
}

void CEffects::AgeSurface(std::uint32_t surface, std::uint32_t attribute) {
    if (attribute != EGL_BUFFER_AGE_EXT) return;
    Set(Named(EObject::kSurface, surface), ESlot::kAttribute, attribute, 1);
}

void CEffects::SwapBuffers(std::uint32_t surface) {
    const std::uint32_t shown = Named(EObject::kSurface, surface);
    ReadSlot(shown, ESlot::kAttribute);
    ReadPlace(shown, ESlot::kContent, 0);
    if (Peek(shown, ESlot::kStorage, kKept) != 0) return;
    // Without a promise, what the window holds from then on is nothing to build on. Those who ask
    // how old it is do.
    const bool kept = Peek(shown, ESlot::kAttribute, EGL_SWAP_BEHAVIOR) == EGL_BUFFER_PRESERVED ||
                      Peek(shown, ESlot::kAttribute, EGL_BUFFER_AGE_EXT) != 0;
    for (std::uint64_t aspect = kept ? 1 : 0; aspect < 3; ++aspect) {
        Cut(Place(shown, ESlot::kContent, aspect, false));
    }
}

void CEffects::CurrentContext() {
    ReadPlace(kProcess, ESlot::kCurrentContext);
}

void CEffects::BindSurface(std::uint32_t surface) {
    CurrentContext();
    const std::uint32_t bound = Named(EObject::kSurface, surface);
    ReadPlace(bound, ESlot::kContent, 0);
    const std::uint32_t texture = BoundTexture(GL_TEXTURE_2D);
    Set(texture, ESlot::kStorage, ImagePlace(0, 0), Peek(bound, ESlot::kStorage));
    Set(texture, ESlot::kContent, ImagePlace(0, 0));
}

void CEffects::Create(EObject kind, std::uint32_t name) {
    if (Resolves() || name == 0) return;
    const std::uint32_t scope = Scope(kind);
    Set(MakeObject(kind, scope, name), ESlot::kExistence);
    Add(scope, ESlot::kNames, static_cast<std::uint64_t>(kind), 0);
}

void CEffects::PassedName(EObject kind) {
    ReadPlace(Scope(kind), ESlot::kNames, static_cast<std::uint64_t>(kind));
}

void CEffects::Generate(EObject kind, const Names& names) {
    for (std::uint32_t i = 0; i < names.ItemCount(); ++i) Create(kind, names.GetItem(i));
}

void CEffects::Delete(EObject kind, const Names& names) {
    for (std::uint32_t i = 0; i < names.ItemCount(); ++i) Delete(kind, names.GetItem(i));
}

void CEffects::Delete(EObject kind, std::uint32_t name) {
    if (name == 0) return;
    if (LastNamed(kind, Scope(kind), name) == 0) return;
    const std::uint32_t object = Find(kind, name);
    if (object == 0) return;
    Unbind(kind, object);
    if (Resolves()) return;
    Add(Scope(kind), ESlot::kNames, static_cast<std::uint64_t>(kind), 0);
    m_objects[object].died = m_at;
    m_endings.emplace(m_objects[object].born, m_at);
}

void CEffects::Rebind(std::uint32_t object, ESlot slot, std::uint64_t place, std::uint32_t gone) {
    if (Peek(object, slot, place) == gone) Add(object, slot, place, 0);
}

void CEffects::Unbind(EObject kind, std::uint32_t object) {
    switch (kind) {
        case EObject::kTexture:
            for (std::uint64_t place = 0; place < std::uint64_t{m_units} * kTargets; ++place) {
                Rebind(m_context, ESlot::kBoundTexture, place, object);
            }
            break;
        case EObject::kSampler:
            for (std::uint64_t unit = 0; unit < m_units; ++unit) {
                Rebind(m_context, ESlot::kBoundSampler, unit, object);
            }
            break;
        case EObject::kBuffer:
            for (const GLenum target :
                 {GL_ARRAY_BUFFER, GL_UNIFORM_BUFFER, GL_PIXEL_PACK_BUFFER, GL_PIXEL_UNPACK_BUFFER,
                  GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, GL_TRANSFORM_FEEDBACK_BUFFER}) {
                Rebind(m_context, ESlot::kBoundBuffer, target, object);
            }
            Rebind(VertexArray(), ESlot::kElements, 0, object);
            break;
        case EObject::kRenderbuffer:
            Rebind(m_context, ESlot::kBoundRenderbuffer, 0, object);
            break;
        case EObject::kFramebuffer:
            Rebind(m_context, ESlot::kBoundDrawFramebuffer, 0, object);
            Rebind(m_context, ESlot::kBoundReadFramebuffer, 0, object);
            break;
        case EObject::kVertexArray:
            Rebind(m_context, ESlot::kBoundVertexArray, 0, object);
            break;
        default:
            break;
    }
}

void CEffects::Use(EObject kind, std::uint32_t name) {
    Named(kind, name);
}

void CEffects::ActiveTexture(std::uint32_t texture) {
    const std::uint32_t unit = texture - GL_TEXTURE0;
    if (unit < 0x100) m_units = std::max(m_units, unit + 1);
    Set(m_context, ESlot::kActiveTexture, 0, unit);
}

void CEffects::ClientTexture(std::uint32_t texture) {
    Set(m_context, ESlot::kClientTexture, 0, texture - GL_TEXTURE0);
}

void CEffects::BindTexture(std::uint32_t target, std::uint32_t name) {
    const std::uint32_t unit = Value(m_context, ESlot::kActiveTexture);
    Bind(ESlot::kBoundTexture, unit * kTargets + KindOfTarget(target), EObject::kTexture, name);
}

std::uint32_t CEffects::BoundTexture(std::uint32_t target) {
    const std::uint32_t unit = Value(m_context, ESlot::kActiveTexture);
    const std::uint32_t kind = KindOfTarget(target);
    const std::uint32_t bound = Value(m_context, ESlot::kBoundTexture, unit * kTargets + kind);
    return bound != 0 ? bound : Find(EObject::kTexture, m_context, 0x80000000u + kind);
}

void CEffects::Bind(ESlot slot, std::uint64_t place, EObject kind, std::uint32_t name) {
    Set(m_context, slot, place, BoundNow(kind, name));
    if (slot == ESlot::kBoundSampler && place < 0x100) {
        m_units = std::max(m_units, static_cast<std::uint32_t>(place) + 1);
    }
}

std::uint32_t CEffects::VertexArray() {
    const std::uint32_t bound = Value(m_context, ESlot::kBoundVertexArray);
    return bound != 0 ? bound : Find(EObject::kVertexArray, m_context, 0);
}

void CEffects::BindBuffer(std::uint32_t target, std::uint32_t name) {
    const std::uint32_t buffer = BoundNow(EObject::kBuffer, name);
    if (target == GL_ELEMENT_ARRAY_BUFFER) {
        Set(VertexArray(), ESlot::kElements, 0, buffer);
    } else {
        Set(m_context, ESlot::kBoundBuffer, target, buffer);
    }
}

void CEffects::BindIndexedBuffer(std::uint32_t target, std::uint32_t index, std::uint32_t name) {
    const std::uint32_t buffer = BoundNow(EObject::kBuffer, name);
    Set(m_context, ESlot::kIndexedBuffer, std::uint64_t{target} << 32 | index, buffer);
    Set(m_context, ESlot::kBoundBuffer, target, buffer);
}

std::uint32_t CEffects::BoundBuffer(std::uint32_t target) {
    return target == GL_ELEMENT_ARRAY_BUFFER ? Value(VertexArray(), ESlot::kElements)
                                             : Value(m_context, ESlot::kBoundBuffer, target);
}

void CEffects::BindFramebuffer(std::uint32_t target, std::uint32_t name) {
    const std::uint32_t framebuffer = BoundNow(EObject::kFramebuffer, name);
    if (target != GL_READ_FRAMEBUFFER) {
        Set(m_context, ESlot::kBoundDrawFramebuffer, 0, framebuffer);
    }
    if (target != GL_DRAW_FRAMEBUFFER) {
        Set(m_context, ESlot::kBoundReadFramebuffer, 0, framebuffer);
    }
}

std::uint32_t CEffects::Framebuffer(bool read) {
    return Value(m_context, read ? ESlot::kBoundReadFramebuffer : ESlot::kBoundDrawFramebuffer);
}

std::uint32_t CEffects::BoundFramebuffer(std::uint32_t target) {
    return Framebuffer(target == GL_READ_FRAMEBUFFER);
}

}  // namespace kestrail
