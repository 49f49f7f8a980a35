// Find and Filter: the criteria reader and how each moves the cursor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/internal/Criteria.h"
#include "kelvary/platform/internal/LikePattern.h"

namespace kelvary::testing {
namespace {

using internal::Criteria;

class RecordsetFindFilter : public PatientsTest {
 protected:
  void SetUp() override {
    PatientsTest::SetUp();
    if (IsSkipped()) return;
    rs_ = Open();
  }
  int32_t CurrentId() { return CLng(rs_->Fields("ID").Value()); }
  std::shared_ptr<Recordset> rs_;
};
KELVARY_ON_EVERY_BACKEND(RecordsetFindFilter);

const Variant kFirst(int32_t{adBookmarkFirst});
const Variant kLast(int32_t{adBookmarkLast});

TEST_P(RecordsetFindFilter, FindForwardFromTheCurrentRowOrAStartWithSkip) {
  rs_->Find("ID = 5");
  EXPECT_EQ(CurrentId(), 5);
  rs_->Find("LastName = 'smith'");  // from the current row onwards; texts ignore case
  EXPECT_EQ(CurrentId(), 6);
  rs_->Find("LastName = 'Smith'", 0, adSearchForward, kFirst);
  EXPECT_EQ(CurrentId(), 1);
  rs_->Find("LastName = 'Smith'", 1);  // skip the current row
  EXPECT_EQ(CurrentId(), 6);
  rs_->Find("LastName = 'Smith'", 1);
  EXPECT_TRUE(rs_->Eof());                          // no further match: EOF
  rs_->Find("ID = 2", 0, adSearchForward, kFirst);  // a start does not need a current row
  EXPECT_EQ(CurrentId(), 2);
}

TEST_P(RecordsetFindFilter, FindBackwardEndsAtBof) {
  rs_->Find("Balance > 5", 0, adSearchBackward, kLast);
  EXPECT_EQ(CurrentId(), 6);
  std::string found;
  for (rs_->Find("Balance > 5", 1, adSearchBackward); !rs_->Bof();
       rs_->Find("Balance > 5", 1, adSearchBackward))
    found += std::to_string(CurrentId());
  EXPECT_EQ(found, "51");
  // From a bookmark.
  rs_->MoveFirst();
  rs_->Move(3);
  const Variant mark = rs_->Bookmark();
  rs_->MoveFirst();
  rs_->Find("ParentID = 3", 0, adSearchForward, mark);
  EXPECT_EQ(CurrentId(), 4);
}

TEST_P(RecordsetFindFilter, RepeatedFindsOnANumberAgreeWithTheScan) {
  // The second and later Finds on a column answer from an index; it must
  // give what the scan gives, including after changes to the rows.
  auto rs = OpenRecordset(db_.Connection(), "SELECT * FROM patients ORDER BY ID", adLockOptimistic);
  for (const char* parent_3 : {"5 4 ", "5 4 1 "}) {  // row 1 joins them after the first round
    for (int id : {3, 1, 6, 6, 42}) {
      rs->Find("ID = " + std::to_string(id), 0, adSearchForward, kFirst);
      EXPECT_EQ(rs->Eof() ? 42 : CLng(rs->Fields("ID").Value()), id);
    }
    std::string found;
    for (rs->Find("ParentID = 3.0", 0, adSearchBackward, kLast); !rs->Bof();
         rs->Find("ParentID = 3", 1, adSearchBackward))
      found += CStr(rs->Fields("ID").Value()) + " ";
    EXPECT_EQ(found, parent_3);
    rs->MoveFirst();
    rs->Fields("ParentID").Value(int32_t{3});
    rs->Update();
  }
}

TEST_P(RecordsetFindFilter, FilterHidesRowsAndRecordCountFollows) {
  rs_->Filter("ParentID = 3");
  EXPECT_EQ(rs_->RecordCount(), 2);
  EXPECT_EQ(CurrentId(), 4);  // setting a filter moves to the first match
  EXPECT_EQ(Ids(*rs_), "4,5");

  const std::pair<const char*, const char*> cases[] = {
      {"LastName = 'Smith' AND FirstName = 'Jane'", "6"},
      {"LastName = 'Smith' OR ParentID = 3", "1,4,5,6"},
      {"(LastName LIKE 'smith*' AND Balance >= 7) OR (LastName = 'Jones' AND ID > 0)", "1,4,6"},
      {"LastName LIKE '%MIT%' OR LastName LIKE 'b*'", "1,3,5,6"},
      {"LastName LIKE 'Smith' OR LastName LIKE 'Sm_th%'", "1,6"},  // ? and _ are letters
      {"LastName = 'O''Brien' OR LastName = #O'Brien#", "2"},      // #text# when no date
      {"LastName = #'Smith'# OR FirstName = #Ann#", "5"},
      {"FirstName IS NULL OR ParentID IS NOT NULL AND ID > 4", "4,5"},
      {"FirstName = Null", "4"},
      {"FirstName <> Null AND Balance < 1", "2,3"},
      {"DOB < #1/1/1985#", "1,2"},
      {"DOB >= #2001-07-14# AND DOB <= #10/10/2010#", "3,6"},
      {"DOB = #1/1/1990 8:30:00 AM#", "5"},
      {"Balance = -3.25 OR Balance = $99", "3,5"},
      {"Active = True", "1,2,4,6"},
      {"ParentID <> 1", "4,5"},  // Null matches no comparison but the Null tests
      {"ID = '3'", "3"},         // text meets a number by the number it reads as
  };
  for (const auto& [criteria, ids] : cases) {
    rs_->Filter(criteria);
    EXPECT_EQ(Ids(*rs_), ids) << criteria;
  }
  rs_->Filter("ID > 100");
  EXPECT_TRUE(rs_->Bof() && rs_->Eof());
  EXPECT_EQ(rs_->RecordCount(), 0);
  rs_->Filter("");  // clears it
  EXPECT_EQ(rs_->RecordCount(), 6);
  EXPECT_EQ(CurrentId(), 1);
}

TEST_P(RecordsetFindFilter, BracketedNamesAndTableQualifiedNamesResolve) {
  db_.Run(
      "CREATE TABLE odd (\"First Name\" TEXT, \"Order\" INTEGER);"
      "INSERT INTO odd VALUES ('Al', 1); INSERT INTO odd VALUES ('Bo', 2);");
  auto rs = OpenRecordset(db_.Connection(), "SELECT * FROM odd");
  rs->Filter("[First Name] = 'Bo' AND [order] = 2");
  EXPECT_EQ(rs->RecordCount(), 1);
  rs->Filter("");
  rs->Find("odd.[Order] = 2");
  EXPECT_EQ(rs->Fields("First Name").Value(), Variant("Bo"));
}

TEST_P(RecordsetFindFilter, BadCriteriaRaiseTheDocumentedErrorNamingThem) {
  const std::string too_deep = std::string(Criteria::kMaxNesting + 1, '(') + "ID = 1" +
                               std::string(Criteria::kMaxNesting + 1, ')');
  const std::pair<std::string, int32_t> cases[] = {
      {"ID = = 1", kErrInvalidArgument},
      {"ID =", kErrInvalidArgument},
      {"ID 5", kErrInvalidArgument},
      {"ID", kErrInvalidArgument},
      {"ID = 1 1", kErrInvalidArgument},
      {"LastName = 'open", kErrInvalidArgument},
      {"(ID = 1", kErrInvalidArgument},
      {"ID = 1 AND", kErrInvalidArgument},
      {"ID = 5x", kErrInvalidArgument},
      {"(ID = 1 OR ID = 2) AND Balance > 0", kErrInvalidArgument},
      {"Balance > 0 AND (ID = 1 OR ID = 2)", kErrInvalidArgument},
      {"LastName LIKE '*ith'", kErrInvalidArgument},
      {"LastName LIKE 'S*h'", kErrInvalidArgument},
      {"LastName LIKE 'S%h*'", kErrInvalidArgument},
      {too_deep, kErrInvalidArgument},
      {"Nope = 5", kErrItemNotFound},
      {"ID = 1 OR [Last Name] = 'x'", kErrItemNotFound},
  };
  for (const auto& [criteria, number] : cases) {
    const Error e = ErrorOf([&] { rs_->Filter(criteria); });
    EXPECT_EQ(e.Number(), number) << criteria;
    EXPECT_THAT(e.Description(), ::testing::HasSubstr(criteria.substr(0, 200)));
    EXPECT_EQ(ErrorOf([&] { rs_->Find(criteria); }).Number(), number) << criteria;
  }
  EXPECT_EQ(rs_->RecordCount(), 6);  // a bad filter leaves the old one
  // Find takes one comparison.
  for (const char* criteria : {"ID = 1 OR ID = 2", "ID = 1 AND ID = 2", "", "(ID = 1) OR ID = 2"}) {
    EXPECT_EQ(ErrorOf([&] { rs_->Find(criteria); }).Number(), kErrInvalidArgument) << criteria;
  }
  rs_->Find("((ID = 4))");  // parentheses around one comparison are still one comparison
  EXPECT_EQ(CurrentId(), 4);
}

TEST_P(RecordsetFindFilter, FindWithAnySkipAfterADeleteCountsFromTheGap) {
  struct Case {
    int32_t skip;
    SearchDirectionEnum direction;
    int32_t found;  // 0: none (EOF forward, BOF backward)
  };
  for (const Case& c :
       {Case{0, adSearchForward, 4}, Case{1, adSearchForward, 4}, Case{2, adSearchForward, 5},
        Case{0, adSearchBackward, 2}, Case{1, adSearchBackward, 2}, Case{2, adSearchBackward, 1},
        Case{INT32_MAX, adSearchForward, 0}, Case{INT32_MAX, adSearchBackward, 0},
        Case{INT32_MIN, adSearchForward, 4}, Case{INT32_MIN, adSearchBackward, 2}}) {
    auto rs =
        OpenRecordset(db_.Connection(), "SELECT * FROM patients ORDER BY ID", adLockOptimistic);
    rs->Find("ID = 3", 0, adSearchForward, kFirst);
    rs->Delete();  // the cursor stays on the deleted row
    rs->Find("ID > 0", c.skip, c.direction);
    if (c.found == 0) {
      EXPECT_TRUE(c.direction == adSearchForward ? rs->Eof() : rs->Bof()) << c.skip;
    } else {
      EXPECT_EQ(CLng(rs->Fields("ID").Value()), c.found) << c.skip << " " << c.direction;
    }
    db_.Run("INSERT INTO patients (ID, LastName) VALUES (3, 'smithers')");  // for the next case
  }
}

TEST(LikePattern, BothWildcardFamiliesAndEscapes) {
  // "_" meets one character of two bytes; "!" escapes the wildcard after it.
  struct Case {
    const char *pattern, *text;
    bool matches;
  };
  for (const Case& c :
       {Case{"JS0*", "js0001", true}, Case{"JS0%", "JS0", true}, Case{"JS0*", "JS", false},
        Case{"J?S_", "jxsy", true}, Case{"J?S_", "jxs", false}, Case{"*a*b*", "xxaxxbxx", true},
        Case{"*a*b", "xxaxxbxx", false}, Case{"%", "", true}, Case{"_", "\xc3\xa9", true},
        Case{"100!%", "100%", true}, Case{"100!%", "1000", false}, Case{"a!*b", "a*b", true}}) {
    EXPECT_EQ(internal::LikeMatches(c.pattern, c.text, '!'), c.matches)
        << c.pattern << " " << c.text;
  }
}

TEST(Criteria, LongListsOfTermsNeedNoDeepStack) {
  // A generated filter of 100,000 alternatives, or as many conditions joined
  // by AND, is read and evaluated in loops.
  auto resolve = [](std::string_view name) -> int32_t { return name == "A" ? 0 : -1; };
  std::string any;
  std::string all;
  for (int i = 0; i < 100000; ++i) {
    any += (i ? " OR A = " : "A = ") + std::to_string(i);
    all += (i ? " AND A <> " : "A <> ") + std::to_string(i);
  }
  const Criteria alternatives = Criteria::Parse(any, resolve);
  const Criteria conditions = Criteria::Parse(all, resolve);
  for (int32_t value : {0, 99999, 100000, -1}) {
    const Variant row[] = {Variant(value)};
    const bool listed = value >= 0 && value < 100000;
    EXPECT_EQ(alternatives.Matches(row), listed) << value;
    EXPECT_EQ(conditions.Matches(row), !listed) << value;
  }
  // Nesting is what recurses, and it stops at a clear error.
  const std::string deep = std::string(15000, '(') + "A = 1" + std::string(15000, ')');
  const Error e = ErrorOf([&] { Criteria::Parse(deep, resolve); });
  EXPECT_EQ(e.Number(), kErrInvalidArgument);
  EXPECT_THAT(e.Description(), ::testing::HasSubstr("nested more than 100 deep"));
}

TEST(Criteria, NumbersAndNullLiteralsReadAsValues) {
  auto matches = [](const char* criteria, const Variant& a) {
    const Variant row[] = {a};
    auto resolve = [](std::string_view name) -> int32_t { return name == "A" ? 0 : -1; };
    return Criteria::Parse(criteria, resolve).Matches(row);
  };
  for (const char* criteria : {"A = -12", "-12 = A", "A >= -1.2E1"})
    EXPECT_TRUE(matches(criteria, int32_t{-12})) << criteria;
  // Null matches the Null tests and no comparison.
  for (const char* criteria : {"A = Null", "A IS NULL"})
    EXPECT_TRUE(matches(criteria, Variant::Null())) << criteria;
  for (const char* criteria : {"A <> 5", "A < 5", "A LIKE '*'"})
    EXPECT_FALSE(matches(criteria, Variant::Null())) << criteria;
}

}  // namespace
}  // namespace kelvary::testing
