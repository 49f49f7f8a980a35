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

    AddEvents(b);
    return t;
  }();
  return table;
}

}  // namespace kelvary::automation
