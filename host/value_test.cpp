#include "host/value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "host/error.h"

namespace vantorelix::host {
namespace {

// The error that `body` throws, as "kind: text"; empty when it throws none.
template <class Body>
std::string error_of(Body&& body) {
  try {
    body();
  } catch (const Error& e) {
    const char* kinds[] = {"runtime", "type", "value", "key", "index", "attribute", "zero_division", "overflow"};
    return std::string(kinds[static_cast<std::size_t>(e.kind())]) + ": " + e.what();
  }
  return {};
}
std::string int_error(const Value& value) {
  return error_of([&] { value.to_int(); });
}
std::string float_error(const Value& value) {
  return error_of([&] { value.to_float(); });
}

class Ghost : public Object {
 public:
  std::string text() const override { return "<ghost>"; }
};

TEST(Value, NumbersBecomeIntegersTowardsZero) {
  EXPECT_EQ(Value(2.9).to_int(), 2);
  EXPECT_EQ(Value(-0.5).to_int(), 0);
  EXPECT_EQ(Value(-2.9).to_int(), -2);
  EXPECT_EQ(Value(true).to_int(), 1);
  EXPECT_EQ(Value(7).to_int(), 7);
  EXPECT_EQ(Value(-9223372036854775808.0).to_int(), std::numeric_limits<std::int64_t>::min());
}

TEST(Value, TextBecomesAnIntegerWhenItHoldsNothingElse) {
  EXPECT_EQ(Value("5").to_int(), 5);
  EXPECT_EQ(Value(" -3 \n").to_int(), -3);
  EXPECT_EQ(Value("+5").to_int(), 5);
  EXPECT_EQ(Value("007").to_int(), 7);
  EXPECT_EQ(Value("-9223372036854775808").to_int(), std::numeric_limits<std::int64_t>::min());
}

TEST(Value, WhatHoldsNoIntegerSaysSo) {
  for (const char* text : {"", "  ", "abc", "1.5", "0x10", "1_0", "- 3", "--5", "+-5", "+", "1 2"})
    EXPECT_EQ(int_error(text), "value: invalid literal for int() with base 10: " + Value(text).repr());
  EXPECT_EQ(int_error(std::string("5\0", 2)), "value: invalid literal for int() with base 10: '5\\x00'");
  EXPECT_EQ(int_error(std::string(300, 'x')),
            "value: invalid literal for int() with base 10: '" + std::string(199, 'x'));
  const std::string none = "type: int() argument must be a string or a number, not ";
  EXPECT_EQ(int_error({}), none + "'NoneType'");
  EXPECT_EQ(int_error(Value(Bytes{"5"})), none + "'bytes'");
  EXPECT_EQ(int_error(Value::list({1})), none + "'list'");
  EXPECT_EQ(int_error(Value(std::make_shared<Ghost>())), none + "'object'");
}

TEST(Value, NumbersBeyondAnIntegerOverflow) {
  EXPECT_EQ(int_error(std::numeric_limits<double>::infinity()), "overflow: cannot convert float infinity to integer");
  EXPECT_EQ(int_error(std::numeric_limits<double>::quiet_NaN()), "value: cannot convert float NaN to integer");
  EXPECT_EQ(int_error(9223372036854775808.0), "overflow: int too large to convert");
  EXPECT_EQ(int_error("9223372036854775808"), "overflow: int too large to convert");
}

TEST(Value, TextBecomesAFloat) {
  EXPECT_EQ(Value("1.5").to_float(), 1.5);
  EXPECT_EQ(Value("\t2 ").to_float(), 2.0);
  EXPECT_EQ(Value("-.5").to_float(), -0.5);
  EXPECT_EQ(Value("5.").to_float(), 5.0);
  EXPECT_EQ(Value("-Infinity").to_float(), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Value("inf").to_float(), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(Value("+NaN").to_float()));
  EXPECT_EQ(Value(true).to_float(), 1.0);
  EXPECT_EQ(Value(3).to_float(), 3.0);
}

TEST(Value, FloatsTooFarOutBecomeInfinityOrZero) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Value("1e400").to_float(), infinity);
  EXPECT_EQ(Value("-1e99999999999999999999").to_float(), -infinity);
  EXPECT_EQ(Value("1e-400").to_float(), 0.0);
  EXPECT_EQ(Value(std::string(400, '9')).to_float(), infinity);
  EXPECT_EQ(Value("0." + std::string(400, '0') + "1").to_float(), 0.0);
  EXPECT_EQ(Value("0." + std::string(400, '0') + "1e401").to_float(), 1.0);
  EXPECT_EQ(Value("1" + std::string(400, '0') + "e-400").to_float(), 1.0);
  EXPECT_EQ(Value("5e-324").to_float(), 5e-324);
}

