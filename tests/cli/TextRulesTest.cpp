// The command's own text rules, below the commands: how numbers on the
// command line are read, how a value is written as CSV and as JSON, and how
// a database path is passed to the connection so that it comes back whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Arguments.h"
#include "Output.h"
#include "Session.h"
#include "kelvary/platform/internal/ConnectionString.h"

namespace kelvary::testing {
namespace {

using cli::UsageError;
using Json = nlohmann::json;

TEST(CommandLineNumbers, AreReadWholeAndWithinTheirRangeOrRefused) {
  constexpr int64_t kMin = std::numeric_limits<int32_t>::min();
  constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
  const std::vector<std::pair<std::string, int64_t>> accepted = {
      {"0", 0}, {"+7", 7}, {"-2147483648", kMin}, {"2147483647", kMax}, {"007", 7}};
  for (const auto& [text, value] : accepted)
    EXPECT_EQ(cli::ParseInteger(text, "--n", kMin, kMax), value) << text;

  const std::vector<std::pair<std::string, std::string>> refused = {
      {"", "--n is not a whole number: "},
      {"+", "--n is not a whole number: +"},
      {"-", "--n is not a whole number: -"},
      {"1.5", "--n is not a whole number: 1.5"},
      {"1e3", "--n is not a whole number: 1e3"},
      {" 1", "--n is not a whole number:  1"},
      {"1 ", "--n is not a whole number: 1 "},
      {"0x10", "--n is not a whole number: 0x10"},
      {"4294967297", "--n must be between -2147483648 and 2147483647, not 4294967297"},
      {"-2147483649", "--n must be between -2147483648 and 2147483647, not -2147483649"},
      {"99999999999999999999",
       "--n must be between -2147483648 and 2147483647, not "
       "99999999999999999999"},
  };
  for (const auto& [text, message] : refused) {
    try {
      cli::ParseInteger(text, "--n", kMin, kMax);
      ADD_FAILURE() << "accepted " << text;
    } catch (const UsageError& e) {
      EXPECT_EQ(std::string(e.what()), message);
    }
  }
}

TEST(CsvField, QuotesWhatWouldSplitTheLineAndWritesValuesPlainly) {
  const std::vector<std::pair<Variant, std::string>> cases = {
      {Variant("plain"), "plain"},
      {Variant("a,b"), "\"a,b\""},
      {Variant("say \"hi\""), "\"say \"\"hi\"\"\""},
      {Variant("two\nlines"), "\"two\nlines\""},
      {Variant("cr\r"), "\"cr\r\""},
      {Variant::Null(), ""},
      {Variant(), ""},
      {Variant(DateSerial(2024, 3, 5)), "2024-03-05"},
      {Variant(DateTimeOf(2024, 3, 5, 10, 30, 0)), "2024-03-05T10:30:00"},
      {Variant(Currency{123456}), "12.3456"},
      {Variant(Currency{-50000}), "-5"},
      {Variant(0.1), "0.1"},
      {Variant(int32_t{-42}), "-42"},
  };
  for (const auto& [value, text] : cases)
    EXPECT_EQ(cli::CsvField(value), text) << text;
}

// Each text must be valid JSON of the right kind: it is read back with a
// standard parser.
TEST(JsonText, KeepsEachValuesKindAndEscapesText) {
  const std::vector<std::pair<Variant, Json>> cases = {
      {Variant::Null(), nullptr},
      {Variant(), nullptr},
      {Variant(true), true},
      {Variant(int16_t{-3}), -3},
      {Variant(int64_t{9007199254740993}), 9007199254740993LL},
      {Variant(2.5), 2.5},
      {Variant(6090.0), 6090},
      {Variant(std::nan("")), nullptr},
      {Variant(Currency{1234500}), 123.45},
      {Variant(DateSerial(1999, 12, 31)), "1999-12-31"},
      {Variant("quote \" backslash \\ newline \n tab \t bell \x01"),
       "quote \" backslash \\ newline \n tab \t bell \x01"},
      {Variant("Zo\xc3\xab"), "Zo\xc3\xab"},
  };
  for (const auto& [value, expected] : cases) {
    const std::string text = cli::JsonText(value);
    Json parsed;
    ASSERT_NO_THROW(parsed = Json::parse(text)) << text;
    EXPECT_EQ(parsed, expected) << text;
  }
}

// A path is one value of the connection string, whatever it holds: the
// driver is given exactly that path, and never asked to create the file.
TEST(ConnectionStringFor, PassesAPathWholeAndNeverCreates) {
  for (const std::string path :
       {"/data/clinic;2024/main.db", "/data/a}b;Mode=ReadWriteCreate/main.db",
        "/data/x=\"y\"/main.db", "/data/{a}}b\"c;d}/main.db", "/data/ lead and trail /main.db",
        "C:\\practice\\main.db", "main.sqlite3"}) {
    for (const auto access : {cli::Access::kReadOnly, cli::Access::kReadWrite}) {
      const auto choice = internal::ChooseDriver(cli::ConnectionStringFor(path, access));
      EXPECT_EQ(choice.kind, internal::DriverChoice::kSqlite) << path;
      EXPECT_EQ(choice.sqlite_path, path);
      EXPECT_EQ(choice.mode, access == cli::Access::kReadOnly ? internal::DriverChoice::kReadOnly
                                                              : internal::DriverChoice::kReadWrite)
          << path;
    }
  }
  const auto dsn =
      internal::ChooseDriver(cli::ConnectionStringFor("practice", cli::Access::kReadOnly));
  EXPECT_EQ(dsn.kind, internal::DriverChoice::kOdbc);
  EXPECT_EQ(dsn.odbc_string, "DSN=practice");
}

}  // namespace
}  // namespace kelvary::testing
