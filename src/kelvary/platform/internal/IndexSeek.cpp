// The cursor engine's Seek: a search by the value of a key field, in the
// order of that field's values rather than the order shown. The rows are
// in memory, so one pass over the visible rows finds the row; no index is
// kept that a change would have to maintain.
#include <cstddef>

#include "kelvary/platform/internal/CursorEngine.h"

namespace kelvary::internal {

bool CursorEngine::HasKey() const {
  RequireOpen();
  for (const ColumnInfo& column : columns_) {
    if (column.key) return true;
  }
  return false;
}

void CursorEngine::Seek(int32_t column, const Variant& key, SeekEnum option) {
  RequireOpen();
  CommitPending();
  // wants: which side of the key a row may lie on (-1 before, 0 equal, 1
  // after); last: the best row is the last in the index's order, not the
  // first.
  bool before = false, equal = false, after = false, last = false;
  switch (option) {
    case adSeekFirstEQ:
      equal = true;
      break;
    case adSeekLastEQ:
      equal = last = true;
      break;
    case adSeekAfterEQ:
      equal = after = true;
      break;
    case adSeekAfter:
      after = true;
      break;
    case adSeekBeforeEQ:
      before = equal = last = true;
      break;
    case adSeekBefore:
      before = last = true;
      break;
  }
  ptrdiff_t best = -1;
  const Variant* best_value = nullptr;
  for (size_t p = 0; p < order_.size(); ++p) {
    const Variant& value = StoredRow(order_[p])[column];
    const int side = CompareValues(value, key);
    if (!((side < 0 && before) || (side == 0 && equal) || (side > 0 && after))) continue;
    if (best_value) {
      const int against = CompareValues(value, *best_value);
      // Ties keep the order shown: the first of equals, or the last of them.
      if (last ? against < 0 : against >= 0) continue;
    }
    best = static_cast<ptrdiff_t>(p);
    best_value = &value;
  }
  on_deleted_ = false;
  pos_ = best >= 0 ? best : static_cast<ptrdiff_t>(order_.size());
  ResetStatus();
}

}  // namespace kelvary::internal
