// Multi-select lists: a parent record holds several values of a look-up
// list, stored as rows (SourceID = the parent, ValueID = the value) of the
// multi-select's store table. Definitions come from the multi-select cache
// through the metadata index; values and parents from the main database.
#include <string>

#include "kelvary/lookups/SearchLinks.h"
#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/lookups/internal/MultiSelectOption.h"
#include "kelvary/platform/Messages.h"

namespace kelvary::lookups {

std::string SearchLinks::SupplyMultiListdata(int32_t MultiListID, std::string& DescriptionTbl,
                                             std::string& SqlStr, std::string& DisplayField,
                                             std::string& ValueField, int32_t* SrchLinkId) {
  const auto index = cache_.HeldIndex();
  if (index->MultiSelectCount() == 0) {
    MsgBox("Data for MultiList " + std::to_string(MultiListID) + " not found !");
    return "";
  }
  const MultiSelectRecord* multi = index->FindMultiSelect(MultiListID);
  if (multi == nullptr) {
    MsgBox("Multi Select Data not found for " + std::to_string(MultiListID));
    return "";
  }
  // A definition without a store table answers nothing, silently.
  if (multi->StoreTableName.IsNull()) return "";
  DescriptionTbl = multi->DescriptionTable;
  const int32_t values_link = CLng(multi->SearchLinkID);
  if (SrchLinkId != nullptr) *SrchLinkId = values_link;
  ProjectDataSources source = pdsRawData;
  SqlStr = FillID(values_link, DisplayField, ValueField, source);
  return TextOf(multi->StoreTableName);
}

int32_t SearchLinks::GetMultiListParentWnd(int32_t MultiListID, int32_t* SrchLnkID) {
  const auto index = cache_.HeldIndex();
  const MultiSelectRecord* multi = index->FindMultiSelect(MultiListID);
  if (multi == nullptr) {
    MsgBox("Could not Locate MultiListID = " + std::to_string(MultiListID));
    return 0;
  }
  const int32_t window = CLng(multi->ParentSrchWnd);
  if (SrchLnkID != nullptr) *SrchLnkID = CLng(multi->ParentSearchLinkID);
  return window;
}

int32_t SearchLinks::GetMultiSettings(int32_t MultiListID, std::string& StorageTableName,
                                      std::string* ParentTableName) {
  const auto index = cache_.HeldIndex();
  if (index->MultiSelectCount() < 1) {
    MsgBox("No Multiselect entries !");
    return 0;
  }
  // An unknown ID is answered with 0 and no message; the out-arguments keep
  // what they held.
  const MultiSelectRecord* multi = index->FindMultiSelect(MultiListID);
  if (multi == nullptr || multi->ParentSrchWnd.IsNull()) return 0;
  StorageTableName = TextOf(multi->StoreTableName);
  if (ParentTableName != nullptr) *ParentTableName = multi->ParentTableName;
  return CLng(multi->ParentSrchWnd);
}

void SearchLinks::FillWithMultiListOptions(int32_t ParentSrchLnk, ListControl& fcb) {
  const std::string saved_tag = fcb.Tag();
  fcb.Tag("P");  // tells the host's change handlers that the list is being filled
  fcb.Clear();
  const auto index = cache_.HeldIndex();
  // Every multi-select of the parent link, in the cache's order.
  for (const MultiSelectRecord& multi : index->MultiSelects()) {
    if (MetadataIndex::KeyOf(multi.ParentSearchLinkID) != ParentSrchLnk) continue;
    const int32_t multi_id = CLng(multi.ID);
    std::string display_field, value_field;
    ProjectDataSources source = pdsRawData;
    const std::string sql = FillID(CLng(multi.SearchLinkID), display_field, value_field, source);
    LookupQuery query(services_, source, sql);
    if (!query.Found()) continue;
    Recordset& rows = query.Rows();
    const Field& display = rows.Fields(display_field);
    const Field& value = rows.Fields(value_field);
    for (; !rows.Eof(); rows.MoveNext()) {
      fcb.AddItem(TextOf(display.Value()),
                  Variant(MultiSelectOptionValue(multi_id, CLng(value.Value()))));
    }
  }
  fcb.Tag(saved_tag);
  fcb.Visible(fcb.ListCount() > 0);
}

std::string SearchLinks::GetMultiSelectSQL(int32_t NegativeMultiOption, std::string& SrchDisplayFld,
                                           std::string& SrchValueField,
                                           ProjectDataSources& SourceofData) {
  const int32_t multi_id = MultiSelectIdOf(NegativeMultiOption);
  const std::string option = std::to_string(OptionValueOf(NegativeMultiOption));
  std::string store, parent;
  GetMultiSettings(multi_id, store, &parent);
  SrchDisplayFld = "Description";
  SrchValueField = "ID";
  SourceofData = pdsmaindata;
  // The parent records that hold the option. The doubled blanks are the
  // statement's own.
  return "Select " + parent + "." + "Description" + " , " + parent + ".ID from " + parent + ", " +
         store + " Where ( " + parent + ".ID = " + store + ".SourceID ) " + " And ( " + parent +
         ".ID  > 0 )  And ( " + store + ".ValueID  = " + option + " )";
}

std::string SearchLinks::GetMultiString(int32_t MultiLinkId, int32_t ParentID) {
  if (MultiLinkId <= 0) return "";
  std::string descriptions, list_sql, display_field, value_field;
  const std::string store =
      SupplyMultiListdata(MultiLinkId, descriptions, list_sql, display_field, value_field, nullptr);
  const std::string sql = "Select " + descriptions + "." + display_field + " from " + descriptions +
                          " , " + store + " where (" + store + ".ValueID = " + descriptions +
                          ".ID) " + " and ( " + store + ".SourceID = " + std::to_string(ParentID) +
                          ") ";
  LookupQuery query(services_, pdsmaindata, sql, adOpenStatic);
  std::string joined;
  if (!query.Found()) return joined;
  Recordset& rows = query.Rows();
  for (; !rows.Eof(); rows.MoveNext()) {
    // The separator goes in only once something has been gathered, so an
    // empty first description leaves no leading " , ".
    const std::string text = TextOf(rows.Fields(0).Value());
    if (!joined.empty()) joined += " , ";
    joined += text;
  }
  return joined;
}

}  // namespace kelvary::lookups
