// ValueSet: a value with its data type, default and scope, filled and read
// by the host; and ValueSets, a collection of them. Plain records; one
// thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryModelEnums.h"

namespace kelvary {

// ValueSet: one value.
class ValueSet : public Object {
 public:
  int32_t ID = 0;                           // identifier
  Variant Value;                            // current value (may hold an object)
  FieldDataTypes ValDataType = fdtUnknown;  // data type of the value
  Variant DefaultValue;                     // default value (may hold an object)
  int16_t Scope = 0;                        // scope, as the host defines it
};

// ValueSets: a collection of values.
class ValueSets : public QueryCollection<ValueSet> {
 public:
  // Add creates a value set, stores Value (an object by reference), assigns
  // ID and inserts it under sKey (none when ""). Only then, on the inserted
  // member: ValDataType (0 when omitted), DefaultValue when supplied (as a
  // value: an object raises Error 438, the member staying inserted), Scope
  // (0 when omitted). Returns the member. A duplicate key raises Error 457
  // and inserts nothing.
  std::shared_ptr<ValueSet> Add(const Variant& Value, int32_t ID, const std::string& sKey = "",
                                std::optional<FieldDataTypes> ValDataType = std::nullopt,
                                const std::optional<Variant>& DefaultValue = std::nullopt,
                                std::optional<int16_t> Scope = std::nullopt);
};

}  // namespace kelvary
