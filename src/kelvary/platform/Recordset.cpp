#include "kelvary/platform/Recordset.h"

#include <utility>

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

// ---- Recordset ---------------------------------------------------------------

Recordset::Recordset() : engine_(std::make_unique<internal::CursorEngine>()) {}
Recordset::~Recordset() = default;

void Recordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                     CursorTypeEnum cursor_type, LockTypeEnum lock_type, int32_t options) {
  (void)cursor_type;  // every recordset is a static client-side cursor
  internal::OpenRecordset(*this, source, connection ? internal::SessionOf(*connection) : nullptr,
                          connection, lock_type, options);
}
void Recordset::Close() {
  engine_->Close();
  fields_.clear();
}
void Recordset::Opened() {
  fields_.clear();
  const int32_t width = engine_->FieldCount();
  fields_.reserve(static_cast<size_t>(width));
  for (int32_t i = 0; i < width; ++i)
    fields_.push_back(Field(engine_.get(), i));
}
ObjectStateEnum Recordset::State() const {
  return engine_->IsOpen() ? adStateOpen : adStateClosed;
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

void Recordset::Find(const std::string& criteria, int32_t skip_rows, SearchDirectionEnum direction,
                     const Variant& start) {
  engine_->Find(criteria, skip_rows, direction, start);
}

const std::string& Recordset::Filter() const {
  return engine_->Filter();
}
void Recordset::Filter(const std::string& criteria) {
  engine_->Filter(criteria);
}

int32_t Recordset::FieldCount() const {
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
void Recordset::CancelUpdate() {
  engine_->CancelUpdate();
}
void Recordset::Cancel() {}
EditModeEnum Recordset::EditMode() const {
  return engine_->EditMode();
}

int32_t Recordset::MaxRecords() const {
  return engine_->MaxRecords();
}
void Recordset::MaxRecords(int32_t max_records) {
  engine_->MaxRecords(max_records);
}

CursorTypeEnum Recordset::CursorType() const {
  return engine_->CursorType();
}
LockTypeEnum Recordset::LockType() const {
  return engine_->LockType();
}
CursorLocationEnum Recordset::CursorLocation() const {
  return adUseClient;
}
const std::string& Recordset::Source() const {
  return engine_->Source();
}
std::shared_ptr<Connection> Recordset::ActiveConnection() const {
  return engine_->ActiveConnection();
}

}  // namespace kelvary
