// SearchLinks: what the metadata cache says about a search link (the look-up
// list behind a field) and a multi-select (a list of which a record holds
// several values, stored as rows of its store table): field names, a ready
// statement, one value's description, the kind of control to use, the
// defining table, the multi-select's tables and parent window. A search-link
// value below zero stands for a multi-select option (MultiSelectOption.h).
//
// Every definition is read from the cache's index: after InitLists no
// member reads FillNSearchLinks or MultiSelects again, except
// GetDefinitionTable for a multi-select, which reads MultiSelects on
// purpose. An unknown ID is shown through the message channel and answered
// with the empty value.
//
// Borrows the ServicePort, the cache and the value look-ups, which must
// outlive it. One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/platform/HostControls.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::lookups {

class SearchLinks {
 public:
  SearchLinks(ServicePort& services, MetadataCache& cache, ValueLookups& values)
      : services_(services), cache_(cache), values_(values) {}

  // ---- Search links ----
  // Optional out-arguments are pointers: nullptr means "not passed".
  int32_t GetSearchLinkDetails(int32_t SearchLinkID, std::string& SearchDisplayField,
                               std::string& SearchValueField, int32_t& SearchTable,
                               std::string& SearchTableName, ProjectDataSources& SourceData,
                               std::string& SQLStmt, std::string& SelectCaption,
                               bool* HasManyEntries, int16_t* DefNewScreenID,
                               std::string* SecondaryDisplayField);
  std::string GetDescription(int32_t SearchLinkID, int32_t CurrValue,
                             std::optional<int16_t> NumCharSpace);
  ControlTypes GetSrchlinkControlType(int32_t SrchLnk, Variant& HasLotsaEntries);
  int32_t GetDefinitionTable(int32_t SearchLink);
  // FillID: the statement that lists every entry of a search link for a
  // list control, with its display and value fields and its data source;
  // "" (after a message) when the link is missing.
  std::string FillID(int32_t SearchLinkID, std::string& DisplayField, std::string& ValueField,
                     ProjectDataSources& SourceData);
  // IsLargeSearchLink: True for a multi-select link value, otherwise the
  // link's LargeNumberOFEntries.
  bool IsLargeSearchLink(int32_t SearchLinkID);

  // ---- Multi-selects ----
  std::string SupplyMultiListdata(int32_t MultiListID, std::string& DescriptionTbl,
                                  std::string& SqlStr, std::string& DisplayField,
                                  std::string& ValueField, int32_t* SrchLinkId);
  int32_t GetMultiListParentWnd(int32_t MultiListID, int32_t* SrchLnkID);
  int32_t GetMultiSettings(int32_t MultiListID, std::string& StorageTableName,
                           std::string* ParentTableName);
  void FillWithMultiListOptions(int32_t ParentSrchLnk, ListControl& fcb);
  std::string GetMultiSelectSQL(int32_t NegativeMultiOption, std::string& SrchDisplayFld,
                                std::string& SrchValueField, ProjectDataSources& SourceofData);
  std::string GetMultiString(int32_t MultiLinkId, int32_t ParentID);

 private:
  ServicePort& services_;
  MetadataCache& cache_;
  ValueLookups& values_;
};

}  // namespace kelvary::lookups
