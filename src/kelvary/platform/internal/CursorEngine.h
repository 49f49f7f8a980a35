// CursorEngine: the client-side cursor behind every Recordset. It owns the
// rows fetched into memory, the visible order (Filter), the current position,
// Find, and the edit buffer. Where a change goes when it is committed is not
// its business: a RowWriter handed over with the rows writes it (write-back
// to the base table lives in WriteBack.h), or nothing does and the change
// stays in memory. Recordset and Field are thin handles over it; the
// statement runner (StatementRunner.h) fills it.
//
// Storage: the cells of all rows sit in one flat vector, row by row (the
// driver's RowSet is moved in, never copied); a row is addressed by its
// index there ("row id", stable for the life of the recordset). The visible
// rows are a vector of row ids in order; a Filter rebuilds it, a Delete
// erases from it, so RecordCount is its size and always exact. Only the row
// being edited keeps a copy of its original values.
//
// Rows that do not come from one driver statement (the data-shaping layer):
// build a RowSet and hand it to Load. A hierarchical result is built
// bottom-up:
//   1. for each parent row, make the child recordset of its related child
//      rows: auto child = std::make_shared<Recordset>();
//      internal::LoadRecordset(*child, std::move(child_rows), {source, connection});
//   2. append to the parent's RowSet a ColumnInfo{name, adChapter} and, in
//      every parent row, a cell Variant(child) (an empty child recordset
//      when the row has no children, never Empty);
//   3. LoadRecordset(target, std::move(parent_rows), options).
// Navigation, Find, Filter and RecordCount then work on parent and children
// alike; a chapter field's Value is the child Recordset (Variant::ObjectAs).
// The chapters of one child level can instead share that level's rows:
// LoadShared hands each chapter the one store and the numbers of its own
// rows in it, so that no row is moved or copied (a million child rows are
// then related in the time of the grouping alone). A chapter that is
// changed copies its rows into its own storage first.
// Rows loaded this way are read-only unless LoadOptions::write_mode says
// otherwise: kMemory (edits change the rows in memory only), or kBaseTable
// with a writer. Load leaves the cursor on the first row.
//
// Clones: CloneFrom makes another engine over the same rows (SharedRows,
// held by shared pointer): cells, deleted flags and the books of batch
// updating belong to the rows, while the order, position, Filter, Sort, the
// edit buffer and the caches belong to each engine. The rows know the
// engines that hold them and tell them of a change made through one of
// them: a value (each drops its caches), a row added (shown at once where
// no filter or group is set, else when that engine's order is next built),
// a row deleted (it leaves every order; the engine that stood on it is left
// on a deleted row) and rows a batch cancel brought back (each builds its
// order again). Closing one engine leaves the others open.
//
// One thread uses an engine, and its clones, at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/platform/internal/SortOrder.h"
#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary {
class Connection;
}  // namespace kelvary

namespace kelvary::internal {

class BatchChanges;
class Criteria;

// WriteMode: where the changes of a recordset go.
enum class WriteMode {
  kReadOnly,   // changes are refused (Error 3251)
  kMemory,     // changes stay in memory (in-memory and shaped rows)
  kBaseTable,  // changes are written by the writer (a single-table SELECT's base table)
};

// RowChange: one change as the writer sees it, in the engine's own buffers.
struct RowChange {
  const std::vector<ColumnInfo>& columns;
  const Variant* values;     // the row as it is now (Delete: as it was read)
  const Variant* originals;  // Update: the row as it was read; otherwise null
  // Per field, 1 when it was set: bytes rather than bits, read on every edit.
  const std::vector<uint8_t>& changed;
  std::vector<int32_t>& status;  // the writer sets the Status of fields a refusal names
};

// RowWriter: where committed changes go. Each call raises Error when the
// change is refused, after setting the status of the fields concerned; the
// engine then keeps the change pending.
class RowWriter {
 public:
  virtual ~RowWriter() = default;
  // Insert writes a new row; it may fill row with what the database
  // supplied (a generated key, defaults), by ordinal.
  virtual void Insert(const RowChange& change, Variant* row) = 0;
  virtual void Update(const RowChange& change) = 0;
  virtual void Delete(const RowChange& change) = 0;
};

// LoadOptions: how rows handed to Load behave.
struct LoadOptions {
  std::string source;                      // read back by Recordset::Source
  std::shared_ptr<Connection> connection;  // read back by ActiveConnection; may be null
  LockTypeEnum lock_type = adLockReadOnly;
  WriteMode write_mode = WriteMode::kReadOnly;
  std::shared_ptr<RowWriter> writer = nullptr;  // kBaseTable: where changes go
};

// CaseInsensitiveHash / CaseInsensitiveEqual: field names are found without
// regard to case, and without building a lowered copy of the name.
struct CaseInsensitiveHash {
  using is_transparent = void;
  size_t operator()(std::string_view s) const;
};
struct CaseInsensitiveEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

class CursorEngine {
 public:
  CursorEngine();
  ~CursorEngine();
  CursorEngine(const CursorEngine&) = delete;
  CursorEngine& operator=(const CursorEngine&) = delete;

