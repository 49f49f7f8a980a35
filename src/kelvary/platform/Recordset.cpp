#include "kelvary/platform/Recordset.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/Transaction.h"
#include "kelvary/platform/internal/CursorEngine.h"
#include "kelvary/platform/internal/Session.h"
#include "kelvary/platform/internal/StatementRunner.h"
#include "kelvary/platform/internal/WriteBack.h"

namespace kelvary {
namespace {

constexpr int32_t kErrConnectionUnusable = 3709;

// Chapters: the chapters of a SHAPE statement's rows, as recordsets sharing
// their level's rows. Shaped rows keep their base table and column, so a
// level read from one table writes its changes back as a plain SELECT's
// rows do; the chapters of one level share one writer.
class Chapters final : public shape::ChapterMaker {
 public:
  Chapters(const std::shared_ptr<Connection>& connection,
           const std::shared_ptr<internal::Session>& session, LockTypeEnum lock)
      : connection_(connection), session_(session), lock_(lock) {}

  Variant Chapter(const std::shared_ptr<const RowSet>& store, std::vector<uint32_t> rows,
                  const std::string& source) override {
    internal::LoadOptions options{source, connection_, lock_, internal::WriteMode::kReadOnly};
    if (lock_ != adLockReadOnly) {
      if (store_ != store.get()) {
        store_ = store.get();
        writer_ = internal::BaseTableWriter(session_, store->columns);
      }
      options.write_mode = internal::WriteMode::kBaseTable;
      options.writer = writer_;
    }
    auto chapter = std::make_shared<Recordset>();
    internal::LoadRecordset(*chapter, store, std::move(rows), std::move(options));
    return Variant(std::move(chapter));
  }

