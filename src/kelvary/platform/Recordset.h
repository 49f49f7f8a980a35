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
// Find and Filter read criteria with one small parser: comparisons
// = <> < > <= >= LIKE, 'text' with doubled apostrophes, #date#, numbers,
// Null, column names plain or in [brackets], LIKE wildcards * and % (and ?
// and _); Filter also takes AND, OR and parentheses. Bad criteria raise
// Error 3002 naming the criteria.
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
  // Status: 0 (adFieldOK), or the code a failed write left on this field.
  int32_t Status() const;

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
  // Close drops the rows and a pending change (call Update first to keep
  // it). Raises Error 3704 when already closed.
  void Close();
  ObjectStateEnum State() const;

  // The calls below raise Error 3704 on a closed recordset.
  bool Bof() const;
  bool Eof() const;
  int32_t RecordCount() const;
  // AbsolutePosition: 1-based position among the visible rows; -2 at BOF,
  // -3 at EOF, -1 (unknown) when there are no rows or the row was deleted.
  int32_t AbsolutePosition() const;
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
  void CancelUpdate();
  // Cancel: stops a pending asynchronous operation; nothing runs
  // asynchronously here, so it does nothing on an open recordset.
  void Cancel();
  EditModeEnum EditMode() const;

  // MaxRecords: the most rows Open fetches; 0 means all.
  int32_t MaxRecords() const;
  void MaxRecords(int32_t max_records);

  CursorTypeEnum CursorType() const;
  LockTypeEnum LockType() const;
  CursorLocationEnum CursorLocation() const;
  const std::string& Source() const;
  std::shared_ptr<Connection> ActiveConnection() const;

 private:
  friend int64_t internal::OpenRecordset(Recordset&, const std::string&,
                                         std::shared_ptr<internal::Session>,
                                         std::shared_ptr<Connection>, LockTypeEnum, int32_t);
  friend void internal::LoadRecordset(Recordset&, RowSet, internal::LoadOptions);
  friend void internal::LoadRecordset(Recordset&, std::shared_ptr<const RowSet>,
                                      std::vector<uint32_t>, internal::LoadOptions);

  // Opened: the field handles of the rows the engine now holds.
  void Opened();

  std::unique_ptr<internal::CursorEngine> engine_;
  std::vector<Field> fields_;
};

}  // namespace kelvary
