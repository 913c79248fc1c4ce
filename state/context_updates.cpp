#include "state/context_updates.h"

namespace kestrail {

bool ApplySubData(SBuffers& buffers, const std::uint32_t* bound, std::int64_t offset,
                  std::int64_t size, const SBlock& data, const SUpdates& updates) {
    const SBufferState* buffer = bound != nullptr ? buffers->Find(*bound) : nullptr;
    if (buffer == nullptr || data.GetData() == nullptr || size < 0 || size > data.GetSize() ||
        offset < 0 || offset > std::int64_t{buffer->size} - size) {
        return false;
    }
    if (size == 0) return true;
    const auto length = static_cast<std::size_t>(size);
    const bool whole = length == buffer->size;
    if (!whole && !buffer->data.Takes(buffer->size, updates)) return false;
    SBufferState& changed = *buffers.Write().Find(*bound);
    if (whole) {
        changed.data = CSharedBytes::Borrow(data.GetData(), length);
    } else {
        changed.data.Put(
            changed.size,
            {static_cast<std::size_t>(offset), length, length, 1, data.GetData(), length},
            data.GetData(), updates);
    }
    return true;
}

}  // namespace kestrail