 private:
  const std::shared_ptr<Connection>& connection_;
  const std::shared_ptr<internal::Session>& session_;
  LockTypeEnum lock_;
  const RowSet* store_ = nullptr;  // the level writer_ writes for
  std::shared_ptr<internal::RowWriter> writer_;
};

constexpr const char* kSource = "Recordset";

[[noreturn]] void ThrowInvalidArgument(const std::string& why) {
  throw InvalidArgumentError(why, kSource);
}

[[noreturn]] void ThrowNoCurrentRecord() {
  throw Error(kErrNoCurrentRecord,
              "Either BOF or EOF is True, or the current record has been deleted. Requested "
              "operation requires a current record.",
              kSource);
}

[[noreturn]] void ThrowClosed() {
  throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.", kSource);
}

constexpr bool IsFixedLength(DataTypeEnum type) {
  return IsNumericType(type) || type == adDate || type == adBoolean || type == adDBDate ||
         type == adDBTime || type == adDBTimeStamp;
}

}  // namespace

namespace internal {

int64_t OpenRecordset(Recordset& target, const std::string& source,
                      std::shared_ptr<Session> session, std::shared_ptr<Connection> connection,
                      LockTypeEnum lock_type, int32_t options) {
  CursorEngine& engine = *target.engine_;
  engine.RequireClosed();
  const std::string text = options == adCmdTable || options == adCmdTableDirect
                               ? "SELECT * FROM " + QuoteName(source)
                               : source;
  if (!session || !session->IsOpen()) {
    throw Error(kErrConnectionUnusable,
                "The connection cannot be used to perform this operation. It is either closed "
                "or invalid in this context.",
                "Recordset");
  }
  const LockTypeEnum lock = lock_type == adLockUnspecified ? adLockReadOnly : lock_type;
  Chapters chapters(connection, session, lock);
  StatementResult result = RunStatement(*session, text, engine.MaxRecords(), chapters);
  if (!result.has_rows) {  // the statement ran; there is nothing to hold
    engine.Ran(text, connection, lock);
    return result.records_affected;
  }
  LoadOptions load{text, connection, lock, WriteMode::kReadOnly};
  if (lock != adLockReadOnly) {
    load.write_mode = WriteMode::kBaseTable;
    load.writer = BaseTableWriter(std::move(session), result.rows.columns);
  }
  engine.Load(std::move(result.rows), std::move(load));
  target.Opened();
  return -1;
}

void LoadRecordset(Recordset& target, RowSet rows, LoadOptions options) {
  target.engine_->Load(std::move(rows), std::move(options));
  target.Opened();
}

void LoadRecordset(Recordset& target, std::shared_ptr<const RowSet> store,
                   std::vector<uint32_t> rows, LoadOptions options) {
  target.engine_->LoadShared(std::move(store), std::move(rows), std::move(options));
  target.Opened();
}

}  // namespace internal

// ---- Field -------------------------------------------------------------------

const std::string& Field::Name() const {
  return engine_->Column(ordinal_).name;
}
DataTypeEnum Field::Type() const {
  return engine_->Column(ordinal_).type;
}
int32_t Field::DefinedSize() const {
  return engine_->Column(ordinal_).defined_size;
}
const Variant& Field::Value() const {
  return engine_->Value(ordinal_);
}
void Field::Value(const Variant& value) {
  engine_->SetValue(ordinal_, value);
}
Variant Field::OriginalValue() const {
  return engine_->OriginalValue(ordinal_);
}
int32_t Field::Status() const {
  return engine_->Status(ordinal_);
}
uint8_t Field::Precision() const {
  switch (engine_->Column(ordinal_).type) {
    case adTinyInt:
    case adUnsignedTinyInt:
      return 3;
    case adSmallInt:
    case adUnsignedSmallInt:
      return 5;
    case adInteger:
    case adUnsignedInt:
      return 10;
    case adBigInt:
    case adCurrency:
      return 19;
    case adUnsignedBigInt:
      return 20;
    case adSingle:
      return 7;
    case adDouble:
      return 15;
    case adDecimal:
    case adNumeric:
    case adVarNumeric:
      return 28;
    default:
      return 255;
  }
}
uint8_t Field::NumericScale() const {
  const DataTypeEnum type = engine_->Column(ordinal_).type;
  if (type == adCurrency) return 4;
  if (IsNumericType(type) && type != adSingle && type != adDouble && type != adDecimal &&
      type != adNumeric && type != adVarNumeric) {
    return 0;
  }
  return 255;
}
int32_t Field::Attributes() const {
  const ColumnInfo& column = engine_->Column(ordinal_);
  int32_t attributes = 0;
  const bool writable =
      engine_->Mode() == internal::WriteMode::kMemory ||
      (engine_->Mode() == internal::WriteMode::kBaseTable && !column.base_column.empty());
  if (writable && column.type != adChapter) attributes |= adFldUpdatable;
  if (column.nullable) attributes |= adFldIsNullable | adFldMayBeNull;
  if (column.key) attributes |= adFldKeyColumn;
  if (IsFixedLength(column.type)) attributes |= adFldFixed;
  if (column.type == adLongVarChar || column.type == adLongVarWChar ||
      column.type == adLongVarBinary) {
    attributes |= adFldLong;
  }
  return attributes;
}

// ---- Recordset ---------------------------------------------------------------

Recordset::Recordset() : engine_(std::make_unique<internal::CursorEngine>()) {}
Recordset::~Recordset() {
  Detach();
}

void Recordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                     CursorTypeEnum cursor_type, LockTypeEnum lock_type, int32_t options) {
  const std::string& from = source.empty() ? source_ : source;
  const std::shared_ptr<Connection>& on = connection ? connection : connection_;
  const CursorTypeEnum cursor = cursor_type == adOpenUnspecified ? cursor_type_ : cursor_type;
  const LockTypeEnum lock = lock_type == adLockUnspecified ? lock_type_ : lock_type;
  if (from.empty() && !on && !appended_.empty() && !engine_->IsOpen()) {
    // A recordset made in memory from its appended fields.
    RowSet rows;
    for (const AppendedField& f : appended_) {
      ColumnInfo& column = rows.columns.emplace_back();
      column.name = f.name;
      column.type = f.type;
      column.defined_size = f.defined_size;
      column.nullable = (f.attributes & (adFldIsNullable | adFldMayBeNull)) != 0;
      column.key = (f.attributes & adFldKeyColumn) != 0;
    }
    internal::LoadRecordset(
        *this, std::move(rows),
        internal::LoadOptions{"", nullptr, lock,
                              lock == adLockReadOnly ? internal::WriteMode::kReadOnly
                                                     : internal::WriteMode::kMemory});
  } else {
    (void)cursor;  // every recordset is a static client-side cursor
    internal::OpenRecordset(*this, from, on ? internal::SessionOf(*on) : nullptr, on, lock,
                            options);
  }
  if (!engine_->IsOpen()) return;  // a statement that returns no rows
  ever_opened_ = true;
  cursor_location_ = adUseClient;
  // Read back after Close as they were while open.
  source_ = engine_->Source();
  connection_ = engine_->ActiveConnection();
  cursor_type_ = engine_->CursorType();
  lock_type_ = engine_->LockType();
  if (connection_) AttachTo(connection_.get());
  if (!pending_filter_.empty()) {
    const std::string filter = std::move(pending_filter_);
    pending_filter_.clear();
    engine_->Filter(filter);
  }
}
void Recordset::Open() {
  Open("", nullptr);
}
void Recordset::Close() {
  if (engine_->IsOpen() && !engine_->Bof() && !engine_->Eof()) {
    const EditModeEnum mode = engine_->EditMode();
    if (mode == adEditInProgress || mode == adEditAdd) {
      throw Error(3219,
                  "Operation is not allowed in this context. (An edit is pending: call Update "
                  "or CancelUpdate before Close.)",
                  kSource);
    }
  }
  engine_->Close();
  fields_.clear();
  Detach();
}
void Recordset::Opened() {
  fields_.clear();
  const int32_t width = engine_->FieldCount();
  fields_.reserve(static_cast<size_t>(width));
  for (int32_t i = 0; i < width; ++i)
    fields_.push_back(Field(engine_.get(), i));
  // Every way of opening comes here: the connection read from closes this
  // recordset when it closes.
  if (const auto connection = engine_->ActiveConnection()) AttachTo(connection.get());
}
ObjectStateEnum Recordset::State() const {
  return engine_->IsOpen() ? adStateOpen : adStateClosed;
}

