// DataLinx: the comparison-clause module. Turns one condition (a field, its
// data type, an operator and one or two values) into a WHERE-clause fragment,
// or into report-formula text when bUseXtal is True. InfoLink exposes these
// under the same names; the query interpreter calls GetComparisionClause
// directly for every parameter.
//
// The module owns no service object: it reaches the active one
// (ActiveInfoLink) for quoting, date literals and date ranges, so the dialect
// is that object's MainDBType. A clause that needs it while none is active
// raises Error 91 (object variable not set); the default-equality text
// clause alone falls back to the raw value.
//
// Refused types and operators show the system's message (OK box) and give
// "". Values are read with the Variant conversions, so a Null value where
// text is written raises Error 94. Host thread only (uses ActiveInfoLink and
// the message channel).
#pragma once

#include <cstdint>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/service/Enums.h"

namespace kelvary::DataLinx {

// GetComparisionClause: the clause for FldName compared by CompareType with
// CompareValue1 (and CompareValue2 for a range), by the group of DType:
// numbers unquoted, texts quoted with wildcards for the Like operators,
// dates as a date range with SUBOperator carrying the DateRangeSpecs value,
// booleans as True/False. bReverse negates the clause (with <> for
// equalities, otherwise a NOT ( ... ) wrapper). "" when no value restricts.
std::string GetComparisionClause(const std::string& FldName, FieldDataTypes DType,
                                 CompareTypes CompareType, int32_t SUBOperator,
                                 const Variant& CompareValue1, const Variant& CompareValue2,
                                 bool bReverse, bool bUseXtal);

// GetBooleanCompareClause: GetComparisionClause for a boolean field equal to
// booleanVal (never reversed).
std::string GetBooleanCompareClause(const std::string& FldName, CompareTypes CompareType,
                                    bool booleanVal, bool bUseXtal);

// GetComparisionClauseForDefEqual: the default equality for a general data
// type: text by Like, numbers and dates by =. bReverse and bUseXtal are
// accepted and ignored, as the system's callers expect.
std::string GetComparisionClauseForDefEqual(const std::string& FldName, GeneralDataTypes GDType,
                                            const Variant& CompareValue, bool bReverse,
                                            bool bUseXtal);

}  // namespace kelvary::DataLinx