  // Load holds rows that came from elsewhere and opens the recordset on the
  // first of them. REQUIRES: closed.
  void Load(RowSet rows, LoadOptions options);
  // LoadShared holds rows of store, a result that other recordsets hold too:
  // rows are the numbers of this recordset's rows in it, in ascending order.
  // The store is never changed; the first change of a row copies this
  // recordset's rows into storage of its own. REQUIRES: closed.
  void LoadShared(std::shared_ptr<const RowSet> store, std::vector<uint32_t> rows,
                  LoadOptions options);
  // Ran: the settings a statement that returned no rows leaves behind; the
  // recordset stays closed.
  void Ran(std::string source, std::shared_ptr<Connection> connection, LockTypeEnum lock_type);
  void Close();
  bool IsOpen() const { return open_; }
  void RequireClosed() const;

  // Settings.
  CursorTypeEnum CursorType() const { return cursor_type_; }
  LockTypeEnum LockType() const { return lock_type_; }
  const std::string& Source() const { return source_; }
  std::shared_ptr<Connection> ActiveConnection() const { return connection_; }
  int32_t MaxRecords() const { return max_records_; }
  void MaxRecords(int32_t max_records);
  WriteMode Mode() const { return write_mode_; }

  // Position.
  bool Bof() const;
  bool Eof() const;
  int32_t RecordCount() const;
  int32_t AbsolutePosition() const;
  Variant Bookmark() const;
  void Bookmark(const Variant& bookmark);
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  void Move(int32_t rows);
  void Find(const std::string& criteria, int32_t skip_rows, SearchDirectionEnum direction,
            const Variant& start);
  const std::string& Filter() const { return filter_; }
  void Filter(const std::string& criteria);
  // HasKey: whether a field is part of its table's key, which is what an
  // index of Seek may name. Seek moves to the visible row whose value in
  // column matches key as option says, in the order of that column's values
  // (rows holding the same value in the order shown); to EOF when none does.
  bool HasKey() const;
  void Seek(int32_t column, const Variant& key, SeekEnum option);
  // Sort: "column [ASC|DESC], ..." orders the visible rows (Filter and Find
  // follow it; "" gives the stored order back). Moves to the first row.
  const std::string& Sort() const { return sort_text_; }
  void Sort(const std::string& sort);
  // CloneFrom: the rows of other, shared with it (a change made through
  // either is seen by both), each under the row id (and so the bookmark) it
  // has there, with a position of its own on the first row and no filter
  // or sort. REQUIRES: closed, other open.
  void CloneFrom(const CursorEngine& other, bool read_only);
  // FilterGroup: adFilterNone and adFilterFetchedRecords show every row;
  // the other groups name rows of batch updating (pending, touched by the
  // last batch call, refused by it), deleted ones included; changes
  // written at once never leave such rows, so there they show none.
  // FilterBookmarks shows the rows the bookmarks name (Error 3001 for one
  // that names no visible row).
  void FilterGroup(FilterGroupEnum group);
  void FilterBookmarks(const std::vector<Variant>& bookmarks);

