// A matrix as the channels of a transform. For the files of this folder only.
#pragma once

#include <array>

#include "base/matrix.h"

namespace vantorelix::standalone {

// In the order of Channel, from translateX on: translate, rotate (radians, order xyz), scale, shear. The translation is
// that of the matrix, bit for bit; the rest make the other rows again to about 1e-15 of their length. Rows that span
// no space cannot be made again by any channels: they lose what lies along another row. Rows too long to be squared
// count as the identity's.
using MatrixParts = std::array<double, 12>;
inline constexpr std::size_t kRotateParts = 3, kScaleParts = 6;

MatrixParts parts_of(const Affine& matrix);

// The same rotation in the angles that are closest to those of `before`, so that what lies between is as short.
void bring_near(MatrixParts& parts, const MatrixParts& before);

}  // namespace vantorelix::standalone
