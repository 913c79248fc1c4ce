#include "exec/client_memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace kestrail {
namespace {

// Recorded addresses are 32-bit numbers.
constexpr std::uintptr_t kRecordedEnd = std::uintptr_t{1} << 32;
// Below this only a privileged process can map anything.
constexpr std::uintptr_t kLowEnd = std::uintptr_t{1} << 16;
// Drivers may take what lies between two vertices for a signed number of 32 bits: what is further
// off they read in front of the array.
constexpr std::int64_t kFurthest = std::int64_t{1} << 31;
constexpr std::uintptr_t kZerosEnd = kRecordedEnd + static_cast<std::uintptr_t>(kFurthest);

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
            const std::uintptr_t pieceEnd = (start / kPiece + 1) * kPiece;
            high = MapZeros(start, pieceEnd) && high;
            start = pieceEnd;
        }
        if (MapZeros(kRecordedEnd, kZerosEnd)) end = kZerosEnd;
    }
    bool low;
    bool high = true;
    std::uintptr_t end = kRecordedEnd;
};

}  // namespace

CZeroTailed::CZeroTailed(CZeroTailed&& other) noexcept
    : m_start(std::exchange(other.m_start, nullptr)),
      m_front(other.m_front),
      m_size(std::exchange(other.m_size, 0)),
      m_written(other.m_written) {}

CZeroTailed& CZeroTailed::operator=(CZeroTailed&& other) noexcept {
    std::swap(m_start, other.m_start);
    std::swap(m_front, other.m_front);
    std::swap(m_size, other.m_size);
    std::swap(m_written, other.m_written);
    return *this;
}

CZeroTailed::~CZeroTailed() {
    Unmap();
}

void CZeroTailed::Unmap() {
    if (m_start != nullptr) ::munmap(m_start - m_front, m_front + m_size);
    m_start = nullptr;
}

const std::uint8_t* CZeroTailed::Put(const SDataPtr& array, std::int64_t reach) {
    const std::size_t length = array.GetSize();
    const std::size_t size = std::max(length, static_cast<std::size_t>(reach));
    if (m_start == nullptr || size > m_size) {
        const auto furthest = static_cast<std::size_t>(kFurthest);
        const std::size_t front = size > furthest ? furthest : 0;
        void* const mapped = ::mmap(nullptr, front + size, PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapped == MAP_FAILED) return nullptr;
        Unmap();
        m_start = static_cast<std::uint8_t*>(mapped) + front;
        m_front = front;
        m_size = size;
        m_written = 0;
    }
    if (length > 0) std::memcpy(m_start, array.GetData(), length);
    if (m_written > length) std::memset(m_start + length, 0, m_written - length);
    m_written = length;
    return m_start;
}

CClientMemory::STaken CClientMemory::Take(std::uint32_t index, std::optional<SDataPtr>& array,
                                          const SArrayReach& reach, bool known, bool keep) {
    if (index >= m_arrays.size()) m_arrays.resize(std::size_t{index} + 1);
    SHeld& held = m_arrays[index];
    const bool reaches = reach.Bytes() <= array->GetSize();
    if (!reaches && !known) {
        const std::uint8_t* const tailed = held.tailed.Put(*array, reach.Bytes());
        if (tailed != nullptr) {
            held.data = tailed;
            held.size = held.tailed.Reach();
            held.kept.reset();
            return {tailed, true};
        }
    }
    held.data = array->GetData();
    held.size = array->GetSize();
    held.kept.reset();
    if (keep) Keep(held, array);
    return {held.data, reaches};
}

void CClientMemory::Keep(SHeld& held, std::optional<SDataPtr>& array) {
    if (!array->StandsWithCall()) {
        held.kept = std::exchange(array, std::nullopt);
        return;
    }
    if (held.data != nullptr) {
        held.copy.assign(held.data, held.data + held.size);
        held.data = held.copy.data();
    }
    array.reset();
}

bool CClientMemory::Reaches(std::uint32_t index, const void* pointer,
                            const SArrayReach& reach) const {
    const std::int64_t bytes = reach.Bytes();
    // Only zeros of this process's own stand on both sides of an array.
    const bool tailed = index < m_arrays.size() && m_arrays[index].tailed.Holds(pointer);
    if (bytes > kFurthest && !tailed) return false;
    if (index < m_arrays.size() && m_arrays[index].data == pointer) {
        return bytes <= m_arrays[index].size;
    }
    const auto address = reinterpret_cast<std::uintptr_t>(pointer);
    if (address >= kRecordedEnd) return false;
    static const SRecordedZeros zeros;
    if (address < kLowEnd && !zeros.low) return false;
    // A process without room for them takes the host's word for it.
    return !zeros.high || bytes <= static_cast<std::int64_t>(zeros.end - address);
}

}  // namespace kestrail
