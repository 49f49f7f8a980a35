// QueryTemplateSortOption: one sort choice of a query template; and
// QueryTemplateSortOptions, the sort choices of a query (keyed "S" + ID by
// the query interpreter). Plain records; one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"

namespace kelvary {

// QueryTemplateSortOption: one sort choice.
class QueryTemplateSortOption : public Object {
 public:
  bool SortDescending = false;    // sort descending when true
  int16_t SortOrder = 0;          // rank among the sort options
  int32_t ShapeNestBindings = 0;  // ID of the level the option sorts
  int32_t ID = 0;                 // record ID
};

// QueryTemplateSortOptions: the sort choices of one query.
class QueryTemplateSortOptions : public QueryCollection<QueryTemplateSortOption> {
 public:
  // Add creates a sort option and assigns SortDescending, SortOrder and
  // ShapeNestBindings in that order (ID stays 0), inserts it under sKey
  // (none when "") and returns it. A duplicate key raises Error 457 and
  // inserts nothing.
  std::shared_ptr<QueryTemplateSortOption> Add(bool SortDescending, int16_t SortOrder,
                                               int32_t ShapeNestBindings,
                                               const std::string& sKey = "");

  // GetSqlPhrase: always "", whatever the members. The ORDER BY text of a
  // query is built by the statement builder; this member keeps its fixed
  // empty answer for the hosts that call it.
  std::string GetSqlPhrase() const { return ""; }
};

}  // namespace kelvary
