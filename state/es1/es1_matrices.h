// The matrices that the fixed-function calls build, and their products: bit for bit the same on
// every run, since a seek compares and restores what comes out here. A matrix is sixteen numbers in
// the order in which GL takes them; the builders write theirs in rows and transpose at the end.
#pragma once

#include <array>
#include <optional>

#include "state/es1/es1_state.h"
#include "state/stored_values.h"

namespace kestrail {

/// a x b: each sum over k starts at 0 and runs upwards, in single precision.
SMatrix Product(const SMatrix& a, const SMatrix& b);

/// The builders give the matrix transposed, as the right factor of `Product`.
SMatrix TranslateMatrix(float x, float y, float z);
SMatrix ScaleMatrix(float x, float y, float z);
/// The angle in degrees; the axis is taken as it is, not normalised.
SMatrix RotateMatrix(const CNumbers& angle, const CNumbers& x, const CNumbers& y,
                     const CNumbers& z);
/// By left, right, bottom, top, near and far. In fixed point integer steps wrap at 32 bits,
/// divisions truncate, and there is nothing where a division by zero would come up.
std::optional<SMatrix> FrustumMatrix(const std::array<CNumbers, 6>& sides);
std::optional<SMatrix> OrthoMatrix(const std::array<CNumbers, 6>& sides);

}  // namespace kestrail
