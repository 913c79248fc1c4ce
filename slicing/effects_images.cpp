// Effects of textures and renderbuffers.
#include <algorithm>

#include "slicing/effects.h"
#include "slicing/places.h"

namespace kestrail {

void CEffects::TextureParameter(std::uint32_t target, std::uint32_t pname) {
    Set(BoundTexture(target), ESlot::kAttribute, pname);
}

void CEffects::SamplerParameter(std::uint32_t sampler, std::uint32_t pname) {
    Set(Named(EObject::kSampler, sampler), ESlot::kAttribute, pname);
}

void CEffects::ReadUnpacking() {
    if (!Resolves()) return;
    ReadSlot(m_context, ESlot::kPixelStore);
    ReadWhole(Value(m_context, ESlot::kBoundBuffer, GL_PIXEL_UNPACK_BUFFER));
}

void CEffects::TextureImage(std::uint32_t target, std::int32_t level, std::int32_t width,
                            std::int32_t height, std::int32_t depth) {
    const std::uint32_t texture = BoundTexture(target);
    ReadUnpacking();
    const std::int32_t face = FaceOf(target);
    const std::uint64_t place = ImagePlace(level, face);
    if (!Resolves()) {
        for (const std::uint32_t number : m_objects[texture].journals) {
            const SJournal& journal = m_journals[number];
            if (journal.slot != ESlot::kContent || LevelOf(journal.place) != level) continue;
            if (face == 0 || (journal.place & ~std::uint64_t{15}) == place) Cut(number);
        }
    }
    Set(texture, ESlot::kStorage, place, depth == 1 ? Packed(width, height) : 0);
    Set(texture, ESlot::kContent, place);
}

void CEffects::TexturePart(std::uint32_t target, std::int32_t level, std::int32_t x, std::int32_t y,
                           std::int32_t width, std::int32_t height) {
    const std::uint32_t texture = BoundTexture(target);
    ReadUnpacking();
    const std::uint64_t place = ImagePlace(level, FaceOf(target));
    std::uint32_t size = Value(texture, ESlot::kStorage, place);
    if (const std::uint32_t whole = Value(texture, ESlot::kStorage, kAllLevels)) {
        size = Packed(std::max(1, static_cast<std::int32_t>(whole >> 16) >> level),
                      std::max(1, static_cast<std::int32_t>(whole & 0xFFFF) >> level));
    }
    if (x == 0 && y == 0 && size != 0 && size == Packed(width, height)) {
        Set(texture, ESlot::kContent, place);
    } else {
        Add(texture, ESlot::kContent, place, 0, {x, y, width, height});
    }
}

void CEffects::TextureLayers(std::uint32_t target, std::int32_t level, std::int32_t x,
                             std::int32_t y, std::int32_t z, std::int32_t width,
                             std::int32_t height, std::int32_t depth) {
    const std::uint32_t texture = BoundTexture(target);
    ReadUnpacking();
    ReadSlot(texture, ESlot::kStorage);
    if (depth == 1) {
        Add(texture, ESlot::kContent, ImagePlace(level, z + 1), 0, {x, y, width, height});
    } else {
        Add(texture, ESlot::kContent, ImagePlace(level, 0), 0);
    }
}

void CEffects::TextureStorage(std::uint32_t target, std::int32_t width, std::int32_t height) {
    const std::uint32_t texture = BoundTexture(target);
    CutSlot(texture, ESlot::kContent);
    CutSlot(texture, ESlot::kStorage);
    Set(texture, ESlot::kStorage, kAllLevels, Packed(width, height));
}

void CEffects::Mipmaps(std::uint32_t target) {
    const std::uint32_t texture = BoundTexture(target);
    ReadSlot(texture, ESlot::kStorage);
    ReadSlot(texture, ESlot::kAttribute);
    // Drivers may hold back what was drawn into it until another framebuffer is bound.
    Framebuffer(false);
    Framebuffer(true);
    if (Resolves()) {
        // Whichever level it is made from.
        for (const std::uint32_t journal : m_objects[texture].journals) {
            if (m_journals[journal].slot == ESlot::kContent) Read(journal);
        }
        return;
    }
    const bool immutable = Peek(texture, ESlot::kStorage, kAllLevels) != 0;
    for (std::int32_t level = 1; level < kMostLevels; ++level) {
        for (const std::uint32_t journal : m_objects[texture].journals) {
            const SJournal& known = m_journals[journal];
            if (known.slot == ESlot::kContent && LevelOf(known.place) == level) Cut(journal);
        }
        if (!immutable) Set(texture, ESlot::kStorage, ImagePlace(level, 0));
        Set(texture, ESlot::kContent, ImagePlace(level, 0));
    }
}

void CEffects::RenderbufferStorage(std::int32_t width, std::int32_t height) {
    const std::uint32_t bound = Value(m_context, ESlot::kBoundRenderbuffer);
    CutSlot(bound, ESlot::kContent);
    Set(bound, ESlot::kStorage, 0, Packed(width, height));
}

}  // namespace kestrail
