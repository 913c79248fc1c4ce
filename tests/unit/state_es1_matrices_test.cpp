#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "state/es1/es1_matrices.h"

namespace kestrail {
namespace {

constexpr SMatrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

void ExpectNear(const SMatrix& matrix, const SMatrix& expected, float tolerance) {
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_NEAR(matrix[i], expected[i], tolerance) << "element " << i;
    }
}

TEST(StateEs1Matrices, ProductIsRowsByColumns) {
    const SMatrix a = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    const SMatrix b = {2, 0, 0, 0, 0, 0, 1, 0, 0, 3, 0, 0, 1, 0, 0, -1};
    // Columns of b: 2*a0 + a3, 3*a2, a1, -a3.
    const SMatrix expected = {6, 9, 2, -4, 18, 21, 6, -8, 30, 33, 10, -12, 42, 45, 14, -16};
    EXPECT_EQ(Product(a, b), expected);
    EXPECT_EQ(Product(kIdentity, a), a);
    EXPECT_NE(Product(b, a), expected);
    EXPECT_EQ(Transposed(a)[1], 5.0F);
    EXPECT_EQ(Transposed(Transposed(a)), a);
}

TEST(StateEs1Matrices, SumsRunUpwardsInSinglePrecision) {
    // 1e8 swallows the 1 before it is taken away again: any other order or precision gives 1.
    SMatrix a{};
    a[0] = 1.0F;
    a[1] = 1e8F;
    a[2] = -1e8F;
    const SMatrix ones = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    EXPECT_EQ(Product(a, ones)[0], 0.0F);
    a[0] = 0.0F;
    SMatrix infinite{};
    infinite[0] = INFINITY;
    EXPECT_TRUE(std::isnan(Product(a, infinite)[0]));
}

TEST(StateEs1Matrices, FloatBuilders) {
    EXPECT_EQ(TranslateMatrix(5, 6, 7), (SMatrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}));
    EXPECT_EQ(ScaleMatrix(5, 6, 7), (SMatrix{5, 0, 0, 0, 0, 6, 0, 0, 0, 0, 7, 0, 0, 0, 0, 1}));
    EXPECT_EQ(FrustumMatrix(-1, 3, -1, 3, 1, 3),
              (SMatrix{0.5F, 0, 0, 0, 0, 0.5F, 0, 0, 0.5F, 0.5F, -2, -1, 0, 0, -3, 0}));
    EXPECT_EQ(OrthoMatrix(-1, 3, -1, 3, 1, 3),
              (SMatrix{0.5F, 0, 0, 0, 0, 0.5F, 0, 0, 0, 0, -1, 0, -0.5F, -0.5F, -2, 1}));
    // No size is checked: the quotients are what IEEE arithmetic gives.
    EXPECT_TRUE(std::isinf(OrthoMatrix(1, 1, 0, 1, 0, 1)[0]));
}

TEST(StateEs1Matrices, RotationTakesItsOwnHalfTurn) {
    // cos(90 * 3.14151597 / 180), where the nearest float to pi would give a thousandth of it.
    constexpr float kRest = 3.834e-5F;
    const SMatrix quarter = RotateMatrix(90, 0, 0, 1);
    ExpectNear(quarter, {kRest, 1, 0, 0, -1, kRest, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, 2e-7F);
    EXPECT_NE(quarter[0], 0.0F);
    // The axis counts with its length: (0, 2, 0) turns by y * s and leaves 4 (1 - c) + c.
    ExpectNear(RotateMatrix(90, 0, 2, 0),
               {kRest, 0, -2, 0, 0, 4 - 3 * kRest, 0, 0, 2, 0, kRest, 0, 0, 0, 0, 1}, 1e-5F);
    // Half a turn about (1, 1, 0): every product of the axis counts twice.
    ExpectNear(RotateMatrix(180, 1, 1, 0), {1, 2, 0, 0, 2, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1},
               2e-4F);
}

TEST(StateEs1Matrices, FixedRotationDividesItsTermsByTwelve) {
    constexpr float kTwelfth = 1.0F / 12.0F;
    EXPECT_EQ(RotateMatrixFixed(0, 0, 0, 1),
              (SMatrix{kTwelfth, 0, 0, 0, 0, kTwelfth, 0, 0, 0, 0, kTwelfth, 0, 0, 0, 0, 1}));
    // A quarter about (3, 6, 12): products as they are, sines of 1/4, 1/2 and 1.
    ExpectNear(RotateMatrixFixed(90, 3, 6, 12),
               {9, 19, 35.5F, 0, 17, 36, 72.25F, 0, 36.5F, 71.75F, 144, 0, 0, 0, 0, 1}, 6e-3F);
    // 65536 squared wraps to 0, 46341 squared to a negative number.
    const SMatrix wrapped = RotateMatrixFixed(180, 65536, 46341, 0);
    EXPECT_NEAR(wrapped[0], -kTwelfth, 1e-6F);
    EXPECT_NEAR(wrapped[5] / (2.0F * -2147479015.0F), 1.0F, 1e-6F);
    EXPECT_EQ(RotateMatrixFixed(INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN)[15], 1.0F);
}

TEST(StateEs1Matrices, FixedProjectionsAreIntegerArithmetic) {
    // 2n/w = 50, 2n/h = 2400, -(f+n)/d = -101, -2fn/d = -122400; each by 12, truncated.
    EXPECT_EQ(FrustumMatrixFixed(-24, 24, 0, 1, 1200, 1224),
              (SMatrix{4, 0, 0, 0, 0, 200, 0, 0, 0, 0, -8, 0, 0, 0, -10200, 0}));
    // -(26 + 24) / 2 = -25 and -(241 + 240) / 1 = -481 before the division by 12.
    EXPECT_EQ(OrthoMatrixFixed(24, 26, 240, 241, 0, 1),
              (SMatrix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -2, -40, 0, 0}));
    // 2 * 2^30 wraps to the lowest number, whose quotient by -1 wraps once more.
    const auto wrapped = FrustumMatrixFixed(1, 0, 0, 1, 0x40000000, 0x40000001);
    ASSERT_TRUE(wrapped);
    EXPECT_EQ((*wrapped)[0], -178956976.0F);
    EXPECT_EQ((*wrapped)[5], -178956976.0F);
    EXPECT_TRUE(OrthoMatrixFixed(INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN, -1, 1));
}

TEST(StateEs1Matrices, FixedProjectionsWithoutExtentDoNotExist) {
    constexpr std::int32_t kCases[][6] = {
        {5, 5, 0, 1, 0, 1}, {0, 1, 7, 7, 0, 1}, {0, 1, 0, 1, INT32_MIN, INT32_MIN}};
    for (const auto& c : kCases) {
        EXPECT_FALSE(FrustumMatrixFixed(c[0], c[1], c[2], c[3], c[4], c[5]));
        EXPECT_FALSE(OrthoMatrixFixed(c[0], c[1], c[2], c[3], c[4], c[5]));
    }
}

TEST(StateEs1Matrices, FixedElementsTruncateTowardsZero) {
    std::int32_t elements[16] = {11, 12, -11, -12, 65536, -65536, INT32_MIN, INT32_MAX};
    const SMatrix matrix = MatrixFromFixed(elements);
    const SMatrix expected = {0, 1, 0, -1, 5461, -5461, -178956970.0F, 178956970.0F};
    EXPECT_EQ(matrix, expected);
}

}  // namespace
}  // namespace kestrail
