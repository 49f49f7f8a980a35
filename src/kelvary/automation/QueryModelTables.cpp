// The member tables of the query model: the eight record classes, each
// exposing its fields as properties in their declared order, then its
// methods; and their eight collections.
#include <optional>
#include <string>

#include "kelvary/automation/internal/Classes.h"
#include "kelvary/automation/internal/CollectionMembers.h"

namespace kelvary::automation {

using internal::AddCollectionMembers;
using internal::ClassBuilder;

using OptKey = std::optional<std::string>;

const MemberTable& ClassTraits<QueryShapeNest>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryShapeNest",
        {"{FB7F7CF8-A862-5E7D-83AF-C5741E88AA13}", "{0A9B9B19-6CE4-5B13-BC8F-ECE96E73DEBF}", ""},
        true, "One level of a shaped query");
    ClassBuilder<QueryShapeNest> b(t);
    using C = QueryShapeNest;
    b.Field("BaseTableID", &C::BaseTableID);
    b.Field("ShapeIndex", &C::ShapeIndex);
    b.Field("ParentShapeId", &C::ParentShapeId);
    b.Field("SpecialRecLayout", &C::SpecialRecLayout);
    b.Field("bUseParentFieldLink", &C::bUseParentFieldLink);
    b.Field("ParentFieldLinkID", &C::ParentFieldLinkID);
    b.Field("ChildFieldLinkID", &C::ChildFieldLinkID);
    b.Field("ParentFieldLinkName", &C::ParentFieldLinkName);
    b.Field("ChildFieldLinkName", &C::ChildFieldLinkName);
    b.Field("Depth", &C::Depth);
    b.Field("ID", &C::ID);
    b.Field("PreExistingWhereClause", &C::PreExistingWhereClause);
    b.Field("FieldsList", &C::FieldsList);
    b.Field("TablesList", &C::TablesList);
    b.Field("TableJoins", &C::TableJoins);
    b.Field("GroupByList", &C::GroupByList);
    b.Field("HavingList", &C::HavingList);
    b.Field("AssignedWhereClause", &C::AssignedWhereClause);
    b.Field("AssignedSortClause", &C::AssignedSortClause);
    b.Field("ShapeName", &C::ShapeName);
    b.Field("Title", &C::Title);
    b.Property(
        "SortedOPFields", +[](C& c) { return c.SortedOPFields(); },
        +[](C& c, std::shared_ptr<GeneralCollection> v) { c.SortedOPFields(std::move(v)); });
    b.Property(
        "OutPutTables", +[](C& c) { return c.OutPutTables(); },
        +[](C& c, std::shared_ptr<QueryDataTables> v) { c.OutPutTables(std::move(v)); });
    b.Method("ClearTables", &C::ClearTables);
    b.Method("UpdateSqlStmts", &C::UpdateSqlStmts);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryShapeNests>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryShapeNests",
        {"{AF17B659-DBBF-528B-AC5D-4EB83B291A17}", "{CB448343-1C01-5A0A-B19C-C58A8415BE5E}", ""},
        true, "The levels of a query");
    ClassBuilder<QueryShapeNests> b(t);
    b.Method(
        "Add",
        +[](QueryShapeNests& c, int32_t BaseTableID, int16_t Level, bool PreExistingWhereClause,
            int32_t ID, std::string ShapeName, std::string Title, OptKey sKey) {
          return c.Add(BaseTableID, Level, PreExistingWhereClause, ID, ShapeName, Title,
                       sKey.value_or(""));
        },
        {"BaseTableID", "Level", "PreExistingWhereClause", "ID", "ShapeName", "Title", "sKey"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryDataTable>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryDataTable",
        {"{58AC983D-9BB7-5529-8547-561F410DF6D1}", "{E0FEC1C7-EC0D-5078-B742-5C35E33C2A82}", ""},
        true, "One source table of a shape level");
    ClassBuilder<QueryDataTable> b(t);
    using C = QueryDataTable;
    b.Field("NestedBinding", &C::NestedBinding);
    b.Field("TableAlias", &C::TableAlias);
    b.Field("TableName", &C::TableName);
    b.Field("DataTableId", &C::DataTableId);
    b.Field("Depth", &C::Depth);
    b.Field("ID", &C::ID);
    b.Field("ParentDataTable", &C::ParentDataTable);
    b.Field("ParentDataField", &C::ParentDataField);
    b.Field("SourceDataField", &C::SourceDataField);
    b.Field("ParentDataFieldName", &C::ParentDataFieldName);
    b.Field("SourceDataFieldName", &C::SourceDataFieldName);
    b.Field("Title", &C::Title);
    b.Property(
        "OutputFields", +[](C& c) { return c.OutputFields(); },
        +[](C& c, std::shared_ptr<QueryOutputFields> v) { c.OutputFields(std::move(v)); });
    b.Method("ClearFields", &C::ClearFields);
    b.Method("GetSQLName", &C::GetSQLName);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryDataTables>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryDataTables",
        {"{FB6B3F18-D24B-590F-8005-D674379097BD}", "{7201A6E9-47DE-5275-8165-0C0DF1861E75}", ""},
        true, "The source tables of a shape level");
    ClassBuilder<QueryDataTables> b(t);
    b.Method(
        "Add",
        +[](QueryDataTables& c, int32_t DataTableId, std::string TableAlias, int32_t NestedBinding,
            int32_t ID, int32_t ParentDataFieldID, int32_t ParentDataTableID,
            int32_t SourceDataFieldID, int16_t LevelIndex, std::string Title, std::string TableName,
            OptKey sKey) {
          return c.Add(DataTableId, TableAlias, NestedBinding, ID, ParentDataFieldID,
                       ParentDataTableID, SourceDataFieldID, LevelIndex, Title, TableName,
                       sKey.value_or(""));
        },
        {"DataTableId", "TableAlias", "NestedBinding", "ID", "ParentDataFieldID",
         "ParentDataTableID", "SourceDataFieldID", "LevelIndex", "Title", "TableName", "sKey"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryOutputField>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryOutputField",
        {"{4A68A2F6-5FFA-5A5D-AF81-42386863B85F}", "{8FE2E737-4760-596D-B1DF-C1ED9BD21953}", ""},
        true, "One output column of a query");
    ClassBuilder<QueryOutputField> b(t);
    using C = QueryOutputField;
    b.Field("DataFieldID", &C::DataFieldID);
    b.Field("FieldAlias", &C::FieldAlias);
    b.Field("SpecialField", &C::SpecialField);
    b.Field("SpecialFieldAlias", &C::SpecialFieldAlias);
    b.Field("AdvancedFormatting", &C::AdvancedFormatting);
    b.Field("QueryDataTableID", &C::QueryDataTableID);
    b.Field("ID", &C::ID);
    b.Field("Title", &C::Title);
    b.Field("FieldName", &C::FieldName);
    b.Field("DisplayOrder", &C::DisplayOrder);
    b.Method("GetEfectiveFieldName", &C::GetEfectiveFieldName);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryOutputFields>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryOutputFields",
        {"{5A292FFA-54F8-5CA8-B425-71B8855B039E}", "{9576D6FB-C6C6-58DF-8CF7-7C352B838104}", ""},
        true, "The output columns of a source table");
    ClassBuilder<QueryOutputFields> b(t);
    b.Method("Add",
             +[](QueryOutputFields& c, int32_t DataFieldID, std::string FieldAlias,
                 SpecialFields SpecialField, AdvFormatting AdvancedFormatting, int32_t ID,
                 int32_t QueryDataTableID, std::string SpecialFieldAlias, std::string Title,
                 std::string FieldName, OptKey sKey) {
               return c.Add(DataFieldID, FieldAlias, SpecialField, AdvancedFormatting, ID,
                            QueryDataTableID, SpecialFieldAlias, Title, FieldName,
                            sKey.value_or(""));
             },
             {"DataFieldID", "FieldAlias", "SpecialField", "AdvancedFormatting", "ID",
              "QueryDataTableID", "SpecialFieldAlias", "Title", "FieldName", "sKey"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryTemplateSortOption>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryTemplateSortOption",
        {"{8EEB1D26-0BBF-5137-8CAA-F805D521BA77}", "{8079E598-D8BB-512C-9EDB-8C00C552A356}", ""},
        true, "One sort choice of a query template");
    ClassBuilder<QueryTemplateSortOption> b(t);
    using C = QueryTemplateSortOption;
    b.Field("SortDescending", &C::SortDescending);
    b.Field("SortOrder", &C::SortOrder);
    b.Field("ShapeNestBindings", &C::ShapeNestBindings);
    b.Field("ID", &C::ID);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<QueryTemplateSortOptions>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryTemplateSortOptions",
        {"{C53D746F-682C-5D8E-A9C0-84CC895D3647}", "{29277135-7B0A-5D08-950E-240387675ACC}", ""},
        true, "The sort choices of a query template");
    ClassBuilder<QueryTemplateSortOptions> b(t);
    b.Method("Add",
             +[](QueryTemplateSortOptions& c, bool SortDescending, int16_t SortOrder,
                 int32_t ShapeNestBindings, OptKey sKey) {
               return c.Add(SortDescending, SortOrder, ShapeNestBindings, sKey.value_or(""));
             },
             {"SortDescending", "SortOrder", "ShapeNestBindings", "sKey"});
    AddCollectionMembers(b);
    b.Method("GetSqlPhrase", &QueryTemplateSortOptions::GetSqlPhrase);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<ConditionNode>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "ConditionNode",
        {"{4CE66CBD-E44A-59F2-A873-B9A4DA5133FE}", "{0F777158-1E65-5CD8-8A5E-1D0F73CCCCDC}", ""},
        true, "One AND/OR group of a query's conditions");
    ClassBuilder<ConditionNode> b(t);
    using C = ConditionNode;
    b.Field("ID", &C::ID);
    b.Property(
        "ChildConditions", +[](C& c) { return c.ChildConditions(); },
        +[](C& c, std::shared_ptr<RepParams> v) { c.ChildConditions(std::move(v)); });
    b.Field("NodeType", &C::NodeType);
    b.Field("NodeLevel", &C::NodeLevel);
    b.Field("NestedBinding", &C::NestedBinding);
    b.Field("ParentGroupId", &C::ParentGroupId);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<ConditionNodes>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "ConditionNodes",
        {"{24AF76B0-9304-5565-8F62-71471BA88427}", "{BC9ADCC9-6C9C-51C6-A32A-B5E429659286}", ""},
        true, "The condition groups of a query");
    ClassBuilder<ConditionNodes> b(t);
    b.Method("Add",
             +[](ConditionNodes& c, int32_t ParentGroupId, int16_t NodeLevel, NodeTypes NodeType,
                 int32_t NestedBinding, int32_t UniqueId, OptKey sKey) {
               return c.Add(ParentGroupId, NodeLevel, NodeType, NestedBinding, UniqueId,
                            sKey.value_or(""));
             },
             {"ParentGroupId", "NodeLevel", "NodeType", "NestedBinding", "UniqueId", "sKey"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<RepParam>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "RepParam",
        {"{C1B6FC09-0561-557F-A25D-9C9A0BEF3D33}", "{81EECFAE-B026-54EA-BBE0-4C3ACDBDD7B3}", ""},
        true, "One condition of a query on one field");
    ClassBuilder<RepParam> b(t);
    using C = RepParam;
    b.Field("ConditionID", &C::ConditionID);
    b.Field("ID", &C::ID);
    b.Field("DataFormat", &C::DataFormat);
    b.Field("SearchLinkID", &C::SearchLinkID);
    b.Field("HasManyEntries", &C::HasManyEntries);
    b.Field("Units", &C::Units);
    b.Field("Value1", &C::Value1);
    b.Field("Value1Description", &C::Value1Description);
    b.Field("Value2", &C::Value2);
    b.Field("Value2Description", &C::Value2Description);
    b.Field("Reverse", &C::Reverse);
    b.Field("Operator", &C::Operator);
    b.Field("SUBOperator", &C::SUBOperator);
    b.Field("Hidden", &C::Hidden);
    b.Field("Essential", &C::Essential);
    b.Field("Removable", &C::Removable);
    b.Field("ValueChangeble", &C::ValueChangeble);
    b.Field("QueryDataTableID", &C::QueryDataTableID);
    b.Field("DataFieldID", &C::DataFieldID);
    b.Field("CodeChar", &C::CodeChar);
    b.Field("FieldName", &C::FieldName);
    b.Field("Title", &C::Title);
    b.Method("IsSelectionValid", &C::IsSelectionValid);
    b.Method("GetSimpleText", &C::GetSimpleText);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<RepParams>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "RepParams",
        {"{F13E6B7C-A401-5816-8A12-2C761FD9F205}", "{9ACDF02E-CFD0-5020-A5F7-34ADE23E84AD}", ""},
        true, "The conditions of a condition group");
    ClassBuilder<RepParams> b(t);
    b.Method(
        "Add",
        +[](RepParams& c, int32_t ID, int32_t DataFieldID, bool Hidden, bool Essential,
            OptKey sKey) { return c.Add(ID, DataFieldID, Hidden, Essential, sKey.value_or("")); },
        {"ID", "DataFieldID", "Hidden", "Essential", "sKey"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<ValueSet>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "ValueSet",
        {"{44D84C84-C971-5027-8318-59E5FDAE73C4}", "{03CBF7FF-922E-5D27-B180-2BFDF0DE20BE}", ""},
        true, "A value with its data type, default and scope");
    ClassBuilder<ValueSet> b(t);
    using C = ValueSet;
    b.Field("ID", &C::ID);
    b.Field("Value", &C::Value);
    b.Field("ValDataType", &C::ValDataType);
    b.Field("DefaultValue", &C::DefaultValue);
    b.Field("Scope", &C::Scope);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<ValueSets>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "ValueSets",
        {"{F83F153C-074A-5758-B954-5A3913F14A13}", "{49C7234F-E036-5CE4-826A-D79A778C883C}", ""},
        true, "A collection of values");
    ClassBuilder<ValueSets> b(t);
    b.Method("Add",
             +[](ValueSets& c, const Variant& Value, int32_t ID, OptKey sKey,
                 std::optional<FieldDataTypes> ValDataType, std::optional<Variant> DefaultValue,
                 std::optional<int16_t> Scope) {
               return c.Add(Value, ID, sKey.value_or(""), ValDataType, DefaultValue, Scope);
             },
             {"Value", "ID", "sKey", "ValDataType", "DefaultValue", "Scope"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<FieldLink>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "FieldLink",
        {"{EFAE9D2C-59C9-518B-AB5C-86AE3BF510C5}", "{3C69C82D-77DF-5C42-B657-CA082B34230B}", ""},
        true, "One data field bound to one input control of a host form");
    ClassBuilder<FieldLink> b(t);
    using C = FieldLink;
    b.Field("FieldName", &C::FieldName);
    b.Field("Caption", &C::Caption);
    b.Field("DataType", &C::DataType);
    b.Field("DefaultValue", &C::DefaultValue);
    b.Field("ControlName", &C::ControlName);
    b.Field("ControlIndex", &C::ControlIndex);
    b.Field("PolicyFlags", &C::PolicyFlags);
    b.Field("NullAction", &C::NullAction);
    b.Field("FieldID", &C::FieldID);
    b.Field("ControlType", &C::ControlType);
    b.Field("MaxLength", &C::MaxLength);
    b.Field("FormatStyle", &C::FormatStyle);
    b.Field("DisplayUnits", &C::DisplayUnits);
    b.Field("xLeft", &C::xLeft);
    b.Field("yTop", &C::yTop);
    b.Field("ControlWidth", &C::ControlWidth);
    b.Field("ControlHeight", &C::ControlHeight);
    b.Field("SearchLinkID", &C::SearchLinkID);
    b.Field("HasManyEntries", &C::HasManyEntries);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<FieldLinks>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "FieldLinks",
        {"{B25CC68B-E9C6-5AC3-A900-45E498DCA7FB}", "{21CE692A-4A04-58EA-83C3-FE4B908D1E77}", ""},
        true, "The field links of a host form");
    ClassBuilder<FieldLinks> b(t);
    b.Method("Add",
             +[](FieldLinks& c, int32_t ID, NullActions NullAction, ControlTypes TypeOfControl,
                 int16_t ControlIndex, std::string ControlName, const Variant& DefaultValue,
                 FieldDataTypes DataType, std::string Caption, OptKey sKey) {
               return c.Add(ID, NullAction, TypeOfControl, ControlIndex, ControlName, DefaultValue,
                            DataType, Caption, sKey.value_or(""));
             },
             {"ID", "NullAction", "TypeOfControl", "ControlIndex", "ControlName", "DefaultValue",
              "DataType", "Caption", "sKey"});
    AddCollectionMembers(b);
    return t;
  }();
  return table;
}

