// QueryDataTable: one source table of a shape level, with its output
// columns; and QueryDataTables, the collection a QueryShapeNest keeps them in
// (keyed "T" + ID by the query interpreter).
//
// A table owns its OutputFields collection: created empty on first read,
// emptied from the front and released when the table goes. Columns are shared
// references, so a column the host still holds outlives its table. One thread
// at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryOutputField.h"

namespace kelvary {

// QueryDataTable: a table a shape level reads, and how it joins its parent.
class QueryDataTable : public Object {
 public:
  QueryDataTable() = default;
  // Empties OutputFields before releasing it; never throws.
  ~QueryDataTable() override;
  QueryDataTable(const QueryDataTable&) = delete;
  QueryDataTable& operator=(const QueryDataTable&) = delete;

  int16_t NestedBinding = 1;        // ID of the shape level; 1, not 0, when new
  std::string TableAlias;           // alias used in SQL
  std::string TableName;            // physical table name
  int32_t DataTableId = 0;          // ID of the table in DataTables
  int16_t Depth = 0;                // order of the table within its level
  int32_t ID = 0;                   // record ID
  int32_t ParentDataTable = 0;      // ID of the QueryDataTable this one joins
  int32_t ParentDataField = 0;      // field ID of the join field in the parent
  int32_t SourceDataField = 0;      // field ID of the join field in this table
  std::string ParentDataFieldName;  // field name of ParentDataField
  std::string SourceDataFieldName;  // field name of SourceDataField
  std::string Title;                // caption

  // OutputFields: the table's output columns; reading it while unset first
  // creates an empty collection. Setting nullptr releases it.
  const std::shared_ptr<QueryOutputFields>& OutputFields();
  void OutputFields(std::shared_ptr<QueryOutputFields> fields);

  // ClearFields empties OutputFields (creating it first when unset).
  void ClearFields();

  // GetSQLName: the name SQL refers to the table by: TableAlias when it has
  // any length (a blank counts), otherwise TableName.
  std::string GetSQLName() const;

 private:
  std::shared_ptr<QueryOutputFields> output_fields_;
};

// QueryDataTables: the source tables of one shape level.
class QueryDataTables : public QueryCollection<QueryDataTable> {
 public:
  // Add creates a table and assigns DataTableId, TableAlias, NestedBinding,
  // ID, ParentDataField, ParentDataTable, SourceDataField, TableName, Title
  // and Depth (from LevelIndex) in that order, inserts it under sKey (none
  // when "") and returns it. NestedBinding outside the 16-bit range raises
  // Error 6 and a duplicate key Error 457; nothing is inserted then.
  std::shared_ptr<QueryDataTable> Add(int32_t DataTableId, const std::string& TableAlias,
                                      int32_t NestedBinding, int32_t ID, int32_t ParentDataFieldID,
                                      int32_t ParentDataTableID, int32_t SourceDataFieldID,
                                      int16_t LevelIndex, const std::string& Title,
                                      const std::string& TableName, const std::string& sKey = "");
};

}  // namespace kelvary
