// InitLists: loads the metadata caches (search links and multi-selects) and,
// in the key-generation modes that need them, the data-tables recordset and
// the table-key collection.
#include <exception>

#include "kelvary/service/InfoLink.h"

namespace kelvary {
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

}  // namespace

void InfoLink::InitLists(bool bFSLnx, bool bMSlcts) {
  if (bFSLnx)
    FillRecordSet(pdssystem, search_links_, kSearchLinksSql, adOpenDynamic, adLockReadOnly);
  if (bMSlcts) {
    FillRecordSet(pdssystem, multi_selects_, kMultiSelectsSql, adOpenDynamic, adLockReadOnly);
  }
  metadata_index_.reset();  // rebuilt from the reloaded caches on first use

  if (GenCodeMethod == cgmMaxCollection || GenCodeMethod == cgmDynamicTables ||
      GenCodeMethod == cgmPhysicalLocationWise) {
    data_tables_ = std::make_shared<Recordset>();
    if (FillRecordSet(pdssystem, data_tables_, kDataTablesSql, adOpenDynamic, adLockOptimistic)) {
      if (!table_keys_) table_keys_ = std::make_shared<KeyedCollection<Variant>>();
      // From here on every error is ignored, row by row; a duplicate table
      // name is simply skipped.
      while (true) {
        bool at_end = true;
        IgnoringErrors([&] { at_end = data_tables_->Eof(); });
        if (at_end) break;
        IgnoringErrors([&] {
          const Variant name = data_tables_->Fields("ValuesTable").Value();
          if (GenCodeMethod == cgmPhysicalLocationWise) {
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
  }
  // Only the dynamic-tables mode keeps the recordset open, for key generation.
  if (GenCodeMethod != cgmDynamicTables && data_tables_) {
    SafelyCloseRecordSet(data_tables_);
    data_tables_.reset();
  }
}

}  // namespace kelvary
