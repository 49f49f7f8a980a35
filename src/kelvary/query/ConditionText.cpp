// The condition tree as WHERE text (GetConditionString), one parameter as a
// comparison (GetSqlPhrase, through the general comparison builder), and the
// fixed answers about parameters.
#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/query/internal/ActiveLink.h"
#include "kelvary/sql/DataLinx.h"

namespace kelvary {

using query_internal::Key;

namespace {
// The connector of a group, with its own blanks; each join adds one more on
// either side, so "AND" and "OR" stand between two blanks on each side.
const char* Connector(const ConditionNode& group) {
  return group.NodeType == ntall ? " AND " : " OR ";
}
}  // namespace

std::string QueryInterpretor::GetConditionString(const std::shared_ptr<ConditionNode>& cd) {
  return ConditionText(*cd, 0);
}

std::string QueryInterpretor::ConditionText(ConditionNode& cd, int32_t depth) {
  const auto& groups_of_query = CurrentConditions();
  if (depth > groups_of_query->Count()) {
    throw Error(kErrInvalidProcedureCall, "The parents of the condition groups form a cycle");
  }
  // Sub-groups first, in load order, each joined by its own connector.
  std::string groups;
  for (int32_t i = 1; i <= groups_of_query->Count(); ++i) {
    const auto group = groups_of_query->Item(i);
    if (group->ParentGroupId != cd.ID) continue;
    const std::string t = ConditionText(*group, depth + 1);
    if (t.empty()) continue;
    groups = groups.empty() ? t : groups + " " + Connector(*group) + " " + t;
  }
  // Then the group's own parameters; one that restricts nothing is skipped
  // with its connector.
  std::string params;
  const auto parameters = cd.ChildConditions();
  for (const auto& p : *parameters) {
    const std::string t = GetSqlPhrase(p, InterpretXtal, "");
    if (t.empty()) continue;
    params = params.empty() ? t : params + " " + Connector(cd) + " " + t;
  }
  if (!params.empty()) {
    params = " ( " + params + " ) ";
    groups = groups.empty() ? params : groups + " " + Connector(cd) + " " + params;
  }
  if (!groups.empty()) groups = " ( " + groups + " ) ";
  return groups;
}

std::string QueryInterpretor::GetSqlPhrase(const std::shared_ptr<RepParam>& RP, bool bSupportXtal,
                                           const std::string& FldName) {
  std::string column;
  if (FldName.empty()) {
    const auto& group = CurrentConditions()->Item(Key('C', RP->ConditionID));
    const auto& level = ShapeNests()->Item(Key('S', group->NestedBinding));
    const auto& table = level->OutPutTables()->Item(Key('T', RP->QueryDataTableID));
    column = table->GetSQLName() + "." + RP->FieldName;
  } else {
    column = FldName;
  }
  if (bSupportXtal) column = "{" + column + "}";
  return DataLinx::GetComparisionClause(column, RP->DataFormat, RP->Operator, RP->SUBOperator,
                                        RP->Value1, RP->Value2, RP->Reverse, bSupportXtal);
}

bool QueryInterpretor::AreThereAnyParameters(bool bRequiredOnesOnly) const {
  return bRequiredOnesOnly ? has_essential_parameters_ : has_parameter_rows_;
}

}  // namespace kelvary
