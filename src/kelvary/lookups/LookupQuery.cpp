#include "kelvary/lookups/LookupQuery.h"

#include <exception>

namespace kelvary::lookups {

LookupQuery::LookupQuery(InfoLink& link, ProjectDataSources source, const std::string& sql,
                         CursorTypeEnum cursor_type)
    : link_(link), rs_(std::make_shared<Recordset>()) {
  found_ = link_.FillRecordSet(source, rs_, sql, cursor_type, adLockReadOnly);
}

LookupQuery::~LookupQuery() {
  try {
    link_.SafelyCloseRecordSet(rs_);
  } catch (const std::exception&) {
    // A recordset that cannot even be closed is simply released.
  }
}

bool AnyRowsIn(InfoLink& link, ProjectDataSources source, const std::string& sql) {
  return LookupQuery(link, source, sql).Found();
}

}  // namespace kelvary::lookups
