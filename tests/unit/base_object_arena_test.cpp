#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "base/object_arena.h"

namespace kestrail {
namespace {

TEST(ObjectArena, PiecesStandApartAndTheirRoomIsUsedAgain) {
    static CObjectArena arena;
    const std::size_t sizes[] = {1, 16, 17, 300, 65536, std::size_t{3} << 20, 40, 0};
    void* first = nullptr;
    for (int turn = 0; turn < 2; ++turn) {
        std::vector<std::pair<unsigned char*, std::size_t>> pieces;
        for (int round = 0; round < 1000; ++round) {
            const std::size_t size = sizes[round < 8 ? round : round % 4];
            pieces.emplace_back(static_cast<unsigned char*>(arena.Take(size)), size);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pieces.back().first) % 16, 0U);
            std::memset(pieces.back().first, round % 251, size);
        }
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const auto& [bytes, size] = pieces[i];
            if (size == 0) continue;
            EXPECT_EQ(bytes[0], i % 251);
            EXPECT_EQ(bytes[size - 1], i % 251);
        }
        EXPECT_TRUE(turn == 0 || pieces.front().first == first);
        first = pieces.front().first;
        for (const auto& [bytes, size] : pieces) arena.GiveBack(bytes, size);
    }
    // One after the other, as a stream's calls are, all stand in one place.
    for (int call = 0; call < 100; ++call) {
        void* const piece = arena.Take(200);
        EXPECT_EQ(piece, first);
        arena.GiveBack(piece, 200);
    }
}

}  // namespace
}  // namespace kestrail
