// The look-up members of InfoLink: each forwards to the subsystem that holds
// its logic (lookups/).
#include "kelvary/lookups/ListFilling.h"
#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/lookups/SearchLinks.h"
#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary {

void InfoLink::InitLists(bool bFSLnx, bool bMSlcts) {
  metadata_->InitLists(bFSLnx, bMSlcts);
}

int32_t InfoLink::GetSearchLinkDetails(int32_t SearchLinkID, std::string& SearchDisplayField,
                                       std::string& SearchValueField, int32_t& SearchTable,
                                       std::string& SearchTableName, ProjectDataSources& SourceData,
                                       std::string& SQLStmt, std::string& SelectCaption,
                                       bool* HasManyEntries, int16_t* DefNewScreenID,
                                       std::string* SecondaryDisplayField) {
  return search_links_->GetSearchLinkDetails(
      SearchLinkID, SearchDisplayField, SearchValueField, SearchTable, SearchTableName, SourceData,
      SQLStmt, SelectCaption, HasManyEntries, DefNewScreenID, SecondaryDisplayField);
}

std::string InfoLink::GetDescription(int32_t SearchLinkID, int32_t CurrValue,
                                     std::optional<int16_t> NumCharSpace) {
  return search_links_->GetDescription(SearchLinkID, CurrValue, NumCharSpace);
}

ControlTypes InfoLink::GetSrchlinkControlType(int32_t SrchLnk, Variant& HasLotsaEntries) {
  return search_links_->GetSrchlinkControlType(SrchLnk, HasLotsaEntries);
}

int32_t InfoLink::GetDefinitionTable(int32_t SearchLink) {
  return search_links_->GetDefinitionTable(SearchLink);
}

Variant InfoLink::GetCoreName(int32_t CoreCode, const std::string& TblName,
                              std::optional<int16_t> NumCharSpace) {
  return values_->GetCoreName(CoreCode, TblName, NumCharSpace);
}

std::string InfoLink::GetDescriptionFromCode(
    int32_t CurrValue, const std::string& TableName, const std::string& descriptionField,
    const std::string& ValueField, ProjectDataSources Dtsrc, const std::string& SQLStmt,
    std::optional<int16_t> NumCharSpace, const std::optional<std::string>& SecondaryDisplayField) {
  return values_->GetDescriptionFromCode(CurrValue, TableName, descriptionField, ValueField, Dtsrc,
                                         SQLStmt, NumCharSpace, SecondaryDisplayField);
}

Variant InfoLink::GetCorrespondingValue(int32_t SearchValue, const std::string& TableName,
                                        const std::string& OutPutField,
                                        const std::string& Searchfield, ProjectDataSources Dtsrc,
                                        const std::string& SQLStmt) {
  return values_->GetCorrespondingValue(SearchValue, TableName, OutPutField, Searchfield, Dtsrc,
                                        SQLStmt);
}

Variant InfoLink::GetCorrespondingValueFromText(
    const std::string& SearchText, const std::string& TableName, const std::string& OutPutField,
    const std::string& Searchfield, ProjectDataSources Dtsrc, const std::string& SQLStmt) {
  return values_->GetCorrespondingValueFromText(SearchText, TableName, OutPutField, Searchfield,
                                                Dtsrc, SQLStmt);
}

int32_t InfoLink::GetHierarchicalParentNonZeroLongValue(int32_t StartFromID,
                                                        const std::string& TblName,
                                                        const std::string& ParentFieldName,
                                                        const std::string& ValueFieldName,
                                                        ProjectDataSources DatSrc) {
  return values_->GetHierarchicalParentNonZeroLongValue(StartFromID, TblName, ParentFieldName,
                                                        ValueFieldName, DatSrc);
}

bool InfoLink::IsCheckListAttributeEnabled(ProjectDataSources SourceofData,
                                           const std::string& TableName,
                                           const std::string& AttributeField,
                                           int32_t AttributeValue, const std::string& SourceField,
                                           int32_t SrcFieldValue) {
  return values_->IsCheckListAttributeEnabled(SourceofData, TableName, AttributeField,
                                              AttributeValue, SourceField, SrcFieldValue);
}

int32_t InfoLink::GetTableIDFromName(const std::string& TblName) {
  return values_->GetTableIDFromName(TblName);
}

std::string InfoLink::SupplyMultiListdata(int32_t MultiListID, std::string& DescriptionTbl,
                                          std::string& SqlStr, std::string& DisplayField,
                                          std::string& ValueField, int32_t* SrchLinkId) {
  return search_links_->SupplyMultiListdata(MultiListID, DescriptionTbl, SqlStr, DisplayField,
                                            ValueField, SrchLinkId);
}

int32_t InfoLink::GetMultiListParentWnd(int32_t MultiListID, int32_t* SrchLnkID) {
  return search_links_->GetMultiListParentWnd(MultiListID, SrchLnkID);
}

int32_t InfoLink::GetMultiSettings(int32_t MultiListID, std::string& StorageTableName,
                                   std::string* ParentTableName) {
  return search_links_->GetMultiSettings(MultiListID, StorageTableName, ParentTableName);
}

void InfoLink::FillWithMultiListOptions(int32_t ParentSrchLnk, ListControl& fcb) {
  search_links_->FillWithMultiListOptions(ParentSrchLnk, fcb);
}

std::string InfoLink::GetMultiSelectSQL(int32_t NegativeMultiOption, std::string& SrchDisplayFld,
                                        std::string& SrchValueField,
                                        ProjectDataSources& SourceofData) {
  return search_links_->GetMultiSelectSQL(NegativeMultiOption, SrchDisplayFld, SrchValueField,
                                          SourceofData);
}

std::string InfoLink::GetMultiString(int32_t MultiLinkId, int32_t ParentID) {
  return search_links_->GetMultiString(MultiLinkId, ParentID);
}

void InfoLink::FillComboWithOptions(ListControl& cb, int32_t SearchLinkID) {
  lists_->FillComboWithOptions(cb, SearchLinkID);
}

void InfoLink::FillComboWithSQL(ListControl& cb, ProjectDataSources SourceData,
                                const std::string& SQLStmt, const std::string& SearchDisplayField,
                                const std::string& SearchValueField, bool bSelectFirst,
                                std::optional<bool> bDontClear) {
  lists_->FillComboWithSQL(cb, SourceData, SQLStmt, SearchDisplayField, SearchValueField,
                           bSelectFirst, bDontClear);
}

void InfoLink::AddRecsToCombo(const std::shared_ptr<Recordset>& Recs, const std::string& DescField,
                              const std::string& ValFld, ListControl& fc) {
  lookups::ListFilling::AddRecsToCombo(Recs, DescField, ValFld, fc);
}

void InfoLink::RefreshHierarchicalList(ProjectDataSources SourceofData, ListControl& fc,
                                       const std::string& DescFld, const std::string& IDFld,
                                       const std::string& TableName,
                                       const std::string& FilterString) {
  lists_->RefreshHierarchicalList(SourceofData, fc, DescFld, IDFld, TableName, FilterString);
}

void InfoLink::FillComboWithValidDataTypes(ListControl& cb, int32_t DataFormatUsageID) {
  lists_->FillComboWithValidDataTypes(cb, DataFormatUsageID);
}

}  // namespace kelvary
