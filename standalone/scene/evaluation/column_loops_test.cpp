#include "standalone/scene/evaluation/column_loops.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/matrix.h"
#include "standalone/scene/evaluation/time_cache.h"
#include "standalone/scene/transforms/rotation.h"

namespace vantorelix::standalone {
namespace {

// A -0 is not 0 here, and any value that is not a number is the same one.
std::uint64_t bits(double value) { return std::bit_cast<std::uint64_t>(std::isnan(value) ? std::nan("") : value); }

void fill(double* columns, std::size_t how_many, double limit, std::mt19937_64& random) {
  std::uniform_real_distribution<double> mantissa(-limit, limit);
  std::uniform_int_distribution<int> exponent(-12, 0);
  for (std::size_t i = 0; i < how_many * kColumn; ++i) columns[i] = mantissa(random) * std::pow(10.0, exponent(random));
  columns[3] = -0.0;
}

constexpr std::size_t kCounts[] = {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 40, 63, 64};

class ColumnsOf : public testing::TestWithParam<std::size_t> {
 protected:
  const ColumnLoops& loops = *column_widths().here[GetParam()];
  std::mt19937_64 random{7};
  AffineColumns a, b, made;

  static Affine matrix(const AffineColumns& columns, std::size_t i) {
    Affine m;
    for (std::size_t j = 0; j < 12; ++j) m.m[j / 3][j % 3] = columns.at[j][i];
    return m;
  }
  void forget() {
    for (auto& column : made.at)
      for (double& value : column) value = 99.0;
  }
  // Whether the first `columns` hold what `wanted` says for each place, and all else was left alone.
  template <class Wanted>
  void expect(std::size_t columns, std::size_t count, const Wanted& wanted) {
    for (std::size_t i = 0; i < kColumn; ++i) {
      const Affine m = i < count ? wanted(i) : Affine();
      for (std::size_t j = 0; j < 12; ++j)
        ASSERT_EQ(bits(made.at[j][i]), bits(i < count && j < columns ? m.m[j / 3][j % 3] : 99.0))
            << loops.name << ", number " << j << " at " << i << " of " << count;
    }
  }
};

TEST_P(ColumnsOf, RotationsAreThoseMadeOneByOne) {
  for (int order = 0; order < 7; ++order) {
    for (const std::size_t count : kCounts) {
      fill(a.at[0], 3, order % 2 == 0 ? 10.0 : 1e5, random);
      forget();
      ASSERT_TRUE(loops.rotations(a.at[0], count, order, made.at[0]));
      expect(9, count, [&](std::size_t i) {
        Affine m;
        set_rotation(m.m, sin_cos(a.at[0][i], a.at[1][i], a.at[2][i]), order);
        return m;
      });
    }
  }
}

TEST_P(ColumnsOf, RotationsAreLeftToOthersWhereAnAngleIsOutOfReach) {
  for (const double angle : {1.1e5, -1.1e5, std::numeric_limits<double>::infinity(), std::nan("")}) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      fill(a.at[0], 3, 10.0, random);
      a.at[axis][12] = angle;
      forget();
      EXPECT_FALSE(loops.rotations(a.at[0], 13, 0, made.at[0]));
      expect(0, 0, [](std::size_t) { return Affine(); });
      EXPECT_TRUE(loops.rotations(a.at[0], 12, 0, made.at[0]));
    }
  }
}

TEST_P(ColumnsOf, ProductsAreThoseMadeOneByOne) {
  for (const double limit : {10.0, 1e308}) {
    for (const std::size_t count : kCounts) {
      fill(a.at[0], 12, limit, random);
      fill(b.at[0], 12, limit, random);
      forget();
      loops.products(a.at[0], b.at[0], kColumn, count, made.at[0], kColumn);
      expect(12, count, [&](std::size_t i) { return matrix(a, i) * matrix(b, i); });
    }
  }
}

TEST_P(ColumnsOf, ProductsAreTheSameWhereColumnsAreCloserTogether) {
  for (const std::size_t count : kCounts) {
    fill(a.at[0], 12, 10.0, random);
    fill(b.at[0], 12, 10.0, random);
    std::vector<double> close(12 * count), product(12 * count + 1, 99.0);
    for (std::size_t j = 0; j < 12; ++j) std::copy_n(b.at[j], count, &close[j * count]);
    loops.products(a.at[0], close.data(), count, count, product.data(), count);
    forget();
    for (std::size_t j = 0; j < 12; ++j) std::copy_n(&product[j * count], count, made.at[j]);
    expect(12, count, [&](std::size_t i) { return matrix(a, i) * matrix(b, i); });
    EXPECT_EQ(product.back(), 99.0);
  }
}

INSTANTIATE_TEST_SUITE_P(EachWidth, ColumnsOf, testing::Range<std::size_t>(0, column_widths().here.size()),
                         [](const auto& at) { return std::string(column_widths().here[at.param]->name); });

TEST(ColumnLoops, BeginWithTheOnesThatRunEverywhere) { EXPECT_STREQ(column_widths().here.front()->name, "base"); }

TEST(ColumnLoops, OfOtherProcessorsAreNotTriedHere) {
  if (column_widths().elsewhere.empty()) return;
  GTEST_SKIP() << "not run by this processor: " << testing::PrintToString(column_widths().elsewhere);
}

}  // namespace
}  // namespace vantorelix::standalone
