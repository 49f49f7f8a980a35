#include "kelvary/querymodel/ValueSet.h"

namespace kelvary {

std::shared_ptr<ValueSet> ValueSets::Add(const Variant& Value, int32_t ID, const std::string& sKey,
                                         std::optional<FieldDataTypes> ValDataType,
                                         const std::optional<Variant>& DefaultValue,
                                         std::optional<int16_t> Scope) {
  auto value_set = std::make_shared<ValueSet>();
  value_set->Value = Value;  // a Variant keeps an object by reference
  value_set->ID = ID;
  Insert(value_set, sKey);
  // These follow the insertion on purpose: a failure here leaves the member
  // in the collection, as hosts have always seen it.
  value_set->ValDataType = ValDataType.value_or(static_cast<FieldDataTypes>(0));
  if (DefaultValue) value_set->DefaultValue = internal::ValueOf(*DefaultValue);
  value_set->Scope = Scope.value_or(0);
  return value_set;
}

}  // namespace kelvary
