// Sample data removal. A data table whose DataTables row has a
// FirstSampleDataID above 0 holds demonstration rows: those whose ID is that
// number or more. DeleteSampleData removes them from every such table, each
// table in a transaction of its own on the connection that holds it (its
// TableLocation), so that a table whose delete fails keeps all its rows and
// its mark. Then it asks whether to reset the marks, clears the host's
// selection list (SelectedRecords, which may name deleted rows) and says
// what it did.
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "kelvary/platform/Messages.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary {
namespace {

struct SampleTable {
  int32_t id = 0;
  std::string name;
  int32_t first_sample_id = 0;
  ProjectDataSources location = pdsmaindata;
};

}  // namespace

bool InfoLink::DoesSampleDataExist() {
  std::shared_ptr<Recordset> rs;
  const bool found =
      FillRecordSet(pdssystem, rs, "Select ID from DataTables where FirstSampleDataID > 0",
                    adOpenForwardOnly, adLockReadOnly);
  SafelyCloseRecordSet(rs);
  return found;
}

void InfoLink::DeleteSampleData() {
  // Tables defined later usually refer to earlier ones (visits to
  // patients): their rows go first.
  std::vector<SampleTable> tables;
  std::shared_ptr<Recordset> rs;
  if (FillRecordSet(pdssystem, rs,
                    "Select ID, ValuesTable, FirstSampleDataID, TableLocation from DataTables "
                    "where FirstSampleDataID > 0 order by ID desc",
                    adOpenForwardOnly, adLockReadOnly)) {
    while (!rs->Eof()) {
      SampleTable table;
      table.id = CLng(rs->Fields("ID").Value());
      table.name = TextOf(rs->Fields("ValuesTable").Value());
      table.first_sample_id = CLng(rs->Fields("FirstSampleDataID").Value());
      const Variant& location = rs->Fields("TableLocation").Value();
      if (!location.IsNull()) table.location = static_cast<ProjectDataSources>(CLng(location));
      tables.push_back(std::move(table));
      rs->MoveNext();
    }
  }
  SafelyCloseRecordSet(rs);
  if (tables.empty()) {
    MsgBox("No sample data found");
    return;
  }

  std::vector<const SampleTable*> cleared;
  std::string failed;
  for (const SampleTable& table : tables) {
    const std::string sql =
        "Delete from " + table.name + " where ID >= " + std::to_string(table.first_sample_id);
    const std::shared_ptr<Connection> connection = ConnectionFor(table.location);
    bool deleted = false;
    if (connection && connection->State() == adStateOpen) {
      bool in_transaction = false;
      try {
        connection->BeginTrans();
        in_transaction = true;
      } catch (const std::exception&) {
        // Without a transaction the one statement is still all or nothing.
      }
      ExecuteSQL(table.location, sql);  // reports its own failure
      deleted = connection->Errors().empty();
      if (in_transaction) {
        try {
          if (deleted) {
            connection->CommitTrans();
          } else {
            connection->RollbackTrans();
          }
        } catch (const std::exception& e) {
          MsgBox("Error executing sql : " + sql + "\r\n" + e.what());
          if (deleted) {
            deleted = false;
            try {
              connection->RollbackTrans();
            } catch (const std::exception&) {
            }
          }
        }
      }
    } else {
      ExecuteSQL(table.location, sql);  // says why it cannot run
    }
    if (deleted) {
      cleared.push_back(&table);
    } else {
      failed += (failed.empty() ? "" : ", ") + table.name;
    }
  }

  if (!cleared.empty() &&
      MsgBox("Reset the sample data marks of the data tables ?", vbYesNo) == vbYes) {
    for (const SampleTable* table : cleared) {
      ExecuteSQL(pdssystem, "Update DataTables set FirstSampleDataID = 0 where ID = " +
                                std::to_string(table->id));
    }
  }
  ExecuteSQL(pdsmaindata, "Delete from SelectedRecords");
  if (failed.empty()) {
    MsgBox("Sample data deleted");
  } else {
    MsgBox("Sample data could not be deleted from : " + failed);
  }
}

}  // namespace kelvary
