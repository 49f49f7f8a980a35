// Recordset and Field: the rows of one statement with the semantics of the
// classic client-side cursor. Rows are fetched into memory when the
// recordset opens, so every recordset behaves as a static cursor whatever
// cursor type was asked for (CursorType then reads back adOpenStatic),
// RecordCount is always exact, follows Filter, and drops a deleted row at
// once.
//
// Write-back: a recordset opened from a single-table SELECT with a lock type
// other than read-only can change rows. Update, AddNew+Update and Delete turn
// into UPDATE/INSERT/DELETE on the base table, the row located by its key
// columns and, for an update, the original values of the changed columns; a
// row that no longer matches raises Error 3640 and writes nothing. Moving
// off a changed row commits it. A read-only recordset refuses changes.
//
// Batch updating (lock type adLockBatchOptimistic): Update, AddNew+Update
// and Delete keep the change in memory (Status says adRecModified, adRecNew
// or adRecDeleted) until UpdateBatch writes the pending rows in one
// transaction, or CancelBatch takes them back. A row changed or deleted by
// someone else since it was read is a conflict: it stays pending with
// adRecConcurrencyViolation in its Status, the other rows are written, and
// UpdateBatch raises Error 3640 at the end. Any other refusal rolls the
// whole batch back and leaves every row pending.
//
// Find and Filter read criteria with one small parser: comparisons
// = <> < > <= >= LIKE, 'text' with doubled apostrophes or #text#, #date#,
// numbers, Null, column names plain or in [brackets], LIKE wildcards * and %
// at the end or at both ends; Filter also takes AND, OR and parentheses
// (an OR group is not joined by AND). An unknown column raises Error 3265,
// other bad criteria Error 3001, naming the criteria.
//
// Field values of a chapter column (type adChapter) are child recordsets.
//
// A recordset is used by one thread at a time. The C library defines EOF as
// a macro, so the end-of-file flag is spelled Eof() (and BOF() as Bof()).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Variant.h"

namespace kelvary {

class Connection;
class Recordset;
struct RowSet;

// The platform's own ways to fill a recordset (internal/CursorEngine.h),
// which only they may do. Not part of the host's interface.
namespace internal {
class CursorEngine;  // the rows, the cursor position and the edit buffer
class Session;       // a connection's driver and errors
struct LoadOptions;
// OpenRecordset: what Recordset::Open does, and Connection::Execute: runs
// source in session and holds its rows, read back as from connection (which
// may be null); the number of rows the statement changed (-1 when it
// returned rows).
int64_t OpenRecordset(Recordset& target, const std::string& source,
                      std::shared_ptr<Session> session, std::shared_ptr<Connection> connection,
                      LockTypeEnum lock_type, int32_t options);
// LoadRecordset: rows that come from no statement, held by a closed target;
// or rows of a store that other recordsets share (CursorEngine::LoadShared).
void LoadRecordset(Recordset& target, RowSet rows, LoadOptions options);
void LoadRecordset(Recordset& target, std::shared_ptr<const RowSet> store,
                   std::vector<uint32_t> rows, LoadOptions options);
}  // namespace internal

class Field {
 public:
  const std::string& Name() const;
  DataTypeEnum Type() const;
  int32_t DefinedSize() const;
  // Value: the value in the current row; Null for a NULL. Raises Error 3021
  // when there is no current row. The reference is valid until the
  // recordset changes (a move, an edit, AddNew, Close): copy it to keep it.
  const Variant& Value() const;
  // Setting Value starts an edit of the current row (EditMode becomes
  // adEditInProgress) unless one is in progress; raises Error 3251 on a
  // read-only recordset.
  void Value(const Variant& value);
  // OriginalValue: the value as read from the database (before changes).
  Variant OriginalValue() const;
  // UnderlyingValue: the value the database held when the row was read;
  // rows are read once into memory, so this is OriginalValue (no round
  // trip to the database per field).
  Variant UnderlyingValue() const { return OriginalValue(); }
  // Status: 0 (adFieldOK), or the code a failed write left on this field.
  int32_t Status() const;
  // Precision and NumericScale: the digits of a numeric type (255 where
  // they do not apply); Attributes: FieldAttributeEnum bits (updatable,
  // nullable, key, fixed length, long).
  uint8_t Precision() const;
  uint8_t NumericScale() const;
  int32_t Attributes() const;

