// How the numbers of animation may lie in their buffers, and what is refused.
#include "standalone/formats/gltf/gltf_test_file.h"

namespace vantorelix::standalone {
namespace {

using testing::HasSubstr;

constexpr int kByte = 5120, kUnsignedByte = 5121, kShort = 5122, kUnsignedShort = 5123, kUnsigned = 5125, kFloat = 5126;
constexpr const char* kNormalized = R"(, "normalized": true)";

GltfFile ball() {
  GltfFile file;
  file.node(R"("name": "ball", "children": [1])").node(R"("name": "tip", "translation": [1, 0, 0])");
  return file;
}

TEST(GltfAccessor, ReadsRotationsOfEveryNormalisedType) {
  const auto expect_turn = [](const std::string& bytes, int type, double angle) {
    GltfFile file = ball();
    const std::size_t times = file.scalars({0});
    file.channel(0, "rotation", times, file.values(bytes, type, "VEC4", 1, kNormalized));
    expect_place(clean_gltf(file.text()), "tip", 0, {std::cos(angle), std::sin(angle), 0});
  };
  expect_turn(bytes_of<std::int8_t>({0, 0, -100, 50}), kByte, 2 * std::atan2(-100, 50));
  expect_turn(bytes_of<std::int8_t>({0, 0, -128, 127}), kByte, 2 * std::atan2(-1, 1));  // both ends are 1
  expect_turn(bytes_of<std::uint8_t>({0, 0, 200, 50}), kUnsignedByte, 2 * std::atan2(200, 50));
  expect_turn(bytes_of<std::int16_t>({0, 0, -30000, 10000}), kShort, 2 * std::atan2(-3, 1));
  expect_turn(bytes_of<std::uint16_t>({0, 0, 60000, 20000}), kUnsignedShort, 2 * std::atan2(3, 1));
}

TEST(GltfAccessor, FollowsTheStrideOfInterleavedValues) {
  GltfFile file = ball();
  // time, x, y, z of each of two keys
  const std::size_t view = file.view(bytes_of<float>({0, 1, 2, 3, 1, 4, 5, 6}), R"(, "byteStride": 16)");
  const std::string where = R"("bufferView": )" + std::to_string(view) + R"(, "componentType": 5126, "count": 2)";
  const std::size_t times = file.accessor(where + R"(, "type": "SCALAR")");
  file.channel(0, "translation", times, file.accessor(where + R"(, "type": "VEC3", "byteOffset": 4)"));
  const Scene scene = clean_gltf(file.text());
  expect_place(scene, "ball", 0, {1, 2, 3});
  expect_place(scene, "ball", 24, {4, 5, 6});
}

std::string sparse(std::size_t indices, int index_type, std::size_t values, int count) {
  return R"("sparse": {"count": )" + std::to_string(count) + R"(, "indices": {"bufferView": )" +
         std::to_string(indices) + R"(, "componentType": )" + std::to_string(index_type) +
         R"(}, "values": {"bufferView": )" + std::to_string(values) + "}}";
}

TEST(GltfAccessor, PutsSparseValuesOverTheOthers) {
  GltfFile file = ball();
  const std::size_t indices = file.view(bytes_of<std::uint16_t>({1})), values = file.view(bytes_of<float>({7, 8, 9}));
  const std::size_t base = file.view(bytes_of<float>({0, 0, 0, 1, 1, 1, 2, 2, 2}));
  const std::size_t places = file.accessor(R"("componentType": 5126, "type": "VEC3", "count": 3, "bufferView": )" +
                                           std::to_string(base) + ", " + sparse(indices, kUnsignedShort, values, 1));
  file.channel(0, "translation", file.scalars({0, 1, 2}), places);
  const Scene scene = clean_gltf(file.text());
  expect_place(scene, "ball", 24, {7, 8, 9});
  expect_place(scene, "ball", 48, {2, 2, 2});
}

TEST(GltfAccessor, TakesNothingButSparseValuesForZeros) {
  GltfFile file = ball();
  const std::size_t indices = file.view(bytes_of<std::uint8_t>({0, 2})),
                    values = file.view(bytes_of<float>({1, 2, 3, 4, 5, 6}));
  const std::size_t places = file.accessor(R"("componentType": 5126, "type": "VEC3", "count": 3, )" +
                                           sparse(indices, kUnsignedByte, values, 2));
  file.channel(0, "translation", file.scalars({0, 1, 2}), places);
  const Scene scene = clean_gltf(file.text());
  expect_place(scene, "ball", 0, {1, 2, 3});
  expect_place(scene, "ball", 24, {0, 0, 0});
  expect_place(scene, "ball", 48, {4, 5, 6});
}

TEST(GltfAccessor, RefusesSparseIndicesBeyondTheEndOrOfAnotherType) {
  const auto error = [](const std::string& bytes, int type, int count) {
    GltfFile file = ball();
    const std::size_t indices = file.view(bytes), values = file.view(bytes_of<float>({1, 2, 3}));
    const std::size_t places =
        file.accessor(R"("componentType": 5126, "type": "VEC3", "count": 3, )" + sparse(indices, type, values, count));
    file.channel(0, "translation", file.scalars({0, 1, 2}), places);
    return gltf_error(file.text());
  };
  EXPECT_THAT(error(bytes_of<std::uint8_t>({3}), kUnsignedByte, 1), HasSubstr("has an index beyond its end"));
  EXPECT_THAT(error(bytes_of<std::uint8_t>({0}), kUnsigned, 1), HasSubstr("reaches beyond the end of its buffer view"));
  EXPECT_THAT(error(bytes_of<std::uint8_t>({0, 1}), kUnsignedByte, 2), HasSubstr("reaches beyond the end"));
  EXPECT_THAT(error(bytes_of<std::uint8_t>({0}), kUnsignedByte, -1), HasSubstr("reaches beyond the end"));
  EXPECT_THAT(error(bytes_of<float>({0}), kFloat, 1), HasSubstr("indices that are not unsigned integers"));
}

// --- what is refused -----------------------------------------------------------------------------------------------

std::string error_of_places(const std::string& bytes, int component, const std::string& type, const std::string& count,
                            const std::string& more = "") {
  GltfFile file = ball();
  const std::size_t times = file.scalars({0, 1});
  const std::string where = R"("bufferView": )" + std::to_string(file.view(bytes)) + R"(, "type": ")" + type + "\"";
  file.channel(
      0, "translation", times,
      file.accessor(where + R"(, "componentType": )" + std::to_string(component) + R"(, "count": )" + count + more));
  return gltf_error(file.text());
}

const std::string kTwo = bytes_of<float>({0, 0, 0, 1, 1, 1});

TEST(GltfAccessor, RefusesTypesThatTheirChannelDoesNotHave) {
  EXPECT_EQ(error_of_places(kTwo, kFloat, "VEC3", "2"), "no error");
  EXPECT_THAT(error_of_places(kTwo, kFloat, "VEC2", "2"), HasSubstr("is not a list of three floats"));
  EXPECT_THAT(error_of_places(kTwo, kUnsigned, "VEC3", "2"), HasSubstr("is not a list of three floats"));
  EXPECT_THAT(error_of_places(kTwo, kShort, "VEC3", "2", kNormalized), HasSubstr("is not a list of three floats"));
  GltfFile file = ball();
  const std::size_t times = file.scalars({0});
  file.channel(0, "rotation", times, file.values(bytes_of<std::int16_t>({0, 0, 0, 9}), kShort, "VEC4", 1));
  EXPECT_THAT(gltf_error(file.text()), HasSubstr("integers that are not marked as normalized"));
  GltfFile counted = ball();
  const std::size_t frames = counted.values(bytes_of<std::uint16_t>({0, 1}), kUnsignedShort, "SCALAR", 2);
  counted.channel(0, "translation", frames, counted.triples({0, 0, 0, 1, 1, 1}));
  EXPECT_THAT(gltf_error(counted.text()), HasSubstr("holds key times and is not a list of floats"));
}

TEST(GltfAccessor, RefusesCountsThatDoNotFit) {
  EXPECT_THAT(error_of_places(kTwo, kFloat, "VEC3", "1"), HasSubstr("has 1 values for 2 key times"));
  EXPECT_THAT(error_of_places(kTwo, kFloat, "VEC3", "1152921504606846976"), HasSubstr("values for 2 key times"));
  EXPECT_THAT(error_of_places(kTwo, kFloat, "VEC3", "2", R"(, "byteOffset": 4)"), HasSubstr("reaches beyond the end"));
  EXPECT_THAT(error_of_places(kTwo, kFloat, "VEC3", "2", R"(, "byteOffset": 18446744073709551608)"),
              HasSubstr("reaches beyond the end"));
  GltfFile file = ball();
  const std::string all = R"("componentType": 5126, "count": 2000000000)";
  file.channel(0, "translation", file.accessor(all + R"(, "type": "SCALAR")"),
               file.accessor(all + R"(, "type": "VEC3")"));
  EXPECT_THAT(gltf_error(file.text()), HasSubstr("asks for more memory than 256 times its size"));
}

TEST(GltfAccessor, RefusesWhatIsNotFinite) {
  const float nan = std::numeric_limits<float>::quiet_NaN(), endless = std::numeric_limits<float>::infinity();
  EXPECT_THAT(error_of_places(bytes_of<float>({0, 0, 0, 1, nan, 1}), kFloat, "VEC3", "2"), HasSubstr("not finite"));
  EXPECT_THAT(error_of_places(bytes_of<float>({0, 0, 0, 1, 1, endless}), kFloat, "VEC3", "2"), HasSubstr("not finite"));
}

TEST(GltfAccessor, RefusesKeyTimesThatGoBackOrAreNone) {
  GltfFile file = ball();
  file.channel(0, "translation", file.scalars({1, 0}), file.triples({0, 0, 0, 1, 1, 1}));
  EXPECT_THAT(gltf_error(file.text()), HasSubstr("key times that go back"));
  GltfFile none = ball();
  none.channel(0, "translation", none.scalars({}), none.triples({}));
  EXPECT_THAT(gltf_error(none.text()), HasSubstr("is a list of key times without any"));
}

TEST(GltfAccessor, AsksOnlyTheClipThatIsReadForKeysInOrder) {
  GltfFile file = ball();
  file.channel(0, "translation", file.scalars({0, 1}), file.triples({0, 0, 0, 1, 1, 1})).clip("bad");
  file.channel(0, "translation", file.scalars({1, 0}), file.triples({0, 0, 0, 1, 1, 1}));
  expect_place(clean_gltf(file.text()), "ball", 24, {1, 1, 1});
}

TEST(GltfAccessor, RefusesRotationsOfNoLength) {
  GltfFile file = ball();
  file.channel(0, "rotation", file.scalars({0, 1}), file.quadruples({0, 0, 0, 1, 0, 0, 0, 0}));
  EXPECT_THAT(gltf_error(file.text()), HasSubstr("channel 0 of the clip has a rotation of length 0 at its key 1"));
}

}  // namespace
}  // namespace vantorelix::standalone
