#include "standalone/host/option_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <sstream>

#include "host/error.h"

namespace vantorelix::standalone {
namespace {

namespace fs = std::filesystem;
using host::Error;
using host::ErrorKind;
using host::Value;
using testing::HasSubstr;

Value texts(std::vector<Value> items) { return Value::list(std::move(items)); }

TEST(OptionStore, gives_a_variable_the_type_of_what_is_set) {
  OptionStore store;
  EXPECT_FALSE(store.get("a"));
  store.set("a", 7);
  EXPECT_EQ(*store.get("a"), Value(7));
  store.set("a", 7.5);
  EXPECT_EQ(*store.get("a"), Value(7.5));
  store.set("a", "seven");
  EXPECT_EQ(*store.get("a"), Value("seven"));
  store.set("a", true);
  EXPECT_EQ(*store.get("a"), Value(1));
}

TEST(OptionStore, refuses_what_is_no_option_value_and_keeps_the_old) {
  OptionStore store;
  store.set("a", 7);
  for (const Value& wrong : {Value(), Value(host::Bytes{"x"}), texts({1}), texts({"x", Value()})}) {
    try {
      store.set("a", wrong);
      ADD_FAILURE() << wrong.repr();
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), ErrorKind::type);
    }
  }
  EXPECT_EQ(*store.get("a"), Value(7));
}

TEST(OptionStore, appends_to_a_list_keeps_a_single_text_and_replaces_other_types) {
  OptionStore store;
  store.append("a", "x");
  EXPECT_EQ(*store.get("a"), texts({"x"}));
  store.append("a", "y");
  EXPECT_EQ(*store.get("a"), texts({"x", "y"}));
  store.set("b", "x");
  store.append("b", "y");
  EXPECT_EQ(*store.get("b"), texts({"x", "y"}));
  store.set("c", 3);
  store.append("c", "y");
  EXPECT_EQ(*store.get("c"), texts({"y"}));
}

TEST(OptionStore, does_not_share_its_lists) {
  OptionStore store;
  const Value given = texts({"x"});
  store.set("a", given);
  (*given.as_list())->emplace_back("put in later");
  (*store.get("a")->as_list())->emplace_back("put in later");
  EXPECT_EQ(*store.get("a"), texts({"x"}));
}

class OptionStoreFile : public testing::Test {
 protected:
  OptionStoreFile() {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder = fs::path(testing::TempDir()) / ("options_" + test);
    fs::remove_all(folder);
    fs::create_directories(folder);
    file = folder / "preferences.json";
  }
  ~OptionStoreFile() override { fs::remove_all(folder); }

