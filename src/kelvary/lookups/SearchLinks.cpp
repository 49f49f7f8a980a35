// Search links: resolving a search-link ID (or a multi-select link value)
// through the metadata cache into field names, a ready statement, one
// value's description, the kind of control to use and the defining table.
// Every search link is found in the in-memory index: after InitLists no
// look-up reads FillNSearchLinks again.
#include "kelvary/lookups/SearchLinks.h"

#include <string>

#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/lookups/internal/MultiSelectOption.h"
#include "kelvary/platform/Messages.h"

namespace kelvary::lookups {
namespace {

// The statement GetDescription uses for a link with a value table: no order
// clause, and the link's where clause when it has one.
std::string DescriptionStatement(const SearchLinkRecord& link) {
  std::string sql = "Select  " + link.SearchDisplayField + " , " + link.SearchValueField +
                    " from " + link.ValuesTable;
  if (!link.SearchWhereClause.empty()) sql += "  where  " + link.SearchWhereClause;
  return sql;
}

// The list statement of FillID: the secondary field too, and an order
// clause with two blanks on each side that never looks for an existing one.
std::string ListStatement(const SearchLinkRecord& link) {
  std::string sql = "Select  " + link.SearchDisplayField + " , " + link.SearchValueField;
  if (!link.SecondaryDisplayField.empty()) sql += " , " + link.SecondaryDisplayField;
  sql += " from " + link.ValuesTable;
  if (!link.SearchWhereClause.empty()) sql += "  where  " + link.SearchWhereClause;
  sql += "  Order by  " + link.SearchDisplayField;
  return sql;
}

bool IsPositive(const Variant& value) {
  return !value.IsNull() && CLng(value) > 0;
}

}  // namespace

int32_t SearchLinks::GetSearchLinkDetails(int32_t SearchLinkID, std::string& SearchDisplayField,
                                          std::string& SearchValueField, int32_t& SearchTable,
                                          std::string& SearchTableName,
                                          ProjectDataSources& SourceData, std::string& SQLStmt,
                                          std::string& SelectCaption, bool* HasManyEntries,
                                          int16_t* DefNewScreenID,
                                          std::string* SecondaryDisplayField) {
  // Nothing below runs a statement or shows a message while the record is
  // read, so the index is borrowed, not held.
  const SearchLinkRecord* link = cache_.Index().FindSearchLink(SearchLinkID);
  if (link == nullptr) {
    MsgBox("Problem in SearchLinkID " + std::to_string(SearchLinkID));
    return 0;
  }
  if (link->Resolved) {
    // The same answer as below, converted once when the index was built.
    SearchDisplayField = link->SearchDisplayField;
    SearchValueField = link->SearchValueField;
    SourceData = static_cast<ProjectDataSources>(link->TableLocationValue);
    SelectCaption = link->SelectCaption;
    SearchTable = link->SearchTableValue;
    if (HasManyEntries != nullptr) *HasManyEntries = link->HasManyEntries;
    if (DefNewScreenID != nullptr) *DefNewScreenID = link->DefNewScreenID;
    if (SecondaryDisplayField != nullptr) *SecondaryDisplayField = link->SecondaryDisplayField;
    SQLStmt = link->DetailsSQL;
    SearchTableName = link->ValuesTable;
    return link->SearchWndValue;
  }
  SearchDisplayField = link->SearchDisplayField;
  SearchValueField = link->SearchValueField;
  SourceData = static_cast<ProjectDataSources>(CLng(link->TableLocation));
  SelectCaption = link->SelectCaption;
  SearchTable = CLng(link->SearchTable);
  if (HasManyEntries != nullptr) {
    *HasManyEntries = !link->LargeNumberOFEntries.IsNull() && CBool(link->LargeNumberOFEntries);
  }
  if (DefNewScreenID != nullptr) {
    // The link's own new-entry screen wins over its table's.
    *DefNewScreenID = 0;
    if (IsPositive(link->SLDefNewScreen)) *DefNewScreenID = CInt(link->SLDefNewScreen);
    if (*DefNewScreenID == 0 && IsPositive(link->DTDefNewScreenID)) {
      *DefNewScreenID = CInt(link->DTDefNewScreenID);
    }
  }
  if (SecondaryDisplayField != nullptr) *SecondaryDisplayField = link->SecondaryDisplayField;
  // A hand-written statement is passed through untouched, whatever the
  // link's table.
  SQLStmt = link->SQLStmt.empty() ? MetadataIndex::DetailsStatement(*link) : link->SQLStmt;
  SearchTableName = link->ValuesTable;
  return CLng(link->SearchWnd);
}

std::string SearchLinks::GetDescription(int32_t SearchLinkID, int32_t CurrValue,
                                        std::optional<int16_t> NumCharSpace) {
  int32_t link_id = SearchLinkID;
  if (SearchLinkID < 0) {
    // A multi-select link value: the description comes through the search
    // link of the record that owns the multiple values.
    link_id = 0;
    GetMultiListParentWnd(MultiSelectIdOf(SearchLinkID), &link_id);
  }
  const auto index = cache_.HeldIndex();
  const SearchLinkRecord* link = index->FindSearchLink(link_id);
  if (link == nullptr) {
    MsgBox("Problem in GetDescription for SearchLinkID " + std::to_string(SearchLinkID));
    return "";
  }
  // Unlike GetSearchLinkDetails, a link with a value table uses the
  // generated statement even when it carries a statement of its own.
  const std::string sql = CLng(link->SearchTable) > 0 ? DescriptionStatement(*link) : link->SQLStmt;
  const auto source = static_cast<ProjectDataSources>(CLng(link->TableLocation));
  const int16_t width = NumCharSpace && *NumCharSpace > 0 ? *NumCharSpace : int16_t{0};
  return values_.GetDescriptionFromCode(CurrValue, link->ValuesTable, link->SearchDisplayField,
                                        link->SearchValueField, source, sql, width,
                                        link->SecondaryDisplayField);
}

ControlTypes SearchLinks::GetSrchlinkControlType(int32_t SrchLnk, Variant& HasLotsaEntries) {
  const bool large = IsLargeSearchLink(SrchLnk);
  HasLotsaEntries = Variant(large);
  return large ? ctSearchWindow : ctDropDownList;
}

bool SearchLinks::IsLargeSearchLink(int32_t SearchLinkID) {
  // Multi-select options always go to a search window; no look-up needed.
  if (SearchLinkID < 0) return true;
  std::string display, value, table_name, sql, caption, secondary;
  int32_t table = 0;
  ProjectDataSources source = pdsRawData;
  bool has_many_entries = false;
  int16_t new_screen = 0;
  GetSearchLinkDetails(SearchLinkID, display, value, table, table_name, source, sql, caption,
                       &has_many_entries, &new_screen, &secondary);
  return has_many_entries;
}

int32_t SearchLinks::GetDefinitionTable(int32_t SearchLink) {
  if (SearchLink == 0) return 0;
  int32_t link_id = SearchLink;
  if (SearchLink < 0) {
    // Read from the database, not from the cache: the definition table of a
    // multi-select is its parent search link's table.
    link_id = 0;
    LookupQuery query(services_, pdssystem,
                      "Select ParentSearchLinkID from Multiselects where ID = " +
                          std::to_string(MultiSelectIdOf(SearchLink)));
    if (query.Found()) link_id = CLng(query.Rows().Fields("ParentSearchLinkID").Value());
  }
  std::string display, value, table_name, sql, caption;
  int32_t table = 0;
  ProjectDataSources source = pdsRawData;
  GetSearchLinkDetails(link_id, display, value, table, table_name, source, sql, caption, nullptr,
                       nullptr, nullptr);
  return table;
}

std::string SearchLinks::FillID(int32_t SearchLinkID, std::string& DisplayField,
                                std::string& ValueField, ProjectDataSources& SourceData) {
  const auto index = cache_.HeldIndex();
  const SearchLinkRecord* link = index->FindSearchLink(SearchLinkID);
  if (link == nullptr) {
    MsgBox("Problem in FillID " + std::to_string(SearchLinkID));
    return "";
  }
  DisplayField = link->SearchDisplayField;
  ValueField = link->SearchValueField;
  SourceData = static_cast<ProjectDataSources>(CLng(link->TableLocation));
  return CLng(link->SearchTable) > 0 ? ListStatement(*link) : link->SQLStmt;
}

}  // namespace kelvary::lookups
