// The statements of a query: the SELECT of one level, the SHAPE statement of
// a multi-level query, the stored text with its markers spliced, opening the
// result, and the one-record restriction.
//
// Decided here: levels whose parents form a cycle would nest without end; the
// APPEND recursion stops with Error 5 once it is deeper than there are
// levels. AssignIDBasedWhereClause restricts the first level (in collection
// order, so the shallowest) that holds the table, which restricts the whole
// tree below it; the field is looked up in DataTableFields.
#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/query/internal/ActiveLink.h"

namespace kelvary {

using query_internal::ActiveLink;
using query_internal::FieldNameOf;
using query_internal::Key;

std::string QueryInterpretor::BuildLevelSelect(QueryShapeNest& level) {
  level.UpdateSqlStmts();
  std::string s = "Select " + level.FieldsList + " From " + level.TablesList;
  std::string w;
  if (!level.TableJoins.empty()) w = " Where " + level.TableJoins;
  if (!level.AssignedWhereClause.empty()) {
    w = w.empty() ? " Where " + level.AssignedWhereClause : w + " AND " + level.AssignedWhereClause;
  }
  // The blank goes in even without a restriction: such a level ends in one.
  s = s + " " + w;
  if (!level.GroupByList.empty()) {
    s = s + " Group by " + level.GroupByList;
    // The blank in front of the whole statement, not before HAVING, is the
    // system's and is kept.
    if (!level.HavingList.empty()) s = " " + s + " HAVING " + level.HavingList;
  }
  if (!level.AssignedSortClause.empty()) s = s + " Order by " + level.AssignedSortClause;
  return s;
}

void QueryInterpretor::EncodeSQLStmt() {
  if (QueryBuildMethod != qbmDigitalBuild) {
    SpliceRawSQL();
    return;
  }
  const auto& levels = ShapeNests();
  // Position 1 is the root: levels are loaded by depth.
  const auto root = levels->Item(1);
  // The root's SELECT first: it names the link its children relate to.
  const std::string root_select = BuildLevelSelect(*root);
  if (levels->Count() == 1) {
    FinalSQLStmt = root_select;
  } else {
    FinalSQLStmt =
        " SHAPE { " + root_select + " } as " + root->ShapeName + BuildChildAppends(root->ID);
  }
}

std::string QueryInterpretor::BuildChildAppends(int32_t ParentId, int32_t depth) {
  const auto& levels = ShapeNests();
  if (depth > levels->Count()) {
    throw Error(kErrInvalidProcedureCall, "The parents of the shape levels form a cycle");
  }
  std::string acc;
  for (int32_t i = 1; i <= levels->Count(); ++i) {
    const auto child = levels->Item(i);
    if (child->ParentShapeId != ParentId) continue;
    const std::string sel = BuildLevelSelect(*child);
    const std::string sub = BuildChildAppends(child->ID, depth + 1);
    const std::string& pl = levels->Item(Key('S', child->ParentShapeId))->ParentFieldLinkName;
    const std::string& cl = child->ChildFieldLinkName;
    // The two blanks after "}" and after "TO", and the name written twice,
    // are the system's text.
    if (sub.empty()) {
      acc += " APPEND ({" + sel + " }  " + " as " + child->ShapeName + " RELATE '" + pl +
             "' TO  '" + cl + "' ) AS " + child->ShapeName;
    } else {
      acc += " APPEND ((SHAPE {" + sel + " }  " + " as " + child->ShapeName + sub + ") RELATE '" +
             pl + "' TO  '" + cl + "' ) AS " + child->ShapeName;
    }
  }
  return acc;
}

bool QueryInterpretor::SpliceRawSQL() {
  std::string result;
  std::string rest = RawSQL;
  bool found = false;
  std::string splice;  // kept from level to level
  const auto& levels = ShapeNests();
  if (QueryBuildMethod == qbmDigitalBuild ||
      (QueryBuildMethod == qbmDirectADO && levels->Count() >= 1)) {
    const int32_t count = levels->Count();
    for (int32_t i = 1; i <= count; ++i) {
      const auto& level = levels->Item(i);
      const size_t at = rest.find("!" + std::to_string(level->ID));
      if (at == std::string::npos) {
        if (i == count) result += rest;
        continue;
      }
      found = true;
      result += rest.substr(0, at);
      // Exactly two characters go, whatever the length of the ID: a marker
      // with a two-digit ID leaves its last digit in the text. Stored texts
      // are written for this, so it stays. So does dropping a tail of up to
      // two characters after the marker.
      const auto pos = static_cast<int64_t>(at) + 1;  // 1-based
      if (pos < static_cast<int64_t>(rest.size()) - 3) {
        rest = rest.substr(at + 2);
      } else {
        rest.clear();
      }
      if (!level->AssignedWhereClause.empty()) {
        splice = (level->PreExistingWhereClause ? " And " : " Where ") + level->AssignedWhereClause;
      }
      result += splice;
    }
    // When an earlier marker was found and the last one was not, the tail
    // is appended twice; kept as the system does it.
    if (found) result += rest;
  } else {
    result = RawSQL;
  }
  FinalSQLStmt = result;
  return true;
}

bool QueryInterpretor::AssignRecordSet(std::shared_ptr<Recordset>& RepData) {
  if (QueryBuildMethod == qbmDirectADO) {
    if (!SpliceRawSQL()) return false;
  } else if (QueryBuildMethod == qbmDigitalBuild) {
    EncodeSQLStmt();
  } else {
    return false;
  }
  return ActiveLink().FillRecordSet(IsSystemData ? pdssystem : pdsmaindata, RepData, FinalSQLStmt,
                                    adOpenKeyset, adLockReadOnly);
}

void QueryInterpretor::AssignIDBasedWhereClause(int32_t DTableId, int32_t EntryID, int32_t FieldID,
                                                const std::string& FieldName) {
  bProgramAssignedWhereClause = true;
  std::shared_ptr<QueryShapeNest> level;
  std::shared_ptr<QueryDataTable> table;
  for (const auto& candidate : *ShapeNests()) {
    for (const auto& t : *candidate->OutPutTables()) {
      if (t->DataTableId == DTableId) {
        level = candidate;
        table = t;
        break;
      }
    }
    if (level) break;
  }
  if (!level) {
    throw Error(kErrObjectVariableNotSet, "Object variable or With block variable not set");
  }
  const std::string field = FieldID < 1 ? FieldName : FieldNameOf(FieldID);
  std::string column = table->GetSQLName() + "." + field;
  if (InterpretXtal) column = "{" + column + "}";
  // Replaces any earlier restriction of the level: the system's join with
  // the old text never takes effect.
  level->AssignedWhereClause = "  ( " + column + " = " + std::to_string(EntryID) + " ) ";
}

}  // namespace kelvary
