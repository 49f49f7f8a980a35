// RepParam: one condition on one field, the user-facing parameter of a
// query; and RepParams, the parameters of one condition group (keyed "R" + ID
// by the query interpreter).
//
// A parameter describes its condition in words (GetSimpleText), the text a
// host shows right after the parameter's title, blanks and all. Describing a
// date parameter whose values are Null writes today's date into them. One
// thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryModelEnums.h"

namespace kelvary {

// RepParam: one query parameter.
class RepParam : public Object {
 public:
  int32_t ConditionID = 0;                               // ID of the owning ConditionNode
  int32_t ID = 0;                                        // parameter ID
  FieldDataTypes DataFormat = fdtUnknown;                // data type of the field
  int32_t SearchLinkID = 0;                              // search link of the field (0: none)
  bool HasManyEntries = false;                           // the search link's list is large
  std::string Units;                                     // display units of the field
  Variant Value1;                                        // first operand
  std::string Value1Description;                         // display text of Value1
  Variant Value2;                                        // second operand (upper bound of a range)
  std::string Value2Description;                         // display text of Value2
  bool Reverse = false;                                  // negate the condition
  CompareTypes Operator = static_cast<CompareTypes>(0);  // comparison operator
  int32_t SUBOperator = 0;       // refinement; for dates a DateRangeSpecs value
  bool Hidden = false;           // not shown to the user
  bool Essential = false;        // needs a value before the query can run
  bool Removable = false;        // the user may remove it
  bool ValueChangeble = false;   // the user may change its value
  int32_t QueryDataTableID = 0;  // ID of the QueryDataTable of the field
  int32_t DataFieldID = 0;       // ID of the field in DataTableFields
  std::string CodeChar;          // code character, kept for the host
  std::string FieldName;         // physical field name
  std::string Title;             // caption

  // IsSelectionValid: always false, whatever the values. Kept so on purpose:
  // the check of needed parameters is the query interpreter's, not this.
  bool IsSelectionValid() const { return false; }

  // GetSimpleText: the condition in words, e.g. " Is  not  less than  5".
  // A date parameter (DataFormat 18 to 20) whose Value1 or Value2 is Null
  // gets today's date stored there first. A data format it cannot describe
  // shows "Unhandled" (0, 24, 26 to 32, 34, 35, 39 to 42) or "unhandled"
  // (any other) and returns "".
  std::string GetSimpleText();

 private:
  std::string OperatorPhrase() const;
  std::string ValuePhrase() const;
  static std::string DateRangePhrase(int32_t SubOperator, const Variant& FromValue,
                                     const Variant& ToValue, const std::string& ReverseText);
};

// RepParams: the parameters of one condition group.
class RepParams : public QueryCollection<RepParam> {
 public:
  // Add creates a parameter and assigns DataFieldID, ID, Hidden and
  // Essential in that order (Reverse stays false), inserts it under sKey
  // (none when "") and returns it. A duplicate key raises Error 457 and
  // inserts nothing.
  std::shared_ptr<RepParam> Add(int32_t ID, int32_t DataFieldID, bool Hidden, bool Essential,
                                const std::string& sKey = "");
};

}  // namespace kelvary
