// Rows that come from no single statement: how the shaping layer builds a
// hierarchical recordset on the cursor engine.
#include <gtest/gtest.h>

#include <cctype>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/internal/CursorEngine.h"

namespace kelvary::testing {
namespace {

RowSet Rows(const std::vector<std::pair<const char*, DataTypeEnum>>& columns,
            std::vector<Variant> cells) {
  RowSet rows;
  for (const auto& [name, type] : columns) {
    rows.columns.emplace_back().name = name;
    rows.columns.back().type = type;
  }
  rows.cells = std::move(cells);
  return rows;
}

// Parents 1..3; children (ID, ParentID) related to them; parent 2 has none.
std::shared_ptr<Recordset> BuildShape() {
  const std::vector<std::pair<int32_t, int32_t>> children = {{10, 1}, {11, 1}, {12, 3}};
  std::vector<Variant> parent_cells;
  for (int32_t parent = 1; parent <= 3; ++parent) {
    std::vector<Variant> child_cells;
    for (const auto& [id, parent_id] : children) {
      if (parent_id != parent) continue;
      child_cells.emplace_back(id);
      child_cells.emplace_back(parent_id);
    }
    auto child = std::make_shared<Recordset>();
    internal::LoadRecordset(
        *child, Rows({{"ID", adInteger}, {"ParentID", adInteger}}, std::move(child_cells)),
        internal::LoadOptions{"child", nullptr});
    parent_cells.emplace_back(parent);
    parent_cells.emplace_back("Parent " + std::to_string(parent));
    parent_cells.emplace_back(child);
  }
  auto parent = std::make_shared<Recordset>();
  internal::LoadRecordset(*parent,
                          Rows({{"ID", adInteger}, {"Name", adVarWChar}, {"Visits", adChapter}},
                               std::move(parent_cells)),
                          internal::LoadOptions{"SHAPE {...}", nullptr});
  return parent;
}

TEST(InMemoryRecordset, ChapterFieldsHoldChildRecordsetsThatNavigateOnTheirOwn) {
  auto parent = BuildShape();
  EXPECT_EQ(parent->RecordCount(), 3);
  std::string seen;
  while (!parent->Eof()) {
    auto child = parent->Fields("Visits").Value().ObjectAs<Recordset>();
    ASSERT_TRUE(child);
    seen += CStr(parent->Fields("ID").Value()) + ":" + std::to_string(child->RecordCount()) + " ";
    parent->MoveNext();
  }
  EXPECT_EQ(seen, "1:2 2:0 3:1 ");

  parent->Filter("ID <> 2");
  EXPECT_EQ(Ids(*parent), "1,3");
  parent->MoveFirst();
  auto first = parent->Fields("Visits").Value().ObjectAs<Recordset>();
  first->Filter("ID > 10");
  EXPECT_EQ(Ids(*first), "11");
  // Rows loaded this way are read-only unless the loader says otherwise, and
  // a chapter field is never set.
  EXPECT_EQ(ErrorOf([&] { first->AddNew(); }).Number(), kErrOperationNotSupported);
  EXPECT_EQ(ErrorOf([&] { parent->Fields("Visits").Value(Variant()); }).Number(),
            kErrOperationNotSupported);
  EXPECT_EQ(ErrorOf([&] { parent->Filter("Visits = 1"); }).Number(), kErrTypeMismatch);
}

TEST(InMemoryRecordset, MemoryWriteModeChangesOnlyTheRowsHeld) {
  auto rs = std::make_shared<Recordset>();
  internal::LoadRecordset(
      *rs, Rows({{"ID", adInteger}, {"When", adDate}}, {Variant(int32_t{1}), Variant::Null()}),
      internal::LoadOptions{"", nullptr, adLockOptimistic, internal::WriteMode::kMemory});
  rs->Fields("When").Value("2024-03-05");
  rs->MoveNext();  // commits in memory
  rs->AddNew();
  rs->Fields("ID").Value("2");
  rs->Update();
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("ID").Value(), Variant(int32_t{2}));
  rs->MoveFirst();
  EXPECT_EQ(rs->Fields("When").Value(), Variant(DateSerial(2024, 3, 5)));
  rs->Delete();
  EXPECT_EQ(rs->RecordCount(), 1);
  EXPECT_EQ(ErrorOf([&] { internal::LoadRecordset(*rs, RowSet(), {}); }).Number(), kErrObjectOpen);
}

// Names are found whatever their spelling, however many are asked for, and
// a name asked for again after others (the walk by name) still finds its own
// field: the names remembered between calls never answer for another.
TEST(InMemoryRecordset, FieldsByNameFindTheirOwnFieldOnEveryCall) {
  constexpr int32_t kWidth = 60;  // more names than are remembered between calls
  RowSet rows;
  for (int32_t c = 0; c < kWidth; ++c) {
    rows.columns.emplace_back().name = "Column" + std::to_string(c);
    rows.columns.back().type = adInteger;
    rows.cells.emplace_back(c);
  }
  auto rs = std::make_shared<Recordset>();
  internal::LoadRecordset(*rs, std::move(rows), internal::LoadOptions{"wide", nullptr});
  for (int pass = 0; pass < 3; ++pass) {
    for (int32_t c = 0; c < kWidth; ++c) {
      const std::string name = "Column" + std::to_string(c);
      std::string other_case = name;
      for (char& ch : other_case)
        ch = static_cast<char>(pass == 1 ? std::toupper(ch) : std::tolower(ch));
      EXPECT_EQ(rs->Fields(name).Value(), Variant(c)) << name;
      EXPECT_EQ(rs->Fields(other_case).Value(), Variant(c)) << other_case;
    }
  }
  EXPECT_EQ(ErrorOf([&] { rs->Fields("Column60"); }).Number(), kErrItemNotFound);
}

}  // namespace
}  // namespace kelvary::testing
