// GetTableIDFromName: the data-table catalogue's ID for a table name. Kept
// apart from the other look-ups because safe delete and the action history
// use it too.
#include "kelvary/platform/Messages.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary {

int32_t InfoLink::GetTableIDFromName(const std::string& TblName) {
  std::shared_ptr<Recordset> rs;
  int32_t id = 0;
  // The name is a LIKE pattern on purpose: wild cards in it match.
  const std::string sql = "select id from datatables where ValuesTable LIKE '" + TblName + "'";
  FillRecordSet(pdssystem, rs, sql, adOpenForwardOnly, adLockReadOnly);
  // An unknown record count (-1) counts as rows found.
  if (rs && rs->State() == adStateOpen && rs->RecordCount() != 0) {
    id = CLng(rs->Fields("ID").Value());
  } else if (!TblName.empty()) {
    MsgBox("Use Dravent to define " + TblName);
  }
  SafelyCloseRecordSet(rs);
  return id;
}

}  // namespace kelvary
