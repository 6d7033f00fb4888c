#include "base/json_writer.h"

#include <gtest/gtest.h>

#include <limits>

namespace vantorelix {
namespace {

template <class T>
std::string json_of(const T& value, JsonWriter::Texts texts = JsonWriter::Texts::plain) {
  StringSink sink;
  JsonWriter(sink, texts).value(value);
  return sink.text();
}

TEST(JsonWriter, EachKindOfValueHasItsForm) {
  EXPECT_EQ(json_of("a"), "\"a\"");
  EXPECT_EQ(json_of(std::string("a")), "\"a\"");
  EXPECT_EQ(json_of(true), "true");
  EXPECT_EQ(json_of(-3), "-3");
  EXPECT_EQ(json_of(std::size_t{7}), "7");
  EXPECT_EQ(json_of(0.1), "0.1");
  EXPECT_EQ(json_of(-0.0), "-0.0");
  EXPECT_EQ(json_of(Vector{1, 2, 3}), "[1, 2, 3]");
  EXPECT_EQ(json_of(std::vector<std::string>{"a", "b"}), "[\"a\", \"b\"]");
  EXPECT_EQ(json_of(std::vector<double>{}), "[]");
  EXPECT_EQ(json_of(std::optional<int>(4)), "4");
}

TEST(JsonWriter, WhatIsNotThereAndWhatIsNotFiniteIsNull) {
  EXPECT_EQ(json_of(std::optional<int>()), "null");
  for (const double value : {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()})
    EXPECT_EQ(json_of(value), "null");
}

TEST(JsonWriter, TextsAreEscapedAndTheirInvalidBytesReplaced) {
  EXPECT_EQ(json_of("\"\\\n\x1f/<\x7f"), "\"\\\"\\\\\\u000a\\u001f/<\x7f\"");
  EXPECT_EQ(json_of("\xC3\xA9\xE9\xE2\x80\xA8"), "\"\xC3\xA9\xEF\xBF\xBD\xE2\x80\xA8\"");
}

TEST(JsonWriter, ATextInAScriptCannotEndIt) {
  EXPECT_EQ(json_of("</b>&\xE2\x80\xA8\xE2\x80\xA9\xC3\xA9", JsonWriter::Texts::script),
            "\"\\u003c/b\\u003e\\u0026\\u2028\\u2029\xC3\xA9\"");
}

TEST(JsonWriter, ItemsStandInALineOrALineEach) {
  StringSink sink;
  JsonWriter json(sink);
  json.object(JsonLayout::lines(2), [&] {
    json.field("a", 1);
    json.key("b");
    json.list(JsonLayout::lines(4), [&] {
      for (const int i : {1, 2})
        json.object({}, [&] {
          json.field("i", i);
          json.field("\"", "x");
        });
    });
    json.key("c");
    json.list(JsonLayout::lines(4), [] {});
    json.field("d", std::vector<Vector>{{1, 2, 3}, {4, 5, 6}});
  });
  EXPECT_EQ(sink.text(), R"({
  "a": 1,
  "b": [
    {"i": 1, "\"": "x"},
    {"i": 2, "\"": "x"}
  ],
  "c": [
  ],
  "d": [[1, 2, 3], [4, 5, 6]]
})");
}

TEST(JsonWriter, ALongListGoesOutInPieces) {
  const std::vector<int> many(100'000, 12);
  const std::string text = json_of(many);
  EXPECT_EQ(text.size(), many.size() * 4);
  EXPECT_EQ(text.substr(text.size() - 7), "12, 12]");
}

}  // namespace
}  // namespace vantorelix
