// What the updates of the records of both APIs have in common. They only write what differs: an
// unneeded write would part a record from its snapshots and copy a table.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "base/enumerants.h"
#include "calls/model/array_values.h"
#include "state/context_state.h"
#include "state/updates.h"

namespace kestrail {

/// The place of `name` in `table`; its size for one that it does not hold.
template <std::size_t N>
std::size_t PlaceIn(const std::array<std::uint32_t, N>& table, std::uint32_t name) {
    return static_cast<std::size_t>(std::find(table.begin(), table.end(), name) - table.begin());
}

using SNames = std::span<const std::uint32_t>;

/// The names that a call carries, at most `count`.
inline SNames NamesOf(const SArrayPtr<TGLuint, 1, 1>& names, std::int32_t count = INT32_MAX) {
    return {names.GetRawArray(),
            std::min(names.ItemCount(), static_cast<std::uint32_t>(std::max(count, 0)))};
}

/// Erases the records of `names`. False when the call carries none. Name 0 stands for no object.
template <typename Table>
bool EraseRecords(TShared<Table>& table, SNames names) {
    for (const std::uint32_t name : names) {
        if (name != 0 && table->Find(name) != nullptr) table.Write().Erase(name);
    }
    return !names.empty();
}

/// Unbinds `bound` when it is one of the deleted names.
inline void Unbind(std::uint32_t& bound, SNames names) {
    if (std::find(names.begin(), names.end(), bound) != names.end()) bound = 0;
}

/// Erases records, none of which stays bound.
template <typename Table>
bool EraseRecords(TShared<Table>& table, std::uint32_t& bound, SNames names) {
    Unbind(bound, names);
    return EraseRecords(table, names);
}

/// Makes an empty record for each of `names`. False when the call carries none.
template <typename Record>
bool MakeRecords(TShared<TStateTable<Record>>& table, SNames names) {
    for (const std::uint32_t name : names) {
        if (name == 0) continue;
        Record& record = table.Write().GetOrCreate(name);
        record = Record{};
        record.name = name;
    }
    return !names.empty();
}

/// Makes `name` the bound object of a table, which then holds a record of it.
template <typename Record>
bool BindRecord(TShared<TStateTable<Record>>& table, std::uint32_t& bound, std::uint32_t name) {
    bound = name;
    if (name == 0) return true;
    const Record* known = table->Find(name);
    if (known != nullptr && known->everBound != 0) return true;
    Record& record = table.Write().GetOrCreate(name);
    record.name = name;
    record.everBound = 1;
    return true;
}

/// Gives the bound renderbuffer its storage. False when none is bound.
template <typename State, typename Call>
bool SetRenderbufferStorage(State& state, const Call& call) {
    if (state.renderbuffers->Find(state.boundRenderbuffer) == nullptr) return false;
    SRenderbufferState& bound = *state.renderbuffers.Write().Find(state.boundRenderbuffer);
    bound.width = call.width.GetValue();
    bound.height = call.height.GetValue();
    bound.internalFormat = call.internalformat.GetValue();
    return true;
}

template <typename State>
bool SetActiveTexture(State& state, const TGLenum& texture) {
    state.activeTexture = texture.GetValue();
    const std::uint32_t unit = state.ActiveUnit();
    if (unit == kTextureUnits) return true;
    state.textureUnitsUsed = std::max(state.textureUnitsUsed, static_cast<std::int32_t>(unit + 1));
    return true;
}

template <typename State>
bool SetPixelStore(State& state, const TGLenum& pname, const TGLint& param) {
    if (pname.GetValue() == GL_PACK_ALIGNMENT) state.packAlignment = param.GetValue();
    if (pname.GetValue() == GL_UNPACK_ALIGNMENT) state.unpackAlignment = param.GetValue();
    return true;
}

using SBuffers = TShared<TStateTable<SBufferState>>;

/// What a glBufferData makes of the bound buffer. False for none.
template <typename Call>
bool SetBufferData(SBuffers& buffers, const std::uint32_t* bound, const Call& call) {
    if (bound == nullptr || *bound == 0 || call.size.GetValue() < 0) return false;
    SBufferState& buffer = buffers.Write().GetOrCreate(*bound);
    buffer = SBufferState{};
    buffer.name = *bound;
    buffer.target = call.target.GetValue();
    buffer.size = static_cast<std::uint32_t>(call.size.GetValue());
    buffer.usage = call.usage.GetValue();
    // Contents are whole or absent, so that nobody reads more than was captured.
    if (call.data.GetSize() >= buffer.size) {
        buffer.data = CSharedBytes::Borrow(call.data.GetData(), buffer.size);
    }
    return true;
}

/// Puts `size` captured bytes at `offset` into the contents of the bound buffer. False, with
/// nothing changed, when there is no such buffer, when the range reaches out of it and when fewer
/// bytes were captured, with which no call is played.
bool ApplySubData(SBuffers& buffers, const std::uint32_t* bound, std::int64_t offset,
                  std::int64_t size, const SBlock& data, const SUpdates& updates);

}  // namespace kestrail
