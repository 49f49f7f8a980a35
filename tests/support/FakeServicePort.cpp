#include "support/FakeServicePort.h"

#include <exception>

namespace kelvary::testing {

bool FakeServicePort::FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                                    const std::string& SQLStmt, CursorTypeEnum CursorType,
                                    LockTypeEnum LocKType) {
  calls.push_back("read " + std::to_string(SourceofData) + ": " + SQLStmt);
  if (!rs) rs = std::make_shared<Recordset>();
  CloseRecordsetSafely(rs);
  const auto connection = ConnectionFor(SourceofData);
  if (!connection) return false;
  rs->Open(SQLStmt, connection, CursorType, LocKType);
  if (rs->RecordCount() == 0) return false;
  rs->MoveFirst();
  return true;
}

bool FakeServicePort::ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt) {
  const std::string call = std::to_string(SourceofData) + ": " + SQLStmt;
  if (const auto connection = ConnectionFor(SourceofData)) {
    try {
      int32_t affected = 0;
      connection->Execute(SQLStmt, affected);
    } catch (const std::exception&) {
      calls.push_back("failed " + call);
      return true;
    }
  }
  calls.push_back("run " + call);
  return true;
}

std::shared_ptr<Connection> FakeServicePort::ConnectionFor(ProjectDataSources SourceofData) const {
  const auto it = databases.find(SourceofData);
  return it == databases.end() ? nullptr : it->second;
}

void FakeServicePort::Raise(const std::function<void(InfoLinkEvents&)>& event) {
  for (const auto& sink : sinks)
    event(*sink);
}

}  // namespace kelvary::testing
