// ServicePort: the narrow door through which the subsystems behind the
// facade (the metadata cache, look-ups and list filling, key generation,
// safe delete, sample data, the query interpreter's definition loading)
// reach the service object. It offers exactly what they need: run a read,
// run a statement, the connection of a data source (to hold a Transaction
// on), the settings they read, and the host's event sinks. InfoLink answers
// it through InfoLinkPort; a test gives a subsystem its own implementation,
// so that no subsystem needs a connected InfoLink to be built or tried.
//
// An implementation is borrowed by the subsystems for their whole life; it
// must outlive them. One thread, like the service object.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/service/Enums.h"
#include "kelvary/service/InfoLinkEvents.h"

namespace kelvary {

// ServiceSettings: the host's settings the subsystems read, as they stand
// at the moment of the call (the host may change them between calls).
struct ServiceSettings {
  CodeGenMethods GenCodeMethod = cgmDefault;
  int32_t CurrentPhysicalLocationID = 0;
  int32_t CurrPhysLocIDPrefix = 0;
  bool UseSafeDelete = false;
  std::string ORDERFIELD1 = "FirstName";
  std::string ORDERFIELD2 = "MiddleName";
  std::string ORDERFIELD3 = "LastName";
};

class ServicePort {
 public:
  virtual ~ServicePort() = default;

  // FillRecordSet and ExecuteSQL: the service object's own members of those
  // names, with their messages, history and results.
  virtual bool FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                             const std::string& SQLStmt, CursorTypeEnum CursorType,
                             LockTypeEnum LocKType) = 0;
  virtual bool ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt) = 0;
  // ConnectionFor: the connection that a data source names, or nullptr.
  virtual std::shared_ptr<Connection> ConnectionFor(ProjectDataSources SourceofData) const = 0;
  // Settings: the settings as they are now.
  virtual ServiceSettings Settings() const = 0;
  // Raise calls event(sink) on every subscribed sink, in order of
  // subscription.
  virtual void Raise(const std::function<void(InfoLinkEvents&)>& event) = 0;
};

// CloseRecordsetSafely: closes an open recordset, cancelling a pending new
// or changed row first; nothing for one that is missing or closed.
void CloseRecordsetSafely(const std::shared_ptr<Recordset>& rs);

}  // namespace kelvary
