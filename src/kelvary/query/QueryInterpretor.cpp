// QueryInterpretor: its collections and lifecycle, IsSimpleTemplate, and the
// loading of a stored definition (InitSettings). The condition groups and
// parameters are loaded in ConditionLoading.cpp, the statements are built in
// StatementAssembly.cpp and the conditions in ConditionText.cpp.
#include "kelvary/query/QueryInterpretor.h"

#include "kelvary/platform/Messages.h"
#include "kelvary/query/internal/ActiveLink.h"

namespace kelvary {

using query_internal::ActiveLink;
using query_internal::BoolColumn;
using query_internal::ColumnValue;
using query_internal::FieldNameOf;
using query_internal::IntColumn;
using query_internal::Key;
using query_internal::LongColumn;
using query_internal::TextColumn;

QueryInterpretor::~QueryInterpretor() {
  // Conditions first: their parameters point into the levels' tables.
  try {
    CurrentConditions()->Clear();
    current_conditions_.reset();
    ShapeNests()->Clear();
    shape_nests_.reset();
    if (template_sort_options_) {
      template_sort_options_->Clear();
      template_sort_options_.reset();
    }
  } catch (...) {
    // A destructor never throws; what is left goes with the members.
  }
}

const std::shared_ptr<QueryShapeNests>& QueryInterpretor::ShapeNests() {
  if (!shape_nests_) shape_nests_ = std::make_shared<QueryShapeNests>();
  return shape_nests_;
}

void QueryInterpretor::ShapeNests(std::shared_ptr<QueryShapeNests> levels) {
  shape_nests_ = std::move(levels);
}

const std::shared_ptr<QueryTemplateSortOptions>& QueryInterpretor::TemplateSortOptions() {
  if (!template_sort_options_) {
    template_sort_options_ = std::make_shared<QueryTemplateSortOptions>();
  }
  return template_sort_options_;
}

void QueryInterpretor::TemplateSortOptions(std::shared_ptr<QueryTemplateSortOptions> options) {
  template_sort_options_ = std::move(options);
}

const std::shared_ptr<ConditionNodes>& QueryInterpretor::CurrentConditions() {
  if (!current_conditions_) current_conditions_ = std::make_shared<ConditionNodes>();
  return current_conditions_;
}

void QueryInterpretor::CurrentConditions(std::shared_ptr<ConditionNodes> conditions) {
  current_conditions_ = std::move(conditions);
}

bool QueryInterpretor::IsSimpleTemplate() {
  const Variant marker = ActiveLink().GetCorrespondingValue(
      TemplateId, "XQueryTemplates", "SimpleQueryTemplateID", "ID", pdssystem, "");
  // Not found and Null both come back Empty, which reads as 0.
  return CLng(marker) == 1;
}

void QueryInterpretor::InitSettings(const std::string& RepStr, int32_t QueryCode,
                                    int32_t QueryTemplateId, bool bSupportXtal) {
  InterpretXtal = bSupportXtal;
  TemplateId = QueryTemplateId;
  QueryID = QueryCode;
  RepKey = RepStr;

  if (QueryCode < 1) {
    MsgBox("No Query specified", vbOKOnly);
    return;
  }

  InfoLink& link = ActiveLink();
  std::shared_ptr<Recordset> rs;
  if (link.FillRecordSet(pdssystem, rs,
                         "Select * from Queries where ID = " + std::to_string(QueryCode),
                         adOpenForwardOnly, adLockReadOnly)) {
    QueryBuildMethod = static_cast<QueryBuildMethods>(LongColumn(*rs, "QueryBuildMethod"));
    RawSQL = TextColumn(*rs, "SqlStmt");
    DataSupplier = IntColumn(*rs, "DataSupplier");
    IsSystemData = BoolColumn(*rs, "IsSystemData");
    NumNestedLevels = IntColumn(*rs, "NumNestedLevels");
  } else {
    // Deliberately carries on: the template and (for a query that was
    // digitally built before) the levels are still read.
    MsgBox("Query ID " + std::to_string(QueryCode) + " not found", vbOKOnly);
  }

  if (QueryTemplateId > 0) {
    if (QueryBuildMethod == qbmXtalReportQuery) {
      TemplateDescription = link.GetDescriptionFromCode(QueryTemplateId, "XQueryTemplates",
                                                        "Description", "ID", pdssystem, "");
      if (TemplateId > 0) {
        std::shared_ptr<Recordset> xt;
        if (link.FillRecordSet(
                pdssystem, xt,
                "Select * from XQueryTemplates where id = " + std::to_string(TemplateId),
                adOpenForwardOnly, adLockReadOnly)) {
          TemplateSupplier = 0;
          TemplateSet = 0;
          const Variant supplier = ColumnValue(*xt, "TemplateSupplier");
          if (!supplier.IsNull()) TemplateSupplier = CLng(supplier);
          const Variant set = ColumnValue(*xt, "TemplateSet");
          if (!set.IsNull()) TemplateSet = CLng(set);
        }
        link.SafelyCloseRecordSet(xt);
      }
    } else {
      TemplateDescription = link.GetDescriptionFromCode(QueryTemplateId, "QueryTemplates",
                                                        "Description", "ID", pdssystem, "");
    }
  }

  if (QueryBuildMethod == qbmDigitalBuild) {
    const std::string id = std::to_string(QueryID);

    // Levels, parents before children (ordered by depth).
    if (link.FillRecordSet(pdssystem, rs,
                           "Select * from QueryShapeNests where QueryId = " + id +
                               " Order by Depth , ParentShapeId",
                           adOpenForwardOnly, adLockReadOnly)) {
      for (; !rs->Eof(); rs->MoveNext()) {
        const int32_t level_id = LongColumn(*rs, "ID");
        auto level = ShapeNests()->Add(LongColumn(*rs, "BaseTableID"), IntColumn(*rs, "Depth"),
                                       BoolColumn(*rs, "PreExistingWhereClause"), level_id,
                                       TextColumn(*rs, "ShapeName"), TextColumn(*rs, "Title"),
                                       Key('S', level_id));
        level->ShapeIndex = IntColumn(*rs, "ShapeIndex");
        level->ParentShapeId = LongColumn(*rs, "ParentShapeId");
        level->ParentFieldLinkID = LongColumn(*rs, "ParentFieldLinkID");
        level->ChildFieldLinkID = LongColumn(*rs, "ChildFieldLinkID");
        // The flag marks the parent, the level that has children.
        if (level->ParentShapeId > 0) {
          ShapeNests()->Item(Key('S', level->ParentShapeId))->bUseParentFieldLink = true;
        }
      }
    }

    // Tables of every level. The two blanks before "From" and "Order" are
    // the system's own.
    if (link.FillRecordSet(pdssystem, rs,
                           "Select QueryDataTables.*  From QueryDataTables,QueryShapeNests Where "
                           "(QueryShapeNests.QueryId = " +
                               id +
                               " ) And (QueryDataTables.NestedBinding=QueryShapeNests.ID)  Order "
                               "by QueryDataTables.Depth",
                           adOpenForwardOnly, adLockReadOnly)) {
      for (; !rs->Eof(); rs->MoveNext()) {
        const int32_t table_id = LongColumn(*rs, "ID");
        const int32_t data_table_id = LongColumn(*rs, "DataTableId");
        const int32_t nested_binding = LongColumn(*rs, "NestedBinding");
        const std::string physical_name = link.GetDescriptionFromCode(
            data_table_id, "DataTables", "ValuesTable", "ID", pdssystem, "");
        auto table =
            ShapeNests()
                ->Item(Key('S', nested_binding))
                ->OutPutTables()
                ->Add(data_table_id, TextColumn(*rs, "TableAlias"), nested_binding, table_id,
                      LongColumn(*rs, "ParentDataField"), LongColumn(*rs, "ParentDataTable"),
                      LongColumn(*rs, "SourceDataField"), IntColumn(*rs, "Depth"),
                      TextColumn(*rs, "Title"), physical_name, Key('T', table_id));
        table->ParentDataFieldName = FieldNameOf(table->ParentDataField);
        // Filled here as well, the same way, so that a join names both of
        // its columns.
        table->SourceDataFieldName = FieldNameOf(table->SourceDataField);
      }
    }

    // Output fields. No order: the database's order of these rows is the
    // column order of the statement.
    if (link.FillRecordSet(
            pdssystem, rs,
            "Select QueryDataTables.NestedBinding,QueryOutputFields.*,DataTableFields.FieldName "
            "From QueryDataTables,QueryOutputFields,QueryShapeNests,DataTableFields Where "
            "(QueryShapeNests.QueryId = " +
                id +
                " ) And (QueryDataTables.ID=QueryOutputFields.QueryDataTableID) And "
                "(QueryDataTables.NestedBinding=QueryShapeNests.ID) and "
                "(QueryOutputFields.DataFieldID= DataTableFields.ID)",
            adOpenForwardOnly, adLockReadOnly)) {
      for (; !rs->Eof(); rs->MoveNext()) {
        const int32_t field_id = LongColumn(*rs, "ID");
        const int32_t table_id = LongColumn(*rs, "QueryDataTableID");
        auto& level = ShapeNests()->Item(Key('S', LongColumn(*rs, "NestedBinding")));
        level->OutPutTables()
            ->Item(Key('T', table_id))
            ->OutputFields()
            ->Add(LongColumn(*rs, "DataFieldID"), TextColumn(*rs, "FieldAlias"),
                  static_cast<SpecialFields>(LongColumn(*rs, "SpecialField")),
                  static_cast<AdvFormatting>(LongColumn(*rs, "AdvancedFormatting")), field_id,
                  table_id, TextColumn(*rs, "SpecialFieldAlias"), TextColumn(*rs, "Title"),
                  TextColumn(*rs, "FieldName"), Key('F', field_id));
        level->SortedOPFields()->Add(std::make_shared<Variant>("F" + std::to_string(field_id) +
                                                               "T" + std::to_string(table_id)));
      }
    }

    LoadTemplateConditions(QueryTemplateId);
  }

  link.SafelyCloseRecordSet(rs);
}

}  // namespace kelvary
