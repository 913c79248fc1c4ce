#include "recorder/channel/ring.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrail {
namespace {

constexpr std::size_t kFileBytes = kRingHeadBytes + kRingBytes;
constexpr std::size_t kSpan = kFileBytes + kRingBytes;

}  // namespace

int CRingMapping::Create() {
    const int descriptor = memfd_create("kestrail-record", MFD_CLOEXEC);
    if (descriptor < 0) return -1;
    if (ftruncate(descriptor, kFileBytes) == 0) return descriptor;
    close(descriptor);
    return -1;
}

bool CRingMapping::Map(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || status.st_size != off_t{kFileBytes}) return false;
    void* const room = mmap(nullptr, kSpan, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) return false;
    auto* const start = static_cast<std::uint8_t*>(room);
    constexpr int kAccess = PROT_READ | PROT_WRITE;
    constexpr int kShared = MAP_SHARED | MAP_FIXED;
    if (mmap(start, kFileBytes, kAccess, kShared, descriptor, 0) == MAP_FAILED ||
        mmap(start + kFileBytes, kRingBytes, kAccess, kShared, descriptor, kRingHeadBytes) ==
            MAP_FAILED) {
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
