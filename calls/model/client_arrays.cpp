#include "calls/model/client_arrays.h"

#include <utility>

namespace kestrail {

void ReadClientArrays(CTrace& trace, std::uint32_t start, bool indexed,
                      SVectorData<SDataPtr*>& arrays, SVectorData<int>& indices) {
    constexpr std::int64_t kErrorSize = 4;
    constexpr std::int64_t kCountSize = 4;
    const std::int64_t recordSize = trace.GetRecordSize();
    const auto taken = [&] { return std::int64_t{trace.Stream().Tell()} - start; };

    std::int64_t remaining = recordSize - kErrorSize - taken();
    const std::int64_t entrySize = trace.GetEsTypeSize(TPointer::kTag) + kCountSize;
    const std::int64_t indexSize = indexed ? -trace.GetEsTypeSize(TGLint::kTag) : 0;
    // The table's widths are signed, so that a damaged one can keep `remaining` from shrinking:
    // what was taken from the stream bounds the loop as well.
    std::int64_t before = -1;
    CObjectArena& memory = trace.CallMemory();
    while (remaining >= entrySize && taken() < recordSize && taken() > before) {
        before = taken();
        TGLint index;
        index.value = -1;
        if (indexed) trace >> index;
        SDataPtr& array = *arrays.items.Append(memory, std::in_place);
        trace >> array;
        remaining -= entrySize + array.GetSize() + indexSize;
        indices.items.Append(memory, index.value);
    }
}

void WriteClientArrays(CRecordWriter& out, bool indexed, const SVectorData<SDataPtr*>& arrays,
                       const SVectorData<int>& indices) {
    for (std::size_t i = 0; i < arrays.items.size(); ++i) {
        if (!arrays.items[i]) continue;
        TGLint index;
        index.value = indices.items[i];
        if (indexed) out << index;
        out << *arrays.items[i];
    }
}

}  // namespace kestrail
