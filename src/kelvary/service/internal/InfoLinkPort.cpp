#include "kelvary/service/internal/InfoLinkPort.h"

namespace kelvary {

bool InfoLinkPort::FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                                 const std::string& SQLStmt, CursorTypeEnum CursorType,
                                 LockTypeEnum LocKType) {
  return link_.FillRecordSet(SourceofData, rs, SQLStmt, CursorType, LocKType);
}

bool InfoLinkPort::ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt) {
  return link_.ExecuteSQL(SourceofData, SQLStmt);
}

std::shared_ptr<Connection> InfoLinkPort::ConnectionFor(ProjectDataSources SourceofData) const {
  return link_.ConnectionFor(SourceofData);
}

ServiceSettings InfoLinkPort::Settings() const {
  ServiceSettings settings;
  settings.GenCodeMethod = link_.GenCodeMethod;
  settings.CurrentPhysicalLocationID = link_.CurrentPhysicalLocationID;
  settings.CurrPhysLocIDPrefix = link_.CurrPhysLocIDPrefix;
  settings.UseSafeDelete = link_.UseSafeDelete;
  settings.ORDERFIELD1 = link_.ORDERFIELD1;
  settings.ORDERFIELD2 = link_.ORDERFIELD2;
  settings.ORDERFIELD3 = link_.ORDERFIELD3;
  return settings;
}

void InfoLinkPort::Raise(const std::function<void(InfoLinkEvents&)>& event) {
  link_.Raise(event);
}

}  // namespace kelvary
