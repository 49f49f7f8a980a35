// The loaders of a stored query definition (see internal/DefinitionLoading.h).
// The statements are the system's own, blanks included.
#include "kelvary/query/internal/DefinitionLoading.h"

#include <string>

#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/query/internal/ActiveLink.h"

namespace kelvary::query_internal {
namespace {

using lookups::LookupQuery;

// Description: one column of the row ID of a configuration table, "" when
// there is none.
std::string Description(ServicePort& services, int32_t id, const std::string& table,
                        const std::string& column) {
  return lookups::ValueLookups(services).GetDescriptionFromCode(id, table, column, "ID", pdssystem,
                                                                "", std::nullopt, std::nullopt);
}

}  // namespace

bool LoadQueryRow(ServicePort& services, QueryInterpretor& query) {
  LookupQuery row(services, pdssystem,
                  "Select * from Queries where ID = " + std::to_string(query.QueryID));
  if (!row.Found()) return false;
  Recordset& rs = row.Rows();
  query.QueryBuildMethod = static_cast<QueryBuildMethods>(LongColumn(rs, "QueryBuildMethod"));
  query.RawSQL = TextColumn(rs, "SqlStmt");
  query.DataSupplier = IntColumn(rs, "DataSupplier");
  query.IsSystemData = BoolColumn(rs, "IsSystemData");
  query.NumNestedLevels = IntColumn(rs, "NumNestedLevels");
  return true;
}

void LoadTemplateHeader(ServicePort& services, QueryInterpretor& query, int32_t QueryTemplateId) {
  if (query.QueryBuildMethod != qbmXtalReportQuery) {
    query.TemplateDescription =
        Description(services, QueryTemplateId, "QueryTemplates", "Description");
    return;
  }
  query.TemplateDescription =
      Description(services, QueryTemplateId, "XQueryTemplates", "Description");
  if (query.TemplateId <= 0) return;
  LookupQuery row(services, pdssystem,
                  "Select * from XQueryTemplates where id = " + std::to_string(query.TemplateId));
  if (!row.Found()) return;
  query.TemplateSupplier = 0;
  query.TemplateSet = 0;
  const Variant supplier = ColumnValue(row.Rows(), "TemplateSupplier");
  if (!supplier.IsNull()) query.TemplateSupplier = CLng(supplier);
  const Variant set = ColumnValue(row.Rows(), "TemplateSet");
  if (!set.IsNull()) query.TemplateSet = CLng(set);
}

void LoadLevels(ServicePort& services, QueryInterpretor& query) {
  LookupQuery rows(services, pdssystem,
                   "Select * from QueryShapeNests where QueryId = " +
                       std::to_string(query.QueryID) + " Order by Depth , ParentShapeId");
  if (!rows.Found()) return;
  const auto& levels = query.ShapeNests();
  for (Recordset& rs = rows.Rows(); !rs.Eof(); rs.MoveNext()) {
    const int32_t level_id = LongColumn(rs, "ID");
    auto level =
        levels->Add(LongColumn(rs, "BaseTableID"), IntColumn(rs, "Depth"),
                    BoolColumn(rs, "PreExistingWhereClause"), level_id, TextColumn(rs, "ShapeName"),
                    TextColumn(rs, "Title"), Key('S', level_id));
    level->ShapeIndex = IntColumn(rs, "ShapeIndex");
    level->ParentShapeId = LongColumn(rs, "ParentShapeId");
    level->ParentFieldLinkID = LongColumn(rs, "ParentFieldLinkID");
    level->ChildFieldLinkID = LongColumn(rs, "ChildFieldLinkID");
    // The flag marks the parent, the level that has children.
    if (level->ParentShapeId > 0) {
      levels->Item(Key('S', level->ParentShapeId))->bUseParentFieldLink = true;
    }
  }
}

void LoadLevelTables(ServicePort& services, QueryInterpretor& query) {
  // The two blanks before "From" and "Order" are the system's own.
  LookupQuery rows(services, pdssystem,
                   "Select QueryDataTables.*  From QueryDataTables,QueryShapeNests Where "
                   "(QueryShapeNests.QueryId = " +
                       std::to_string(query.QueryID) +
                       " ) And (QueryDataTables.NestedBinding=QueryShapeNests.ID)  Order "
                       "by QueryDataTables.Depth");
  if (!rows.Found()) return;
  for (Recordset& rs = rows.Rows(); !rs.Eof(); rs.MoveNext()) {
    const int32_t table_id = LongColumn(rs, "ID");
    const int32_t data_table_id = LongColumn(rs, "DataTableId");
    const int32_t nested_binding = LongColumn(rs, "NestedBinding");
    const std::string physical_name =
        Description(services, data_table_id, "DataTables", "ValuesTable");
    auto table = query.ShapeNests()
                     ->Item(Key('S', nested_binding))
                     ->OutPutTables()
                     ->Add(data_table_id, TextColumn(rs, "TableAlias"), nested_binding, table_id,
                           LongColumn(rs, "ParentDataField"), LongColumn(rs, "ParentDataTable"),
                           LongColumn(rs, "SourceDataField"), IntColumn(rs, "Depth"),
                           TextColumn(rs, "Title"), physical_name, Key('T', table_id));
    table->ParentDataFieldName =
        Description(services, table->ParentDataField, "DataTableFields", "FieldName");
    // Filled here as well, the same way, so that a join names both of its
    // columns.
    table->SourceDataFieldName =
        Description(services, table->SourceDataField, "DataTableFields", "FieldName");
  }
}

void LoadOutputFields(ServicePort& services, QueryInterpretor& query) {
  // No order: the database's order of these rows is the column order of the
  // statement.
  LookupQuery rows(
      services, pdssystem,
      "Select QueryDataTables.NestedBinding,QueryOutputFields.*,DataTableFields.FieldName "
      "From QueryDataTables,QueryOutputFields,QueryShapeNests,DataTableFields Where "
      "(QueryShapeNests.QueryId = " +
          std::to_string(query.QueryID) +
          " ) And (QueryDataTables.ID=QueryOutputFields.QueryDataTableID) And "
          "(QueryDataTables.NestedBinding=QueryShapeNests.ID) and "
          "(QueryOutputFields.DataFieldID= DataTableFields.ID)");
  if (!rows.Found()) return;
  for (Recordset& rs = rows.Rows(); !rs.Eof(); rs.MoveNext()) {
    const int32_t field_id = LongColumn(rs, "ID");
    const int32_t table_id = LongColumn(rs, "QueryDataTableID");
    auto& level = query.ShapeNests()->Item(Key('S', LongColumn(rs, "NestedBinding")));
    level->OutPutTables()
        ->Item(Key('T', table_id))
        ->OutputFields()
        ->Add(LongColumn(rs, "DataFieldID"), TextColumn(rs, "FieldAlias"),
              static_cast<SpecialFields>(LongColumn(rs, "SpecialField")),
              static_cast<AdvFormatting>(LongColumn(rs, "AdvancedFormatting")), field_id, table_id,
              TextColumn(rs, "SpecialFieldAlias"), TextColumn(rs, "Title"),
              TextColumn(rs, "FieldName"), Key('F', field_id));
    level->SortedOPFields()->Add(
        std::make_shared<Variant>("F" + std::to_string(field_id) + "T" + std::to_string(table_id)));
  }
}

}  // namespace kelvary::query_internal
