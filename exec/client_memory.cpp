#include "exec/client_memory.h"

#include <sys/mman.h>

#include <utility>

namespace kestrail {
namespace {

// Recorded addresses are 32-bit numbers.
constexpr std::uintptr_t kRecordedEnd = std::uintptr_t{1} << 32;
// Below this only a privileged process can map anything.
constexpr std::uintptr_t kLowEnd = std::uintptr_t{1} << 16;

bool MapZeros(std::uintptr_t start, std::uintptr_t end) {
#ifdef MAP_FIXED_NOREPLACE
    void* const wanted = reinterpret_cast<void*>(start);
    void* const mapped =
        ::mmap(wanted, end - start, PROT_READ,
               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED_NOREPLACE, -1, 0);
    return mapped == wanted;
#else
    return false;
#endif
}

/// Pages that read as zeros behind all recorded addresses that nothing of ours stands at, so that a
/// host which follows one reads nothing worse. They take no memory, and are there from the first
/// draw that needs them.
struct SRecordedZeros {
    SRecordedZeros() : low(MapZeros(0, kLowEnd)) {
        constexpr std::uintptr_t kPiece = std::uintptr_t{1} << 28;
        for (std::uintptr_t start = kLowEnd; start < kRecordedEnd;) {
            const std::uintptr_t end = (start / kPiece + 1) * kPiece;
            high = MapZeros(start, end) && high;
            start = end;
        }
    }
    bool low;
    bool high = true;
};

}  // namespace

void CClientMemory::Point(std::uint32_t index, std::unique_ptr<SDataPtr>& array,
                          std::int64_t vertexBytes, bool keep) {
    if (index >= m_arrays.size()) m_arrays.resize(std::size_t{index} + 1);
    SHeld& held = m_arrays[index];
    held.data = array->GetData();
    held.size = array->GetSize();
    held.vertexBytes = vertexBytes;
    held.kept = keep ? std::move(array) : nullptr;
}

bool CClientMemory::Reaches(std::uint32_t index, const void* pointer, std::int64_t vertexBytes,
                            std::int64_t vertices) const {
    const std::int64_t bytes = vertexBytes * vertices;
    if (index < m_arrays.size() && m_arrays[index].data == pointer) {
        return bytes <= m_arrays[index].size;
    }
    const auto address = reinterpret_cast<std::uintptr_t>(pointer);
    if (address >= kRecordedEnd) return false;
    static const SRecordedZeros zeros;
    if (address < kLowEnd) return zeros.low;
    // A process without room for them takes the host's word for it.
    return !zeros.high || bytes <= static_cast<std::int64_t>(kRecordedEnd - address);
}

bool CClientMemory::ReachFrom(std::uint32_t index, std::int64_t vertices) const {
    for (std::size_t i = index; i < m_arrays.size(); ++i) {
        if (m_arrays[i].vertexBytes * vertices > m_arrays[i].size) return false;
    }
    return true;
}

}  // namespace kestrail
