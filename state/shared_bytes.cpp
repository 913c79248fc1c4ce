#include "state/shared_bytes.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "state/updates.h"

namespace kestrail {
namespace {

/// Two numbers as one, so that others hardly ever give the same one.
std::uint64_t Mixed(std::uint64_t first, std::uint64_t second) {
    std::uint64_t mixed = first * 0x9E3779B97F4A7C15U + second;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31);
}

}  // namespace

class CSharedBytes::CTaking {
public:
    CTaking(std::uint64_t size, std::shared_ptr<std::uint64_t> all)
        : m_size(size), m_all(std::move(all)) {
        *m_all += size;
    }
    CTaking(const CTaking&) = delete;
    CTaking& operator=(const CTaking&) = delete;
    ~CTaking() { *m_all -= m_size; }

private:
    std::uint64_t m_size;
    std::shared_ptr<std::uint64_t> m_all;
};

CSharedBytes CSharedBytes::Borrow(const std::uint8_t* data, std::size_t size) {
    CSharedBytes bytes;
    bytes.m_data = data;
    bytes.m_dataSize = bytes.m_size = data != nullptr ? size : 0;
    bytes.m_identity = reinterpret_cast<std::uintptr_t>(data);
    return bytes;
}

const std::uint8_t* CSharedBytes::Get(std::vector<std::uint8_t>& room) const {
    if (!IsChanged()) return m_data;
    room.assign(m_size, 0);
    const SChanged& changed = *m_changed;
    if (changed.start) {
        std::copy_n(changed.start->begin(), std::min(changed.start->size(), m_size), room.begin());
    } else if (m_data != nullptr) {
        std::memcpy(room.data(), m_data, std::min(m_dataSize, m_size));
    }
    for (std::uint32_t i = 0; i < changed.parts.Size(); ++i) {
        const SByteRows& rows = changed.parts[i].rows;
        for (std::size_t row = 0; row < rows.count; ++row) {
            const std::size_t at = rows.offset + row * rows.stride;
            if (at >= m_size) break;
            std::memcpy(room.data() + at, rows.data + row * rows.dataStride,
                        std::min(rows.length, m_size - at));
        }
    }
    return room.data();
}

bool CSharedBytes::Takes(std::uint64_t size, const SUpdates& updates) const {
    if (size > kLargest) return false;
    // What is done again has been allowed before.
    return IsChanged() || updates.repeated || *updates.taken + size <= kLargestOfAll;
}

void CSharedBytes::Put(std::size_t size, const SByteRows& rows, const void* source,
                       const SUpdates& updates, Made made) {
    m_size = size;
    m_identity = Mixed(m_identity, reinterpret_cast<std::uintptr_t>(source));
    m_identity = Mixed(m_identity, rows.offset);
    const bool first = !IsChanged();
    SChanged& changed = m_changed.Write();
    if (first) changed.taking = std::make_shared<CTaking>(size, updates.taken);
    changed.parts.Append() = {rows, std::move(made)};
    changed.partBytes += rows.length * rows.count;
    // Once they are a few times as long as the whole, putting them together costs less memory than
    // they took in the trace, and bounds what each look at the contents costs.
    constexpr std::uint64_t kTimes = 4;
    if (changed.partBytes < kTimes * m_size) return;
    auto whole = std::make_shared<std::vector<std::uint8_t>>();
    Get(*whole);
    changed.start = std::move(whole);
    changed.parts = {};
    changed.partBytes = 0;
}

}  // namespace kestrail
