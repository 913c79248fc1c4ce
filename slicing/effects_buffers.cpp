// Effects of buffers, vertex arrays and transform feedback.
#include "slicing/effects.h"

namespace kestrail {

void CEffects::BufferData(std::uint32_t target, std::int32_t size) {
    const std::uint32_t buffer = BoundBuffer(target);
    Set(buffer, ESlot::kStorage, 0, static_cast<std::uint32_t>(size));
    Set(buffer, ESlot::kContent);
}

void CEffects::BufferPart(std::uint32_t target, std::int32_t offset, std::int32_t size) {
    const std::uint32_t buffer = BoundBuffer(target);
    const std::uint32_t whole = Value(buffer, ESlot::kStorage);
    if (offset == 0 && whole != 0 && static_cast<std::uint32_t>(size) == whole) {
        Set(buffer, ESlot::kContent);
    } else {
        Add(buffer, ESlot::kContent, 0, 0, {offset, 0, size, 1});
    }
}

void CEffects::ReadBufferOf(std::uint32_t target) {
    ReadWhole(BoundBuffer(target));
}

void CEffects::MapBuffer(std::uint32_t target) {
    const std::uint32_t buffer = BoundBuffer(target);
    ReadPlace(buffer, ESlot::kStorage);
    Set(buffer, ESlot::kMapping);
}

void CEffects::EndMapping(std::uint32_t target) {
    const std::uint32_t buffer = BoundBuffer(target);
    ReadPlace(buffer, ESlot::kMapping);
    // Who maps unmaps.
    const std::uint32_t mapping = Resolves() ? 0 : Place(buffer, ESlot::kMapping, 0, false);
    if (mapping != 0) m_endings.emplace(m_journals[mapping].entries.back().call, m_at);
    Set(buffer, ESlot::kMapping);
}

void CEffects::UnmapBuffer(std::uint32_t target, std::uint32_t size) {
    const std::uint32_t buffer = BoundBuffer(target);
    const std::uint32_t whole = Value(buffer, ESlot::kStorage);
    EndMapping(target);
    if (whole != 0 && size == whole) {
        Set(buffer, ESlot::kContent);
    } else {
        Add(buffer, ESlot::kContent, 0, 0);
    }
}

void CEffects::Feedback(bool begins, bool active) {
    if (begins) {
        Set(m_context, ESlot::kFeedback, 0, 1);
    } else {
        Add(m_context, ESlot::kFeedback, 0, active ? 1 : 0);
    }
}

void CEffects::AttributePointer(std::uint32_t index) {
    ReadSlot(Value(m_context, ESlot::kProgramInUse), ESlot::kAttributeLocation);
    Set(VertexArray(), ESlot::kArray, index,
        Value(m_context, ESlot::kBoundBuffer, GL_ARRAY_BUFFER));
}

void CEffects::EnableArray(std::uint32_t index, bool on) {
    ReadSlot(Value(m_context, ESlot::kProgramInUse), ESlot::kAttributeLocation);
    Set(VertexArray(), ESlot::kArrayEnabled, index, on ? 1 : 0);
}

void CEffects::AttributeDivisor(std::uint32_t index) {
    Set(VertexArray(), ESlot::kArrayDivisor, index);
}

void CEffects::ClientArray(std::uint32_t array) {
    std::uint64_t place = array;
    if (array == GL_TEXTURE_COORD_ARRAY) {
        place |= std::uint64_t{Value(m_context, ESlot::kClientTexture)} << 32;
    }
    Set(VertexArray(), ESlot::kArray, place,
        Value(m_context, ESlot::kBoundBuffer, GL_ARRAY_BUFFER));
}

void CEffects::EnableClientArray(std::uint32_t array, bool on) {
    std::uint64_t place = array;
    if (array == GL_TEXTURE_COORD_ARRAY) {
        place |= std::uint64_t{Value(m_context, ESlot::kClientTexture)} << 32;
    }
    Set(VertexArray(), ESlot::kArrayEnabled, place, on ? 1 : 0);
}

void CEffects::ReadArrays() {
    const std::uint32_t array = VertexArray();
    ReadWhole(array);
    if (array == 0) return;
    for (const std::uint32_t number : m_objects[array].journals) {
        const SJournal& journal = m_journals[number];
        const std::uint32_t buffer = Peek(journal);
        if (journal.slot == ESlot::kElements) ReadWhole(buffer);
        if (journal.slot != ESlot::kArray || buffer == 0) continue;
        if (Peek(array, ESlot::kArrayEnabled, journal.place) != 0) ReadWhole(buffer);
    }
}

}  // namespace kestrail
