#include "recorder/channel/ring.h"

#include <sys/mman.h>
#include <sys/shm.h>
#include <unistd.h>

namespace kestrail {
namespace {

constexpr std::size_t kFileBytes = kRingHeadBytes + kRingBytes;
constexpr std::size_t kSpan = kFileBytes + kRingBytes;

bool MapFile(int descriptor, std::uint8_t* start) {
    const auto map = [descriptor](std::uint8_t* at, std::size_t size, off_t offset) {
        return mmap(at, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, descriptor, offset) ==
               at;
    };
    return map(start, kFileBytes, 0) && map(start + kFileBytes, kRingBytes, kRingHeadBytes);
}

bool MapSegment(int segment, std::uint8_t* start) {
    // Of no bytes of a shared mapping, another one is made.
    return shmat(segment, start, SHM_REMAP) == start &&
           mremap(start + kRingHeadBytes, 0, kRingBytes, MREMAP_MAYMOVE | MREMAP_FIXED,
                  start + kFileBytes) != MAP_FAILED;
}

}  // namespace

bool CRingMapping::Create(SRingMemory& memory) {
    memory.descriptor = memfd_create("kestrail-record", MFD_CLOEXEC);
    if (memory.descriptor >= 0 && ftruncate(memory.descriptor, kFileBytes) != 0) {
        close(memory.descriptor);
        memory.descriptor = -1;
    }
    constexpr int kOwner = 0600;
    if (memory.descriptor < 0) memory.segment = shmget(IPC_PRIVATE, kFileBytes, IPC_CREAT | kOwner);
    const bool mapped = Map(memory);
    // Goes with whoever has it last; until then others can still take it up.
    if (memory.segment >= 0) shmctl(memory.segment, IPC_RMID, nullptr);
    if (!mapped && memory.descriptor >= 0) close(memory.descriptor);
    return mapped;
}

bool CRingMapping::Map(const SRingMemory& memory) {
    void* const room = mmap(nullptr, kSpan, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) return false;
    auto* const start = static_cast<std::uint8_t*>(room);
    const bool mapped = memory.descriptor >= 0 ? MapFile(memory.descriptor, start)
                                               : MapSegment(memory.segment, start);
    if (!mapped) {
        munmap(start, kSpan);
        return false;
    }
    m_head = reinterpret_cast<SRingHead*>(start);
    m_bytes = start + kRingHeadBytes;
    return true;
}

CRingMapping::~CRingMapping() {
    if (m_head != nullptr) munmap(m_head, kSpan);
}

}  // namespace kestrail
