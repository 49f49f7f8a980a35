// BatchChanges: the changes a recordset opened with adLockBatchOptimistic
// keeps in memory until UpdateBatch sends them or CancelBatch takes them
// back. The cursor engine holds the rows themselves (a pending row's cells
// are its new values); this keeps, per row id, what the engine's storage
// does not: the kind of change, the row as it was read (so that the write
// finds it, and CancelBatch can restore it), which fields changed, and what
// the last batch call found (a conflict: the row was changed or deleted by
// someone else since it was read). It also remembers which rows the last
// batch call touched, for Filter adFilterAffectedRecords.
//
// Row status, as Recordset::Status reads it: a pending row says its kind
// (adRecNew, adRecModified, adRecDeleted) together with what the last batch
// found (adRecConcurrencyViolation, adRecIntegrityViolation); a row the last
// batch wrote says adRecOK; every other row adRecUnmodified.
//
// One per set of rows, shared by an engine and its clones, used on their
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_set>
#include <vector>

#include "kelvary/platform/Variant.h"

namespace kelvary::internal {

class BatchChanges {
 public:
  enum class Kind : uint8_t { kNew, kModified, kDeleted };
  struct Pending {
    Kind kind = Kind::kModified;
    std::vector<Variant> originals;  // the row as read; empty for a new row
    std::vector<uint8_t> changed;    // fields set since it was read or added
    int32_t problem = 0;             // what the last batch call found, RecordStatusEnum bits
  };

  bool Empty() const { return pending_.empty(); }
  const Pending* Find(uint32_t row) const;
  // The pending rows in ascending row id.
  std::vector<uint32_t> Rows() const;

  // Edited: an edit of row, committed by Update: originals are the values
  // when the edit began. A row already pending keeps what it was first read
  // as, and adds the newly changed fields.
  void Edited(uint32_t row, const std::vector<Variant>& originals,
              const std::vector<uint8_t>& changed);
  void Added(uint32_t row, const std::vector<uint8_t>& changed);
  // Deleted: row (whose cells are values) is deleted. Returns false when
  // it was a new row, which the database never saw: nothing is to be sent.
  bool Deleted(uint32_t row, const Variant* values, size_t width);

  // A batch call (UpdateBatch or CancelBatch) starts: the rows it touches
  // are from now on the affected ones.
  void StartCall();
  // Sent: row was written; it is no longer pending.
  void Sent(uint32_t row);
  // Refused: row stays pending with problem.
  void Refused(uint32_t row, int32_t problem);
  // Canceled: row's change is taken back.
  void Canceled(uint32_t row);

  bool Affected(uint32_t row) const { return affected_.count(row) != 0; }
  bool Conflicting(uint32_t row) const;
  int32_t Status(uint32_t row) const;

 private:
  std::map<uint32_t, Pending> pending_;
  std::unordered_set<uint32_t> affected_;  // touched by the last batch call
  std::unordered_set<uint32_t> written_;   // written by the last batch call
};

}  // namespace kelvary::internal
