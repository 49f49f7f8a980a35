// MetadataIndex: the in-memory index over the two metadata caches that
// InitLists loads (the search-link and the multi-select recordsets). Every
// row is read once into a record whose fields are named after the cache's
// columns; look-ups then find a search link or a multi-select by ID in
// constant time, without moving the cache recordsets and without a round
// trip to the database.
//
// It answers exactly as a find on the cache recordsets does: the first row
// with the ID wins, a row whose ID is Null never matches, and a miss is a
// null pointer. Text columns are read null-safely (TextOf) when the index is
// built; columns whose Null-ness a rule tests, and the numeric columns, keep
// their Variant so that each rule converts them as it reads them.
//
// InfoLink owns the index (one per loading of the caches; InitLists drops
// it and the next look-up builds it again). It is immutable once built and
// keeps no reference to the recordsets. One thread, like its InfoLink.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::lookups {

// SearchLinkRecord: one row of the search-link cache.
struct SearchLinkRecord {
  Variant ID;
  Variant SLDefNewScreen;  // Integer or Null
  std::string SecondaryDisplayField;
  std::string SQLStmt;
  std::string SearchValueField;
  std::string SearchDisplayField;
  std::string SelectCaption;
  Variant LargeNumberOFEntries;  // Boolean or Null
  std::string SearchWhereClause;
  Variant SearchTable;
  Variant SearchWnd;
  std::string ValuesTable;
  Variant DTDefNewScreenID;  // Integer or Null
  Variant TableLocation;     // a ProjectDataSources value

  // Worked out once, when the index is built, for GetSearchLinkDetails, the
  // look-up hosts call most: the statement it answers and the columns it
  // converts. Resolved is false when a conversion would raise; the caller
  // then converts the columns itself, so that the error comes from the call
  // as it always did.
  bool Resolved = false;
  std::string DetailsSQL;
  int32_t SearchTableValue = 0;
  int32_t SearchWndValue = 0;
  int32_t TableLocationValue = 0;
  bool HasManyEntries = false;
  int16_t DefNewScreenID = 0;
};

// MultiSelectRecord: one row of the multi-select cache.
struct MultiSelectRecord {
  Variant ParentSearchLinkID;
  Variant SearchLinkID;
  Variant StoreTableID;
  Variant StoreTableName;  // String or Null
  Variant ID;
  std::string DescriptionTable;
  Variant ParentTableID;
  Variant ParentSrchWnd;  // Long or Null
  std::string ParentTableName;
};

class MetadataIndex {
 public:
  // MetadataIndex reads every row of the two caches, from the first. A cache
  // that is missing or closed counts as one without rows.
  MetadataIndex(const std::shared_ptr<Recordset>& search_links,
                const std::shared_ptr<Recordset>& multi_selects);

  // FindSearchLink: the first search link with that ID, or nullptr.
  const SearchLinkRecord* FindSearchLink(int32_t id) const;
  // FindMultiSelect: the first multi-select with that ID, or nullptr.
  const MultiSelectRecord* FindMultiSelect(int32_t id) const;

  // MultiSelects: every multi-select row in the cache's order.
  const std::vector<MultiSelectRecord>& MultiSelects() const { return multi_selects_; }
  int32_t SearchLinkCount() const { return static_cast<int32_t>(search_links_.size()); }
  int32_t MultiSelectCount() const { return static_cast<int32_t>(multi_selects_.size()); }

  // DetailsStatement: the statement GetSearchLinkDetails answers for a link
  // without a statement of its own.
  static std::string DetailsStatement(const SearchLinkRecord& link);

  // KeyOf: the whole number a criterion "column = n" matches in value, or
  // nothing (Null, Empty, a fraction, text that is no number, a number
  // outside the Long range).
  static std::optional<int32_t> KeyOf(const Variant& value);

 private:
  std::vector<SearchLinkRecord> search_links_;
  std::vector<MultiSelectRecord> multi_selects_;
  std::unordered_map<int32_t, size_t> search_link_rows_;  // ID -> first row
  std::unordered_map<int32_t, size_t> multi_select_rows_;
};

}  // namespace kelvary::lookups
