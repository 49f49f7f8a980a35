#include "kelvary/querymodel/QueryShapeNest.h"

namespace kelvary {

QueryShapeNest::~QueryShapeNest() {
  try {
    ClearTables();
  } catch (...) {
    // A destructor never throws; the tables go with the collection anyway.
  }
  out_put_tables_.reset();
}

const std::shared_ptr<GeneralCollection>& QueryShapeNest::SortedOPFields() {
  if (!sorted_op_fields_) sorted_op_fields_ = std::make_shared<GeneralCollection>();
  return sorted_op_fields_;
}

void QueryShapeNest::SortedOPFields(std::shared_ptr<GeneralCollection> fields) {
  sorted_op_fields_ = std::move(fields);
}

const std::shared_ptr<QueryDataTables>& QueryShapeNest::OutPutTables() {
  if (!out_put_tables_) out_put_tables_ = std::make_shared<QueryDataTables>();
  return out_put_tables_;
}

void QueryShapeNest::OutPutTables(std::shared_ptr<QueryDataTables> tables) {
  out_put_tables_ = std::move(tables);
}

void QueryShapeNest::ClearTables() {
  OutPutTables()->Clear();
}

std::shared_ptr<QueryShapeNest> QueryShapeNests::Add(int32_t BaseTableID, int16_t Level,
                                                     bool PreExistingWhereClause, int32_t ID,
                                                     const std::string& ShapeName,
                                                     const std::string& Title,
                                                     const std::string& sKey) {
  auto level = std::make_shared<QueryShapeNest>();
  level->BaseTableID = BaseTableID;
  level->Depth = Level;
  level->PreExistingWhereClause = PreExistingWhereClause;
  level->ID = ID;
  level->ShapeName = ShapeName;
  level->Title = Title;
  return Insert(std::move(level), sKey);
}

}  // namespace kelvary