// The general keyed collection: any values (texts, numbers, objects) by
// position or key; a shape level keeps its sorted output fields in one.
const MemberTable& ClassTraits<GeneralCollection>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "KeyedCollection",
        {"{90EFEC96-72A6-5F7B-A587-AACB755C60F8}", "{512CA490-2C27-56C4-B088-AD740B66CE96}", ""},
        true, "An ordered collection of values with optional keys");
    ClassBuilder<GeneralCollection> b(t);
    using C = GeneralCollection;
    b.Method("Add",
             +[](C& c, const Variant& Item, OptKey Key) {
               c.Add(std::make_shared<Variant>(Item), Key.value_or(""));
             },
             {"Item", "Key"});
    b.Getter(
        "Item", +[](C& c, const Variant& Index) { return *c.Item(ValueOf(Index)); }, {"Index"},
        kDispIdValue);
    b.Getter(
        "Count", +[](C& c) { return c.Count(); });
    b.Method("Remove", +[](C& c, const Variant& Index) { c.Remove(ValueOf(Index)); }, {"Index"});
    b.Getter(
        "NewEnum",
        +[](C& c) {
          std::vector<Variant> items;
          for (const auto& member : c)
            items.push_back(ToHost(*member));
          return std::make_shared<Enumerator>(std::move(items));
        },
        {}, kDispIdNewEnum);
    b.Method(
        "Clear", +[](C& c) { c.Clear(); });
    return t;
  }();
  return table;
}

}  // namespace kelvary::automation