void Recordset::AttachTo(Connection* connection) {
  ever_opened_ = true;
  if (attached_ == connection) return;
  Detach();
  attached_ = connection;
  if (attached_) attached_->Attach(this);
}
void Recordset::Detach() {
  if (attached_) attached_->Detach(this);
  attached_ = nullptr;
}
void Recordset::ClosedWithConnection() {
  attached_ = nullptr;
  if (!engine_->IsOpen()) return;
  try {
    engine_->CancelUpdate();
  } catch (const Error&) {
    // Nothing pending.
  }
  engine_->Close();
  fields_.clear();
}

bool Recordset::Bof() const {
  return engine_->Bof();
}
bool Recordset::Eof() const {
  return engine_->Eof();
}
int32_t Recordset::RecordCount() const {
  return engine_->RecordCount();
}
int32_t Recordset::AbsolutePosition() const {
  return engine_->AbsolutePosition();
}
void Recordset::AbsolutePosition(int32_t position) {
  const int32_t count = engine_->RecordCount();
  if (position < 1 || position > count) {
    ThrowInvalidArgument("AbsolutePosition " + std::to_string(position) + " is outside 1.." +
                         std::to_string(count) + ".");
  }
  engine_->MoveFirst();
  if (position > 1) engine_->Move(position - 1);
}
Variant Recordset::Bookmark() const {
  return engine_->Bookmark();
}
void Recordset::Bookmark(const Variant& bookmark) {
  engine_->Bookmark(bookmark);
}

void Recordset::MoveFirst() {
  engine_->MoveFirst();
}
void Recordset::MoveLast() {
  engine_->MoveLast();
}
void Recordset::MoveNext() {
  engine_->MoveNext();
}
void Recordset::MovePrevious() {
  engine_->MovePrevious();
}
void Recordset::Move(int32_t rows) {
  engine_->Move(rows);
}
void Recordset::Move(int32_t rows, const Variant& start) {
  const int32_t where = internal::StartOf(start);
  if (where == adBookmarkCurrent) return engine_->Move(rows);
  if (where == adBookmarkFirst) {
    engine_->MoveFirst();
  } else if (where == adBookmarkLast) {
    engine_->MoveLast();
  } else {
    engine_->Bookmark(start);
  }
  if (rows != 0) engine_->Move(rows);
}

