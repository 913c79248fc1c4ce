#include "tracefile/bytes/typed_reads.h"

#include <algorithm>

namespace kestrail {

void SkipBytes(IOManager& stream, std::uint32_t count) {
    std::uint8_t dropped[128];
    while (count > 0) {
        const std::uint32_t piece = std::min<std::uint32_t>(count, sizeof(dropped));
        if (!stream.Read(dropped, piece, true)) return;
        count -= piece;
    }
}

}  // namespace kestrail
