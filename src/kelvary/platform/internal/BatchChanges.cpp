#include "kelvary/platform/internal/BatchChanges.h"

#include <algorithm>
#include <utility>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/CursorEngine.h"

namespace kelvary::internal {

// ---- The books -----------------------------------------------------------

const BatchChanges::Pending* BatchChanges::Find(uint32_t row) const {
  auto it = pending_.find(row);
  return it == pending_.end() ? nullptr : &it->second;
}

std::vector<uint32_t> BatchChanges::Rows() const {
  std::vector<uint32_t> rows;
  rows.reserve(pending_.size());
  for (const auto& [row, pending] : pending_)
    rows.push_back(row);
  return rows;
}

void BatchChanges::Edited(uint32_t row, const std::vector<Variant>& originals,
                          const std::vector<uint8_t>& changed) {
  auto [it, fresh] = pending_.try_emplace(row);
  Pending& pending = it->second;
  if (fresh) {
    pending.kind = Kind::kModified;
    pending.originals = originals;
    pending.changed = changed;
    return;
  }
  for (size_t c = 0; c < changed.size() && c < pending.changed.size(); ++c) {
    if (changed[c]) pending.changed[c] = true;
  }
}

void BatchChanges::Added(uint32_t row, const std::vector<uint8_t>& changed) {
  Pending& pending = pending_[row];
  pending.kind = Kind::kNew;
  pending.originals.clear();
  pending.changed = changed;
}

bool BatchChanges::Deleted(uint32_t row, const Variant* values, size_t width) {
  auto it = pending_.find(row);
  if (it != pending_.end() && it->second.kind == Kind::kNew) {
    pending_.erase(it);  // never sent: nothing to take back from the database
    return false;
  }
  if (it == pending_.end()) {
    Pending& pending = pending_[row];
    pending.originals.assign(values, values + width);
    pending.changed.assign(width, false);
    pending.kind = Kind::kDeleted;
    return true;
  }
  it->second.kind = Kind::kDeleted;  // located by what it was read as
  return true;
}

void BatchChanges::StartCall() {
  affected_.clear();
  written_.clear();
}

void BatchChanges::Sent(uint32_t row) {
  pending_.erase(row);
  affected_.insert(row);
  written_.insert(row);
}

void BatchChanges::Refused(uint32_t row, int32_t problem) {
  auto it = pending_.find(row);
  if (it != pending_.end()) it->second.problem = problem;
  affected_.insert(row);
}

void BatchChanges::Canceled(uint32_t row) {
  pending_.erase(row);
  affected_.insert(row);
}

bool BatchChanges::Conflicting(uint32_t row) const {
  const Pending* pending = Find(row);
  return pending && pending->problem != 0;
}

int32_t BatchChanges::Status(uint32_t row) const {
  if (const Pending* pending = Find(row)) {
    const int32_t kind = pending->kind == Kind::kNew        ? adRecNew
                         : pending->kind == Kind::kModified ? adRecModified
                                                            : adRecDeleted;
    return kind | pending->problem;
  }
  return written_.count(row) != 0 ? adRecOK : adRecUnmodified;
}

// ---- The cursor engine's batch calls, beside the books they keep ----------

namespace {

constexpr const char* kSource = "Recordset";

void CheckAffect(AffectEnum affect) {
  if (affect != adAffectCurrent && affect != adAffectGroup && affect != adAffectAll &&
      affect != adAffectAllChapters) {
    throw InvalidArgumentError(
        "AffectRecords is adAffectCurrent, adAffectGroup, adAffectAll or adAffectAllChapters.",
        kSource);
  }
}

// ProblemOf: what a refusal other than a conflict says of the row: the
// database's rules when it named fields, otherwise no more than pending.
int32_t ProblemOf(const std::vector<int32_t>& field_status) {
  for (int32_t status : field_status) {
    if (status == adFieldSchemaViolation || status == adFieldIntegrityViolation) {
      return adRecIntegrityViolation;
    }
  }
  return 0;
}

}  // namespace

bool CursorEngine::HasPending() const {
  RequireOpen();
  return edit_mode_ != adEditNone || (batch_ && !batch_->Empty());
}

int32_t CursorEngine::RecordStatus() const {
  RequireOpen();
  const uint32_t row = on_deleted_ ? deleted_row_ : CurrentRow();
  if (!batch_) return on_deleted_ ? adRecDeleted : adRecUnmodified;
  if (edit_mode_ == adEditAdd && row == edit_row_) return adRecNew;
  const int32_t status = batch_->Status(row);
  if (edit_mode_ == adEditInProgress && row == edit_row_ && (status & adRecNew) == 0) {
    return adRecModified | (status & ~(adRecUnmodified | adRecModified));
  }
  return status;
}

std::vector<uint32_t> CursorEngine::BatchRows(AffectEnum affect) const {
  std::vector<uint32_t> rows = batch_->Rows();
  if (affect == adAffectCurrent) {
    const bool current = on_deleted_ || HasCurrent();
    const uint32_t row = on_deleted_ ? deleted_row_ : current ? CurrentRow() : 0;
    rows.erase(
        std::remove_if(rows.begin(), rows.end(), [&](uint32_t r) { return !current || r != row; }),
        rows.end());
  } else if (affect == adAffectGroup) {
    std::vector<uint32_t> visible = order_;
    std::sort(visible.begin(), visible.end());
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&](uint32_t r) {
                                return !std::binary_search(visible.begin(), visible.end(), r);
                              }),
               rows.end());
  }
  return rows;
}

