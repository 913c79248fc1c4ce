#include "state/es1/es1_matrices.h"

#include <bit>
#include <cmath>

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

float Held(float element) {
    return element;
}
float Held(SWrapped element) {
    return FixedValue(element.value);
}

template <typename Number>
SMatrix Transposed(const std::array<Number, 16>& matrix) {
    SMatrix result;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) result[4 * j + i] = Held(matrix[4 * i + j]);
    }
    return result;
}

/// The volume that a projection sees.
template <typename Number>
struct SVolume {
    Number left, right, bottom, top, near, far;
    Number width = right - left;
    Number height = top - bottom;
    Number depth = far - near;
};

/// What `build` makes of the volume.
template <typename Build>
std::optional<SMatrix> Projection(const std::array<CNumbers, 6>& sides, Build build) {
    const auto& [l, r, b, t, n, f] = sides;
    if (!l.AreFixed()) {
        return build(SVolume<float>{l.Real(), r.Real(), b.Real(), t.Real(), n.Real(), f.Real()});
    }
    // Kept: raw and in whole numbers until the end; tools compare a seek's matrices.
    const SVolume<SWrapped> volume{{l.Integer()}, {r.Integer()}, {b.Integer()},
                                   {t.Integer()}, {n.Integer()}, {f.Integer()}};
    const bool empty =
        volume.width.value == 0 || volume.height.value == 0 || volume.depth.value == 0;
    return empty ? std::nullopt : std::optional<SMatrix>(build(volume));
}

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

SMatrix RotateMatrix(const CNumbers& angle, const CNumbers& x, const CNumbers& y,
                     const CNumbers& z) {
    // Kept: the axis counts with its length; tools compare a seek's matrices.
    // Kept: of fixed point raw angle and products, other terms by 12; tools compare a seek's
    // matrices.
    const auto scale = static_cast<float>(angle.AreFixed() ? kFixedDivisor : 1);
    const auto product = [](const CNumbers& a, const CNumbers& b) {
        return a.AreFixed() ? (SWrapped{a.Integer()} * SWrapped{b.Integer()}).ToFloat()
                            : a.Real() * b.Real();
    };
    const float radians = Radians(angle.Unscaled());
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    const float rest = 1.0F - c;
    SMatrix m{};
    m[0] = product(x, x) * rest + c / scale;
    m[1] = product(x, y) * rest - z.Unscaled() * s / scale;
    m[2] = product(x, z) * rest + y.Unscaled() * s / scale;
    m[4] = product(x, y) * rest + z.Unscaled() * s / scale;
    m[5] = product(y, y) * rest + c / scale;
    m[6] = product(y, z) * rest - x.Unscaled() * s / scale;
    m[8] = product(x, z) * rest - y.Unscaled() * s / scale;
    m[9] = product(y, z) * rest + x.Unscaled() * s / scale;
    m[10] = product(z, z) * rest + c / scale;
    m[15] = 1.0F;
    return Transposed(m);
}

std::optional<SMatrix> FrustumMatrix(const std::array<CNumbers, 6>& sides) {
    return Projection(sides, []<typename Number>(const SVolume<Number>& v) {
        std::array<Number, 16> m{};
        m[0] = Number{2} * v.near / v.width;
        m[2] = (v.right + v.left) / v.width;
        m[5] = Number{2} * v.near / v.height;
        m[6] = (v.top + v.bottom) / v.height;
        m[10] = -(v.far + v.near) / v.depth;
        m[11] = Number{-2} * v.far * v.near / v.depth;
        m[14] = Number{-1};
        return Transposed(m);
    });
}

std::optional<SMatrix> OrthoMatrix(const std::array<CNumbers, 6>& sides) {
    return Projection(sides, []<typename Number>(const SVolume<Number>& v) {
        std::array<Number, 16> m{};
        m[0] = Number{2} / v.width;
        m[3] = -(v.right + v.left) / v.width;
        m[5] = Number{2} / v.height;
        m[7] = -(v.top + v.bottom) / v.height;
        m[10] = Number{-2} / v.depth;
        m[11] = -(v.far + v.near) / v.depth;
        m[15] = Number{1};
        return Transposed(m);
    });
}

}  // namespace kestrail
