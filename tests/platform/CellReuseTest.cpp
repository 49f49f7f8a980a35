// The storage of a freed result's cells, kept for the next result: what is
// kept and handed out, that nothing of the old cells comes back, and that
// rows still held by a clone are never given away.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/internal/CellBuffers.h"

namespace kelvary::testing {
namespace {

using internal::CellStorage;
using internal::RecycleCells;
using internal::ReleaseSpareCells;
using internal::SpareCellBytes;

constexpr size_t kCellBytes = sizeof(Variant);

std::vector<Variant> Block(size_t cells) {
  std::vector<Variant> block;
  block.reserve(cells);
  return block;
}

TEST(CellReuse, KeepsOnlyBlocksWithinItsLimitsTheLatestWinning) {
  struct Case {
    size_t cells;
    bool kept;
  };
  const Case cases[] = {
      {internal::kMinSpareBytes / kCellBytes - 1, false},  // the C library reuses these itself
      {internal::kMinSpareBytes / kCellBytes, true},
      {size_t{100000} * 6, true},
      {internal::kMaxSpareBytes / kCellBytes, true},
      {internal::kMaxSpareBytes / kCellBytes + 1, false},  // would hold too much
  };
  for (const Case& c : cases) {
    ReleaseSpareCells();
    std::vector<Variant> block = Block(c.cells);
    block.emplace_back(int32_t{1});
    RecycleCells(block);
    EXPECT_TRUE(block.empty()) << c.cells;
    EXPECT_EQ(SpareCellBytes(), c.kept ? c.cells * kCellBytes : 0) << c.cells;
  }
  // A smaller block given back later replaces a larger one.
  std::vector<Variant> large = Block(200000);
  std::vector<Variant> small = Block(30000);
  RecycleCells(large);
  RecycleCells(small);
  EXPECT_EQ(SpareCellBytes(), 30000 * kCellBytes);
  ReleaseSpareCells();
  EXPECT_EQ(SpareCellBytes(), 0u);
}

TEST(CellReuse, HandsTheSpareOnlyToAResultThatFillsAtLeastHalfOfIt) {
  struct Case {
    size_t wanted;
    bool reused;
  };
  const Case cases[] = {
      {40001, false},  // does not fit
      {19999, false},  // a small result would hold a large block
      {20000, true},
      {40000, true},
  };
  for (const Case& c : cases) {
    ReleaseSpareCells();
    std::vector<Variant> block = Block(40000);
    const Variant* storage = block.data();
    RecycleCells(block);
    const std::vector<Variant> cells = CellStorage(c.wanted);
    EXPECT_TRUE(cells.empty());
    EXPECT_GE(cells.capacity(), c.wanted);
    EXPECT_EQ(cells.data() == storage, c.reused) << c.wanted;
    EXPECT_EQ(SpareCellBytes(), c.reused ? 0 : 40000 * kCellBytes) << c.wanted;
  }
  ReleaseSpareCells();
}

TEST(CellReuse, TheCellsGivenBackAreDestroyedAtOnce) {
  ReleaseSpareCells();
  auto held = std::make_shared<Object>();
  const std::weak_ptr<Object> watch = held;
  std::vector<Variant> block = Block(20000);
  for (int i = 0; i < 20000; ++i)
    block.emplace_back(i % 2 == 0 ? Variant(held) : Variant(std::string(40, 'x')));
  held.reset();
  RecycleCells(block);
  EXPECT_TRUE(watch.expired());
  EXPECT_TRUE(CellStorage(20000).empty());
  ReleaseSpareCells();
}

// On every backend: large results opened one after another while a clone
// still holds the rows of the first.
class CellReuseOnRecordsets : public BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    db_ = NewDatabase();
    db_.Run("CREATE TABLE digits (d INTEGER)");
    for (int d = 0; d < 10; ++d)
      db_.Run("INSERT INTO digits VALUES (" + std::to_string(d) + ")");
  }
  // rows rows (at most 100,000) of two numbers: from + i and i * 2. Made
  // from five copies of ten digits: a recursive query stops at 1,000 rows
  // on some servers.
  std::shared_ptr<Recordset> Numbers(int from, int rows) {
    return OpenRecordset(
        db_.Connection(),
        "SELECT i + " + std::to_string(from) +
            " AS v, i * 2 AS twice FROM (SELECT a.d + 10 * b.d + 100 * c.d + 1000 * d.d + "
            "10000 * e.d + 1 AS i FROM digits a, digits b, digits c, digits d, digits e) n "
            "WHERE i <= " +
            std::to_string(rows) + " ORDER BY i");
  }
  // Walks rs from its first row: the row count, and whether every row holds
  // from + i and i * 2.
  static std::pair<int, bool> Check(Recordset& rs, int from) {
    int count = 0;
    bool right = true;
    rs.MoveFirst();
    for (; !rs.Eof(); rs.MoveNext()) {
      ++count;
      right = right && CLng(rs.Fields(0).Value()) == from + count &&
              CLng(rs.Fields(1).Value()) == 2 * count;
    }
    return {count, right};
  }

  BackendDatabase db_;
};
KELVARY_ON_EVERY_BACKEND(CellReuseOnRecordsets);

TEST_P(CellReuseOnRecordsets, ANewResultHoldsItsOwnRowsAndAClonesRowsStayIntact) {
  using Walk = std::pair<int, bool>;
  ReleaseSpareCells();
  auto first = Numbers(0, 20000);
  auto clone = first->Clone();
  first->Close();
  first.reset();
  // The clone still holds the rows: they are not anyone's spare.
  auto second = Numbers(100000, 20000);
  EXPECT_EQ(second->RecordCount(), 20000);
  EXPECT_EQ(Check(*second, 100000), Walk(20000, true));
  EXPECT_EQ(Check(*clone, 0), Walk(20000, true));

  // Rows freed and read again, smaller (the freed storage fits them),
  // larger and the same again: each result exactly its own.
  clone->Close();
  clone.reset();
  second.reset();
  for (const auto& [from, rows] : {std::pair{200000, 12000}, {300000, 30000}, {400000, 30000}}) {
    auto rs = Numbers(from, rows);
    EXPECT_EQ(rs->RecordCount(), rows);
    EXPECT_EQ(Check(*rs, from), Walk(rows, true)) << from;
  }
  ReleaseSpareCells();
}

}  // namespace
}  // namespace kelvary::testing