void Recordset::Find(const std::string& criteria, int32_t skip_rows, SearchDirectionEnum direction,
                     const Variant& start) {
  engine_->Find(criteria, skip_rows, direction, start);
}

const std::string& Recordset::Filter() const {
  return engine_->IsOpen() ? engine_->Filter() : pending_filter_;
}
void Recordset::Filter(const std::string& criteria) {
  if (!engine_->IsOpen()) {
    pending_filter_ = criteria;  // applied when the recordset opens
    return;
  }
  engine_->Filter(criteria);
}

void Recordset::Filter(FilterGroupEnum group) {
  engine_->FilterGroup(group);
}
void Recordset::Filter(const std::vector<Variant>& bookmarks) {
  engine_->FilterBookmarks(bookmarks);
}
const std::string& Recordset::Sort() const {
  return engine_->Sort();
}
void Recordset::Sort(const std::string& sort) {
  engine_->Sort(sort);
}
std::shared_ptr<Recordset> Recordset::Clone(LockTypeEnum lock_type) {
  if (lock_type != adLockUnspecified && lock_type != adLockReadOnly) {
    ThrowInvalidArgument("A clone keeps the lock type or is read-only.");
  }
  auto clone = std::make_shared<Recordset>();
  clone->engine_->CloneFrom(*engine_, lock_type == adLockReadOnly);
  clone->Opened();
  clone->ever_opened_ = true;
  clone->cursor_location_ = adUseClient;
  return clone;
}

int32_t Recordset::FieldCount() const {
  if (!engine_->IsOpen() && !ever_opened_) return static_cast<int32_t>(appended_.size());
  return engine_->FieldCount();
}
Field& Recordset::Fields(int32_t ordinal) {
  return fields_[static_cast<size_t>(engine_->CheckOrdinal(ordinal))];
}
Field& Recordset::Fields(std::string_view name) {
  return fields_[static_cast<size_t>(engine_->OrdinalOf(name))];
}
const Field& Recordset::Fields(int32_t ordinal) const {
  return fields_[static_cast<size_t>(engine_->CheckOrdinal(ordinal))];
}
const Field& Recordset::Fields(std::string_view name) const {
  return fields_[static_cast<size_t>(engine_->OrdinalOf(name))];
}
bool Recordset::HasField(std::string_view name) const {
  return engine_->HasField(name);
}

void Recordset::AddNew() {
  engine_->AddNew();
}
void Recordset::Update() {
  engine_->Update();
}
void Recordset::Delete() {
  engine_->Delete();
}
void Recordset::AddNew(const std::vector<std::string>& fields, const std::vector<Variant>& values) {
  if (fields.size() != values.size()) {
    ThrowInvalidArgument("The field list and the value list differ in length.");
  }
  engine_->AddNew();
  try {
    for (size_t i = 0; i < fields.size(); ++i)
      Fields(fields[i]).Value(values[i]);
  } catch (...) {
    engine_->CancelUpdate();
    throw;
  }
  engine_->Update();
}
void Recordset::Update(const std::vector<std::string>& fields, const std::vector<Variant>& values) {
  if (fields.size() != values.size()) {
    ThrowInvalidArgument("The field list and the value list differ in length.");
  }
  for (size_t i = 0; i < fields.size(); ++i)
    Fields(fields[i]).Value(values[i]);
  engine_->Update();
}
void Recordset::Delete(AffectEnum affect) {
  if (affect == adAffectCurrent) return engine_->Delete();
  if (affect != adAffectGroup && affect != adAffectAll) {
    ThrowInvalidArgument("AffectRecords is adAffectCurrent, adAffectGroup or adAffectAll.");
  }
  // adAffectAll reaches the rows a filter hides too.
  const std::string filter = engine_->Filter();
  if (affect == adAffectAll && !filter.empty()) engine_->Filter("");
  if (engine_->RecordCount() > 0) {
    for (engine_->MoveFirst(); !engine_->Eof(); engine_->MoveNext())
      engine_->Delete();
  }
  if (affect == adAffectAll && !filter.empty()) engine_->Filter(filter);
}
void Recordset::CancelUpdate() {
  engine_->CancelUpdate();
}
void Recordset::Cancel() {}
EditModeEnum Recordset::EditMode() const {
  const EditModeEnum mode = engine_->EditMode();
  if (mode == adEditNone && (engine_->Bof() || engine_->Eof())) ThrowNoCurrentRecord();
  return mode;
}

