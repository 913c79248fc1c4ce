#include "exec/draw_indices.h"

namespace kestrail {

SDrawIndices DrawIndices(bool elementBuffer, const SDataPtr& captured, std::uint32_t offset,
                         std::int32_t count, std::uint32_t type) {
    if (elementBuffer) {
        return {AsPointer(offset), true, {count > 0 ? IndexLimit(type) : 0, false}};
    }
    const SHostData data = HostData(captured, ComponentBytes(type) * count, false, false);
    if (!data.sound) return {nullptr, false, {}};
    return {data.pointer, true, {VerticesOf(data.pointer, count, type, false), true}};
}

}  // namespace kestrail
