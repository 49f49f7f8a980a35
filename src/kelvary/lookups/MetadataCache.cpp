#include "kelvary/lookups/MetadataCache.h"

#include <exception>

#include "kelvary/platform/Error.h"

namespace kelvary::lookups {
namespace {

// The statements are the system's own, blanks and capitals included.
constexpr const char* kSearchLinksSql =
    "SELECT FillNSearchLinks.ID, FillNSearchLinks.NewRecordScreenID as SLDefNewScreen , "
    "FillNSearchLinks.SecondaryDisplayField, FillNSearchLinks.SQLStmt, "
    "FillNSearchLinks.SearchValueField, FillNSearchLinks.SearchDisplayField, "
    "FillNSearchLinks.SelectCaption,FillNSearchLinks.LargeNumberOFEntries, "
    "FillNSearchLinks.SearchWhereClause,FillNSearchLinks.SearchTable,FillNSearchLinks.SearchWnd, "
    "DataTables.ValuesTable, DataTables.NewRecordScreenID as DTDefNewScreenID, "
    "DataTables.TableType, DataTables.TableLocation, DataTables.TableContentType FROM "
    "DataTables, FillNSearchLinks WHERE DataTables.Id = FillNSearchLinks.SearchTable ORDER BY "
    "FillNSearchLinks.ID";

constexpr const char* kMultiSelectsSql =
    "SELECT MultiSelects.ParentSearchLinkID,MultiSelects.SearchLinkID ,MultiSelects.StoreTable "
    "AS StoreTableID, DataTables.ValuesTable AS StoreTableName, MultiSelects.ID,"
    " DataTables1.ValuesTable AS DescriptionTable,FillNSearchLinks1.SearchTable as "
    "ParentTableID,FillNSearchLinks1.SearchWnd as ParentSrchWnd ,DataTables2.ValuesTable AS "
    "ParentTableName FROM MultiSelects, DataTables, FillNSearchLinks,FillNSearchLinks "
    "FillNSearchLinks1,  DataTables DataTables1,DataTables DataTables2 "
    " WHERE (MultiSelects.StoreTable = DataTables.Id) AND (MultiSelects.SearchLinkID = "
    "FillNSearchLinks.ID) AND ( FillNSearchLinks.SearchTable = DataTables1.ID ) AND "
    "(MultiSelects.ParentSearchLinkID = FillNSearchLinks1.ID) AND ( FillNSearchLinks1.SearchTable "
    "= DataTables2.ID )";

constexpr const char* kDataTablesSql = "SElect ValuesTable,ID,MaxID  from DataTables where ID > 0 ";

template <class F>
void IgnoringErrors(F&& step) {
  try {
    step();
  } catch (const std::exception&) {
  }
}

// Guarded: one step of the release; a step that fails must not keep the
// later ones from releasing their objects.
template <class F>
void Guarded(F&& step) noexcept {
  try {
    step();
  } catch (...) {
  }
}

}  // namespace

MetadataCache::~MetadataCache() {
  Close();
}

void MetadataCache::InitLists(bool bFSLnx, bool bMSlcts) {
  if (bFSLnx) {
    services_.FillRecordSet(pdssystem, search_links_, kSearchLinksSql, adOpenDynamic,
                            adLockReadOnly);
  }
  if (bMSlcts) {
    services_.FillRecordSet(pdssystem, multi_selects_, kMultiSelectsSql, adOpenDynamic,
                            adLockReadOnly);
  }
  index_.reset();  // rebuilt from the reloaded caches on first use

  const CodeGenMethods method = services_.Settings().GenCodeMethod;
  if (method == cgmMaxCollection || method == cgmDynamicTables ||
      method == cgmPhysicalLocationWise) {
    LoadTableKeys(method);
  }
  // Only the dynamic-tables mode keeps the recordset open, for key generation.
  if (method != cgmDynamicTables && data_tables_) {
    CloseRecordsetSafely(data_tables_);
    data_tables_.reset();
  }
}

void MetadataCache::LoadTableKeys(CodeGenMethods method) {
  data_tables_ = std::make_shared<Recordset>();
  if (!services_.FillRecordSet(pdssystem, data_tables_, kDataTablesSql, adOpenDynamic,
                               adLockOptimistic)) {
    return;
  }
  if (!table_keys_) table_keys_ = std::make_shared<KeyedCollection<Variant>>();
  // From here on every error is ignored, row by row; a duplicate table
  // name is simply skipped.
  while (true) {
    bool at_end = true;
    IgnoringErrors([&] { at_end = data_tables_->Eof(); });
    if (at_end) break;
    IgnoringErrors([&] {
      const Variant name = data_tables_->Fields("ValuesTable").Value();
      if (method == cgmPhysicalLocationWise) {
        const Variant id(CLng(data_tables_->Fields("ID").Value()));
        table_keys_->Add(std::make_shared<Variant>(id), CStr(name));
      } else if (!name.IsNull()) {
        table_keys_->Add(std::make_shared<Variant>(int16_t{0}), CStr(name));
      }
    });
    bool moved = false;
    IgnoringErrors([&] {
      data_tables_->MoveNext();
      moved = true;
    });
    if (!moved) break;
  }
}

void MetadataCache::BuildIndex() {
  index_ = std::make_shared<MetadataIndex>(search_links_, multi_selects_);
}

std::shared_ptr<Variant> MetadataCache::TableKey(const std::string& Table_Name) {
  if (!table_keys_) table_keys_ = std::make_shared<KeyedCollection<Variant>>();
  return table_keys_->Item(Table_Name);
}

std::shared_ptr<Variant> MetadataCache::FindTableKey(const std::string& Table_Name) const {
  return table_keys_ ? table_keys_->Find(Table_Name) : nullptr;
}

void MetadataCache::StoreTableKey(const std::string& Table_Name, const Variant& value) {
  if (!table_keys_) table_keys_ = std::make_shared<KeyedCollection<Variant>>();
  if (const auto entry = table_keys_->Find(Table_Name)) {
    *entry = value;
  } else {
    table_keys_->Add(std::make_shared<Variant>(value), Table_Name);
  }
}

bool MetadataCache::MoveToDataTableRow(const std::string& Table_Name) {
  if (!data_tables_) {
    throw Error(kErrObjectVariableNotSet,
                "The data-tables recordset is not loaded: key generation by dynamic tables needs "
                "InitLists in that mode");
  }
  const std::shared_ptr<Variant> entry = TableKey(Table_Name);
  const int32_t id = CLng(*entry);
  data_tables_->MoveFirst();
  if (id != 0) {
    data_tables_->Find("ID = " + std::to_string(id));
    return true;
  }
  data_tables_->Find("ValuesTable Like '" + Table_Name + "'");
  *entry = Variant(CLng(data_tables_->Fields("ID").Value()));
  return false;
}

void MetadataCache::Close() noexcept {
  Guarded([&] { CloseRecordsetSafely(multi_selects_); });
  Guarded([&] {
    if (table_keys_) {
      while (table_keys_->Count() >= 1)
        table_keys_->Remove(1);
    }
  });
  table_keys_.reset();
  multi_selects_.reset();
  if (data_tables_) {
    Guarded([&] { CloseRecordsetSafely(data_tables_); });
    data_tables_.reset();
  }
  Guarded([&] { CloseRecordsetSafely(search_links_); });
  search_links_.reset();
  index_.reset();
}

}  // namespace kelvary::lookups
