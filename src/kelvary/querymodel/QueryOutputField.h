// QueryOutputField: one output column of a query table, and
// QueryOutputFields, the collection a QueryDataTable keeps them in (keyed
// "F" + ID by the query interpreter).
//
// Plain records: every field starts at zero or empty and is stored as given.
// Objects are shared by reference; one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryModelEnums.h"

namespace kelvary {

// QueryOutputField: one column of a query's output.
class QueryOutputField : public Object {
 public:
  int32_t DataFieldID = 0;                    // ID of the field in DataTableFields
  std::string FieldAlias;                     // column alias
  SpecialFields SpecialField = sfnone;        // grouping or aggregate role
  std::string SpecialFieldAlias;              // alias of the aggregate column
  AdvFormatting AdvancedFormatting = afNone;  // date/time presentation
  int32_t QueryDataTableID = 0;               // ID of the owning QueryDataTable
  int32_t ID = 0;                             // record ID
  std::string Title;                          // column caption
  std::string FieldName;                      // physical field name
  int16_t DisplayOrder = 0;                   // position of the column in the output

  // GetEfectiveFieldName: FieldAlias when it has any length (a blank counts),
  // otherwise FieldName.
  std::string GetEfectiveFieldName() const;
};

// QueryOutputFields: the output columns of one query table.
class QueryOutputFields : public QueryCollection<QueryOutputField> {
 public:
  // Add creates a column, assigns DataFieldID, FieldAlias, SpecialField,
  // AdvancedFormatting, SpecialFieldAlias, QueryDataTableID, Title, ID and
  // FieldName in that order (DisplayOrder stays 0), inserts it under sKey
  // (none when "") and returns it. A duplicate key raises Error 457.
  std::shared_ptr<QueryOutputField> Add(int32_t DataFieldID, const std::string& FieldAlias,
                                        SpecialFields SpecialField,
                                        AdvFormatting AdvancedFormatting, int32_t ID,
                                        int32_t QueryDataTableID,
                                        const std::string& SpecialFieldAlias,
                                        const std::string& Title, const std::string& FieldName,
                                        const std::string& sKey = "");

  // Remove: as every collection's, except that it ignores every error: an
  // absent position or key does nothing. Callers remove columns that may
  // already be gone and rely on the silence.
  template <class IndexOrKey>
  void Remove(const IndexOrKey& vntIndexKey) {
    try {
      QueryCollection::Remove(vntIndexKey);
    } catch (const Error&) {
    }
  }
};

}  // namespace kelvary