 private:
  friend class Recordset;
  Field(internal::CursorEngine* engine, int32_t ordinal) : engine_(engine), ordinal_(ordinal) {}
  internal::CursorEngine* engine_;
  int32_t ordinal_;
};

class Recordset : public Object, public std::enable_shared_from_this<Recordset> {
 public:
  Recordset();
  ~Recordset() override;  // never throws; pending changes are discarded
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // Open runs source (a statement; a table name with options adCmdTable) on
  // connection and fetches its rows. Positions on the first row (Bof and Eof
  // both true when there is none). A statement that returns no rows is run
  // and leaves the recordset closed. A SHAPE statement goes to the shaping
  // layer. REQUIRES: State() == adStateClosed (otherwise Error 3705) and an
  // open connection (otherwise Error 3709).
  void Open(const std::string& source, const std::shared_ptr<Connection>& connection,
            CursorTypeEnum cursor_type = adOpenUnspecified,
            LockTypeEnum lock_type = adLockUnspecified, int32_t options = adCmdUnspecified);
  // Open with the settings given beforehand: Source, ActiveConnection,
  // CursorType, LockType. With no source and no connection, the fields
  // appended with AppendField make an empty recordset in memory, which
  // takes AddNew, Update and Delete.
  void Open();
  // Close drops the rows. Raises Error 3704 when already closed, and Error
  // 3219 while an edit or a new row is pending (Update or CancelUpdate
  // first).
  void Close();
  ObjectStateEnum State() const;

  // The calls below raise Error 3704 on a closed recordset.
  bool Bof() const;
  bool Eof() const;
  int32_t RecordCount() const;
  // AbsolutePosition: 1-based position among the visible rows; -2 at BOF,
  // -3 at EOF, -1 (unknown) when there are no rows or the row was deleted.
  // Setting it moves there (Error 3001 outside 1..RecordCount).
  int32_t AbsolutePosition() const;
  void AbsolutePosition(int32_t position);
  // Bookmark: an opaque value naming the current row; assigning it moves back.
  Variant Bookmark() const;
  void Bookmark(const Variant& bookmark);

  // The moves commit a changed row first. MoveFirst and MoveLast raise Error
  // 3021 on an empty recordset, MoveNext at EOF and MovePrevious at BOF too;
  // after a Delete, MoveNext lands on the row that followed the deleted one.
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  void Move(int32_t rows);
  // Move from start: a bookmark, adBookmarkFirst or adBookmarkLast.
  void Move(int32_t rows, const Variant& start);

  // Find searches, from start (adBookmarkCurrent, adBookmarkFirst,
  // adBookmarkLast or a bookmark; Empty means current), skipping skip_rows
  // rows first, for the first row matching one comparison. Leaves the cursor
  // on it, or at EOF (forward) or BOF (backward) when there is none.
  void Find(const std::string& criteria, int32_t skip_rows = 0,
            SearchDirectionEnum direction = adSearchForward, const Variant& start = Variant());

  // Filter: criteria that hide the rows not matching; "" shows all rows
  // again. Setting it moves to the first visible row.
  const std::string& Filter() const;
  void Filter(const std::string& criteria);
  // Filter by a group (adFilterNone shows every row again) or by the rows
  // a list of bookmarks names.
  void Filter(FilterGroupEnum group);
  void Filter(const std::vector<Variant>& bookmarks);