void Recordset::Index(const std::string& index) {
  if (engine_->IsOpen() && !index.empty()) {
    const int32_t ordinal = engine_->OrdinalOf(index);  // an unknown name raises 3265
    if (!engine_->Column(ordinal).key) {
      throw ItemNotFoundError("No index \"" + index + "\": an index is a field of the table's key.",
                              kSource);
    }
  }
  index_ = index;
}
void Recordset::Seek(const std::vector<Variant>& key_values, SeekEnum option) {
  if (!engine_->IsOpen()) ThrowClosed();
  if (index_.empty() || !engine_->HasKey()) {
    throw Error(kErrOperationNotSupported,
                "Current provider does not support the necessary interface for Index "
                "functionality. (Set Index to a key field first.)",
                kSource);
  }
  if (key_values.size() != 1) ThrowInvalidArgument("Seek takes one key value.");
  if (option != adSeekFirstEQ && option != adSeekLastEQ && option != adSeekAfterEQ &&
      option != adSeekAfter && option != adSeekBeforeEQ && option != adSeekBefore) {
    ThrowInvalidArgument("The seek option is none of the SeekEnum values.");
  }
  const int32_t ordinal = engine_->OrdinalOf(index_);
  if (!engine_->Column(ordinal).key) Index(index_);  // raises: no longer a key field
  engine_->Seek(ordinal, key_values.front(), option);
}

void Recordset::UpdateBatch(AffectEnum affect) {
  // The rows go in one transaction, or in the one the connection has open.
  std::optional<Transaction> transaction;
  const std::shared_ptr<Connection> connection = engine_->ActiveConnection();
  if (engine_->IsOpen() && engine_->InBatch() && engine_->HasPending() &&
      engine_->Mode() == internal::WriteMode::kBaseTable && connection &&
      connection->State() == adStateOpen && !connection->in_transaction_) {
    transaction.emplace(*connection);
  }
  const int32_t conflicts = engine_->UpdateBatch(affect, [&] {
    if (transaction) transaction->Commit();
  });
  if (conflicts > 0) {
    throw Error(kErrRowChanged,
                "Row cannot be located for updating. Some values may have been changed since it "
                "was last read. (" +
                    std::to_string(conflicts) + (conflicts == 1 ? " row" : " rows") +
                    " changed or deleted by someone else stay pending: Filter "
                    "adFilterConflictingRecords shows them.)",
                kSource);
  }
}
void Recordset::CancelBatch(AffectEnum affect) {
  engine_->CancelBatch(affect);
}
int32_t Recordset::Status() const {
  return engine_->RecordStatus();
}

bool Recordset::Supports(int32_t options) const {
  if (!engine_->IsOpen()) ThrowClosed();
  int32_t supported = adHoldRecords | adMovePrevious | adBookmark | adApproxPosition | adFind;
  if (engine_->Mode() != internal::WriteMode::kReadOnly)
    supported |= adAddNew | adDelete | adUpdate;
  if (engine_->InBatch()) supported |= adUpdateBatch;
  if (engine_->HasKey()) supported |= adIndex | adSeek;
  return (options & supported) == options;
}

