// QueryInterpretor::LoadTemplateConditions: the condition groups of a query
// template, the parameters hung under them, the sort options, and the two
// flags AreThereAnyParameters answers from.
#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/query/internal/ActiveLink.h"

namespace kelvary {

using lookups::LookupQuery;
using query_internal::BoolColumn;
using query_internal::ColumnValue;
using query_internal::IntColumn;
using query_internal::Key;
using query_internal::LongColumn;
using query_internal::TextColumn;

void QueryInterpretor::LoadTemplateConditions(ServicePort& services, int32_t TemplateID) {
  const std::string t = std::to_string(TemplateID);

  // Groups by level, so that a group's parent is always there before it.
  // The two blanks after "from" are the system's own.
  LookupQuery groups(services, pdssystem,
                     "Select * from  QueryConditionGroups where QueryTemplateID = " + t +
                         " order by NodeLevel,ParentGroupId");
  if (groups.Found()) {
    for (Recordset* rs = &groups.Rows(); !rs->Eof(); rs->MoveNext()) {
      const int32_t group_id = LongColumn(*rs, "ID");
      CurrentConditions()->Add(LongColumn(*rs, "ParentGroupId"), IntColumn(*rs, "NodeLevel"),
                               static_cast<NodeTypes>(LongColumn(*rs, "NodeType")),
                               LongColumn(*rs, "NestedBinding"), group_id, Key('C', group_id));
    }
  }

  // Parameters and sort options share the rows of QueryTemplateParameters.
  // The inner join on FillNSearchLinks is the system's: a field without a
  // search-link row never becomes a parameter. Blanks exactly as the
  // system writes them.
  const std::string sql =
      "Select FillNSearchLinks.LargeNumberOFEntries, "
      "DataTableFields.Units,DataTableFields.SearchLinkID,DataTableFields.FieldName, "
      "DataTableFields.DataFormat,QueryTemplateParameters.*  From "
      "DataTableFields,QueryTemplateParameters,FillNSearchLinks Where "
      "(DataTableFields.SearchLinkID = FillNSearchLinks.ID) and ( "
      "DataTableFields.ID=QueryTemplateParameters.DataFieldID )and "
      "(QueryTemplateParameters.QueryConditionID in ( select id   From QueryConditionGroups "
      "Where (QueryTemplateID = " +
      t + " ) ))";
  LookupQuery parameters(services, pdssystem, sql);
  if (parameters.Found()) {
    has_parameter_rows_ = true;
    for (Recordset* rs = &parameters.Rows(); !rs->Eof(); rs->MoveNext()) {
      const Variant essential = ColumnValue(*rs, "Essential");
      if (!essential.IsNull() && CBool(essential)) has_essential_parameters_ = true;

      const int32_t row_id = LongColumn(*rs, "ID");
      if (LongColumn(*rs, "SearchOrder") > 0) {
        auto& group = CurrentConditions()->Item(Key('C', LongColumn(*rs, "QueryConditionID")));
        auto param = group->ChildConditions()->Add(row_id, LongColumn(*rs, "DataFieldID"), false,
                                                   true, Key('R', row_id));
        param->Operator = static_cast<CompareTypes>(LongColumn(*rs, "Operator"));
        if (const Variant v = ColumnValue(*rs, "SUBOperator"); !v.IsNull()) {
          param->SUBOperator = CLng(v);
        }
        if (Variant v = ColumnValue(*rs, "Value1"); !v.IsNull()) param->Value1 = std::move(v);
        if (Variant v = ColumnValue(*rs, "Value2"); !v.IsNull()) param->Value2 = std::move(v);
        param->DataFormat = static_cast<FieldDataTypes>(LongColumn(*rs, "DataFormat"));
        param->SearchLinkID = LongColumn(*rs, "SearchLinkID");
        param->HasManyEntries = BoolColumn(*rs, "LargeNumberOFEntries");
        param->Units = TextColumn(*rs, "Units");
        param->Reverse = BoolColumn(*rs, "Reverse");
        if (!essential.IsNull()) param->Essential = CBool(essential);
        param->Removable = BoolColumn(*rs, "Removable");
        param->ValueChangeble = BoolColumn(*rs, "ValueChangeble");
        param->ConditionID = LongColumn(*rs, "QueryConditionID");
        param->Title = TextColumn(*rs, "Title");
        param->QueryDataTableID = LongColumn(*rs, "QueryDataTableID");
        param->FieldName = TextColumn(*rs, "FieldName");
      }
      // The same row may also be a sort option.
      if (LongColumn(*rs, "SortOrder") > 0) {
        const int32_t level_id =
            CurrentConditions()->Item(Key('C', LongColumn(*rs, "QueryConditionID")))->NestedBinding;
        TemplateSortOptions()->Add(BoolColumn(*rs, "SortDescending"), IntColumn(*rs, "SortOrder"),
                                   level_id, Key('S', row_id));
      }
    }
  }
}

}  // namespace kelvary
