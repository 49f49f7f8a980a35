// The classes that have member tables, for the tables' own sources: the
// ClassTraits specialisations and the views of a recordset and a connection
// that have no native class of their own (a recordset's Fields collection and
// one Field, a connection's Errors collection and one Error).
#pragma once

#include <cstdint>
#include <memory>

#include "kelvary/automation/internal/Binding.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/platform/Command.h"
#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/querymodel/QueryModel.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::automation {

namespace internal {
// RecordsetFields: the Fields collection of a recordset.
struct RecordsetFields {
  std::shared_ptr<Recordset> recordset;
};
// RecordsetField: one field of a recordset, by ordinal.
struct RecordsetField {
  std::shared_ptr<Recordset> recordset;
  int32_t ordinal = 0;
  kelvary::Field& Native() const { return recordset->Fields(ordinal); }
};
// ConnectionErrors: the Errors collection of a connection: the errors of its
// last failed operation, read as they are now.
struct ConnectionErrors {
  std::shared_ptr<Connection> connection;
};
// ConnectionError: one of them, by position.
struct ConnectionError {
  std::shared_ptr<Connection> connection;
  int32_t index = 0;
  const kelvary::Error& Native() const;  // raises 3265 once the error is gone
};
// The facets of a recordset's identity: the recordset itself, its Fields,
// and each field (kFieldFacet + ordinal); a connection's likewise, with its
// Errors and each error.
inline constexpr int64_t kFieldsFacet = 1;
inline constexpr int64_t kFieldFacet = 2;
inline Identity IdentityOf(const std::shared_ptr<RecordsetFields>& fields) {
  return Identity{fields->recordset.get(), kFieldsFacet};
}
inline Identity IdentityOf(const std::shared_ptr<RecordsetField>& field) {
  return Identity{field->recordset.get(), kFieldFacet + field->ordinal};
}
inline Identity IdentityOf(const std::shared_ptr<ConnectionErrors>& errors) {
  return Identity{errors->connection.get(), kFieldsFacet};
}
inline Identity IdentityOf(const std::shared_ptr<ConnectionError>& error) {
  return Identity{error->connection.get(), kFieldFacet + error->index};
}
// CommandParameters: the Parameters collection of a command (its facet 1).
struct CommandParameters {
  std::shared_ptr<Command> command;
};
inline constexpr int64_t kParametersFacet = 1;
inline Identity IdentityOf(const std::shared_ptr<CommandParameters>& parameters) {
  return Identity{parameters->command.get(), kParametersFacet};
}
}  // namespace internal

#define KELVARY_AUTOMATION_ENUM(E)           \
  template <>                                \
  struct internal::EnumName<E> {             \
    static constexpr const char* value = #E; \
  };

KELVARY_AUTOMATION_ENUM(ProjectDataSources)
KELVARY_AUTOMATION_ENUM(StdDBTypes)
KELVARY_AUTOMATION_ENUM(DBRoles)
KELVARY_AUTOMATION_ENUM(LogFileEntryTypes)
KELVARY_AUTOMATION_ENUM(CodeGenMethods)
KELVARY_AUTOMATION_ENUM(EventTypes)
KELVARY_AUTOMATION_ENUM(Deletabilities)
KELVARY_AUTOMATION_ENUM(DBRecordActionTypes)
KELVARY_AUTOMATION_ENUM(DataTableProps)
KELVARY_AUTOMATION_ENUM(DataTableFieldProps)
KELVARY_AUTOMATION_ENUM(CompareTypes)
KELVARY_AUTOMATION_ENUM(GeneralDataTypes)
KELVARY_AUTOMATION_ENUM(FieldDataTypes)
KELVARY_AUTOMATION_ENUM(DateRangeSpecs)
KELVARY_AUTOMATION_ENUM(ControlTypes)
KELVARY_AUTOMATION_ENUM(QueryBuildMethods)
KELVARY_AUTOMATION_ENUM(SpecialFields)
KELVARY_AUTOMATION_ENUM(AdvFormatting)
KELVARY_AUTOMATION_ENUM(SpecialRecordLayouts)
KELVARY_AUTOMATION_ENUM(NodeTypes)
KELVARY_AUTOMATION_ENUM(NullActions)
KELVARY_AUTOMATION_ENUM(CursorLocationEnum)
KELVARY_AUTOMATION_ENUM(CursorTypeEnum)
KELVARY_AUTOMATION_ENUM(LockTypeEnum)
KELVARY_AUTOMATION_ENUM(ObjectStateEnum)
KELVARY_AUTOMATION_ENUM(EditModeEnum)
KELVARY_AUTOMATION_ENUM(SearchDirectionEnum)
KELVARY_AUTOMATION_ENUM(BookmarkEnum)
KELVARY_AUTOMATION_ENUM(CommandOptionsEnum)
KELVARY_AUTOMATION_ENUM(DataTypeEnum)
KELVARY_AUTOMATION_ENUM(FieldStatusEnum)