  // Index: the key field Seek searches by ("" for none). Set on an open
  // recordset it must name a field that is part of its table's key (Error
  // 3265 otherwise); Supports(adIndex | adSeek) says whether there is one.
  const std::string& Index() const { return index_; }
  void Index(const std::string& index);
  // Seek moves to the row whose Index field matches key_values (one value)
  // as option says, or to EOF when none does; the order of the rows shown
  // stays as it is. Error 3251 without an Index, 3001 for anything but one
  // value or a SeekEnum option.
  void Seek(const std::vector<Variant>& key_values, SeekEnum option = adSeekFirstEQ);

  // Sort: "column [ASC|DESC], ..." orders the rows; "" gives the order the
  // statement returned back. Filter and Find follow the sort; setting it
  // moves to the first row. An unknown column raises Error 3265.
  const std::string& Sort() const;
  void Sort(const std::string& sort);

  // Clone: another recordset over the same rows with a position of its own
  // (on its first row) and no filter or sort; bookmarks of either work in
  // both. The rows are shared: a change made through one (a value, a new
  // or deleted row, a pending batch change) is seen by all, and closing one
  // leaves the others open. A row another clone adds shows at once where
  // no Filter is set, else when the Filter is next set. lock_type
  // adLockReadOnly makes a read-only clone; adLockUnspecified keeps this
  // recordset's lock.
  std::shared_ptr<Recordset> Clone(LockTypeEnum lock_type = adLockUnspecified);

  // FieldCount: 0 on a recordset never opened (the fields appended so far);
  // Error 3704 once it has been closed.
  int32_t FieldCount() const;
  // Fields by ordinal (0-based) or by name (without regard to case). An
  // unknown name or ordinal raises Error 3265.
  Field& Fields(int32_t ordinal);
  Field& Fields(std::string_view name);
  const Field& Fields(int32_t ordinal) const;
  const Field& Fields(std::string_view name) const;
  // HasField: whether a field of that name exists.
  bool HasField(std::string_view name) const;

  // AddNew appends a row of Nulls and makes it current (EditMode adEditAdd);
  // Update writes the pending row (an INSERT reads the generated key and the
  // table's defaults back) and keeps it current; Delete removes the current
  // row at once (RecordCount drops; the row stays current, with EditMode
  // adEditDelete, until the cursor moves); CancelUpdate drops the pending
  // change (a new row goes, the cursor returns where it was). On a failed
  // write the change stays pending and the fields concerned carry a Status.
  void AddNew();
  void Update();
  void Delete();
  // With field lists: the named fields take the values, and the row is
  // written at once. REQUIRES: fields and values of the same length
  // (otherwise Error 3001).
  void AddNew(const std::vector<std::string>& fields, const std::vector<Variant>& values);
  void Update(const std::vector<std::string>& fields, const std::vector<Variant>& values);
  // Delete with AffectRecords: adAffectCurrent, or adAffectGroup /
  // adAffectAll for every row the filter shows (all rows without one).
  void Delete(AffectEnum affect);
  void CancelUpdate();
  // Cancel: stops a pending asynchronous operation; nothing runs
  // asynchronously here, so it does nothing on an open recordset.
  void Cancel();
  // EditMode raises Error 3021 at BOF or EOF, where there is no row to edit.
  EditModeEnum EditMode() const;

  // UpdateBatch writes the pending changes of the rows affect names
  // (adAffectCurrent, adAffectGroup: those the filter shows, adAffectAll or
  // adAffectAllChapters: all) in one transaction, or within the
  // connection's own when one is open; Filter adFilterAffectedRecords then
  // shows the rows it touched and adFilterConflictingRecords those in
  // conflict (Error 3640 when there is one). Without batch updating it
  // commits a pending edit. Error 3251 on a read-only recordset.
  void UpdateBatch(AffectEnum affect = adAffectAll);
  // CancelBatch drops the pending changes of the rows affect names (and
  // an edit in progress): changed rows read as they were read, new rows
  // go, deleted rows come back.
  void CancelBatch(AffectEnum affect = adAffectAll);
  // Status: RecordStatusEnum bits of the current row (Error 3021 without
  // one): pending changes, what the last UpdateBatch found, adRecOK for a
  // row it wrote, adRecUnmodified otherwise.
  int32_t Status() const;

