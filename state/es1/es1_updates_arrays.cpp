// What the calls of client arrays and buffers of OpenGL ES 1.1 do to the record. The current vertex
// array's record is copied only when a call changes it: most draws set what is there already.
#include <functional>

#include "base/enumerants.h"
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

/// Sets one value of the current vertex array. `field` picks its place.
template <typename Field, typename Value>
bool SetArrayValue(CEs1State& state, Field field, const Value& value) {
    if (!state.HasCurrentVertexArray() ||
        !(std::invoke(field, state.CurrentVertexArray()) == value)) {
        std::invoke(field, state.WriteCurrentVertexArray()) = value;
    }
    return true;
}

/// The array that a pointer call describes. The calls of normals and point sizes have no size.
template <typename Call>
SClientArrayState Described(const CEs1State& state, const Call& call) {
    SClientArrayState array;
    array.buffer = state.arrayBuffer;
    if constexpr (requires { call.size; }) array.size = call.size.GetValue();
    array.type = call.type.GetValue();
    array.stride = call.stride.GetValue();
    array.pointer = call.pointer.GetValue();
    return array;
}

bool SetClientState(CEs1State& state, std::uint32_t array, std::uint8_t enabled) {
    if (array == GL_TEXTURE_COORD_ARRAY) {
        const std::uint32_t unit = CEs1State::UnitOf(state.clientActiveTexture);
        if (unit == kTextureUnits) return false;
        return SetArrayValue(
            state, [unit](auto& arrays) -> auto& { return arrays.texCoordEnabled[unit]; }, enabled);
    }
    const std::size_t place = PlaceIn(kClientStates, array);
    if (place == kClientStates.size()) return true;
    return SetArrayValue(
        state, [place](auto& arrays) -> auto& { return arrays.enabled[place]; }, enabled);
}

/// The buffer bound to a target; null for a target that has none.
const std::uint32_t* BoundBuffer(const CEs1State& state, std::uint32_t target) {
    if (target == GL_ARRAY_BUFFER) return &state.arrayBuffer;
    if (target == GL_ELEMENT_ARRAY_BUFFER) return &state.CurrentVertexArray().elementBuffer;
    return nullptr;
}

}  // namespace

bool CEs1_glEnableClientState_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetClientState(state, array.GetValue(), 1);
}

bool CEs1_glDisableClientState_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetClientState(state, array.GetValue(), 0);
}

bool CEs1_glColorPointer_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetArrayValue(state, &SClientArraysState::color, Described(state, *this));
}

bool CEs1_glNormalPointer_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetArrayValue(state, &SClientArraysState::normal, Described(state, *this));
}

bool CEs1_glVertexPointer_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetArrayValue(state, &SClientArraysState::vertex, Described(state, *this));
}

bool CEs1_glPointSizePointerOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetArrayValue(state, &SClientArraysState::pointSize, Described(state, *this));
}

bool CEs1_glTexCoordPointer_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::uint32_t unit = CEs1State::UnitOf(state.clientActiveTexture);
    if (unit == kTextureUnits) return false;
    return SetArrayValue(
        state, [unit](auto& arrays) -> auto& { return arrays.texCoords[unit]; },
        Described(state, *this));
}

bool CEs1_glBindBuffer_v1::UpdateState(CEs1State& state, SUpdates&) {
    if (target.GetValue() == GL_ARRAY_BUFFER) {
        state.arrayBuffer = buffer.GetValue();
        return true;
    }
    if (target.GetValue() != GL_ELEMENT_ARRAY_BUFFER) return false;
    return SetArrayValue(state, &SClientArraysState::elementBuffer, buffer.GetValue());
}

bool CEs1_glBufferData_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetBufferData(state.buffers, BoundBuffer(state, target.GetValue()), *this);
}

bool CEs1_glBufferSubData_v1::UpdateState(CEs1State& state, SUpdates& updates) {
    return ApplySubData(state.buffers, BoundBuffer(state, target.GetValue()), offset.GetValue(),
                        size.GetValue(), data, updates);
}

bool CEs1_glDeleteBuffers_v1::UpdateState(CEs1State& state, SUpdates&) {
    EraseRecords(state.buffers, NamesOf(buffers, n.GetValue()));
    return true;
}

}  // namespace kestrail