  // Fields.
  int32_t FieldCount() const;
  // CheckOrdinal: ordinal, when it names a field (otherwise Error 3265).
  int32_t CheckOrdinal(int32_t ordinal) const {
    if (!open_) ThrowClosed();
    if (ordinal < 0 || static_cast<size_t>(ordinal) >= width_) ThrowNoOrdinal(ordinal);
    return ordinal;
  }
  // OrdinalOf: the ordinal of the field named name, without regard to case
  // (Error 3265 when there is none). A walk asks for the same few names on
  // every row: the names asked for are kept as spelled in a small table, so
  // that asking again is a hash of the name and one comparison.
  int32_t OrdinalOf(std::string_view name) const {
    if (!open_) ThrowClosed();
    size_t slot = AskedSlot(name);
    for (size_t probe = 0; probe < kAskedProbes; ++probe, slot = (slot + 1) % kAskedSlots) {
      const AskedName& asked = asked_[slot];
      if (asked.ordinal < 0) break;
      if (std::string_view(asked.name) == name) return asked.ordinal;
    }
    return LookUpOrdinal(name);
  }
  bool HasField(std::string_view name) const;
  const ColumnInfo& Column(int32_t ordinal) const { return columns_[static_cast<size_t>(ordinal)]; }
  const Variant& Value(int32_t ordinal) const {
    if (!open_) ThrowClosed();
    if (!HasCurrent()) ThrowNoCurrentRecord();
    return StoredRow(order_[static_cast<size_t>(pos_)])[ordinal];
  }
  void SetValue(int32_t ordinal, const Variant& value);
  Variant OriginalValue(int32_t ordinal) const;
  int32_t Status(int32_t ordinal) const;

  // Changes.
  void AddNew();
  void Update();
  void Delete();
  void CancelUpdate();
  EditModeEnum EditMode() const;

  // Batch updating (lock type adLockBatchOptimistic on a recordset that can
  // change rows): Update and Delete keep the change in memory, the row's
  // RecordStatus says which, and the calls below send or drop them
  // (BatchChanges.h keeps the books). Without it, changes are written as
  // they are made and these calls only settle a pending edit.
  bool InBatch() const { return batch_ != nullptr; }
  // HasPending: whether a change waits to be sent, an edit in progress
  // counting (it joins the batch first).
  bool HasPending() const;
  // RecordStatus: RecordStatusEnum of the current row (the deleted row,
  // right after a Delete).
  int32_t RecordStatus() const;
  // UpdateBatch sends the pending rows affect names (adAffectCurrent, the
  // rows the filter shows, or all) through the writer, row by row; a row
  // changed or deleted by someone else since it was read is refused with a
  // conflict and stays pending, and the others go on. commit is called once
  // the last row is written (the caller's transaction): when it or a write
  // fails otherwise, the rows are left as they were and the Error reaches
  // the caller. Returns the number of rows in conflict.
  int32_t UpdateBatch(AffectEnum affect, const std::function<void()>& commit);
  // CancelBatch restores the pending rows affect names as they were read:
  // a new row goes, a deleted one comes back.
  void CancelBatch(AffectEnum affect);

  // Rows in storage order, for the shaping layer and tests: the number of
  // rows held (deleted ones included) and a row's cells.
  size_t StoredRowCount() const;
  // The rows are reached through pointers kept here (Rebase sets them when
  // the storage moves), so that reading a value costs what it did before
  // clones shared their rows.
  const Variant* StoredRow(size_t row_id) const {
    if (store_rows_) return store_cells_ + size_t{store_rows_[row_id]} * width_;
    return cells_ + row_id * width_;
  }