std::vector<std::vector<Variant>> Recordset::GetRows(int32_t rows, const Variant& start,
                                                     const std::vector<std::string>& fields) {
  if (rows < adGetRowsRest) ThrowInvalidArgument("Rows is a count, or adGetRowsRest.");
  if (!start.IsEmpty()) Move(0, start);
  if (engine_->Bof() || engine_->Eof()) ThrowNoCurrentRecord();
  std::vector<int32_t> ordinals;
  if (fields.empty()) {
    for (int32_t i = 0; i < engine_->FieldCount(); ++i)
      ordinals.push_back(i);
  } else {
    for (const std::string& name : fields) {
      ordinals.push_back(engine_->OrdinalOf(name));  // an unknown name raises 3265
    }
  }
  std::vector<std::vector<Variant>> result(ordinals.size());
  for (int32_t n = 0; (rows == adGetRowsRest || n < rows) && !engine_->Eof(); ++n) {
    for (size_t f = 0; f < ordinals.size(); ++f)
      result[f].push_back(engine_->Value(ordinals[f]));
    engine_->MoveNext();
  }
  return result;
}

std::string Recordset::GetString(int32_t format, int32_t rows, const std::string& column_delimiter,
                                 const std::string& row_delimiter,
                                 const std::string& null_expression) {
  if (format != adClipString) ThrowInvalidArgument("GetString writes adClipString only.");
  if (rows < adGetRowsRest) ThrowInvalidArgument("Rows is a count, or adGetRowsRest.");
  if (engine_->Bof() || engine_->Eof()) ThrowNoCurrentRecord();
  const int32_t width = engine_->FieldCount();
  std::string text;
  for (int32_t n = 0; (rows == adGetRowsRest || n < rows) && !engine_->Eof(); ++n) {
    for (int32_t f = 0; f < width; ++f) {
      if (f > 0) text += column_delimiter;
      const Variant& v = engine_->Value(f);
      text += v.IsNull() ? null_expression : TextOf(v);
    }
    text += row_delimiter;
    engine_->MoveNext();
  }
  return text;
}

void Recordset::AppendField(const std::string& name, DataTypeEnum type, int32_t defined_size,
                            int32_t attributes) {
  RequireClosedToSet();
  for (const AppendedField& f : appended_) {
    if (EqualsNoCase(f.name, name)) {
      throw Error(3367, "Cannot append. Object already in collection. (" + name + ")", kSource);
    }
  }
  appended_.push_back(AppendedField{name, type, defined_size, attributes});
}

void Recordset::RequireClosedToSet() const {
  if (engine_->IsOpen()) {
    throw Error(kErrObjectOpen, "Operation is not allowed when the object is open.", kSource);
  }
}

int32_t Recordset::MaxRecords() const {
  return engine_->MaxRecords();
}
void Recordset::MaxRecords(int32_t max_records) {
  engine_->MaxRecords(max_records);
}

CursorTypeEnum Recordset::CursorType() const {
  return engine_->IsOpen() ? engine_->CursorType() : cursor_type_;
}
void Recordset::CursorType(CursorTypeEnum cursor_type) {
  RequireClosedToSet();
  cursor_type_ = cursor_type;
}
LockTypeEnum Recordset::LockType() const {
  return engine_->IsOpen() ? engine_->LockType() : lock_type_;
}
void Recordset::LockType(LockTypeEnum lock_type) {
  RequireClosedToSet();
  lock_type_ = lock_type;
}
CursorLocationEnum Recordset::CursorLocation() const {
  return engine_->IsOpen() ? adUseClient : cursor_location_;
}
void Recordset::CursorLocation(CursorLocationEnum location) {
  RequireClosedToSet();
  cursor_location_ = location;
}
const std::string& Recordset::Source() const {
  return engine_->IsOpen() ? engine_->Source() : source_;
}
void Recordset::Source(const std::string& source) {
  RequireClosedToSet();
  source_ = source;
}
std::shared_ptr<Connection> Recordset::ActiveConnection() const {
  return engine_->IsOpen() ? engine_->ActiveConnection() : connection_;
}
void Recordset::ActiveConnection(std::shared_ptr<Connection> connection) {
  RequireClosedToSet();
  connection_ = std::move(connection);
}

}  // namespace kelvary
