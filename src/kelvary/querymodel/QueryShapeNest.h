// QueryShapeNest: one level of a nested (shaped) query, with its source
// tables and the clause lists its SELECT is built from; and QueryShapeNests,
// the levels of a query (keyed "S" + ID by the query interpreter).
//
// A level owns its OutPutTables and SortedOPFields collections, each created
// empty on first read. When the level goes it empties OutPutTables from the
// front, then releases it. Tables are shared references. One thread at a
// time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryDataTable.h"
#include "kelvary/querymodel/QueryModelEnums.h"

namespace kelvary {

// QueryShapeNest: one level of a query.
class QueryShapeNest : public Object {
 public:
  QueryShapeNest() = default;
  // Calls ClearTables, then releases OutPutTables; never throws.
  ~QueryShapeNest() override;
  QueryShapeNest(const QueryShapeNest&) = delete;
  QueryShapeNest& operator=(const QueryShapeNest&) = delete;

  int32_t BaseTableID = 0;                          // the level's base table in DataTables
  int16_t ShapeIndex = 0;                           // position index of the level
  int32_t ParentShapeId = 0;                        // ID of the parent level
  SpecialRecordLayouts SpecialRecLayout = srlNone;  // special record layout
  bool bUseParentFieldLink = false;                 // related to its children by the field link
  int32_t ParentFieldLinkID = 0;                    // field ID on the parent side of the relation
  int32_t ChildFieldLinkID = 0;                     // field ID on this level's side
  std::string ParentFieldLinkName;                  // field name of ParentFieldLinkID
  std::string ChildFieldLinkName;                   // field name of ChildFieldLinkID
  int16_t Depth = 0;                                // nesting depth
  int32_t ID = 0;                                   // record ID
  bool PreExistingWhereClause = false;              // the level's statement has a WHERE already

  // SortedOPFields: the level's output fields in output order, as the query
  // interpreter lists them (texts "F" + field ID + "T" + table ID). Reading
  // it while unset first creates an empty collection; nullptr releases it.
  const std::shared_ptr<GeneralCollection>& SortedOPFields();
  void SortedOPFields(std::shared_ptr<GeneralCollection> fields);

  std::string FieldsList;           // built SELECT list
  std::string TablesList;           // built FROM list
  std::string TableJoins;           // built join conditions
  std::string GroupByList;          // built GROUP BY list
  std::string HavingList;           // HAVING list, set from outside
  std::string AssignedWhereClause;  // WHERE text, set from outside
  std::string AssignedSortClause;   // ORDER BY text, set from outside
  std::string ShapeName;            // name of the level
  std::string Title;                // caption

  // OutPutTables: the level's source tables; reading it while unset first
  // creates an empty collection. Setting nullptr releases it.
  const std::shared_ptr<QueryDataTables>& OutPutTables();
  void OutPutTables(std::shared_ptr<QueryDataTables> tables);

  // ClearTables empties OutPutTables (creating it first when unset).
  void ClearTables();

  // UpdateSqlStmts rebuilds FieldsList, TablesList, TableJoins and
  // GroupByList from the level's tables and sorted output fields. Link
  // fields it does not find among them are named by the active service
  // object (Error 91 without one).
  void UpdateSqlStmts();

 private:
  std::shared_ptr<GeneralCollection> sorted_op_fields_;
  std::shared_ptr<QueryDataTables> out_put_tables_;
};

// QueryShapeNests: the levels of one query.
class QueryShapeNests : public QueryCollection<QueryShapeNest> {
 public:
  // Add creates a level and assigns BaseTableID, Depth (from Level),
  // PreExistingWhereClause, ID, ShapeName and Title in that order, inserts it
  // under sKey (none when "") and returns it. A duplicate key raises
  // Error 457 and inserts nothing.
  std::shared_ptr<QueryShapeNest> Add(int32_t BaseTableID, int16_t Level,
                                      bool PreExistingWhereClause, int32_t ID,
                                      const std::string& ShapeName, const std::string& Title,
                                      const std::string& sKey = "");
};

}  // namespace kelvary
