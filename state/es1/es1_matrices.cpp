#include "state/es1/es1_matrices.h"

#include <bit>
#include <cmath>

#include "state/es1/es1_numbers.h"

namespace kestrail {
namespace {

constexpr SMatrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// Kept: 3.1415159, not the float next to pi; tools compare a seek's matrices.
const float kHalfTurn = std::bit_cast<float>(0x40490E99u);

float Radians(float degrees) {
    return degrees * kHalfTurn / 180.0F;
}

/// A 32-bit signed integer whose arithmetic wraps.
struct SWrapped {
    std::int32_t value;

    friend SWrapped operator+(SWrapped a, SWrapped b) { return From(a.Bits() + b.Bits()); }
    friend SWrapped operator-(SWrapped a, SWrapped b) { return From(a.Bits() - b.Bits()); }
    friend SWrapped operator*(SWrapped a, SWrapped b) { return From(a.Bits() * b.Bits()); }
    friend SWrapped operator-(SWrapped a) { return From(0u - a.Bits()); }
    /// Truncates; the divisor is not 0. The lowest number by -1 is the negation, which wraps.
    friend SWrapped operator/(SWrapped a, SWrapped b) {
        return b.value == -1 ? -a : SWrapped{a.value / b.value};
    }

    std::uint32_t Bits() const { return static_cast<std::uint32_t>(value); }
    float ToFloat() const { return static_cast<float>(value); }
    static SWrapped From(std::uint32_t bits) { return {static_cast<std::int32_t>(bits)}; }
};

SMatrix TransposedFromFixed(const std::array<SWrapped, 16>& m) {
    SMatrix matrix;
    for (std::size_t i = 0; i < 16; ++i) matrix[i] = FixedValue(m[i].value);
    return Transposed(matrix);
}

/// The volume that a projection in fixed point sees.
struct SFixedVolume {
    SFixedVolume(std::int32_t l, std::int32_t r, std::int32_t b, std::int32_t t, std::int32_t n,
                 std::int32_t f)
        : left{l}, right{r}, bottom{b}, top{t}, near{n}, far{f} {}

    /// Without an extent in some direction it has no matrix.
    bool IsEmpty() const { return width.value == 0 || height.value == 0 || depth.value == 0; }

    SWrapped left, right, bottom, top, near, far;
    SWrapped width = right - left;
    SWrapped height = top - bottom;
    SWrapped depth = far - near;
};

}  // namespace

SMatrix Product(const SMatrix& a, const SMatrix& b) {
    SMatrix product;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            float sum = 0.0F;
            for (std::size_t k = 0; k < 4; ++k) sum += a[4 * i + k] * b[4 * k + j];
            product[4 * i + j] = sum;
        }
    }
    return product;
}

SMatrix Transposed(const SMatrix& matrix) {
    SMatrix result;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) result[4 * j + i] = matrix[4 * i + j];
    }
    return result;
}

SMatrix TranslateMatrix(float x, float y, float z) {
    SMatrix m = kIdentity;
    m[3] = x;
    m[7] = y;
    m[11] = z;
    return Transposed(m);
}

SMatrix ScaleMatrix(float x, float y, float z) {
    SMatrix m{};
    m[0] = x;
    m[5] = y;
    m[10] = z;
    m[15] = 1.0F;
    return Transposed(m);
}

// Kept: the axis counts with its length; tools compare a seek's matrices.
SMatrix RotateMatrix(float angle, float x, float y, float z) {
    const float radians = Radians(angle);
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    const float rest = 1.0F - c;
    SMatrix m{};
    m[0] = x * x * rest + c;
    m[1] = x * y * rest - z * s;
    m[2] = x * z * rest + y * s;
    m[4] = x * y * rest + z * s;
    m[5] = y * y * rest + c;
    m[6] = y * z * rest - x * s;
    m[8] = x * z * rest - y * s;
    m[9] = y * z * rest + x * s;
    m[10] = z * z * rest + c;
    m[15] = 1.0F;
    return Transposed(m);
}

