#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "standalone/formats/reader.h"

namespace vantorelix::standalone {
namespace {

using Matrix = std::array<double, 16>;

constexpr Matrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Matrix at(double x, double y, double z) {
  Matrix matrix = kIdentity;
  matrix[12] = x;
  matrix[13] = y;
  matrix[14] = z;
  return matrix;
}

std::string bytes_of(const std::vector<Matrix>& matrices) {
  std::string bytes;
  for (const Matrix& matrix : matrices)
    for (const double number : matrix)
      for (std::size_t i = 0; i < 8; ++i)
        bytes += static_cast<char>(std::bit_cast<std::uint64_t>(number) >> (8 * i) & 0xff);
  return bytes;
}

std::string header(const std::string& fields) {
  return R"({"format": "vantorelix-samples", "version": 1, )" + fields + "}\n";
}

Scene read(const std::string& fields, const std::vector<Matrix>& matrices) {
  return read_samples(header(fields) + bytes_of(matrices), "a.samples");
}

std::string error_of(const std::string& bytes) {
  try {
    read_samples(bytes, "a.samples");
  } catch (const FormatError& error) {
    return error.what();
  }
  return "";
}

Vector position(const Scene& scene, const char* name, double frame) {
  return scene.evaluation.world_matrix(scene.names.require(name), frame).translation();
}

Matrix random_matrix(std::mt19937& random) {
  std::uniform_real_distribution<double> number(-3.0, 3.0);
  Matrix matrix = kIdentity;
  for (std::size_t i = 0; i < 15; ++i)
    if (i % 4 != 3) matrix[i] = number(random);
  return matrix;
}

TEST(SamplesReader, PositionsAtFramesAreThoseGivenToTheLastBit) {
  std::mt19937 random(5);
  std::vector<Matrix> matrices;
  for (int i = 0; i < 3 * 40; ++i) matrices.push_back(random_matrix(random));
  const Scene scene =
      read(R"("frames": 40, "start": -7.5, "names": ["a", "b", "c"], "parents": [null, 0, 1])", matrices);
  for (std::size_t f = 0; f < 40; ++f) {
    for (std::size_t i = 0; i < 3; ++i) {
      const char* const names[] = {"a", "b", "c"};
      const Matrix& given = matrices[3 * f + i];
      EXPECT_EQ(position(scene, names[i], static_cast<double>(f) - 7.5), (Vector{given[12], given[13], given[14]}));
    }
  }
}

TEST(SamplesReader, AxesWithScaleShearAndMirroringAreThoseGiven) {
  std::mt19937 random(6);
  std::vector<Matrix> matrices;
  for (int i = 0; i < 2 * 30; ++i) matrices.push_back(random_matrix(random));
  const Scene scene = read(R"("frames": 30, "names": ["a", "b"], "parents": [null, 0])", matrices);
  for (std::size_t f = 0; f < 30; ++f) {
    const Affine found = scene.evaluation.world_matrix(scene.names.require("b"), static_cast<double>(f));
    for (std::size_t row = 0; row < 3; ++row)
      for (std::size_t column = 0; column < 3; ++column)
        EXPECT_NEAR(found.m[row][column], matrices[2 * f + 1][4 * row + column], 1e-12);
  }
}

TEST(SamplesReader, BetweenFramesPositionsAreLinear) {
  const Scene scene = read(R"("frames": 2, "names": ["a"])", {at(1, 2, 3), at(3, 6, -3)});
  EXPECT_EQ(position(scene, "a", 0.25), (Vector{1.5, 3.0, 1.5}));
  EXPECT_EQ(position(scene, "a", -1.0), (Vector{1, 2, 3}));
  EXPECT_EQ(position(scene, "a", 5.0), (Vector{3, 6, -3}));
}

TEST(SamplesReader, ATurnPastHalfATurnGoesOnTheShortWay) {
  std::vector<Matrix> matrices;
  const double step = 1.0;  // radians a frame about z
  for (int f = 0; f < 12; ++f) {
    Matrix matrix = kIdentity;
    matrix[0] = matrix[5] = std::cos(f * step);
    matrix[1] = std::sin(f * step);
    matrix[4] = -matrix[1];
    matrices.push_back(matrix);
  }
  const Scene scene = read(R"("frames": 12, "names": ["a"])", matrices);
  for (int f = 0; f < 11; ++f) {
    const Affine found = scene.evaluation.world_matrix(scene.names.require("a"), f + 0.5);
    EXPECT_NEAR(found.m[0][0], std::cos((f + 0.5) * step), 1e-12);
    EXPECT_NEAR(found.m[0][1], std::sin((f + 0.5) * step), 1e-12);
  }
}

TEST(SamplesReader, ObjectsHangOnTheirParentsAndAreAnimatedByThemselves) {
  const Scene scene = read(R"("frames": 2, "names": ["hips", "foot", "foot"], "parents": [null, 0, 0])",
                           {at(0, 0, 0), at(1, 0, 0), at(2, 0, 0), at(5, 0, 0), at(1, 0, 0), at(3, 0, 0)});
  const auto named = [&](const char* name) { return scene.names.require(name); };
  EXPECT_EQ(scene.names.long_name(named("foot")), "|hips|foot");
  EXPECT_EQ(name_in_file(scene, named("foot1")), "foot");
  EXPECT_TRUE(scene.evaluation.is_animated(named("hips")));
  EXPECT_TRUE(scene.evaluation.is_animated(named("foot1")));
  EXPECT_EQ(scene.curves.key_times(named("foot")), std::vector<double>());
  EXPECT_EQ(scene.curves.key_times(named("foot1")), (std::vector<double>{0, 1}));
  EXPECT_EQ(position(scene, "foot", 1.0), (Vector{1, 0, 0}));
}

TEST(SamplesReader, TheHeaderSaysRateRangeUnitAndAxis) {
  const Scene scene = read(R"("frames": 3, "start": 101, "fps": 23.976, "unit": "m", "up_axis": "z", "names": ["a"])",
                           {at(0, 0, 0), at(1, 0, 0), at(2, 0, 0)});
  EXPECT_EQ(scene.settings.frames_per_second(), 23.976);
  EXPECT_EQ(scene.settings.playback_min(), 101.0);
  EXPECT_EQ(scene.settings.playback_max(), 103.0);
  EXPECT_EQ(scene.settings.linear_unit(), "m");
  EXPECT_EQ(scene.settings.up_axis(), 'z');
  const Scene plain = read(R"("frames": 1, "names": ["a"], "later": [[{}]])", {kIdentity});
  EXPECT_EQ(plain.settings.linear_unit(), "unknown");
  EXPECT_EQ(plain.settings.frames_per_second(), 24.0);
}

TEST(SamplesReader, MatricesThatSpanNoSpaceKeepTheirPosition) {
  for (const Matrix& flat :
       {Matrix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 1}, Matrix{1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 1},
        Matrix{1e300, 1e300, 0, 0, 0, 1e-300, 0, 0, 0, 1e308, 1e308, 0, 1, 2, 3, 1}}) {
    const Scene scene = read(R"("frames": 2, "names": ["a"])", {flat, at(4, 5, 6)});
    EXPECT_EQ(position(scene, "a", 0.0), (Vector{1, 2, 3}));
    EXPECT_EQ(position(scene, "a", 1.0), (Vector{4, 5, 6}));
  }
}

TEST(SamplesReader, SaysWhatIsWrong) {
  const std::string one = bytes_of({kIdentity});
  Matrix infinite = kIdentity, column = kIdentity;
  infinite[3 * 4] = std::numeric_limits<double>::infinity();
  column[3] = 5.0;
  const struct {
    std::string bytes, text;
  } cases[] = {
      {"", "a.samples:1: the first line has no end"},
      {"HIERARCHY\n", "a.samples:1: the first line is not valid JSON"},
      {"[]\n", "is not a stream of samples"},
      {"{}\n", "is not a stream of samples"},
      {R"({"format": "vantorelix-samples", "version": 2})"
       "\n",
       "has a version of the format that is not read"},
      {std::string(100000, '[') + "\n", "lists inside lists"},
      {header(R"("frames": 1)"), "\"names\" must be a list"},
      {header(R"("frames": 1, "names": [5])"), "\"names\" must be a list"},
      {header(R"("frames": 1, "names": [])"), "a.samples:2: there are no objects"},
      {header(R"("frames": 0, "names": ["a"])"), "there are no frames"},
      {header(R"("names": ["a"])") + one, "\"frames\" must be a whole number"},
      {header(R"("frames": 1.5, "names": ["a"])") + one, "\"frames\" must be a whole number"},
      {header(R"("frames": 2, "names": ["a"])") + one, "there are 128 bytes of matrices; 2 frames of 1 object take"},
      {header(R"("frames": 1, "names": ["a"])") + one + "x", "there are 129 bytes of matrices"},
      {header(R"("frames": 1000000000000000, "names": ["a"])") + one, "there are 128 bytes of matrices"},
      {header(R"("frames": 1, "names": ["a"], "fps": 0)") + one, "the rate is not a valid one"},
      {header(R"("frames": 1, "names": ["a"], "fps": "24")") + one, "\"fps\" must be a number"},
      {header(R"("frames": 1, "names": ["a"], "start": 1e30)") + one, "the first frame is not a number"},
      {header(R"("frames": 1, "names": ["a"], "up_axis": "x")") + one, "\"up_axis\" must be"},
      {header(R"("frames": 1, "names": ["a"], "parents": [0])") + one, "object 0, 'a', hangs on object 0"},
      {header(R"("frames": 1, "names": ["a"], "parents": [7])") + one, "list parents before"},
      {header(R"("frames": 1, "names": ["a"], "parents": [])") + one, "1 name stand beside 0 parents"},
      {header(R"("frames": 1, "names": ["a"], "parents": ["b"])") + one, "\"parents\" must be a list"},
      {header(R"("frames": 1, "names": ["a"])") + bytes_of({infinite}),
       "the matrix of object 0, 'a', at frame 0 has a number that is not finite"},
      {header(R"("frames": 1, "names": ["a"])") + bytes_of({column}), "a last column that is not 0, 0, 0, 1"},
  };
  for (const auto& [bytes, text] : cases) EXPECT_THAT(error_of(bytes), testing::HasSubstr(text));
}

TEST(SamplesReader, AChainThatIsTooDeepIsRefused) {
  std::string names, parents;
  std::vector<Matrix> matrices;
  for (int i = 0; i < 2001; ++i) {
    names += (i == 0 ? "\"" : ", \"") + std::string("j\"");
    parents += (i == 0 ? "" : ", ") + std::to_string(i - 1);
    matrices.push_back(kIdentity);
  }
  const std::string fields = "\"frames\": 1, \"names\": [" + names + "], \"parents\": [" + parents + "]";
  EXPECT_THAT(error_of(header(fields) + bytes_of(matrices)), testing::HasSubstr("more than 2000 objects hang on"));
}

}  // namespace
}  // namespace vantorelix::standalone