void CursorEngine::KeepPositionAfter(ptrdiff_t row) {
  const ptrdiff_t position = row >= 0 ? PositionOfRow(static_cast<uint32_t>(row)) : -1;
  if (position >= 0) {
    pos_ = position;
    on_deleted_ = false;
    ResetStatus();
  } else {
    ResetPosition();
  }
}

int32_t CursorEngine::UpdateBatch(AffectEnum affect, const std::function<void()>& commit) {
  RequireOpen();
  CheckAffect(affect);
  RequireWritable();
  CommitPending();
  if (!batch_) return 0;  // written as they were made
  const std::vector<uint32_t> rows = BatchRows(affect);
  batch_->StartCall();
  if (rows.empty()) return 0;

  // A new row's cells before the database filled in its key and defaults,
  // put back when the batch does not go through.
  std::vector<std::pair<uint32_t, std::vector<Variant>>> before_insert;
  std::vector<uint32_t> sent;
  std::vector<uint32_t> conflicts;
  std::vector<int32_t> field_status(width_, adFieldOK);
  uint32_t writing = 0;
  try {
    for (uint32_t row : rows) {
      writing = row;
      const BatchChanges::Pending& pending = *batch_->Find(row);
      std::fill(field_status.begin(), field_status.end(), adFieldOK);
      if (writer_) {
        try {
          switch (pending.kind) {
            case BatchChanges::Kind::kNew: {
              Variant* cells = OwnedRow(row);
              before_insert.emplace_back(row, std::vector<Variant>(cells, cells + width_));
              writer_->Insert(RowChange{columns_, cells, nullptr, pending.changed, field_status},
                              cells);
              break;
            }
            case BatchChanges::Kind::kModified:
              writer_->Update(RowChange{columns_, StoredRow(row), pending.originals.data(),
                                        pending.changed, field_status});
              break;
            case BatchChanges::Kind::kDeleted:
              writer_->Delete(RowChange{columns_, pending.originals.data(), nullptr,
                                        pending.changed, field_status});
              break;
          }
        } catch (const Error& e) {
          if (e.Number() != kErrRowChanged) throw;
          conflicts.push_back(row);  // the others go on
          continue;
        }
      }
      sent.push_back(row);
    }
    commit();
  } catch (...) {
    for (auto& [row, cells] : before_insert)
      std::move(cells.begin(), cells.end(), OwnedRow(row));
    batch_->Refused(writing, ProblemOf(field_status));
    ChangedRows();
    throw;
  }
  for (uint32_t row : sent)
    batch_->Sent(row);
  for (uint32_t row : conflicts)
    batch_->Refused(row, adRecConcurrencyViolation);
  ChangedRows();  // the database may have supplied values
  return static_cast<int32_t>(conflicts.size());
}

void CursorEngine::CancelBatch(AffectEnum affect) {
  RequireOpen();
  CheckAffect(affect);
  if (edit_mode_ != adEditNone) CancelUpdate();
  if (!batch_) return;
  const ptrdiff_t current = on_deleted_    ? static_cast<ptrdiff_t>(deleted_row_)
                            : HasCurrent() ? static_cast<ptrdiff_t>(CurrentRow())
                                           : -1;
  const std::vector<uint32_t> rows = BatchRows(affect);
  batch_->StartCall();
  for (uint32_t row : rows) {
    const BatchChanges::Pending& pending = *batch_->Find(row);
    if (pending.kind == BatchChanges::Kind::kNew) {
      rows_->deleted[row] = 1;
    } else {
      const bool restore = std::any_of(pending.changed.begin(), pending.changed.end(),
                                       [](bool changed) { return changed; });
      if (restore) std::copy(pending.originals.begin(), pending.originals.end(), OwnedRow(row));
      rows_->deleted[row] = 0;
    }
    batch_->Canceled(row);
  }
  if (rows.empty()) return;
  RebuildOrder(filter_criteria_.get());
  KeepPositionAfter(current);
  Tell([](CursorEngine& other) { other.RowsBack(); });
}

}  // namespace kelvary::internal
