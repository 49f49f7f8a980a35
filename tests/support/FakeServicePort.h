// FakeServicePort: a ServicePort of the tests' own, so that one subsystem can
// be built and tried without a service object. Every read and statement is
// recorded (data source and text); when a database is attached to the data
// source it also runs there, otherwise a read finds nothing and a statement
// does nothing. A failing read reaches the test; a failing statement is
// recorded ("failed <source>: <sql>") and swallowed, as the service's
// ExecuteSQL does, leaving the error on the connection. Events go to the
// sinks in order; the settings are a plain field.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::testing {

class FakeServicePort : public ServicePort {
 public:
  // "read <source>: <sql>", "run <source>: <sql>" or "failed <source>: <sql>".
  std::vector<std::string> calls;
  ServiceSettings settings;
  std::vector<std::shared_ptr<InfoLinkEvents>> sinks;
  std::map<ProjectDataSources, std::shared_ptr<Connection>> databases;

  bool FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                     const std::string& SQLStmt, CursorTypeEnum CursorType,
                     LockTypeEnum LocKType) override;
  bool ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt) override;
  std::shared_ptr<Connection> ConnectionFor(ProjectDataSources SourceofData) const override;
  ServiceSettings Settings() const override { return settings; }
  void Raise(const std::function<void(InfoLinkEvents&)>& event) override;
};

}  // namespace kelvary::testing
