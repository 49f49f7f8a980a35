// The member table of the query interpreter.
#include <memory>
#include <string>

#include "kelvary/automation/internal/Classes.h"

namespace kelvary::automation {

using internal::ClassBuilder;

const MemberTable& ClassTraits<QueryInterpretor>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "QueryInterpretor",
        {"{E24DC1AD-6BB6-5C19-812A-8125434EEEEB}", "{21C44E65-B361-5C31-85C4-0C6858A6B226}", ""},
        true, "Turns a stored query definition into its statement");
    ClassBuilder<QueryInterpretor> b(t);
    using C = QueryInterpretor;
    b.Field("QueryBuildMethod", &C::QueryBuildMethod);
    b.Field("DataSupplier", &C::DataSupplier);
    b.Field("IsSystemData", &C::IsSystemData);
    b.Field("NumNestedLevels", &C::NumNestedLevels);
    b.Field("InterpretXtal", &C::InterpretXtal);
    b.Field("RawSQL", &C::RawSQL);
    b.Field("FinalSQLStmt", &C::FinalSQLStmt);
    b.Field("bProgramAssignedWhereClause", &C::bProgramAssignedWhereClause);
    b.Field("UniqueRecordId", &C::UniqueRecordId);
    b.Property(
        "ShapeNests", +[](C& c) { return c.ShapeNests(); },
        +[](C& c, std::shared_ptr<QueryShapeNests> v) { c.ShapeNests(std::move(v)); });
    b.Property(
        "TemplateSortOptions", +[](C& c) { return c.TemplateSortOptions(); },
        +[](C& c, std::shared_ptr<QueryTemplateSortOptions> v) {
          c.TemplateSortOptions(std::move(v));
        });
    b.Field("RepKey", &C::RepKey);
    b.Field("QueryID", &C::QueryID);
    b.Field("TemplateId", &C::TemplateId);
    b.Property(
        "CurrentConditions", +[](C& c) { return c.CurrentConditions(); },
        +[](C& c, std::shared_ptr<ConditionNodes> v) { c.CurrentConditions(std::move(v)); });
    b.Field("TemplateDescription", &C::TemplateDescription);
    b.Field("OptionsDisplayed", &C::OptionsDisplayed);
    b.Field("TemplateSet", &C::TemplateSet);
    b.Field("TemplateSupplier", &C::TemplateSupplier);
    b.Method("IsSimpleTemplate", &C::IsSimpleTemplate);
    b.Method("InitSettings", &C::InitSettings,
             {"RepStr", "QueryCode", "QueryTemplateId", "bSupportXtal"});
    b.Method("EncodeSQLStmt", &C::EncodeSQLStmt);
    b.Method("AssignRecordSet", &C::AssignRecordSet, {"RepData"});
    b.Method("AssignIDBasedWhereClause", &C::AssignIDBasedWhereClause,
             {"DTableId", "EntryID", "FieldID", "FieldName"});
    b.Method("GetConditionString", &C::GetConditionString, {"cd"});
    b.Method("GetSqlPhrase", &C::GetSqlPhrase, {"RP", "bSupportXtal", "FldName"});
    b.Method("AreThereAnyParameters", &C::AreThereAnyParameters, {"bRequiredOnesOnly"});
    b.Method("AreNeededParametersOK", &C::AreNeededParametersOK);
    b.Method("GetCurrentSpecs", &C::GetCurrentSpecs);
    return t;
  }();
  return table;
}

}  // namespace kelvary::automation