 private:
  struct EqualityIndex;
  struct SharedRows;
  struct AskedName {
    std::string name;
    int32_t ordinal = -1;
  };
  // Open addressing over a few slots: a name whose slot is taken goes to
  // one of the next kAskedProbes; once those are full it is looked up in
  // names_ every time (a walk asks for far fewer names than that).
  static constexpr size_t kAskedSlots = 32;  // AskedSlot keeps five bits
  static constexpr size_t kAskedProbes = 4;
  // The slot: the length and three characters, mixed by one multiplication
  // (this runs for every field a walk reads; the probes settle collisions).
  static size_t AskedSlot(std::string_view name) {
    if (name.empty()) return 0;
    const auto at = [&](size_t i) {
      return static_cast<uint32_t>(static_cast<unsigned char>(name[i]));
    };
    const uint32_t key = static_cast<uint32_t>(name.size()) ^ at(0) << 8 ^
                         at(name.size() / 2) << 16 ^ at(name.size() - 1) << 24;
    return (key * 2654435761u) >> 27;  // the top five bits: kAskedSlots is 32
  }
  int32_t LookUpOrdinal(std::string_view name) const;

  void RequireOpen() const;
  [[noreturn]] static void ThrowNoCurrentRecord();
  [[noreturn]] static void ThrowClosed();
  [[noreturn]] static void ThrowNoOrdinal(int32_t ordinal);
  bool HasCurrent() const {
    return !on_deleted_ && pos_ >= 0 && pos_ < static_cast<ptrdiff_t>(order_.size());
  }
  uint32_t CurrentRow() const;
  void RequireWritable() const;
  void ResetPosition();
  void ResetStatus();
  // CommitPending: the classic cursor writes a changed row when the cursor
  // leaves it.
  void CommitPending();
  void BeginEdit(uint32_t row);
  void EndEdit();
  void RebuildOrder(const Criteria* criteria);
  // BatchRows: the pending rows affect names, in ascending row id.
  std::vector<uint32_t> BatchRows(AffectEnum affect) const;
  // KeepPositionAfter: after the rows changed under it, the cursor stays on
  // the row it was on when that row is still visible.
  void KeepPositionAfter(ptrdiff_t row);
  Variant* OwnedRow(uint32_t row);
  // ChangedRows: values changed; every engine over the rows drops the
  // caches that depend on them. DropCaches: this engine's order changed.
  void ChangedRows();
  void DropCaches();
  // OwnRows: before a row changes, rows held in a shared store are copied
  // into storage of their own (row ids, and so bookmarks, stay as they are).
  void OwnRows();
  // Opened: the rest of Load once the rows are in place; fresh: the rows
  // are new (not a clone's), their flags and books start empty.
  void Opened(LoadOptions options, bool fresh);
  // Rebase: the storage moved; the pointers StoredRow reads are set again.
  void Rebase();
  // Detach: this engine no longer holds the rows.
  void Detach();
  bool Deleted(uint32_t row) const;
  // What another engine over the same rows did, and how this one follows:
  // RowAdded appends the new row when this engine shows every row;
  // RowRemoved takes a deleted row (or a canceled new one) out of the
  // order; RowsBack builds the order again.
  void RowAdded(uint32_t row);
  void RowRemoved(uint32_t row);
  void RowsBack();
  // Tell: calls what on every other engine over the rows.
  void Tell(const std::function<void(CursorEngine&)>& what);
  int32_t ResolveColumn(std::string_view name) const;
  ptrdiff_t PositionOfRow(uint32_t row) const;
  ptrdiff_t PositionOfBookmark(const Variant& bookmark) const;
  ptrdiff_t FindByIndex(const Criteria& criteria, ptrdiff_t from, int step);

  // Settings, kept while closed.
  std::string source_;
  std::shared_ptr<Connection> connection_;
  CursorTypeEnum cursor_type_ = adOpenForwardOnly;
  LockTypeEnum lock_type_ = adLockReadOnly;
  int32_t max_records_ = 0;
  bool open_ = false;
  WriteMode write_mode_ = WriteMode::kReadOnly;
  std::shared_ptr<RowWriter> writer_;

