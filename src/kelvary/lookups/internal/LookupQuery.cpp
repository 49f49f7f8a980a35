#include "kelvary/lookups/internal/LookupQuery.h"

#include <exception>

namespace kelvary::lookups {

LookupQuery::LookupQuery(ServicePort& services, ProjectDataSources source, const std::string& sql,
                         CursorTypeEnum cursor_type, LockTypeEnum lock_type)
    : rs_(std::make_shared<Recordset>()) {
  found_ = services.FillRecordSet(source, rs_, sql, cursor_type, lock_type);
}

LookupQuery::~LookupQuery() {
  try {
    CloseRecordsetSafely(rs_);
  } catch (const std::exception&) {
    // A recordset that cannot even be closed is simply released.
  }
}

bool AnyRowsIn(ServicePort& services, ProjectDataSources source, const std::string& sql) {
  return LookupQuery(services, source, sql).Found();
}

}  // namespace kelvary::lookups
