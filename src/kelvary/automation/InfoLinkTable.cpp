// The member table of the service object: its settings, its connections,
// every public member in the order of its interface, and its events in
// dispatch order.
#include <memory>
#include <optional>
#include <string>

#include "kelvary/automation/internal/Classes.h"

namespace kelvary::automation {

using internal::ClassBuilder;

namespace {

ParamInfo In(std::string name, ValueKind kind, std::string type_name = "") {
  return ParamInfo{std::move(name), TypeRef{kind, std::move(type_name)}, false, false};
}
ParamInfo InOut(std::string name, ValueKind kind) {
  return ParamInfo{std::move(name), TypeRef{kind, ""}, false, true};
}

std::vector<ParamInfo> ActionHistoryParams(ValueKind key_kind, bool with_continue) {
  std::vector<ParamInfo> p = {
      In("SourceofData", ValueKind::kLong, "ProjectDataSources"),
      In("DBActionType", ValueKind::kLong, "DBRecordActionTypes"),
      In("TableId", ValueKind::kLong),
      In("TableName", ValueKind::kString),
      In("UserId", ValueKind::kLong),
      In("KeyValue1", key_kind),
      In("KeyValue2", key_kind),
      In("KeyField1", ValueKind::kString),
      In("KeyField2", ValueKind::kString),
  };
  if (with_continue) p.push_back(InOut("bContinue", ValueKind::kBoolean));
  return p;
}

std::vector<ParamInfo> RemoteNextIdParams(ValueKind key_kind) {
  return {InOut("ReturnValue", key_kind),
          In("SourceofData", ValueKind::kLong, "ProjectDataSources"),
          In("Table_Name", ValueKind::kString), In("Field_Name", ValueKind::kString),
          In("LimitString", ValueKind::kString)};
}

void AddEvents(ClassBuilder<InfoLink>& b) {
  b.Event("CheckAllowRecordDelete",
          {In("DataTableId", ValueKind::kLong), In("RecID", ValueKind::kLong),
           InOut("bOKTODelete", ValueKind::kBoolean)});
  b.Event("BeforeDeleteRecord",
          {In("DataTableId", ValueKind::kLong), In("RecID", ValueKind::kLong)});
  b.Event("AfterDeleteRecord",
          {In("DataTableId", ValueKind::kLong), In("RecID", ValueKind::kLong)});
  b.Event("RequestRemoteNextID", RemoteNextIdParams(ValueKind::kLong));
  b.Event("BeforePostActionHistory", ActionHistoryParams(ValueKind::kLong, true));
  b.Event("RequestRemoteNextIDAsDouble", RemoteNextIdParams(ValueKind::kDouble));
  b.Event("AfterPostActionHistory", ActionHistoryParams(ValueKind::kLong, false));
  b.Event("BeforePostActionHistoryAsDouble", ActionHistoryParams(ValueKind::kDouble, true));
  b.Event("AfterPostActionHistoryAsDouble", ActionHistoryParams(ValueKind::kDouble, false));
}

}  // namespace

const MemberTable& ClassTraits<InfoLink>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "InfoLink",
        {"{4C486664-52A5-57D5-A099-26197B9A39A5}", "{99AEB843-8CCF-5FB5-955D-739E0B75EDF4}",
         "{815126A5-B300-5DEF-BF21-17248121DF0E}"},
        true, "The service object: connections, record access, look-ups, keys");
    ClassBuilder<InfoLink> b(t);
    using C = InfoLink;
    // Settings.
    b.Field("CurrentUserSessionID", &C::CurrentUserSessionID);
    b.Field("LogFileEntrySetting", &C::LogFileEntrySetting);
    b.Field("DBRole", &C::DBRole);
    b.Field("ORDERFIELD1", &C::ORDERFIELD1);
    b.Field("ORDERFIELD2", &C::ORDERFIELD2);
    b.Field("ORDERFIELD3", &C::ORDERFIELD3);
    b.Field("MainDBType", &C::MainDBType);
    b.Field("CurrentPhysicalLocationID", &C::CurrentPhysicalLocationID);
    b.Field("CurrPhysLocIDPrefix", &C::CurrPhysLocIDPrefix);
    b.Field("GenCodeMethod", &C::GenCodeMethod);
    b.Field("CurrentUserID", &C::CurrentUserID);
    b.Field("UseSafeDelete", &C::UseSafeDelete);
    b.Field("EnableMultiLocationDataTransfer", &C::EnableMultiLocationDataTransfer);
    b.Field("AuditTrailForAdmin", &C::AuditTrailForAdmin);
    b.Field("DefSystemFile", &C::DefSystemFile);
    b.Field("DefMainDataFile", &C::DefMainDataFile);
    b.Property(
        "CoreDataTable", +[](C& c) { return c.CoreDataTable(); },
        +[](C& c, std::string v) { c.CoreDataTable(v); });
    b.Property(
        "AppDataXion", +[](C& c) { return c.AppDataXion(); },
        +[](C& c, std::shared_ptr<Connection> v) { c.AppDataXion(std::move(v)); });
    b.Property(
        "ConfigsXion", +[](C& c) { return c.ConfigsXion(); },
        +[](C& c, std::shared_ptr<Connection> v) { c.ConfigsXion(std::move(v)); });

    // Service object and connections.
    b.Method("ConnectDefault",
             +[](C& c, std::shared_ptr<Connection>& MainXion, std::shared_ptr<Connection>& SysXion,
                 std::string MainDSN, std::string SystemDSN, std::string* DirectXectString) {
               std::optional<std::string> direct;
               if (DirectXectString != nullptr) direct = *DirectXectString;
               return c.ConnectDefault(MainXion, SysXion, MainDSN, SystemDSN, direct);
             },
             {"MainXion", "SysXion", "MainDSN", "SystemDSN", "DirectXectString"});
    b.Method("InterpretUserDataLocation", &C::InterpretUserDataLocation);

    // Record access and SQL history.
    b.Method("FillRecordSet", &C::FillRecordSet,
             {"SourceofData", "rs", "SQLStmt", "CursorType", "LocKType"});
    b.Method("ExecuteSQL", &C::ExecuteSQL, {"SourceofData", "SQLStmt"});
    b.Method("WriteSQLHistory", &C::WriteSQLHistory, {"DoAction", "SqlStr"});
    b.Method("SafelyCloseRecordSet", &C::SafelyCloseRecordSet, {"CloseThis"});
    b.Method("IsValidRecord", &C::IsValidRecord, {"Recs"});
    b.Method("RemoveNonNulls", &C::RemoveNonNulls, {"rs"});
    b.Method("AssignFieldValuesToAllRecs", &C::AssignFieldValuesToAllRecs,
             {"Recs", "FldName", "FldValue"});
    // The error object is the host's (its data-access library's); nothing of
    // it is read.
    b.Method("InterpretRecordErrorStatus",
             +[](C& c, ProjectDataSources srcData, const Variant& ByrefErrObject,
                 std::shared_ptr<Recordset> RecToCheck) {
               (void)ByrefErrObject;
               return c.InterpretRecordErrorStatus(srcData, nullptr, RecToCheck);
             },
             {"srcData", "ByrefErrObject", "RecToCheck"});

    // Dialect helpers.
    b.Method("GetSQLEntityName", &C::GetSQLEntityName, {"SrcStr"});
    b.Method("GetInvertedCommaSafeString", &C::GetInvertedCommaSafeString, {"OrgStr"});
    b.Method("FormatDateToDBStr", &C::FormatDateToDBStr, {"SrcDate"});
    b.Method("CreateCheckForNullStmt", &C::CreateCheckForNullStmt, {"FldName"});
    b.Method("GetNameClause", &C::GetNameClause, {"TblName", "PrefixFld", "alias"});
    b.Method("CreateAlphaClause", &C::CreateAlphaClause, {"ComparisionField", "tb"});
    b.Method("GetCombinedPhone", &C::GetCombinedPhone, {"Ph1", "Ph2"});

    // Comparison and date-range clauses.
    b.Method("GetComparisionClause", &C::GetComparisionClause,
             {"FldName", "DType", "CompareType", "SUBOperator", "CompareValue1", "CompareValue2",
              "bReverse", "bUseXtal"});
    b.Method("GetBooleanCompareClause", &C::GetBooleanCompareClause,
             {"FldName", "CompareType", "booleanVal", "bUseXtal"});
    b.Method("GetComparisionClauseForDefEqual", &C::GetComparisionClauseForDefEqual,
             {"FldName", "GDType", "CompareValue", "bReverse", "bUseXtal"});
    b.Method("GetDateSqlFromValues", &C::GetDateSqlFromValues,
             {"FieldName", "CurrentSpecs", "DateFrom", "DateTo", "bUseXtalFmla"});
    b.Method("GetDateSqlFromControls", &C::GetDateSqlFromControls,
             {"FieldName", "CurrentSpecs", "DateFrom", "DateTo"});

    // Metadata cache and search links.
    b.Method("InitLists", &C::InitLists, {"bFSLnx", "bMSlcts"});
    b.Method("GetSearchLinkDetails", &C::GetSearchLinkDetails,
             {"SearchLinkID", "SearchDisplayField", "SearchValueField", "SearchTable",
              "SearchTableName", "SourceData", "SQLStmt", "SelectCaption", "HasManyEntries",
              "DefNewScreenID", "SecondaryDisplayField"});
    b.Method("GetDescription", &C::GetDescription, {"SearchLinkID", "CurrValue", "NumCharSpace"});
    b.Method("GetSrchlinkControlType", &C::GetSrchlinkControlType, {"SrchLnk", "HasLotsaEntries"});
    b.Method("GetDefinitionTable", &C::GetDefinitionTable, {"SearchLink"});

    // Value look-ups.
    b.Method("GetCoreName", &C::GetCoreName, {"CoreCode", "TblName", "NumCharSpace"});
    b.Method("GetDescriptionFromCode", &C::GetDescriptionFromCode,
             {"CurrValue", "TableName", "descriptionField", "ValueField", "Dtsrc", "SQLStmt",
              "NumCharSpace", "SecondaryDisplayField"});
    b.Method("GetCorrespondingValue", &C::GetCorrespondingValue,
             {"SearchValue", "TableName", "OutPutField", "Searchfield", "Dtsrc", "SQLStmt"});
    b.Method("GetCorrespondingValueFromText", &C::GetCorrespondingValueFromText,
             {"SearchText", "TableName", "OutPutField", "Searchfield", "Dtsrc", "SQLStmt"});
    b.Method("GetHierarchicalParentNonZeroLongValue", &C::GetHierarchicalParentNonZeroLongValue,
             {"StartFromID", "TblName", "ParentFieldName", "ValueFieldName", "DatSrc"});
    b.Method("IsCheckListAttributeEnabled", &C::IsCheckListAttributeEnabled,
             {"SourceofData", "TableName", "AttributeField", "AttributeValue", "SourceField",
              "SrcFieldValue"});
    b.Method("GetTableIDFromName", &C::GetTableIDFromName, {"TblName"});

    // Multi-select lists.
    b.Method(
        "SupplyMultiListdata", &C::SupplyMultiListdata,
        {"MultiListID", "DescriptionTbl", "SqlStr", "DisplayField", "ValueField", "SrchLinkId"});
    b.Method("GetMultiListParentWnd", &C::GetMultiListParentWnd, {"MultiListID", "SrchLnkID"});
    b.Method("GetMultiSettings", &C::GetMultiSettings,
             {"MultiListID", "StorageTableName", "ParentTableName"});
    b.Method("FillWithMultiListOptions", &C::FillWithMultiListOptions, {"ParentSrchLnk", "fcb"});
    b.Method("GetMultiSelectSQL", &C::GetMultiSelectSQL,
             {"NegativeMultiOption", "SrchDisplayFld", "SrchValueField", "SourceofData"});
    b.Method("GetMultiString", &C::GetMultiString, {"MultiLinkId", "ParentID"});

    // List-control filling.
    b.Method("FillComboWithOptions", &C::FillComboWithOptions, {"cb", "SearchLinkID"});
    b.Method("FillComboWithSQL", &C::FillComboWithSQL,
             {"cb", "SourceData", "SQLStmt", "SearchDisplayField", "SearchValueField",
              "bSelectFirst", "bDontClear"});
    b.Method("AddRecsToCombo", &C::AddRecsToCombo, {"Recs", "DescField", "ValFld", "fc"});
    b.Method("RefreshHierarchicalList", &C::RefreshHierarchicalList,
             {"SourceofData", "fc", "DescFld", "IDFld", "TableName", "FilterString"});
    b.Method("FillComboWithValidDataTypes", &C::FillComboWithValidDataTypes,
             {"cb", "DataFormatUsageID"});

    // Key generation.
    b.Method("GenerateNumericCode", &C::GenerateNumericCode,
             {"SourceofData", "Table_Name", "Field_Name", "LimitString"});
    b.Method("GenerateNumericCodeAsDouble", &C::GenerateNumericCodeAsDouble,
             {"SourceofData", "Table_Name", "Field_Name", "LimitString"});
    b.Method("UpdateTableMaxID", &C::UpdateTableMaxID, {"Table_Name", "MaxCd"});
    b.Method("GetRegNo", &C::GetRegNo, {"FName", "MName", "LName"});

    // Safe delete and action history.
    b.Method("SafeDeleteRecord", &C::SafeDeleteRecord,
             {"SourceofData", "DTableId", "TblName", "UserId", "KeyValue1", "KeyValue2",
              "KeyField1", "KeyField2", "RealRecs"});
    b.Method("MassSafeDeleteEntries", &C::MassSafeDeleteEntries,
             {"SourceofData", "DTableId", "TblName", "UserId", "KeyValue1", "KeyValue2",
              "ConditionSQL", "KeyField1", "KeyField2", "RealRecs"});
    b.Method("GetKeyFieldSQL", &C::GetKeyFieldSQL,
             {"bOnlyWhereClause", "TableName", "KeyValue1", "KeyValue2", "KeyField1", "KeyField2"});
    b.Method("GetShowableRecordClause", &C::GetShowableRecordClause, {"TableName", "bAddAndToIt"});
    b.Method("PostRecordActionHistory", &C::PostRecordActionHistory,
             {"SourceofData", "DBActionType", "TableId", "TableName", "UserId", "KeyValue1",
              "KeyValue2", "KeyField1", "KeyField2"});
    b.Method("PostRecordActionHistoryAsDouble", &C::PostRecordActionHistoryAsDouble,
             {"SourceofData", "DBActionType", "TableId", "TableName", "UserId", "KeyValue1",
              "KeyValue2", "KeyField1", "KeyField2"});

    // Sample data.
    b.Method("DoesSampleDataExist", &C::DoesSampleDataExist);
    b.Method("DeleteSampleData", &C::DeleteSampleData);

    AddEvents(b);
    return t;
  }();
  return table;
}

}  // namespace kelvary::automation