#undef KELVARY_AUTOMATION_ENUM

#define KELVARY_AUTOMATION_CLASS(C, name)      \
  template <>                                  \
  struct ClassTraits<C> {                      \
    static constexpr const char* kName = name; \
    static const MemberTable& Table();         \
  };

KELVARY_AUTOMATION_CLASS(InfoLink, "InfoLink")
KELVARY_AUTOMATION_CLASS(QueryInterpretor, "QueryInterpretor")
KELVARY_AUTOMATION_CLASS(QueryShapeNest, "QueryShapeNest")
KELVARY_AUTOMATION_CLASS(QueryShapeNests, "QueryShapeNests")
KELVARY_AUTOMATION_CLASS(QueryDataTable, "QueryDataTable")
KELVARY_AUTOMATION_CLASS(QueryDataTables, "QueryDataTables")
KELVARY_AUTOMATION_CLASS(QueryOutputField, "QueryOutputField")
KELVARY_AUTOMATION_CLASS(QueryOutputFields, "QueryOutputFields")
KELVARY_AUTOMATION_CLASS(QueryTemplateSortOption, "QueryTemplateSortOption")
KELVARY_AUTOMATION_CLASS(QueryTemplateSortOptions, "QueryTemplateSortOptions")
KELVARY_AUTOMATION_CLASS(ConditionNode, "ConditionNode")
KELVARY_AUTOMATION_CLASS(ConditionNodes, "ConditionNodes")
KELVARY_AUTOMATION_CLASS(RepParam, "RepParam")
KELVARY_AUTOMATION_CLASS(RepParams, "RepParams")
KELVARY_AUTOMATION_CLASS(ValueSet, "ValueSet")
KELVARY_AUTOMATION_CLASS(ValueSets, "ValueSets")
KELVARY_AUTOMATION_CLASS(FieldLink, "FieldLink")
KELVARY_AUTOMATION_CLASS(FieldLinks, "FieldLinks")
KELVARY_AUTOMATION_CLASS(Connection, "Connection")
KELVARY_AUTOMATION_CLASS(Recordset, "Recordset")
KELVARY_AUTOMATION_CLASS(GeneralCollection, "KeyedCollection")
KELVARY_AUTOMATION_CLASS(internal::RecordsetFields, "Fields")
KELVARY_AUTOMATION_CLASS(internal::RecordsetField, "Field")
KELVARY_AUTOMATION_CLASS(internal::ConnectionErrors, "Errors")
KELVARY_AUTOMATION_CLASS(internal::ConnectionError, "Error")
KELVARY_AUTOMATION_CLASS(Command, "Command")
KELVARY_AUTOMATION_CLASS(Parameter, "Parameter")
KELVARY_AUTOMATION_CLASS(internal::CommandParameters, "Parameters")

#undef KELVARY_AUTOMATION_CLASS

}  // namespace kelvary::automation
