// The clause-building members of InfoLink: each passes this object's dialect
// (MainDBType) and name fields (ORDERFIELD1..3) to the pure builders. The
// comparison members go through DataLinx, which uses the active service
// object, as the query interpreter's calls do.
#include "kelvary/service/InfoLink.h"
#include "kelvary/sql/DataLinx.h"
#include "kelvary/sql/DateRangeClauses.h"
#include "kelvary/sql/DialectHelpers.h"

namespace kelvary {

std::string InfoLink::GetSQLEntityName(const std::string& SrcStr) const {
  return sql::GetSQLEntityName(SrcStr);
}

std::string InfoLink::GetInvertedCommaSafeString(const std::string& OrgStr) const {
  return sql::GetInvertedCommaSafeString(OrgStr);
}

std::string InfoLink::FormatDateToDBStr(Date SrcDate) const {
  return sql::FormatDateToDBStr(MainDBType, SrcDate);
}

std::string InfoLink::CreateCheckForNullStmt(const std::string& FldName) const {
  return sql::CreateCheckForNullStmt(FldName);
}

std::string InfoLink::GetNameClause(const std::string& TblName, const std::string& PrefixFld,
                                    const std::string& alias) const {
  return sql::GetNameClause(MainDBType, {ORDERFIELD1, ORDERFIELD2, ORDERFIELD3}, TblName, PrefixFld,
                            alias);
}

std::string InfoLink::CreateAlphaClause(const std::string& ComparisionField, int16_t tb) const {
  return sql::CreateAlphaClause(MainDBType, ComparisionField, tb);
}

std::string InfoLink::GetCombinedPhone(const std::string& Ph1, const std::string& Ph2) const {
  return sql::GetCombinedPhone(Ph1, Ph2);
}

std::string InfoLink::GetComparisionClause(const std::string& FldName, FieldDataTypes DType,
                                           CompareTypes CompareType, int32_t SUBOperator,
                                           const Variant& CompareValue1,
                                           const Variant& CompareValue2, bool bReverse,
                                           bool bUseXtal) {
  return DataLinx::GetComparisionClause(FldName, DType, CompareType, SUBOperator, CompareValue1,
                                        CompareValue2, bReverse, bUseXtal);
}

std::string InfoLink::GetBooleanCompareClause(const std::string& FldName, CompareTypes CompareType,
                                              bool booleanVal, bool bUseXtal) {
  return DataLinx::GetBooleanCompareClause(FldName, CompareType, booleanVal, bUseXtal);
}

std::string InfoLink::GetComparisionClauseForDefEqual(const std::string& FldName,
                                                      GeneralDataTypes GDType,
                                                      const Variant& CompareValue, bool bReverse,
                                                      bool bUseXtal) {
  return DataLinx::GetComparisionClauseForDefEqual(FldName, GDType, CompareValue, bReverse,
                                                   bUseXtal);
}

std::string InfoLink::GetDateSqlFromValues(const std::string& FieldName,
                                           DateRangeSpecs CurrentSpecs, const Variant& DateFrom,
                                           const Variant& DateTo,
                                           std::optional<bool> bUseXtalFmla) const {
  return sql::GetDateSqlFromValues(MainDBType, FieldName, CurrentSpecs, DateFrom, DateTo,
                                   bUseXtalFmla);
}

std::string InfoLink::GetDateSqlFromControls(const std::string& FieldName,
                                             DateRangeSpecs CurrentSpecs,
                                             const DateControl& DateFrom,
                                             const DateControl& DateTo) const {
  return sql::GetDateSqlFromControls(FieldName, CurrentSpecs, DateFrom, DateTo);
}

}  // namespace kelvary
