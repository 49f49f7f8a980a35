// LookupQuery: the one way the subsystems behind the service object run a
// read. It opens the statement through the service's FillRecordSet (so the
// connection rule, the failure message and the SQL history apply) and closes
// the recordset safely when it goes, whatever happened in between, as every
// look-up promises.
//
// Lives on the stack of one subsystem member; same thread as its service.
#pragma once

#include <memory>
#include <string>

#include "kelvary/platform/Recordset.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::lookups {

class LookupQuery {
 public:
  // LookupQuery opens sql on source; forward-only and read-only unless told.
  LookupQuery(ServicePort& services, ProjectDataSources source, const std::string& sql,
              CursorTypeEnum cursor_type = adOpenForwardOnly,
              LockTypeEnum lock_type = adLockReadOnly);
  ~LookupQuery();  // closes the recordset; never throws
  LookupQuery(const LookupQuery&) = delete;
  LookupQuery& operator=(const LookupQuery&) = delete;

  // Found: what FillRecordSet returned (rows may be read, from the first).
  bool Found() const { return found_; }
  Recordset& Rows() { return *rs_; }
  // Shared: the recordset itself, for a caller that hands it on.
  const std::shared_ptr<Recordset>& Shared() const { return rs_; }

 private:
  std::shared_ptr<Recordset> rs_;
  bool found_ = false;
};

// AnyRowsIn: whether a statement opened by the SQL text gives rows; the
// recordset is closed at once.
bool AnyRowsIn(ServicePort& services, ProjectDataSources source, const std::string& sql);

}  // namespace kelvary::lookups
