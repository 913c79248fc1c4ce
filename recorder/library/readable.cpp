#include "recorder/library/readable.h"

#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace kestrail::recorder {
namespace {

constexpr std::uintptr_t kPage = 4096;

/// Asks without reading. A system that can't tell is believed to have them.
bool AreReadable(std::uintptr_t start, std::size_t size) {
    const std::uintptr_t first = start / kPage * kPage;
    return madvise(reinterpret_cast<void*>(first), start + size - first, MADV_POPULATE_READ) == 0 ||
           errno == EINVAL;
}

}  // namespace

CReadable::CReadable(const void* start, std::size_t size)
    : m_data(static_cast<const std::uint8_t*>(start)) {
    const auto address = reinterpret_cast<std::uintptr_t>(start);
    if (size == 0 || AreReadable(address, size)) return;
    m_copy.resize(size);
    m_data = m_copy.data();
    for (std::size_t done = 0; done < size;) {
        const std::size_t step = std::min(size - done, kPage - (address + done) % kPage);
        const iovec to = {m_copy.data() + done, step};
        const iovec from = {reinterpret_cast<void*>(address + done), step};
        process_vm_readv(getpid(), &to, 1, &from, 1, 0);
        done += step;
    }
}

}  // namespace kestrail::recorder