  void write(const std::string& text) const { std::ofstream(file, std::ios::binary) << text; }
  std::string content() const {
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  std::string error_of_opening() const {
    try {
      OptionStore store(file);
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }

  fs::path folder;
  fs::path file;
};

TEST_F(OptionStoreFile, is_not_made_by_reading) {
  OptionStore store(file);
  EXPECT_FALSE(store.get("a"));
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(OptionStoreFile, keeps_every_type_from_one_session_to_the_next) {
  {
    OptionStore store(file);
    store.set("whole", 7);
    store.set("real", 7.0);
    store.set("tenth", 0.1);
    store.set("text", "a \"b\" \xc3\xa9");
    store.set("list", texts({"x", "y"}));
    store.set("largest", std::numeric_limits<std::int64_t>::max());
  }
  OptionStore store(file);
  EXPECT_EQ(*store.get("whole"), Value(7));
  EXPECT_EQ(*store.get("real"), Value(7.0));
  EXPECT_EQ(*store.get("tenth"), Value(0.1));
  EXPECT_EQ(*store.get("text"), Value("a \"b\" \xc3\xa9"));
  EXPECT_EQ(*store.get("list"), texts({"x", "y"}));
  EXPECT_EQ(*store.get("largest"), Value(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(files(), 1u);
}

TEST_F(OptionStoreFile, keeps_members_that_it_does_not_know_and_their_order) {
  write("{\"z\": {\"deep\": [1, null]}, \"a\": 1, \"mixed\": [1, \"x\"], \"huge\": 18446744073709551615}");
  OptionStore store(file);
  EXPECT_FALSE(store.get("z"));
  EXPECT_FALSE(store.get("mixed"));
  EXPECT_FALSE(store.get("huge"));
  store.set("a", 2);
  store.set("new", "n");
  EXPECT_EQ(content(),
            "{\n  \"z\": {\n    \"deep\": [\n      1,\n      null\n    ]\n  },\n  \"a\": 2,\n"
            "  \"mixed\": [\n    1,\n    \"x\"\n  ],\n  \"huge\": 18446744073709551615,\n  \"new\": \"n\"\n}\n");
}

TEST_F(OptionStoreFile, keeps_what_another_program_wrote_meanwhile) {
  OptionStore store(file);
  store.set("ours", 1);
  write("{\"ours\": 1, \"theirs\": 5}");
  store.set("ours", 2);
  EXPECT_EQ(content(), "{\n  \"ours\": 2,\n  \"theirs\": 5\n}\n");
}

TEST_F(OptionStoreFile, names_file_line_and_column_of_what_is_broken_and_leaves_it_alone) {
  const std::string broken = "{\n  \"a\": 1,\n  \"b\": oops\n}";
  write(broken);
  EXPECT_THAT(error_of_opening(), HasSubstr(file.string() + ":3:8: not valid JSON"));
  EXPECT_EQ(content(), broken);
  write("[1, 2]");
  EXPECT_THAT(error_of_opening(), HasSubstr(file.string() + ":1:1: not a JSON object"));
  write("");
  EXPECT_THAT(error_of_opening(), HasSubstr(file.string() + ":1:1: not valid JSON"));
  write("{\"a\": 1e999}");
  EXPECT_THAT(error_of_opening(), HasSubstr("not valid JSON"));
}

TEST_F(OptionStoreFile, does_not_write_over_a_file_that_became_broken) {
  OptionStore store(file);
  store.set("a", 1);
  write("{ half an edit");
  EXPECT_THROW(store.set("a", 2), Error);
  EXPECT_EQ(content(), "{ half an edit");
  EXPECT_EQ(*store.get("a"), Value(1));
  EXPECT_EQ(files(), 1u);
}

TEST_F(OptionStoreFile, refuses_what_JSON_cannot_hold) {
  OptionStore store(file);
  store.set("a", 1);
  const std::string before = content();
  EXPECT_THROW(store.set("a", std::numeric_limits<double>::infinity()), Error);
  EXPECT_THROW(store.set("a", "\xff"), Error);
  EXPECT_THROW(store.set("\xff", 1), Error);
  EXPECT_EQ(content(), before);
  EXPECT_EQ(*store.get("a"), Value(1));
}

TEST_F(OptionStoreFile, says_when_it_cannot_write_and_leaves_nothing_behind) {
  OptionStore store(folder / "missing" / "preferences.json");
  try {
    store.set("a", 1);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), ErrorKind::os);
    EXPECT_THAT(error.what(), HasSubstr("preferences.json: cannot be written"));
  }
  EXPECT_FALSE(store.get("a"));
  EXPECT_EQ(files(), 0u);
}

TEST_F(OptionStoreFile, refuses_a_folder_in_place_of_a_file) {
  file = folder;
  EXPECT_THAT(error_of_opening(), HasSubstr("cannot be read"));
}

TEST_F(OptionStoreFile, writes_through_a_symbolic_link_and_keeps_permissions) {
#ifdef _WIN32
  GTEST_SKIP() << "files have no such permissions there, and Wine has no such links";
#endif
  const fs::path link = folder / "link.json";
  write("{}");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink(file, link);
  OptionStore store(link);
  store.set("a", 1);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(content(), "{\n  \"a\": 1\n}\n");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

}  // namespace
}  // namespace vantorelix::standalone
