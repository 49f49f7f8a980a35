#include "kelvary/platform/internal/CursorEngine.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cmath>
#include <numeric>
#include <utility>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/BatchChanges.h"
#include "kelvary/platform/internal/Criteria.h"

namespace kelvary::internal {
namespace {

constexpr const char* kSource = "Recordset";
constexpr uint32_t kFindsBeforeIndex = 2;  // a one-off Find scans; a repeated one builds an index
// A bookmark is family * kFamilySpan + row id + 1, exact in a double.
constexpr double kFamilySpan = 4294967296.0;

uint32_t NextFamily() {
  static std::atomic<uint32_t> families{0};
  return families.fetch_add(1, std::memory_order_relaxed) % (1u << 20) + 1;
}

bool IsNothing(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

int32_t StatusForConversion(const Error& error) {
  return error.Number() == kErrOverflow ? adFieldDataOverflow : adFieldCantConvertValue;
}

}  // namespace

Variant ConvertForColumn(DataTypeEnum type, const Variant& v) {
  if (IsNothing(v)) return Variant::Null();
  switch (type) {
    case adSmallInt:
    case adTinyInt:
    case adUnsignedTinyInt:
      return Variant(CInt(v));
    case adInteger:
    case adUnsignedSmallInt: {
      const int64_t n = CLngLng(v);
      if (n >= INT32_MIN && n <= INT32_MAX) return Variant(static_cast<int32_t>(n));
      return Variant(n);
    }
    case adBigInt:
    case adUnsignedInt:
    case adUnsignedBigInt:
      return Variant(CLngLng(v));
    case adSingle:
      return Variant(CSng(v));
    case adDouble:
    case adDecimal:
    case adNumeric:
    case adVarNumeric:
      if (v.Get<double>()) return v;  // the usual case, kept as it is
      return Variant(CDbl(v));
    case adCurrency:
      return Variant(CCur(v));
    case adDate:
    case adDBDate:
    case adDBTime:
    case adDBTimeStamp:
      return Variant(CDate(v));
    case adBoolean:
      return Variant(CBool(v));
    case adBSTR:
    case adChar:
    case adWChar:
    case adVarChar:
    case adVarWChar:
    case adLongVarChar:
    case adLongVarWChar:
    case adBinary:
    case adVarBinary:
    case adLongVarBinary:
      if (v.IsString()) return v;
      return Variant(CStr(v));
    default:
      return v;
  }
}

size_t CaseInsensitiveHash::operator()(std::string_view s) const {
  uint64_t h = 1469598103934665603ull;  // FNV-1a over the lowered bytes, 64-bit everywhere
  for (char c : s) {
    h ^= static_cast<unsigned char>(AsciiLower(c));
    h *= 1099511628211ull;
  }
  return static_cast<size_t>(h);
}

bool CaseInsensitiveEqual::operator()(std::string_view a, std::string_view b) const {
  return EqualsNoCase(a, b);
}

std::string QuoteName(const std::string& name) {
  bool plain = !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0]));
  for (char c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') plain = false;
  }
  if (plain) return name;
  std::string quoted = "\"";
  for (char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

// EqualityIndex: for repeated Find "column = number", the positions (in
// order_) of each numeric value of one column. Dropped whenever rows,
// values or the order change.
struct CursorEngine::EqualityIndex {
  int32_t column = -1;
  uint32_t finds = 0;  // equality Finds on column since the last change
  bool built = false;
  bool usable = false;  // every value of the column is a number (or Null)
  std::unordered_map<double, std::vector<uint32_t>> positions;
};

CursorEngine::SharedRows::~SharedRows() {
  RecycleCells(cells);
}

CursorEngine::CursorEngine() = default;
CursorEngine::~CursorEngine() {
  Detach();
}

// ---- Opening and closing -------------------------------------------------

void CursorEngine::Load(RowSet rows, LoadOptions options) {
  RequireClosed();
  columns_ = std::move(rows.columns);
  width_ = columns_.size();
  rows_ = std::make_shared<SharedRows>();
  rows_->width = width_;
  if (width_ > 0) rows_->cells = std::move(rows.cells);
  Opened(std::move(options), true);
}

void CursorEngine::LoadShared(std::shared_ptr<const RowSet> store, std::vector<uint32_t> rows,
                              LoadOptions options) {
  RequireClosed();
  columns_ = store->columns;
  width_ = columns_.size();
  rows_ = std::make_shared<SharedRows>();
  rows_->width = width_;
  if (width_ > 0) {
    rows_->store = std::move(store);
    rows_->store_rows = std::move(rows);
  }
  Opened(std::move(options), true);
}

size_t CursorEngine::StoredRowCount() const {
  return rows_ ? rows_->Count() : 0;
}

bool CursorEngine::Deleted(uint32_t row) const {
  return rows_->deleted[row] != 0;
}

void CursorEngine::Rebase() {
  if (rows_->store) {
    store_cells_ = rows_->store->cells.data();
    store_rows_ = rows_->store_rows.data();
    cells_ = nullptr;
  } else {
    store_cells_ = nullptr;
    store_rows_ = nullptr;
    cells_ = rows_->cells.data();
  }
}

void CursorEngine::Detach() {
  if (!rows_) return;
  auto& engines = rows_->engines;
  engines.erase(std::remove(engines.begin(), engines.end(), this), engines.end());
  rows_.reset();
  cells_ = store_cells_ = nullptr;
  store_rows_ = nullptr;
}

void CursorEngine::Tell(const std::function<void(CursorEngine&)>& what) {
  // Over a copy of the list (a few engines), so that nothing an engine
  // does when told can disturb the walk.
  const std::vector<CursorEngine*> engines = rows_->engines;
  for (CursorEngine* engine : engines) {
    if (engine != this) what(*engine);
  }
}

void CursorEngine::OwnRows() {
  SharedRows& rows = *rows_;
  if (!rows.store) return;
  rows.cells.reserve(rows.store_rows.size() * width_);
  for (size_t row = 0; row < rows.store_rows.size(); ++row) {
    const Variant* cells = StoredRow(row);
    rows.cells.insert(rows.cells.end(), cells, cells + width_);
  }
  rows.store.reset();
  rows.store_rows.clear();
  rows.store_rows.shrink_to_fit();
  for (CursorEngine* engine : rows.engines)
    engine->Rebase();
}

void CursorEngine::Opened(LoadOptions options, bool fresh) {
  const size_t count = StoredRowCount();
  if (fresh) rows_->deleted.assign(count, 0);
  rows_->engines.push_back(this);
  Rebase();
  order_.resize(count);
  std::iota(order_.begin(), order_.end(), 0u);
  names_.clear();
  for (AskedName& asked : asked_)
    asked.ordinal = -1;
  for (size_t i = 0; i < width_; ++i) {
    names_.emplace(columns_[i].name, static_cast<int32_t>(i));  // the first of a name wins
  }
  source_ = std::move(options.source);
  connection_ = std::move(options.connection);
  lock_type_ = options.lock_type == adLockUnspecified ? adLockReadOnly : options.lock_type;
  write_mode_ = options.write_mode;
  writer_ = write_mode_ == WriteMode::kBaseTable ? std::move(options.writer) : nullptr;
  cursor_type_ = adOpenStatic;  // a client-side cursor is static whatever was asked for
  filter_.clear();
  filter_criteria_.reset();
  chosen_.clear();
  sort_.clear();
  sort_text_.clear();
  if (fresh) family_ = NextFamily();
  edit_mode_ = adEditNone;
  originals_.clear();
  changed_.assign(width_, false);
  status_.assign(width_, adFieldOK);
  index_.reset();
  const bool batch = lock_type_ == adLockBatchOptimistic && write_mode_ != WriteMode::kReadOnly;
  if (batch && !rows_->batch) rows_->batch = std::make_unique<BatchChanges>();
  batch_ = batch ? rows_->batch.get() : nullptr;
  open_ = true;
  ResetPosition();
}

void CursorEngine::Ran(std::string source, std::shared_ptr<Connection> connection,
                       LockTypeEnum lock_type) {
  RequireClosed();
  source_ = std::move(source);
  connection_ = std::move(connection);
  lock_type_ = lock_type;
}

void CursorEngine::Close() {
  RequireOpen();
  // A pending change is dropped: the system cancels it before closing. The
  // clones keep the rows as they were before it.
  if (edit_mode_ != adEditNone && rows_->engines.size() > 1) CancelUpdate();
  Detach();
  open_ = false;
  edit_mode_ = adEditNone;
  on_deleted_ = false;
  columns_.clear();
  names_.clear();
  for (AskedName& asked : asked_)
    asked.ordinal = -1;
  order_.clear();
  filter_.clear();
  filter_criteria_.reset();
  chosen_.clear();
  sort_.clear();
  sort_text_.clear();
  originals_.clear();
  writer_.reset();
  index_.reset();
  batch_ = nullptr;  // pending batch changes are lost with the rows, once no clone holds them
  width_ = 0;
  pos_ = 0;
}

void CursorEngine::MaxRecords(int32_t max_records) {
  if (open_) {
    throw Error(kErrObjectOpen, "Operation is not allowed when the object is open.", kSource);
  }
  if (max_records < 0) {
    throw InvalidArgumentError("", kSource);
  }
  max_records_ = max_records;
}

// ---- Position ------------------------------------------------------------

void CursorEngine::RequireOpen() const {
  if (!open_) ThrowClosed();
}

void CursorEngine::RequireClosed() const {
  if (open_) {
    throw Error(kErrObjectOpen, "Operation is not allowed when the object is open.", kSource);
  }
}

void CursorEngine::ThrowClosed() {
  throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.", kSource);
}

void CursorEngine::ThrowNoCurrentRecord() {
  throw Error(kErrNoCurrentRecord,
              "Either BOF or EOF is True, or the current record has been deleted. Requested "
              "operation requires a current record.",
              kSource);
}

uint32_t CursorEngine::CurrentRow() const {
  if (!HasCurrent()) ThrowNoCurrentRecord();
  return order_[static_cast<size_t>(pos_)];
}

void CursorEngine::ResetPosition() {
  pos_ = 0;  // the first row, or EOF (and BOF) when there is none
  on_deleted_ = false;
  ResetStatus();
}

void CursorEngine::ResetStatus() {
  std::fill(status_.begin(), status_.end(), adFieldOK);
}

bool CursorEngine::Bof() const {
  RequireOpen();
  if (on_deleted_) return false;  // the deleted row stays current until the cursor moves
  return pos_ < 0 || order_.empty();
}

bool CursorEngine::Eof() const {
  RequireOpen();
  if (on_deleted_) return false;
  return pos_ >= static_cast<ptrdiff_t>(order_.size()) || order_.empty();
}

int32_t CursorEngine::RecordCount() const {
  RequireOpen();
  return static_cast<int32_t>(order_.size());
}

int32_t CursorEngine::AbsolutePosition() const {
  RequireOpen();
  constexpr int32_t kPosUnknown = -1, kPosBof = -2, kPosEof = -3;
  if (on_deleted_ || order_.empty()) return kPosUnknown;
  if (pos_ >= static_cast<ptrdiff_t>(order_.size())) return kPosEof;
  if (pos_ < 0) return kPosBof;
  return static_cast<int32_t>(pos_ + 1);
}

Variant CursorEngine::Bookmark() const {
  RequireOpen();
  // A double, as the classic client cursor's bookmarks are, so that it can
  // never be taken for one of the BookmarkEnum values.
  return Variant(static_cast<double>(family_) * kFamilySpan + static_cast<double>(CurrentRow()) +
                 1.0);
}

ptrdiff_t CursorEngine::PositionOfBookmark(const Variant& bookmark) const {
  const double* d = bookmark.Get<double>();
  if (!d || !(*d >= 1.0) || std::floor(*d) != *d) return -1;
  const double family = std::floor(*d / kFamilySpan);
  const double row = *d - family * kFamilySpan - 1.0;
  if (family != static_cast<double>(family_) || row < 0 ||
      row >= static_cast<double>(StoredRowCount())) {
    return -1;
  }
  return PositionOfRow(static_cast<uint32_t>(row));
}

void CursorEngine::Bookmark(const Variant& bookmark) {
  RequireOpen();
  const ptrdiff_t position = PositionOfBookmark(bookmark);
  if (position < 0) {
    throw InvalidArgumentError("The bookmark names no visible row of this recordset.", kSource);
  }
  CommitPending();
  pos_ = position;
  on_deleted_ = false;
  ResetStatus();
}

ptrdiff_t CursorEngine::PositionOfRow(uint32_t row) const {
  if (!sort_.empty()) {
    const auto at = std::find(order_.begin(), order_.end(), row);
    return at == order_.end() ? -1 : at - order_.begin();
  }
  // Rows keep storage order in order_ (a Filter keeps it too), so a binary
  // search finds them.
  auto it = std::lower_bound(order_.begin(), order_.end(), row);
  if (it == order_.end() || *it != row) return -1;
  return it - order_.begin();
}

void CursorEngine::MoveFirst() {
  RequireOpen();
  CommitPending();
  if (order_.empty()) ThrowNoCurrentRecord();
  pos_ = 0;
  on_deleted_ = false;
  ResetStatus();
}

void CursorEngine::MoveLast() {
  RequireOpen();
  CommitPending();
  if (order_.empty()) ThrowNoCurrentRecord();
  pos_ = static_cast<ptrdiff_t>(order_.size()) - 1;
  on_deleted_ = false;
  ResetStatus();
}

void CursorEngine::MoveNext() {
  RequireOpen();
  CommitPending();
  if (on_deleted_) {
    on_deleted_ = false;  // pos_ already names the row after the deleted one
  } else {
    if (Eof()) ThrowNoCurrentRecord();
    ++pos_;
  }
  ResetStatus();
}

void CursorEngine::MovePrevious() {
  RequireOpen();
  CommitPending();
  if (on_deleted_) {
    on_deleted_ = false;
    --pos_;
  } else {
    if (Bof()) ThrowNoCurrentRecord();
    if (pos_ >= static_cast<ptrdiff_t>(order_.size())) pos_ = static_cast<ptrdiff_t>(order_.size());
    --pos_;
  }
  if (pos_ < 0) pos_ = -1;
  ResetStatus();
}

void CursorEngine::Move(int32_t rows) {
  RequireOpen();
  if (rows == 0) {
    if (!HasCurrent()) ThrowNoCurrentRecord();
    return;
  }
  CommitPending();
  const ptrdiff_t size = static_cast<ptrdiff_t>(order_.size());
  ptrdiff_t target;
  if (on_deleted_) {
    target = rows > 0 ? pos_ - 1 + rows : pos_ + rows;
  } else {
    if ((rows > 0 && Eof()) || (rows < 0 && Bof())) ThrowNoCurrentRecord();
    target = pos_ + rows;
  }
  pos_ = std::clamp<ptrdiff_t>(target, -1, size);
  on_deleted_ = false;
  ResetStatus();
}

void CursorEngine::Find(const std::string& criteria_text, int32_t skip_rows,
                        SearchDirectionEnum direction, const Variant& start) {
  RequireOpen();
  const Criteria criteria =
      Criteria::Parse(criteria_text, [this](std::string_view n) { return ResolveColumn(n); });
  if (!criteria.IsSingleComparison()) {
    throw InvalidArgumentError("Cannot use the criteria \"" + criteria_text.substr(0, 200) +
                                   "\": Find takes one comparison; Filter takes AND and OR.",
                               kSource);
  }
  if (direction != adSearchForward && direction != adSearchBackward) {
    throw InvalidArgumentError("The search direction is neither forward nor backward.", kSource);
  }
  const int step = direction == adSearchForward ? 1 : -1;
  ptrdiff_t origin;
  bool from_deleted = false;
  switch (StartOf(start)) {
    case adBookmarkCurrent:
      origin = pos_;
      from_deleted = on_deleted_;
      break;
    case adBookmarkFirst:
      origin = 0;
      break;
    case adBookmarkLast:
      origin = static_cast<ptrdiff_t>(order_.size()) - 1;
      break;
    default: {
      origin = PositionOfBookmark(start);
      if (origin < 0) {
        throw InvalidArgumentError("The start bookmark names no visible row.", kSource);
      }
    }
  }
  CommitPending();
  const ptrdiff_t size = static_cast<ptrdiff_t>(order_.size());
  ptrdiff_t from;
  if (from_deleted) {
    // The deleted row sat just before pos_: skip counts from that gap.
    // Counted in ptrdiff_t: skip_rows may be any 32-bit value.
    const ptrdiff_t beyond = std::max<ptrdiff_t>(ptrdiff_t{skip_rows} - 1, 0);
    from = step > 0 ? pos_ + beyond : pos_ - 1 - beyond;
  } else {
    from = origin + ptrdiff_t{skip_rows} * step;
  }
  if (step > 0 && from < 0) from = 0;
  if (step < 0 && from >= size) from = size - 1;

  ptrdiff_t found = FindByIndex(criteria, from, step);
  if (found == -2) {  // no index: scan
    found = -1;
    for (ptrdiff_t i = from; i >= 0 && i < size; i += step) {
      if (criteria.Matches(StoredRow(order_[static_cast<size_t>(i)]))) {
        found = i;
        break;
      }
    }
  }
  on_deleted_ = false;
  pos_ = found >= 0 ? found : (step > 0 ? size : -1);
  ResetStatus();
}

// FindByIndex answers "column = number" from the equality index: the first
// position at or after from (before, backwards) holding the value; -1 when
// there is none, -2 when the index cannot answer.
ptrdiff_t CursorEngine::FindByIndex(const Criteria& criteria, ptrdiff_t from, int step) {
  const auto equality = criteria.ColumnEquals();
  if (!equality) return -2;
  const Variant& literal = *equality->value;
  if (!literal.IsNumber()) return -2;
  if (!index_ || index_->column != equality->column) {
    index_ = std::make_unique<EqualityIndex>();
    index_->column = equality->column;
  }
  EqualityIndex& index = *index_;
  if (!index.built) {
    if (++index.finds < kFindsBeforeIndex) return -2;
    index.built = true;
    index.usable = true;
    for (size_t p = 0; p < order_.size(); ++p) {
      const Variant& v = StoredRow(order_[p])[index.column];
      if (IsNothing(v)) continue;
      if (!v.IsNumber() && v.Type() != vbBoolean && v.Type() != vbDate) {
        index.usable = false;  // texts compare with numbers by their reading: scan
        index.positions.clear();
        break;
      }
      index.positions[CDbl(v)].push_back(static_cast<uint32_t>(p));
    }
  }
  if (!index.usable) return -2;
  const double key = CDbl(literal);
  auto it = index.positions.find(key);
  if (it == index.positions.end()) return -1;
  const std::vector<uint32_t>& list = it->second;
  const ptrdiff_t size = static_cast<ptrdiff_t>(order_.size());
  if (from < 0 || from >= size) return -1;
  if (step > 0) {
    auto p = std::lower_bound(list.begin(), list.end(), static_cast<uint32_t>(from));
    return p == list.end() ? -1 : static_cast<ptrdiff_t>(*p);
  }
  auto p = std::upper_bound(list.begin(), list.end(), static_cast<uint32_t>(from));
  return p == list.begin() ? -1 : static_cast<ptrdiff_t>(*(p - 1));
}

void CursorEngine::Filter(const std::string& criteria_text) {
  RequireOpen();
  const bool clear = std::all_of(criteria_text.begin(), criteria_text.end(), [](char c) {
    return std::isspace(static_cast<unsigned char>(c));
  });
  std::optional<Criteria> criteria;
  if (!clear) {
    criteria =
        Criteria::Parse(criteria_text, [this](std::string_view n) { return ResolveColumn(n); });
  }
  CommitPending();
  chosen_.clear();
  RebuildOrder(criteria ? &*criteria : nullptr);
  filter_criteria_ = criteria ? std::make_unique<Criteria>(std::move(*criteria)) : nullptr;
  filter_ = clear ? std::string() : criteria_text;
  ResetPosition();
}

void CursorEngine::FilterGroup(FilterGroupEnum group) {
  RequireOpen();
  if (group == adFilterNone || group == adFilterFetchedRecords) return Filter("");
  if (group != adFilterPendingRecords && group != adFilterAffectedRecords &&
      group != adFilterConflictingRecords) {
    throw InvalidArgumentError("No such filter group.", kSource);
  }
  // Without batch updating changes are written as they are made: no row
  // waits to be sent, was left by a batch, or conflicts with one.
  CommitPending();
  filter_criteria_.reset();
  filter_.clear();
  chosen_.assign(StoredRowCount(), 0);
  if (batch_) {
    for (size_t row = 0; row < chosen_.size(); ++row) {
      const auto id = static_cast<uint32_t>(row);
      const bool in = group == adFilterPendingRecords    ? batch_->Find(id) != nullptr
                      : group == adFilterAffectedRecords ? batch_->Affected(id)
                                                         : batch_->Conflicting(id);
      if (in) chosen_[row] = kChosenWithDeleted;
    }
  }
  RebuildOrder(nullptr);
  ResetPosition();
}

void CursorEngine::FilterBookmarks(const std::vector<Variant>& bookmarks) {
  RequireOpen();
  std::vector<uint8_t> chosen(StoredRowCount(), 0);
  for (const Variant& bookmark : bookmarks) {
    const ptrdiff_t position = PositionOfBookmark(bookmark);
    if (position < 0) {
      throw InvalidArgumentError("A bookmark of the filter names no visible row of this recordset.",
                                 kSource);
    }
    chosen[order_[static_cast<size_t>(position)]] = 1;
  }
  CommitPending();
  filter_criteria_.reset();
  filter_.clear();
  chosen_ = std::move(chosen);
  RebuildOrder(nullptr);
  ResetPosition();
}

void CursorEngine::Sort(const std::string& sort) {
  RequireOpen();
  std::vector<SortKey> keys =
      ParseSort(sort, [this](std::string_view n) { return ResolveColumn(n); });
  CommitPending();
  sort_ = std::move(keys);
  sort_text_ = sort_.empty() ? std::string() : sort;
  RebuildOrder(filter_criteria_.get());
  ResetPosition();
}

void CursorEngine::CloneFrom(const CursorEngine& other, bool read_only) {
  RequireClosed();
  other.RequireOpen();
  columns_ = other.columns_;
  width_ = other.width_;
  rows_ = other.rows_;
  family_ = other.family_;
  Opened(
      LoadOptions{other.source_, other.connection_, read_only ? adLockReadOnly : other.lock_type_,
                  read_only ? WriteMode::kReadOnly : other.write_mode_,
                  read_only ? nullptr : other.writer_},
      false);
  max_records_ = other.max_records_;
  RebuildOrder(nullptr);
  ResetPosition();
}

void CursorEngine::RebuildOrder(const Criteria* criteria) {
  order_.clear();
  const size_t count = StoredRowCount();
  const std::vector<uint8_t>& deleted = rows_->deleted;
  for (size_t row = 0; row < count; ++row) {
    const uint8_t chosen = chosen_.empty() ? 1 : row < chosen_.size() ? chosen_[row] : 0;
    if (chosen == 0 || (deleted[row] && chosen != kChosenWithDeleted)) continue;
    if (criteria && !criteria->Matches(StoredRow(row))) continue;
    order_.push_back(static_cast<uint32_t>(row));
  }
  SortRows(order_, sort_, [this](uint32_t row) { return StoredRow(row); });
  DropCaches();
}

void CursorEngine::DropCaches() {
  index_.reset();
}

void CursorEngine::ChangedRows() {
  for (CursorEngine* engine : rows_->engines)
    engine->DropCaches();
}

void CursorEngine::RowAdded(uint32_t row) {
  DropCaches();
  if (filter_criteria_ || !chosen_.empty()) return;  // shown once the order is built again
  const bool at_end = pos_ >= static_cast<ptrdiff_t>(order_.size());
  order_.push_back(row);
  if (at_end) pos_ = static_cast<ptrdiff_t>(order_.size());  // EOF stays EOF
}

void CursorEngine::RowRemoved(uint32_t row) {
  DropCaches();
  if (edit_mode_ != adEditNone && edit_row_ == row) EndEdit();  // nothing left to edit
  const auto at = std::find(order_.begin(), order_.end(), row);
  if (at == order_.end()) return;
  const ptrdiff_t position = at - order_.begin();
  order_.erase(at);
  if (position < pos_) {
    --pos_;
  } else if (position == pos_ && !on_deleted_) {
    // Left on the deleted row, as after a Delete of its own; pos_ now
    // names the row that followed it.
    on_deleted_ = true;
    deleted_row_ = row;
  }
}

void CursorEngine::RowsBack() {
  const ptrdiff_t current = on_deleted_    ? static_cast<ptrdiff_t>(deleted_row_)
                            : HasCurrent() ? static_cast<ptrdiff_t>(CurrentRow())
                                           : -1;
  RebuildOrder(filter_criteria_.get());
  KeepPositionAfter(current);
}

// ---- Fields ----------------------------------------------------------------

int32_t CursorEngine::FieldCount() const {
  RequireOpen();
  return static_cast<int32_t>(width_);
}

void CursorEngine::ThrowNoOrdinal(int32_t ordinal) {
  throw ItemNotFoundError("Ordinal " + std::to_string(ordinal), kSource);
}

int32_t CursorEngine::LookUpOrdinal(std::string_view name) const {
  auto it = names_.find(name);
  if (it == names_.end()) {
    throw ItemNotFoundError("Field \"" + std::string(name) + "\"", kSource);
  }
  size_t slot = AskedSlot(name);
  for (size_t probe = 0; probe < kAskedProbes; ++probe, slot = (slot + 1) % kAskedSlots) {
    AskedName& asked = asked_[slot];
    if (asked.ordinal >= 0) continue;
    asked.name.assign(name);
    asked.ordinal = it->second;
    break;
  }
  return it->second;
}

bool CursorEngine::HasField(std::string_view name) const {
  RequireOpen();
  return names_.find(name) != names_.end();
}

int32_t CursorEngine::ResolveColumn(std::string_view name) const {
  auto it = names_.find(name);
  return it == names_.end() ? -1 : it->second;
}

Variant CursorEngine::OriginalValue(int32_t ordinal) const {
  RequireOpen();
  const uint32_t row = CurrentRow();
  if (const BatchChanges::Pending* pending = batch_ ? batch_->Find(row) : nullptr) {
    // As read, until the batch is sent.
    if (pending->kind == BatchChanges::Kind::kNew) return Variant::Null();
    return pending->originals[static_cast<size_t>(ordinal)];
  }
  if (edit_mode_ != adEditNone && row == edit_row_) return originals_[static_cast<size_t>(ordinal)];
  return StoredRow(row)[ordinal];
}

int32_t CursorEngine::Status(int32_t ordinal) const {
  RequireOpen();
  return status_[static_cast<size_t>(ordinal)];
}

void CursorEngine::RequireWritable() const {
  if (write_mode_ == WriteMode::kReadOnly) {
    throw Error(kErrOperationNotSupported,
                "Current Recordset does not support updating. This may be a limitation of the "
                "provider, or of the selected locktype.",
                kSource);
  }
}

void CursorEngine::SetValue(int32_t ordinal, const Variant& value) {
  RequireOpen();
  const uint32_t row = CurrentRow();
  RequireWritable();
  if (Deleted(row)) ThrowNoCurrentRecord();  // a deleted row a batch filter shows
  const ColumnInfo& column = columns_[static_cast<size_t>(ordinal)];
  if (column.type == adChapter) {
    throw Error(kErrOperationNotSupported,
                "Current Recordset does not support updating. This may be a limitation of the "
                "provider, or of the selected locktype. (A chapter field cannot be set.)",
                kSource);
  }
  Variant converted;
  try {
    converted = ConvertForColumn(column.type, value);
  } catch (const Error& e) {
    status_[static_cast<size_t>(ordinal)] = StatusForConversion(e);
    throw Error(kErrInvalidArgument,
                "Multiple-step operation generated errors. Check each status value. (Field \"" +
                    column.name + "\": " + e.Description() + ")",
                kSource);
  }
  Variant* cells = OwnedRow(row);
  if (edit_mode_ == adEditNone) BeginEdit(row);
  cells[static_cast<size_t>(ordinal)] = std::move(converted);
  changed_[static_cast<size_t>(ordinal)] = true;
  status_[static_cast<size_t>(ordinal)] = adFieldOK;
  ChangedRows();
}

// ---- Changes ---------------------------------------------------------------

EditModeEnum CursorEngine::EditMode() const {
  RequireOpen();
  if (on_deleted_) return adEditDelete;
  return edit_mode_;
}

void CursorEngine::BeginEdit(uint32_t row) {
  edit_mode_ = adEditInProgress;
  edit_row_ = row;
  const Variant* cells = StoredRow(row);
  originals_.assign(cells, cells + width_);
  std::fill(changed_.begin(), changed_.end(), false);
}

void CursorEngine::EndEdit() {
  edit_mode_ = adEditNone;
  originals_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
}

void CursorEngine::CommitPending() {
  if (edit_mode_ != adEditNone) Update();
}

void CursorEngine::AddNew() {
  RequireOpen();
  RequireWritable();
  CommitPending();
  OwnRows();
  const uint32_t row = static_cast<uint32_t>(StoredRowCount());
  pos_before_add_ =
      on_deleted_ ? std::min<ptrdiff_t>(pos_, static_cast<ptrdiff_t>(order_.size())) : pos_;
  rows_->cells.resize(rows_->cells.size() + width_, Variant::Null());
  rows_->deleted.push_back(0);
  for (CursorEngine* engine : rows_->engines)
    engine->Rebase();
  Tell([row](CursorEngine& other) { other.RowAdded(row); });
  order_.push_back(row);
  pos_ = static_cast<ptrdiff_t>(order_.size()) - 1;
  on_deleted_ = false;
  edit_mode_ = adEditAdd;
  edit_row_ = row;
  originals_.assign(width_, Variant::Null());
  std::fill(changed_.begin(), changed_.end(), false);
  ResetStatus();
  ChangedRows();
}

void CursorEngine::Update() {
  RequireOpen();
  if (edit_mode_ == adEditNone) return;
  if (batch_) {  // kept until UpdateBatch
    if (edit_mode_ == adEditAdd) {
      batch_->Added(edit_row_, changed_);
    } else {
      batch_->Edited(edit_row_, originals_, changed_);
    }
  } else if (writer_) {
    Variant* row = OwnedRow(edit_row_);
    if (edit_mode_ == adEditAdd) {
      writer_->Insert(RowChange{columns_, row, nullptr, changed_, status_}, row);
      ChangedRows();  // the database may have supplied values
    } else {
      writer_->Update(RowChange{columns_, row, originals_.data(), changed_, status_});
      // The row holds what it held since the fields were set, when the
      // clones were told: nothing more to tell them.
      EndEdit();
      ResetStatus();
      return;
    }
  }
  ChangedRows();  // the clones see the values written
  EndEdit();
  ResetStatus();
}

void CursorEngine::CancelUpdate() {
  RequireOpen();
  if (edit_mode_ == adEditAdd) {
    // The new row goes from every order. It is dropped from storage when it
    // is the last row stored; a clone may have added one after it, and then
    // it stays, deleted, so that row ids keep their rows.
    const uint32_t row = edit_row_;
    order_.erase(std::find(order_.begin(), order_.end(), row));
    pos_ = std::min<ptrdiff_t>(pos_before_add_, static_cast<ptrdiff_t>(order_.size()));
    const bool last = size_t{row} + 1 == StoredRowCount();
    rows_->deleted[row] = 1;
    Tell([row](CursorEngine& other) { other.RowRemoved(row); });
    if (last) {
      rows_->cells.resize(rows_->cells.size() - width_);
      rows_->deleted.pop_back();
    }
    ChangedRows();
  } else if (edit_mode_ == adEditInProgress) {
    // Only the fields this recordset set go back: a clone may have written
    // another field of the same row meanwhile, and that value stays.
    Variant* cells = OwnedRow(edit_row_);
    for (size_t i = 0; i < width_; ++i) {
      if (changed_[i]) cells[i] = originals_[i];
    }
    ChangedRows();
  }
  EndEdit();
  ResetStatus();
}

void CursorEngine::Delete() {
  RequireOpen();
  const uint32_t row = CurrentRow();
  RequireWritable();
  if (Deleted(row)) ThrowNoCurrentRecord();  // a deleted row a batch filter shows
  if (edit_mode_ == adEditAdd) {             // deleting a row not yet added drops it
    CancelUpdate();
    return;
  }
  if (edit_mode_ == adEditInProgress) CancelUpdate();
  if (batch_) {
    batch_->Deleted(row, StoredRow(row), width_);
  } else if (writer_) {
    writer_->Delete(RowChange{columns_, StoredRow(row), nullptr, changed_, status_});
  }
  rows_->deleted[row] = 1;
  deleted_row_ = row;
  order_.erase(order_.begin() + pos_);
  on_deleted_ = true;
  Tell([row](CursorEngine& other) { other.RowRemoved(row); });
  ResetStatus();
  ChangedRows();
}

int32_t StartOf(const Variant& start) {
  if (const auto* large = start.Get<int32_t>()) return *large;
  if (const auto* small = start.Get<int16_t>()) return *small;
  return start.IsEmpty() ? adBookmarkCurrent : kStartAtBookmark;
}

}  // namespace kelvary::internal