// Kept: a raw angle, raw products, other terms by 12; tools compare a seek's matrices.
SMatrix RotateMatrixFixed(std::int32_t angle, std::int32_t x, std::int32_t y, std::int32_t z) {
    const float radians = Radians(static_cast<float>(angle));
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    const float rest = 1.0F - c;
    const auto product = [](std::int32_t a, std::int32_t b) {
        return (SWrapped{a} * SWrapped{b}).ToFloat();
    };
    const auto fx = static_cast<float>(x);
    const auto fy = static_cast<float>(y);
    const auto fz = static_cast<float>(z);
    constexpr auto kScale = static_cast<float>(kFixedDivisor);
    SMatrix m{};
    m[0] = product(x, x) * rest + c / kScale;
    m[1] = product(x, y) * rest + fz * s / -kScale;
    m[2] = product(x, z) * rest + fy * s / kScale;
    m[4] = product(x, y) * rest + fz * s / kScale;
    m[5] = product(y, y) * rest + c / kScale;
    m[6] = product(y, z) * rest + fx * s / -kScale;
    m[8] = product(x, z) * rest + fy * s / -kScale;
    m[9] = product(y, z) * rest + fx * s / kScale;
    m[10] = product(z, z) * rest + c / kScale;
    m[15] = 1.0F;
    return Transposed(m);
}

SMatrix FrustumMatrix(float l, float r, float b, float t, float n, float f) {
    SMatrix m{};
    m[0] = 2.0F * n / (r - l);
    m[2] = (r + l) / (r - l);
    m[5] = 2.0F * n / (t - b);
    m[6] = (t + b) / (t - b);
    m[10] = -(f + n) / (f - n);
    m[11] = -2.0F * f * n / (f - n);
    m[14] = -1.0F;
    return Transposed(m);
}

SMatrix OrthoMatrix(float l, float r, float b, float t, float n, float f) {
    SMatrix m{};
    m[0] = 2.0F / (r - l);
    m[3] = -(r + l) / (r - l);
    m[5] = 2.0F / (t - b);
    m[7] = -(t + b) / (t - b);
    m[10] = -2.0F / (f - n);
    m[11] = -(f + n) / (f - n);
    m[15] = 1.0F;
    return Transposed(m);
}

// Kept: raw and in whole numbers until the end, as below; tools compare a seek's matrices.
std::optional<SMatrix> FrustumMatrixFixed(std::int32_t l, std::int32_t r, std::int32_t b,
                                          std::int32_t t, std::int32_t n, std::int32_t f) {
    const SFixedVolume v(l, r, b, t, n, f);
    if (v.IsEmpty()) return std::nullopt;
    std::array<SWrapped, 16> m{};
    m[0] = SWrapped{2} * v.near / v.width;
    m[2] = (v.right + v.left) / v.width;
    m[5] = SWrapped{2} * v.near / v.height;
    m[6] = (v.top + v.bottom) / v.height;
    m[10] = -(v.far + v.near) / v.depth;
    m[11] = SWrapped{-2} * v.far * v.near / v.depth;
    m[14] = SWrapped{-1};
    return TransposedFromFixed(m);
}

std::optional<SMatrix> OrthoMatrixFixed(std::int32_t l, std::int32_t r, std::int32_t b,
                                        std::int32_t t, std::int32_t n, std::int32_t f) {
    const SFixedVolume v(l, r, b, t, n, f);
    if (v.IsEmpty()) return std::nullopt;
    std::array<SWrapped, 16> m{};
    m[0] = SWrapped{2} / v.width;
    m[3] = -(v.right + v.left) / v.width;
    m[5] = SWrapped{2} / v.height;
    m[7] = -(v.top + v.bottom) / v.height;
    m[10] = SWrapped{-2} / v.depth;
    m[11] = -(v.far + v.near) / v.depth;
    m[15] = SWrapped{1};
    return TransposedFromFixed(m);
}

SMatrix MatrixFromFixed(const std::int32_t* elements) {
    SMatrix matrix;
    for (std::size_t i = 0; i < 16; ++i) matrix[i] = FixedValue(elements[i]);
    return matrix;
}

}  // namespace kestrail
