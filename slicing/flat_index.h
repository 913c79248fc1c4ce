// Finds things by their hash in few steps: an open table of numbers that grow as things are added
// and are never taken out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrail {

class CFlatIndex {
public:
    /// What is behind the hash and `is` takes for the one wanted; 0 if there is none.
    template <typename Is>
    std::uint32_t Find(std::uint32_t hash, Is is) const {
        for (std::size_t at = hash & m_mask; m_slots[at].number != 0; at = (at + 1) & m_mask) {
            if (m_slots[at].hash == hash && is(m_slots[at].number)) return m_slots[at].number;
        }
        return 0;
    }
    /// Adds a number that isn't 0; one of the same hash stays.
    void Add(std::uint32_t hash, std::uint32_t number) {
        if (++m_count * 2 > m_slots.size()) Grow();
        Put({hash, number});
    }
    /// Puts another number in the place of one that is there.
    void Replace(std::uint32_t hash, std::uint32_t number, std::uint32_t by) {
        std::size_t at = hash & m_mask;
        while (m_slots[at].number != number) at = (at + 1) & m_mask;
        m_slots[at].number = by;
    }

    static std::uint32_t Hash(std::uint64_t low, std::uint64_t high) {
        const std::uint64_t mixed = (low ^ high * 0x9E3779B97F4A7C15u) * 0xD6E8FEB86659FD93u;
        return static_cast<std::uint32_t>(mixed >> 32);
    }

private:
    struct SSlot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0;
    };

    void Put(SSlot added) {
        std::size_t at = added.hash & m_mask;
        while (m_slots[at].number != 0) at = (at + 1) & m_mask;
        m_slots[at] = added;
    }
    void Grow() {
        std::vector<SSlot> old(m_slots.size() * 2);
        old.swap(m_slots);
        m_mask = m_slots.size() - 1;
        for (const SSlot& slot : old) {
            if (slot.number != 0) Put(slot);
        }
    }

    std::vector<SSlot> m_slots = std::vector<SSlot>(1024);
    std::size_t m_mask = 1023;
    std::size_t m_count = 0;
};

}  // namespace kestrail