TEST(Value, WhatHoldsNoFloatSaysSo) {
  for (const char* text : {"abc", ".", "1e", "e5", "0x1p3", "1_0", "infinit", "+-1", "1,5", "1.5 2"})
    EXPECT_EQ(float_error(text), "value: could not convert string to float: " + Value(text).repr());
  EXPECT_EQ(float_error(" "), "value: could not convert string to float: ");
  const std::string none = "type: float() argument must be a string or a number, not ";
  EXPECT_EQ(float_error({}), none + "'NoneType'");
  EXPECT_EQ(float_error(Value(Bytes{"1.5"})), none + "'bytes'");
  EXPECT_EQ(float_error(Value::list({})), none + "'list'");
  EXPECT_EQ(float_error(Value(std::make_shared<Ghost>())), none + "'object'");
}

TEST(Value, FloatsAreWrittenShortestAndReadBack) {
  const std::pair<double, const char*> cases[] = {
      {0.1, "0.1"},
      {7.0, "7.0"},
      {-0.0, "-0.0"},
      {100.0, "100.0"},
      {2.5, "2.5"},
      {1e15, "1000000000000000.0"},
      {9999999999999998.0, "9999999999999998.0"},
      {1e16, "1e+16"},
      {123456789012345680.0, "1.2345678901234568e+17"},
      {0.0001, "0.0001"},
      {0.00012345, "0.00012345"},
      {0.00001, "1e-05"},
      {5e-324, "5e-324"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
      {-std::numeric_limits<double>::infinity(), "-inf"},
  };
  for (const auto& [number, text] : cases) EXPECT_EQ(float_repr(number), text);
  for (const double number : {1.0 / 3.0, 2.0 / 3.0 * 1e20, 1e-7 / 3.0}) {
    EXPECT_EQ(Value(float_repr(number)).to_float(), number);
    EXPECT_EQ(Value(number).text(), float_repr(number));
  }
}

TEST(Value, TextFormsQuoteOnlyInsideOthers) {
  EXPECT_EQ(Value().text(), "None");
  EXPECT_EQ(Value(true).text(), "True");
  EXPECT_EQ(Value(7).text(), "7");
  EXPECT_EQ(Value("it's").text(), "it's");
  EXPECT_EQ(Value("it's").repr(), "\"it's\"");
  EXPECT_EQ(Value("it's \"so\"").repr(), "'it\\'s \"so\"'");
  EXPECT_EQ(Value(Bytes{"a'\n"}).text(), "b\"a'\\n\"");
  EXPECT_EQ(Value::list({1, "a", Value::list({2.5, Value()})}).text(), "[1, 'a', [2.5, None]]");
  EXPECT_EQ(Value(std::make_shared<Ghost>()).text(), "<ghost>");
}

TEST(Value, ControlCharactersAreEscapedAndAllElseStandsAsItIs) {
  EXPECT_EQ(Value(std::string("\n\t\r\\\0\x7F", 6)).repr(), "'\\n\\t\\r\\\\\\x00\\x7f'");
  EXPECT_EQ(Value("\xC3\xA9\xF0\x9F\x98\x80").repr(), "'\xC3\xA9\xF0\x9F\x98\x80'");
}

TEST(Value, AKeywordIsATextInLowerCaseWithoutTheBlanksAroundIt) {
  EXPECT_EQ(Value("  Ctrl_LMB\n").keyword(), "ctrl_lmb");
  EXPECT_EQ(Value("").keyword(), "");
  EXPECT_EQ(Value(Bytes{"clear"}).keyword(), "");  // bytes are never equal to a text
  EXPECT_EQ(error_of([] { Value(7).keyword(); }), "attribute: 'int' object has no attribute 'strip'");
  EXPECT_EQ(error_of([] { Value(std::make_shared<Ghost>()).keyword(); }),
            "attribute: 'object' object has no attribute 'strip'");
}

// A text of a host's own: it is read as any text, and converted as its host has it.
TEST(Value, AnObjectThatHoldsATextIsOne) {
  struct Numeral : Object {
    std::string text() const override { return word_; }
    std::int64_t to_int() const override { return 7; }
    const std::string* as_text() const override { return &word_; }
    std::string word_ = "seven";
  };
  const Value numeral(std::make_shared<Numeral>());
  ASSERT_TRUE(numeral.as_text());
  EXPECT_EQ(*numeral.as_text(), "seven");
  EXPECT_EQ(numeral, Value("seven"));
  EXPECT_EQ(numeral.to_int(), 7);
}

TEST(Value, AListInsideItselfIsShownAsDots) {
  const Value list = Value::list({1});
  (*list.as_list())->push_back(list);
  EXPECT_EQ(list.text(), "[1, [...]]");
  (*list.as_list())->clear();  // breaks the circle, which would keep itself alive
}

TEST(Value, TruthIsNotBeingEmptyOrZero) {
  for (const Value& value : {Value(), Value(false), Value(0), Value(0.0), Value(""), Value(Bytes{}), Value::list({})})
    EXPECT_FALSE(value.truthy()) << value.repr();
  for (const Value& value : {Value(true), Value(-1), Value(std::numeric_limits<double>::quiet_NaN()), Value("no"),
                             Value(Bytes{"0"}), Value::list({0}), Value(std::make_shared<Ghost>())})
    EXPECT_TRUE(value.truthy()) << value.repr();
}

TEST(Value, EqualityNeedsTheSameKindAndContent) {
  EXPECT_EQ(Value(1), Value(1));
  EXPECT_FALSE(Value(1) == Value(1.0));
  EXPECT_FALSE(Value(1) == Value(true));
  EXPECT_FALSE(Value("a") == Value(Bytes{"a"}));
  EXPECT_EQ(Value::list({1, "a"}), Value::list({1, "a"}));
  EXPECT_FALSE(Value::list({1, "a"}) == Value::list({1, "b"}));
  const auto ghost = std::make_shared<Ghost>();
  EXPECT_EQ(Value(ghost), Value(ghost));
  EXPECT_FALSE(Value(ghost) == Value(std::make_shared<Ghost>()));
}

TEST(Value, KnowsTheNameOfItsType) {
  EXPECT_EQ(Value().type_name(), "NoneType");
  EXPECT_EQ(Value(true).type_name(), "bool");
  EXPECT_EQ(Value(1).type_name(), "int");
  EXPECT_EQ(Value(1.0).type_name(), "float");
  EXPECT_EQ(Value("").type_name(), "str");
  EXPECT_EQ(Value(Bytes{}).type_name(), "bytes");
  EXPECT_EQ(Value::list({}).type_name(), "list");
  EXPECT_EQ(Value(std::make_shared<Ghost>()).type_name(), "object");
}

TEST(Value, GivesTheItemsOfLists) {
  const Value list = Value::list({1, "a"});
  EXPECT_EQ(list.item(1), Value("a"));
  EXPECT_EQ(list.items(), (std::vector<Value>{1, "a"}));
  EXPECT_EQ(error_of([&] { list.item(2); }), "index: list index out of range");
  EXPECT_EQ(error_of([&] { list.item(-1); }), "index: list index out of range");
}

TEST(Value, WhatHasNoItemsSaysSo) {
  EXPECT_EQ(error_of([] { Value(2.5).item(0); }), "type: 'float' object is not subscriptable");
  EXPECT_EQ(error_of([] { Value().items(); }), "type: 'NoneType' object is not iterable");
  EXPECT_EQ(error_of([] { Value("ab").items(); }), "type: 'str' object is not iterable");
  EXPECT_EQ(error_of([] { Value(std::make_shared<Ghost>()).item(0); }), "type: 'object' object is not subscriptable");
}

// An object whose last moment looks at the value that held it.
TEST(Value, HoldsTheNewContentWhenTheOldOneGoes) {
  struct Last : Object {
    explicit Last(std::function<void()> run) : run_(std::move(run)) {}
    ~Last() override { run_(); }
    std::string text() const override { return "last"; }
    std::function<void()> run_;
  };
  Value value;
  std::string seen;
  value = Value(std::make_shared<Last>([&] { seen = value.text(); }));
  value = 7;
  EXPECT_EQ(seen, "7");
}

// A conversion may replace the value that is being converted; the object lives until it is over.
TEST(Value, AConversionMayReplaceWhatIsConverted) {
  struct Replacing : Object {
    explicit Replacing(Value& place) : place_(place) {}
    bool truthy() const override {
      place_ = 0;
      return still_here_ == 42;
    }
    std::string text() const override { return "replacing"; }
    Value& place_;
    int still_here_ = 42;
  };
  Value value;
  value = Value(std::make_shared<Replacing>(value));
  EXPECT_TRUE(value.truthy());
  EXPECT_EQ(value, Value(0));
}

TEST(Value, ListsAreShared) {
  const Value first = Value::list({1});
  const Value second = first;
  (*second.as_list())->at(0) = 2;
  EXPECT_EQ(first.text(), "[2]");
}

TEST(Value, OnlyFunctionsCanBeCalled) {
  std::string heard;
  const Value function = Value::function("<listener>", [&](const Value& v) { heard = v.text(); });
  ASSERT_TRUE(function.callable());
  (*function.as_object())->call(42);
  EXPECT_EQ(heard, "42");
  EXPECT_EQ(function.text(), "<listener>");
  for (const Value& value : {Value(), Value(1), Value("f"), Value(std::make_shared<Ghost>())})
    EXPECT_FALSE(value.callable());
  EXPECT_EQ(error_of([] { Ghost().call(1); }), "type: 'object' object is not callable");
}

TEST(Stripped, RemovesWhiteSpaceFromBothEnds) {
  EXPECT_EQ(stripped(" a b\t"), "a b");
  EXPECT_EQ(stripped("\v\f\rx"), "x");
  EXPECT_EQ(stripped(" \n "), "");
  EXPECT_EQ(stripped(""), "");
}

}  // namespace
}  // namespace vantorelix::host
