#include "kelvary/platform/Recordset.h"

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/internal/CursorEngine.h"

namespace kelvary {

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
  engine_->Open(source, connection, cursor_type, lock_type, options);
}
void Recordset::Close() {
  engine_->Close();
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
  return engine_->FieldAt(ordinal);
}
Field& Recordset::Fields(std::string_view name) {
  return engine_->FieldNamed(name);
}
const Field& Recordset::Fields(int32_t ordinal) const {
  return engine_->FieldAt(ordinal);
}
const Field& Recordset::Fields(std::string_view name) const {
  return engine_->FieldNamed(name);
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

internal::CursorEngine& Recordset::Engine() {
  return *engine_;
}

}  // namespace kelvary
