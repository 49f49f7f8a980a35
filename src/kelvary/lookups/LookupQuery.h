// LookupQuery: the one way the look-ups and list fills run a statement. It
// opens the statement through InfoLink::FillRecordSet (so the connection
// rule, the failure message and the SQL history apply) and closes the
// recordset with SafelyCloseRecordSet when it goes, whatever happened in
// between, as every look-up promises.
//
// Lives on the stack of one InfoLink member; same thread as its InfoLink.
#pragma once

#include <memory>
#include <string>

#include "kelvary/platform/Recordset.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::lookups {

class LookupQuery {
 public:
  // LookupQuery opens sql on source; forward-only and read-only unless told.
  LookupQuery(InfoLink& link, ProjectDataSources source, const std::string& sql,
              CursorTypeEnum cursor_type = adOpenForwardOnly);
  ~LookupQuery();  // closes the recordset; never throws
  LookupQuery(const LookupQuery&) = delete;
  LookupQuery& operator=(const LookupQuery&) = delete;

  // Found: what FillRecordSet returned (rows may be read, from the first).
  bool Found() const { return found_; }
  Recordset& Rows() { return *rs_; }

 private:
  InfoLink& link_;
  std::shared_ptr<Recordset> rs_;
  bool found_ = false;
};

// AnyRowsIn: whether a statement opened by the SQL text gives rows; the
// recordset is closed at once.
bool AnyRowsIn(InfoLink& link, ProjectDataSources source, const std::string& sql);

}  // namespace kelvary::lookups
