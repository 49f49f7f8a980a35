// Value look-ups: one statement each, opened forward-only and read-only,
// the first row read, the recordset closed before returning. Names and
// texts go into the statements exactly as the caller gives them: quoting is
// the caller's business (the dialect helpers), except for the text
// comparison, which the default-equality clause builds.
#include "kelvary/lookups/ValueLookups.h"

#include <algorithm>
#include <string>

#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Text.h"
#include "kelvary/sql/DataLinx.h"

namespace kelvary::lookups {
namespace {

constexpr int16_t kDefaultNameGap = 2;
constexpr int16_t kWidestNameGap = 10;

bool Contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

Variant ValueLookups::GetCoreName(int32_t CoreCode, const std::string& TblName,
                                  std::optional<int16_t> NumCharSpace) {
  int16_t width = kDefaultNameGap;
  if (NumCharSpace && *NumCharSpace > 0) width = *NumCharSpace;
  width = std::min(width, kWidestNameGap);
  LookupQuery query(services_, pdsmaindata,
                    "Select FirstName , MiddleName , LastName From " + TblName +
                        " where ID = " + std::to_string(CoreCode));
  if (!query.Found()) return Variant();
  // The gaps stay around empty parts: names line up in fixed columns.
  const std::string gap(static_cast<size_t>(width), ' ');
  const Recordset& row = query.Rows();
  const ServiceSettings settings = services_.Settings();
  return Variant(TextOf(row.Fields(settings.ORDERFIELD1).Value()) + gap +
                 TextOf(row.Fields(settings.ORDERFIELD2).Value()) + gap +
                 TextOf(row.Fields(settings.ORDERFIELD3).Value()));
}

std::string ValueLookups::GetDescriptionFromCode(
    int32_t CurrValue, const std::string& TableName, const std::string& descriptionField,
    const std::string& ValueField, ProjectDataSources Dtsrc, const std::string& SQLStmt,
    std::optional<int16_t> NumCharSpace, const std::optional<std::string>& SecondaryDisplayField) {
  const std::string secondary = SecondaryDisplayField.value_or("");
  const std::string value = std::to_string(CurrValue);
  std::string sql;
  if (!TableName.empty()) {
    if (UpperCase(descriptionField) == "%X") {
      // "%X" is no column: the value is a person whose name is composed.
      const int16_t width = NumCharSpace && *NumCharSpace > 0 ? *NumCharSpace : int16_t{0};
      return TextOf(GetCoreName(CurrValue, TableName, width));
    }
    sql = "Select  " + descriptionField;
    if (!secondary.empty()) sql += " , " + secondary;
    sql += " from " + TableName + " where (" + ValueField + " = " + value + ")";
  } else {
    // Only a lower-case " where " counts: a statement with WHERE in capitals
    // gets a second one, as it always has.
    sql = SQLStmt + (Contains(SQLStmt, " where ") ? " AND ( " : " where ( ") + ValueField + " = " +
          value + " ) ";
  }
  LookupQuery query(services_, Dtsrc, sql);
  if (!query.Found()) return "";
  // The secondary column stands in for an empty description; it is never
  // appended to one.
  std::string description = TextOf(query.Rows().Fields(descriptionField).Value());
  if (description.empty() && !secondary.empty()) {
    description = TextOf(query.Rows().Fields(secondary).Value());
  }
  return description;
}

Variant ValueLookups::GetCorrespondingValue(int32_t SearchValue, const std::string& TableName,
                                            const std::string& OutPutField,
                                            const std::string& Searchfield,
                                            ProjectDataSources Dtsrc, const std::string& SQLStmt) {
  const std::string value = std::to_string(SearchValue);
  std::string sql;
  if (!TableName.empty()) {
    sql = "Select  " + OutPutField + " from " + TableName + " where (" + Searchfield + " = " +
          value + ")";
  } else {
    sql = SQLStmt;
    if (!Searchfield.empty()) {
      sql += (Contains(SQLStmt, " where ") ? " AND ( " : " where ( ") + Searchfield + " = " +
             value + " ) ";
    }
  }
  LookupQuery query(services_, Dtsrc, sql);
  if (!query.Found()) return Variant();
  const Variant& found = query.Rows().Fields(OutPutField).Value();
  return found.IsNull() ? Variant() : found;
}

Variant ValueLookups::GetCorrespondingValueFromText(
    const std::string& SearchText, const std::string& TableName, const std::string& OutPutField,
    const std::string& Searchfield, ProjectDataSources Dtsrc, const std::string& SQLStmt) {
  const std::string clause = DataLinx::GetComparisionClauseForDefEqual(
      Searchfield, gdtText, Variant(SearchText), false, false);
  std::string sql;
  if (!TableName.empty()) {
    sql = "Select  " + OutPutField + " from " + TableName + " where " + clause;
  } else {
    // The clause is appended even without a search field.
    sql = SQLStmt + (Contains(SQLStmt, " where ") ? " AND  " : " where ") + clause;
  }
  LookupQuery query(services_, Dtsrc, sql);
  if (!query.Found()) return Variant();
  const Variant& found = query.Rows().Fields(OutPutField).Value();
  return found.IsNull() ? Variant() : found;
}

int32_t ValueLookups::GetHierarchicalParentNonZeroLongValue(int32_t StartFromID,
                                                            const std::string& TblName,
                                                            const std::string& ParentFieldName,
                                                            const std::string& ValueFieldName,
                                                            ProjectDataSources DatSrc) {
  const auto column_of = [&](int32_t node, const std::string& column) {
    return CLng(GetCorrespondingValue(node, TblName, column, "ID", DatSrc, ""));
  };
  int32_t parent = column_of(StartFromID, ParentFieldName);
  int32_t value = column_of(StartFromID, ValueFieldName);
  // No guard against a cycle: the data must not hold one.
  while (parent >= 1 && value <= 0) {
    const int32_t node = parent;
    parent = column_of(node, ParentFieldName);
    // A root is never asked for its value unless the walk started there.
    if (parent < 1) break;
    value = column_of(node, ValueFieldName);
  }
  return value;
}

bool ValueLookups::IsCheckListAttributeEnabled(ProjectDataSources SourceofData,
                                               const std::string& TableName,
                                               const std::string& AttributeField,
                                               int32_t AttributeValue,
                                               const std::string& SourceField,
                                               int32_t SrcFieldValue) {
  return AnyRowsIn(services_, SourceofData,
                   "Select * from " + TableName + " where ( " + SourceField + " = " +
                       std::to_string(SrcFieldValue) + " ) and  ( " + AttributeField + " = " +
                       std::to_string(AttributeValue) + " )  ");
}

int32_t ValueLookups::GetTableIDFromName(const std::string& TblName) {
  // The name is a LIKE pattern on purpose: wild cards in it match.
  LookupQuery query(services_, pdssystem,
                    "select id from datatables where ValuesTable LIKE '" + TblName + "'");
  // FillRecordSet counts an unknown record count (-1) as rows found.
  if (query.Found()) return CLng(query.Rows().Fields("ID").Value());
  if (!TblName.empty()) MsgBox("Use Dravent to define " + TblName);
  return 0;
}

}  // namespace kelvary::lookups
