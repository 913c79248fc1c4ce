// The matrices that the fixed-function calls build, and their products: bit for bit the same on
// every run, since a seek compares and restores what comes out here. A matrix is sixteen numbers in
// the order in which GL takes them; the builders write theirs in rows and transpose at the end.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "state/es1/es1_state.h"

namespace kestrail {

/// a x b: each sum over k starts at 0 and runs upwards, in single precision.
SMatrix Product(const SMatrix& a, const SMatrix& b);
SMatrix Transposed(const SMatrix& matrix);

/// The builders give the matrix transposed, as the right factor of `Product`.
SMatrix TranslateMatrix(float x, float y, float z);
SMatrix ScaleMatrix(float x, float y, float z);
/// The angle in degrees; the axis is taken as it is, not normalised.
SMatrix RotateMatrix(float angle, float x, float y, float z);
SMatrix FrustumMatrix(float l, float r, float b, float t, float n, float f);
SMatrix OrthoMatrix(float l, float r, float b, float t, float n, float f);

/// The same from raw fixed-point numbers. Integer steps wrap at 32 bits and divisions truncate.
SMatrix RotateMatrixFixed(std::int32_t angle, std::int32_t x, std::int32_t y, std::int32_t z);
/// Nothing where a division by zero would come up.
std::optional<SMatrix> FrustumMatrixFixed(std::int32_t l, std::int32_t r, std::int32_t b,
                                          std::int32_t t, std::int32_t n, std::int32_t f);
std::optional<SMatrix> OrthoMatrixFixed(std::int32_t l, std::int32_t r, std::int32_t b,
                                        std::int32_t t, std::int32_t n, std::int32_t f);
/// Each element by `FixedValue`, in the order given.
SMatrix MatrixFromFixed(const std::int32_t* elements);

}  // namespace kestrail
