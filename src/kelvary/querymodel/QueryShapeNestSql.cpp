// QueryShapeNest::UpdateSqlStmts: the clause lists of one level's SELECT
// (fields, tables, joins, grouping), built from the tables and output fields
// the query interpreter hung under the level. Defined beside the class; it
// reads field names through the active service object, as the interpreter
// does.
//
// Link fields. A level with children (bUseParentFieldLink) relates to them by
// the field ParentFieldLinkID of its own base table; a level with a parent
// relates to it by its field ChildFieldLinkID. Both are DataTableFields IDs.
// A selected output field is taken as a link field only when its table's
// query-table number equals the level's BaseTableID, as the system compares
// them; the parent link is then the field whose DataFieldID is
// ParentFieldLinkID, the child link the field whose own ID is
// ChildFieldLinkID (the system's comparison, kept). The link name is the
// name the column carries in the result (its alias when it has one), since
// the RELATE of the SHAPE statement names result columns. A link field not
// met that way is looked up by ID in DataTableFields and appended, qualified
// by the level's root table, so the SELECT always carries the columns the
// RELATE names.
#include <string>
#include <string_view>

#include "kelvary/platform/Error.h"
#include "kelvary/querymodel/QueryShapeNest.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary {
namespace {

// Key: a collection key, the letter followed by the ID in decimal.
std::string Key(char letter, int32_t id) {
  return letter + std::to_string(id);
}

// FieldNameOf: the name of DataTableFields row id, "" when there is none;
// Error 91 without an active service object.
std::string FieldNameOf(int32_t id) {
  InfoLink* link = ActiveInfoLink();
  if (link == nullptr) {
    throw Error(kErrObjectVariableNotSet, "Object variable or With block variable not set");
  }
  return link->GetDescriptionFromCode(id, "DataTableFields", "FieldName", "ID", pdssystem, "");
}

// AggregateName: the SQL function of an aggregate role; "" for 5 and every
// value that is no aggregate. "?" for the standard error and the lower-case
// "stdDev" are the system's texts, kept as they are.
std::string AggregateName(SpecialFields role) {
  switch (role) {
    case sfAverage:
      return "Avg";
    case sfMin:
      return "Min";
    case sfMax:
      return "Max";
    case sfRCount:
      return "Count";
    case sfStdDev:
      return "stdDev";
    case sfSERR:
      return "?";
    case sfSum:
      return "Sum";
    default:
      return "";
  }
}

bool IsGrouping(SpecialFields role) {
  return role == sfgroup || role == sfGroupAndView;
}

// ColumnText: field_name, qualified by the table's SQL name once the level
// has two tables or more.
std::string ColumnText(QueryShapeNest& level, const QueryDataTable* table,
                       const std::string& field_name) {
  if (level.OutPutTables()->Count() < 2) return field_name;
  if (table == nullptr) {
    throw Error(kErrObjectVariableNotSet, "Object variable or With block variable not set");
  }
  return table->GetSQLName() + "." + field_name;
}

std::string ColumnText(QueryShapeNest& level, int32_t table_id, const std::string& field_name) {
  if (level.OutPutTables()->Count() < 2) return field_name;
  return ColumnText(level, level.OutPutTables()->Item(Key('T', table_id)).get(), field_name);
}

// AggregateText: without the alias the closing parenthesis is not written
// either; aggregated fields are never grouped, so that form is never used.
std::string AggregateText(QueryShapeNest& level, int32_t table_id, const QueryOutputField& field,
                          bool with_alias) {
  return AggregateName(field.SpecialField) + "(" + ColumnText(level, table_id, field.FieldName) +
         (with_alias ? ") AS " + field.SpecialFieldAlias : "");
}

std::string OutputFieldText(QueryShapeNest& level, int32_t table_id, const QueryOutputField& field,
                            bool with_alias) {
  if (field.SpecialField != sfnone && !IsGrouping(field.SpecialField)) {
    return AggregateText(level, table_id, field, with_alias);
  }
  if (with_alias && !field.FieldAlias.empty()) {
    return ColumnText(level, table_id, field.FieldName) + " AS " + field.FieldAlias;
  }
  return ColumnText(level, table_id, field.FieldName);
}

// ResultName: the name the selected column carries in the result.
std::string ResultName(const QueryOutputField& field) {
  if (field.SpecialField != sfnone && !IsGrouping(field.SpecialField)) {
    return field.SpecialFieldAlias;
  }
  return field.GetEfectiveFieldName();
}

// RootTable: the first table that joins no parent, or nullptr.
const QueryDataTable* RootTable(QueryShapeNest& level) {
  for (const auto& table : *level.OutPutTables()) {
    if (table->ParentDataTable == 0) return table.get();
  }
  return nullptr;
}

// A SortedOPFields entry "F" + field ID + "T" + table ID, read back.
struct FieldRef {
  int32_t field_id;
  int32_t table_id;
};

FieldRef ParseFieldRef(const Variant& entry) {
  const std::string text = CStr(entry);
  const size_t t = text.find('T');
  if (text.size() < 2 || text[0] != 'F' || t == std::string::npos) {
    throw Error(kErrTypeMismatch, "Type mismatch");
  }
  return FieldRef{CLng(Variant(text.substr(1, t - 1))), CLng(Variant(text.substr(t + 1)))};
}

void AppendListed(std::string& list, const std::string& item, std::string_view separator) {
  if (list.empty()) {
    list = item;
  } else {
    list += separator;
    list += item;
  }
}

}  // namespace

