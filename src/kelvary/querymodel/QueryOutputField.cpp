#include "kelvary/querymodel/QueryOutputField.h"

namespace kelvary {

std::string QueryOutputField::GetEfectiveFieldName() const {
  return FieldAlias.length() > 0 ? FieldAlias : FieldName;
}

std::shared_ptr<QueryOutputField> QueryOutputFields::Add(
    int32_t DataFieldID, const std::string& FieldAlias, SpecialFields SpecialField,
    AdvFormatting AdvancedFormatting, int32_t ID, int32_t QueryDataTableID,
    const std::string& SpecialFieldAlias, const std::string& Title, const std::string& FieldName,
    const std::string& sKey) {
  auto field = std::make_shared<QueryOutputField>();
  field->DataFieldID = DataFieldID;
  field->FieldAlias = FieldAlias;
  field->SpecialField = SpecialField;
  field->AdvancedFormatting = AdvancedFormatting;
  field->SpecialFieldAlias = SpecialFieldAlias;
  field->QueryDataTableID = QueryDataTableID;
  field->Title = Title;
  field->ID = ID;
  field->FieldName = FieldName;
  return Insert(std::move(field), sKey);
}

}  // namespace kelvary
