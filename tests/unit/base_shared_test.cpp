#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/shared_array.h"
#include "base/shared_vector.h"

namespace kestrail {
namespace {

template <typename List>
class SharedLists : public testing::Test {};
using BothLists = testing::Types<TSharedArray<std::string>, TSharedVector<std::string, 1>>;
TYPED_TEST_SUITE(SharedLists, BothLists);

/// Random changes with copies taken in between, in tree heights of 0 to 2: each copy keeps the
/// content of the moment it was taken at.
TYPED_TEST(SharedLists, CopiesKeepTheirOwnContent) {
    TypeParam list;
    std::vector<std::string> model;
    std::vector<std::pair<TypeParam, std::vector<std::string>>> copies;
    std::mt19937 random(7);
    bool growing = true;
    for (std::uint32_t step = 0; step < 3000; ++step) {
        // Items own memory, so that one released twice or never shows under a sanitizer.
        const std::string text = "longer than a string holds in itself " + std::to_string(step);
        growing = model.empty() || (growing && model.size() < 150);
        const auto choice = random() % 10;
        if (choice == 0) {
            copies.emplace_back(list, model);
        } else if (choice < 4 && !model.empty()) {
            const auto index = static_cast<std::uint32_t>(random() % model.size());
            list.Write(index) = model[index] = text;
        } else if (growing) {
            list.Append() = text;
            model.push_back(text);
        } else {
            list.RemoveLast();
            model.pop_back();
        }
    }
    copies.emplace_back(list, model);
    for (const auto& [copy, content] : copies) {
        ASSERT_EQ(copy.Size(), content.size());
        for (std::uint32_t i = 0; i < copy.Size(); ++i) ASSERT_EQ(copy[i], content[i]);
    }
}

TEST(SharedVector, AChangeLeavesAllOtherRunsShared) {
    TSharedVector<std::uint32_t, 2> vector;
    for (std::uint32_t i = 0; i < 1000; ++i) vector.Append() = i;
    TSharedVector<std::uint32_t, 2> copy = vector;
    copy.Write(500) = 7;
    std::uint32_t apart = 0;
    for (std::uint32_t i = 0; i < 1000; ++i) apart += &vector[i] != &copy[i] ? 1U : 0U;
    EXPECT_EQ(apart, 4U);
}

}  // namespace
}  // namespace kestrail
