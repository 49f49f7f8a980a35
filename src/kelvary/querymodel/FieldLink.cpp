#include "kelvary/querymodel/FieldLink.h"

namespace kelvary {

std::shared_ptr<FieldLink> FieldLinks::Add(int32_t ID, NullActions NullAction,
                                           ControlTypes TypeOfControl, int16_t ControlIndex,
                                           const std::string& ControlName,
                                           const Variant& DefaultValue, FieldDataTypes DataType,
                                           const std::string& Caption, const std::string& sKey) {
  auto link = std::make_shared<FieldLink>();
  link->NullAction = NullAction;
  link->ControlType = TypeOfControl;
  link->ControlIndex = ControlIndex;
  link->ControlName = ControlName;
  link->DefaultValue = internal::ValueOf(DefaultValue);
  link->DataType = DataType;
  link->Caption = Caption;
  link->FieldID = ID;
  return Insert(std::move(link), sKey);
}

}  // namespace kelvary