  // Supports: what this recordset can do (CursorOptionEnum bits, all of
  // them asked at once).
  bool Supports(int32_t options) const;

  // GetRows: up to rows rows (adGetRowsRest: all the rest) from start
  // (Empty: the current row; a bookmark, adBookmarkFirst or adBookmarkLast)
  // as result[field][row], of the named fields (all when empty); the cursor
  // ends after the last row read.
  std::vector<std::vector<Variant>> GetRows(int32_t rows = adGetRowsRest,
                                            const Variant& start = Variant(),
                                            const std::vector<std::string>& fields = {});
  // GetString: up to rows rows from the current one as text, fields joined
  // by column_delimiter, each row ended by row_delimiter, Null written as
  // null_expression (adClipString is the one format); the cursor ends
  // after the last row read.
  std::string GetString(int32_t format = adClipString, int32_t rows = adGetRowsRest,
                        const std::string& column_delimiter = "\t",
                        const std::string& row_delimiter = "\r",
                        const std::string& null_expression = "");

  // AppendField: a field of a recordset made in memory. REQUIRES: the
  // recordset is closed (otherwise Error 3705).
  void AppendField(const std::string& name, DataTypeEnum type, int32_t defined_size = 0,
                   int32_t attributes = 0);

  // MaxRecords: the most rows Open fetches; 0 means all.
  int32_t MaxRecords() const;
  void MaxRecords(int32_t max_records);

  // Settings read back; set while closed (Error 3705 when open) they are
  // what Open uses when not given. Every open recordset is a client-side
  // cursor: CursorLocation reads adUseServer until set, adUseClient once
  // opened.
  CursorTypeEnum CursorType() const;
  void CursorType(CursorTypeEnum cursor_type);
  LockTypeEnum LockType() const;
  void LockType(LockTypeEnum lock_type);
  CursorLocationEnum CursorLocation() const;
  void CursorLocation(CursorLocationEnum location);
  const std::string& Source() const;
  void Source(const std::string& source);
  std::shared_ptr<Connection> ActiveConnection() const;
  void ActiveConnection(std::shared_ptr<Connection> connection);

 private:
  friend int64_t internal::OpenRecordset(Recordset&, const std::string&,
                                         std::shared_ptr<internal::Session>,
                                         std::shared_ptr<Connection>, LockTypeEnum, int32_t);
  friend void internal::LoadRecordset(Recordset&, RowSet, internal::LoadOptions);
  friend void internal::LoadRecordset(Recordset&, std::shared_ptr<const RowSet>,
                                      std::vector<uint32_t>, internal::LoadOptions);

  // Opened: the field handles of the rows the engine now holds.
  void Opened();

  friend class Connection;
  friend class Command;
  // AttachTo: the connection that closes this recordset when it closes.
  void AttachTo(Connection* connection);
  void Detach();
  void ClosedWithConnection();
  void RequireClosedToSet() const;

  std::unique_ptr<internal::CursorEngine> engine_;
  std::vector<Field> fields_;
  Connection* attached_ = nullptr;
  bool ever_opened_ = false;
  // Settings given before Open.
  std::string source_;
  std::shared_ptr<Connection> connection_;
  CursorTypeEnum cursor_type_ = adOpenForwardOnly;
  LockTypeEnum lock_type_ = adLockReadOnly;
  CursorLocationEnum cursor_location_ = adUseServer;
  struct AppendedField {
    std::string name;
    DataTypeEnum type;
    int32_t defined_size;
    int32_t attributes;
  };
  std::vector<AppendedField> appended_;  // AppendField, for a recordset made in memory
  std::string pending_filter_;           // a Filter set while closed
  std::string index_;                    // the key field Seek searches by
};

}  // namespace kelvary
