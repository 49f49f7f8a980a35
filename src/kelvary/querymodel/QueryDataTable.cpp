#include "kelvary/querymodel/QueryDataTable.h"

namespace kelvary {

QueryDataTable::~QueryDataTable() {
  try {
    ClearFields();
  } catch (...) {
    // A destructor never throws; the columns go with the collection anyway.
  }
  output_fields_.reset();
}

const std::shared_ptr<QueryOutputFields>& QueryDataTable::OutputFields() {
  if (!output_fields_) output_fields_ = std::make_shared<QueryOutputFields>();
  return output_fields_;
}

void QueryDataTable::OutputFields(std::shared_ptr<QueryOutputFields> fields) {
  output_fields_ = std::move(fields);
}

void QueryDataTable::ClearFields() {
  OutputFields()->Clear();
}

std::string QueryDataTable::GetSQLName() const {
  return TableAlias.length() > 0 ? TableAlias : TableName;
}

std::shared_ptr<QueryDataTable> QueryDataTables::Add(
    int32_t DataTableId, const std::string& TableAlias, int32_t NestedBinding, int32_t ID,
    int32_t ParentDataFieldID, int32_t ParentDataTableID, int32_t SourceDataFieldID,
    int16_t LevelIndex, const std::string& Title, const std::string& TableName,
    const std::string& sKey) {
  auto table = std::make_shared<QueryDataTable>();
  table->DataTableId = DataTableId;
  table->TableAlias = TableAlias;
  table->NestedBinding = CInt(Variant(NestedBinding));  // the field is 16-bit: overflow raises
  table->ID = ID;
  table->ParentDataField = ParentDataFieldID;
  table->ParentDataTable = ParentDataTableID;
  table->SourceDataField = SourceDataFieldID;
  table->TableName = TableName;
  table->Title = Title;
  table->Depth = LevelIndex;
  return Insert(std::move(table), sKey);
}

}  // namespace kelvary
