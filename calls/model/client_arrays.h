// The client vertex arrays that a draw call carries: the memory that its enabled arrays pointed at
// when it was recorded.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "calls/model/call_memory.h"
#include "calls/model/data_values.h"

namespace kestrail {

template <typename T>
struct TVectorItem {
    using Stored = T;
};
/// Pointed-at items are owned; one that was taken away is none.
template <typename T>
struct TVectorItem<T*> {
    using Stored = std::optional<T>;
};

/// A vector without a form of its own on the stream, and without a text.
template <typename T>
class SVectorData : public SApiTypeBase {
public:
    using Stored = typename TVectorItem<T>::Stored;

    std::vector<Stored, TCallAllocator<Stored>> items;

    void AppendText(TextWriter&) const override {}
};

/// Reads captured arrays up to the end of the record. `start` is the stream's position behind the
/// record's error field. With `indexed`, each array has its attribute's index before it; without,
/// -1 stands for it.
void ReadClientArrays(CTrace& trace, std::uint32_t start, bool indexed,
                      SVectorData<SDataPtr*>& arrays, SVectorData<int>& indices);

}  // namespace kestrail
