#include "kelvary/lookups/internal/MetadataIndex.h"

#include <cmath>
#include <exception>
#include <limits>

namespace kelvary::lookups {
namespace {

// Rows: calls read(row) for every row of rs from the first; nothing for a
// cache that is missing, closed or empty.
template <class Read>
void ForEachRow(const std::shared_ptr<Recordset>& rs, Read&& read) {
  if (!rs || rs->State() != adStateOpen || rs->RecordCount() == 0) return;
  rs->MoveFirst();
  while (!rs->Eof()) {
    read(*rs);
    rs->MoveNext();
  }
}

Variant ValueOf(const Recordset& rs, const char* column) {
  return rs.Fields(column).Value();
}

std::string TextOfColumn(const Recordset& rs, const char* column) {
  return TextOf(rs.Fields(column).Value());
}

bool IsPositive(const Variant& value) {
  return !value.IsNull() && CLng(value) > 0;
}

// Resolve fills the record's worked-out details; a column that does not
// convert leaves it unresolved.
void Resolve(SearchLinkRecord& link) {
  try {
    link.TableLocationValue = CLng(link.TableLocation);
    link.SearchTableValue = CLng(link.SearchTable);
    link.HasManyEntries = !link.LargeNumberOFEntries.IsNull() && CBool(link.LargeNumberOFEntries);
    // The link's own new-entry screen wins over its table's.
    link.DefNewScreenID = 0;
    if (IsPositive(link.SLDefNewScreen)) link.DefNewScreenID = CInt(link.SLDefNewScreen);
    if (link.DefNewScreenID == 0 && IsPositive(link.DTDefNewScreenID)) {
      link.DefNewScreenID = CInt(link.DTDefNewScreenID);
    }
    link.SearchWndValue = CLng(link.SearchWnd);
  } catch (const std::exception&) {
    return;
  }
  // A hand-written statement is passed through untouched, whatever the
  // link's table.
  link.DetailsSQL = link.SQLStmt.empty() ? MetadataIndex::DetailsStatement(link) : link.SQLStmt;
  link.Resolved = true;
}

// Index: maps each key to its first row; later rows with the same key and
// rows without a key are left out, as a forward find would pass them by.
template <class Record>
void Index(const std::vector<Record>& rows, std::unordered_map<int32_t, size_t>& index) {
  index.reserve(rows.size());
  for (size_t row = 0; row < rows.size(); ++row) {
    if (const auto key = MetadataIndex::KeyOf(rows[row].ID)) index.emplace(*key, row);
  }
}

}  // namespace

MetadataIndex::MetadataIndex(const std::shared_ptr<Recordset>& search_links,
                             const std::shared_ptr<Recordset>& multi_selects) {
  ForEachRow(search_links, [&](const Recordset& rs) {
    SearchLinkRecord link;
    link.ID = ValueOf(rs, "ID");
    link.SLDefNewScreen = ValueOf(rs, "SLDefNewScreen");
    link.SecondaryDisplayField = TextOfColumn(rs, "SecondaryDisplayField");
    link.SQLStmt = TextOfColumn(rs, "SQLStmt");
    link.SearchValueField = TextOfColumn(rs, "SearchValueField");
    link.SearchDisplayField = TextOfColumn(rs, "SearchDisplayField");
    link.SelectCaption = TextOfColumn(rs, "SelectCaption");
    link.LargeNumberOFEntries = ValueOf(rs, "LargeNumberOFEntries");
    link.SearchWhereClause = TextOfColumn(rs, "SearchWhereClause");
    link.SearchTable = ValueOf(rs, "SearchTable");
    link.SearchWnd = ValueOf(rs, "SearchWnd");
    link.ValuesTable = TextOfColumn(rs, "ValuesTable");
    link.DTDefNewScreenID = ValueOf(rs, "DTDefNewScreenID");
    link.TableLocation = ValueOf(rs, "TableLocation");
    Resolve(link);
    search_links_.push_back(std::move(link));
  });
  ForEachRow(multi_selects, [&](const Recordset& rs) {
    MultiSelectRecord multi;
    multi.ParentSearchLinkID = ValueOf(rs, "ParentSearchLinkID");
    multi.SearchLinkID = ValueOf(rs, "SearchLinkID");
    multi.StoreTableID = ValueOf(rs, "StoreTableID");
    multi.StoreTableName = ValueOf(rs, "StoreTableName");
    multi.ID = ValueOf(rs, "ID");
    multi.DescriptionTable = TextOfColumn(rs, "DescriptionTable");
    multi.ParentTableID = ValueOf(rs, "ParentTableID");
    multi.ParentSrchWnd = ValueOf(rs, "ParentSrchWnd");
    multi.ParentTableName = TextOfColumn(rs, "ParentTableName");
    multi_selects_.push_back(std::move(multi));
  });
  Index(search_links_, search_link_rows_);
  Index(multi_selects_, multi_select_rows_);
}

const SearchLinkRecord* MetadataIndex::FindSearchLink(int32_t id) const {
  const auto it = search_link_rows_.find(id);
  return it == search_link_rows_.end() ? nullptr : &search_links_[it->second];
}

const MultiSelectRecord* MetadataIndex::FindMultiSelect(int32_t id) const {
  const auto it = multi_select_rows_.find(id);
  return it == multi_select_rows_.end() ? nullptr : &multi_selects_[it->second];
}

// A where clause may end in its own order clause; only one in lower case
// (" order ") is recognised, so one in capitals gets a second order clause
// and an invalid statement. Kept as it is: stored where clauses are written
// for it.
std::string MetadataIndex::DetailsStatement(const SearchLinkRecord& link) {
  std::string sql = "Select  " + link.SearchDisplayField + " , " + link.SearchValueField +
                    " from " + link.ValuesTable;
  if (!link.SearchWhereClause.empty()) {
    sql += "  where  " + link.SearchWhereClause;
    if (sql.find(" order ") == std::string::npos) sql += " Order by " + link.SearchDisplayField;
  } else {
    sql += " Order by " + link.SearchDisplayField;
  }
  return sql;
}

std::optional<int32_t> MetadataIndex::KeyOf(const Variant& value) {
  if (value.IsNull() || value.IsEmpty() || value.IsObject()) return std::nullopt;
  if (const auto* number = value.Get<int32_t>()) return *number;  // the usual case
  if (value.IsString() && !IsNumeric(value)) return std::nullopt;
  const double number = CDbl(value);
  if (std::floor(number) != number || number < std::numeric_limits<int32_t>::min() ||
      number > std::numeric_limits<int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<int32_t>(number);
}

}  // namespace kelvary::lookups