void QueryShapeNest::UpdateSqlStmts() {
  const auto& tables = OutPutTables();
  const auto& sorted = SortedOPFields();

  // Fields. A pure grouping field (sfgroup) is grouped but not selected.
  FieldsList.clear();
  bool parent_link_found = false;
  bool child_link_found = false;
  for (const auto& entry : *sorted) {
    const FieldRef ref = ParseFieldRef(*entry);
    const auto& field =
        tables->Item(Key('T', ref.table_id))->OutputFields()->Item(Key('F', ref.field_id));
    if (field->SpecialField == sfgroup) continue;
    AppendListed(FieldsList, OutputFieldText(*this, ref.table_id, *field, true), ",");
    if (ref.table_id == BaseTableID) {
      if (bUseParentFieldLink && !parent_link_found && field->DataFieldID == ParentFieldLinkID) {
        ParentFieldLinkName = ResultName(*field);
        parent_link_found = true;
      }
      if (ChildFieldLinkID >= 1 && !child_link_found && ref.field_id == ChildFieldLinkID) {
        ChildFieldLinkName = ResultName(*field);
        child_link_found = true;
      }
    }
  }
  if (bUseParentFieldLink && !parent_link_found) {
    ParentFieldLinkName = FieldNameOf(ParentFieldLinkID);
    AppendListed(FieldsList, ColumnText(*this, RootTable(*this), ParentFieldLinkName), ",");
  }
  if (ChildFieldLinkID >= 1 && !child_link_found) {
    ChildFieldLinkName = FieldNameOf(ChildFieldLinkID);
    AppendListed(FieldsList, ColumnText(*this, RootTable(*this), ChildFieldLinkName), ",");
  }

  // Tables.
  TablesList.clear();
  for (const auto& table : *tables) {
    AppendListed(TablesList,
                 table->TableAlias.empty() ? table->TableName
                                           : table->TableName + " AS " + table->TableAlias,
                 ",");
  }

  // Joins, each table to its parent table of the same level.
  TableJoins.clear();
  if (tables->Count() > 1) {
    for (const auto& child : *tables) {
      if (child->ParentDataTable == 0) continue;
      const auto& parent = tables->Item(Key('T', child->ParentDataTable));
      AppendListed(TableJoins,
                   " ( " + parent->GetSQLName() + "." + child->ParentDataFieldName + " = " +
                       child->GetSQLName() + "." + child->SourceDataFieldName + " ) ",
                   " AND ");
    }
    if (!TableJoins.empty()) TableJoins = " ( " + TableJoins + " ) ";
  }

  // Grouping: sfgroup and sfGroupAndView fields, without their aliases.
  GroupByList.clear();
  for (const auto& entry : *sorted) {
    const FieldRef ref = ParseFieldRef(*entry);
    const auto& field =
        tables->Item(Key('T', ref.table_id))->OutputFields()->Item(Key('F', ref.field_id));
    if (!IsGrouping(field->SpecialField)) continue;
    AppendListed(GroupByList, OutputFieldText(*this, ref.table_id, *field, false), ",");
  }
}

}  // namespace kelvary
