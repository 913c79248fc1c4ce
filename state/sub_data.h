// How a part of a buffer's contents replaces that of stored ones, in the records of both APIs.
#pragma once

#include <cstdint>

#include "calls/model/data_values.h"
#include "state/es2/es2_state.h"

namespace kestrail {

/// Puts `size` captured bytes at `offset` into the contents of the buffer `name`. False, with
/// nothing changed, when there is no such buffer, when the range reaches out of it and when fewer
/// bytes were captured, with which no call is played.
bool ApplySubData(TShared<TStateTable<SBufferState>>& buffers, std::uint32_t name,
                  std::int64_t offset, std::int64_t size, const SBlock& data,
                  const SUpdates& updates);

}  // namespace kestrail