  // Rows.
  std::vector<ColumnInfo> columns_;
  std::unordered_map<std::string, int32_t, CaseInsensitiveHash, CaseInsensitiveEqual> names_;
  mutable std::array<AskedName, kAskedSlots> asked_;  // see OrdinalOf
  size_t width_ = 0;
  // The rows, shared with the clones; the pointers below are into them:
  // row id i is at cells_ + i * width_, or, while the rows are still those
  // of a store shared with other recordsets (LoadShared), row
  // store_rows_[i] of store_cells_.
  std::shared_ptr<SharedRows> rows_;
  const Variant* cells_ = nullptr;
  const Variant* store_cells_ = nullptr;
  const uint32_t* store_rows_ = nullptr;
  // The visible rows: in ascending row id (a Filter keeps storage order,
  // AddNew appends the highest id), so that a row's position is found by
  // binary search, unless a Sort orders them otherwise.
  std::vector<uint32_t> order_;
  std::string filter_;
  std::unique_ptr<Criteria> filter_criteria_;  // kept so that a Sort keeps the filter
  std::vector<SortKey> sort_;
  std::string sort_text_;
  // Bookmarks carry the number of the rows they were taken from, which
  // clones share, so that one recordset's bookmark is refused by another.
  uint32_t family_ = 0;
  // Per row id, for a filter of bookmarks or a group; empty: all. A group
  // of batch updating shows deleted rows too (kChosenWithDeleted).
  std::vector<uint8_t> chosen_;
  static constexpr uint8_t kChosenWithDeleted = 2;

  // Position: an index into order_; -1 is BOF, order_.size() is EOF. After a
  // Delete the deleted row stays current (on_deleted_) and pos_ names the
  // row that followed it.
  ptrdiff_t pos_ = 0;
  bool on_deleted_ = false;

  // The edit buffer.
  EditModeEnum edit_mode_ = adEditNone;
  uint32_t edit_row_ = 0;
  std::vector<Variant> originals_;
  std::vector<uint8_t> changed_;
  std::vector<int32_t> status_;
  ptrdiff_t pos_before_add_ = 0;
  uint32_t deleted_row_ = 0;  // the row a Delete left current (on_deleted_)

  BatchChanges* batch_ = nullptr;  // the rows' books under batch updating; null otherwise

  std::unique_ptr<EqualityIndex> index_;
};

// SharedRows: what belongs to the rows rather than to one recordset over
// them, held by an engine and its clones. The last of them to let go gives
// the cells' storage to the thread's spare (CellBuffers.h).
struct CursorEngine::SharedRows {
  SharedRows() = default;
  SharedRows(const SharedRows&) = delete;
  SharedRows& operator=(const SharedRows&) = delete;
  ~SharedRows();

  size_t width = 0;
  std::vector<Variant> cells;
  // Rows held in a shared store (LoadShared) until one changes: row id i is
  // row store_rows[i] of store, and cells is empty.
  std::shared_ptr<const RowSet> store;
  std::vector<uint32_t> store_rows;
  std::vector<uint8_t> deleted;         // per row id
  std::unique_ptr<BatchChanges> batch;  // under batch updating; null otherwise
  std::vector<CursorEngine*> engines;   // the open engines over these rows

  size_t Count() const {
    if (store) return store_rows.size();
    return width == 0 ? 0 : cells.size() / width;
  }
};

// OwnedRow: row's cells, to be changed; every edit comes here.
inline Variant* CursorEngine::OwnedRow(uint32_t row) {
  if (rows_->store) OwnRows();
  return rows_->cells.data() + size_t{row} * width_;
}

// QuoteName: a table or column name as SQL text: as it stands when it is a
// plain name, else in double quotes.
std::string QuoteName(const std::string& name);

// ConvertForColumn: a value assigned to a field, in the field's own type, so
// that what is read back and what is written are what the column holds.
Variant ConvertForColumn(DataTypeEnum type, const Variant& value);

// StartOf: where a Move, Find or GetRows given `start` begins: one of the
// BookmarkEnum values, or kStartAtBookmark when start is a bookmark. A
// BookmarkEnum value comes as a Long from a compiled host and as an Integer
// from a script; a bookmark is a Double, never taken for one. Empty is the
// current row.
constexpr int32_t kStartAtBookmark = -1;
int32_t StartOf(const Variant& start);

}  // namespace kelvary::internal
