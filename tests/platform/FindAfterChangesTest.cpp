// Find right after the rows changed under it: a row deleted at the cursor,
// and the equality index that repeated Finds keep, which must follow every
// Delete and AddNew.
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

class FindAfterChanges : public BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    Fresh();
  }
  // Fresh: the six patients again, in a new database.
  void Fresh() {
    db_ = NewDatabase();
    db_.Run(PatientsSql(Traits()));
    rs_ = OpenRecordset(db_.Connection(), "SELECT * FROM patients ORDER BY ID", adLockOptimistic);
  }
  // Where the cursor is: the ID, or EOF / BOF.
  std::string At() {
    if (rs_->Eof()) return "EOF";
    if (rs_->Bof()) return "BOF";
    return CStr(rs_->Fields("ID").Value());
  }
  void DeleteId(int id) {
    rs_->Find("ID = " + std::to_string(id), 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
    ASSERT_EQ(At(), std::to_string(id));
    rs_->Delete();
  }
  BackendDatabase db_;
  std::shared_ptr<Recordset> rs_;
};
KELVARY_ON_EVERY_BACKEND(FindAfterChanges);

TEST_P(FindAfterChanges, FindFromADeletedRowNeverLandsOnIt) {
  // The cursor stays on the deleted row 3; whatever is skipped from there,
  // in either direction, Find moves to a row that is still there.
  struct Case {
    const char* criteria;
    int32_t skip;
    SearchDirectionEnum direction;
    const char* lands_on;
  };
  const Case cases[] = {
      {"ID > 0", 0, adSearchForward, "4"},
      {"ID > 0", 1, adSearchForward, "4"},
      {"ID > 0", 2, adSearchForward, "5"},
      {"ID > 0", 0, adSearchBackward, "2"},
      {"ID > 0", 1, adSearchBackward, "2"},
      {"ID > 0", 2, adSearchBackward, "1"},
      {"ID = 3", 0, adSearchForward, "EOF"},
      {"ID = 3", 0, adSearchBackward, "BOF"},
      {"ParentID = 1", 0, adSearchBackward, "2"},
      {"LastName = 'smithers'", 1, adSearchForward, "EOF"},
  };
  for (const Case& c : cases) {
    Fresh();
    DeleteId(3);
    rs_->Find(c.criteria, c.skip, c.direction);
    EXPECT_EQ(At(), c.lands_on) << c.criteria << " skip " << c.skip << " direction " << c.direction;
  }
}

TEST_P(FindAfterChanges, TheEqualityIndexFollowsDeleteAndAddNew) {
  const Variant first(int32_t{adBookmarkFirst});
  auto find = [&](const std::string& criteria) {
    rs_->Find(criteria, 0, adSearchForward, first);
    return At();
  };
  // Twice each, so that the second answer comes from the index.
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(find("LastName = 'Jones'"), "4");
    EXPECT_EQ(find("ParentID = 3"), "4");
  }
  DeleteId(4);
  EXPECT_EQ(find("LastName = 'Jones'"), "EOF");
  EXPECT_EQ(find("ParentID = 3"), "5");

  rs_->AddNew();
  rs_->Fields("LastName").Value("Jones");
  rs_->Fields("ParentID").Value(int32_t{7});
  rs_->Update();
  const std::string added = CStr(rs_->Fields("ID").Value());
  EXPECT_EQ(find("LastName = 'Jones'"), added);
  EXPECT_EQ(find("ParentID = 7"), added);
  EXPECT_EQ(find("ParentID = 3"), "5");
}

}  // namespace
}  // namespace kelvary::testing
