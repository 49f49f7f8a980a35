// GetTableIDFromName: the data-table catalogue's ID for a table name. Kept
// apart from the other look-ups because safe delete and the action history
// use it too.
#include "kelvary/lookups/LookupQuery.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary {

int32_t InfoLink::GetTableIDFromName(const std::string& TblName) {
  // The name is a LIKE pattern on purpose: wild cards in it match.
  lookups::LookupQuery query(*this, pdssystem,
                             "select id from datatables where ValuesTable LIKE '" + TblName + "'");
  // FillRecordSet counts an unknown record count (-1) as rows found.
  if (query.Found()) return CLng(query.Rows().Fields("ID").Value());
  if (!TblName.empty()) MsgBox("Use Dravent to define " + TblName);
  return 0;
}

}  // namespace kelvary
