// Sample data removal. A data table whose DataTables row has a
// FirstSampleDataID above 0 holds demonstration rows: those whose ID is that
// number or more. DeleteSampleData removes them from every such table, each
// table in a transaction of its own on the connection that holds it (its
// TableLocation), so that a table whose delete fails keeps all its rows and
// its mark. Then it asks whether to reset the marks, clears the host's
// selection list (SelectedRecords, which may name deleted rows) and says
// what it did.
#include "kelvary/records/SampleData.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Transaction.h"

namespace kelvary::records {
namespace {

using lookups::LookupQuery;

struct SampleTable {
  int32_t id = 0;
  std::string name;
  int32_t first_sample_id = 0;
  ProjectDataSources location = pdsmaindata;
};

}  // namespace

bool SampleData::DoesSampleDataExist() {
  return lookups::AnyRowsIn(services_, pdssystem,
                            "Select ID from DataTables where FirstSampleDataID > 0");
}

void SampleData::DeleteSampleData() {
  // Tables defined later usually refer to earlier ones (visits to
  // patients): their rows go first.
  std::vector<SampleTable> tables;
  {
    LookupQuery query(services_, pdssystem,
                      "Select ID, ValuesTable, FirstSampleDataID, TableLocation from DataTables "
                      "where FirstSampleDataID > 0 order by ID desc");
    if (query.Found()) {
      for (Recordset& rs = query.Rows(); !rs.Eof(); rs.MoveNext()) {
        SampleTable table;
        table.id = CLng(rs.Fields("ID").Value());
        table.name = TextOf(rs.Fields("ValuesTable").Value());
        table.first_sample_id = CLng(rs.Fields("FirstSampleDataID").Value());
        const Variant& location = rs.Fields("TableLocation").Value();
        if (!location.IsNull()) table.location = static_cast<ProjectDataSources>(CLng(location));
        tables.push_back(std::move(table));
      }
    }
  }
  if (tables.empty()) {
    MsgBox("No sample data found");
    return;
  }

  std::vector<const SampleTable*> cleared;
  std::string failed;
  for (const SampleTable& table : tables) {
    const std::string sql =
        "Delete from " + table.name + " where ID >= " + std::to_string(table.first_sample_id);
    const bool deleted = DeleteRows(table.location, sql);
    if (deleted) {
      cleared.push_back(&table);
    } else {
      failed += (failed.empty() ? "" : ", ") + table.name;
    }
  }

  if (!cleared.empty() &&
      MsgBox("Reset the sample data marks of the data tables ?", vbYesNo) == vbYes) {
    // One statement for every mark: they are reset together or not at all.
    std::string ids;
    for (const SampleTable* table : cleared)
      ids += (ids.empty() ? "" : ", ") + std::to_string(table->id);
    services_.ExecuteSQL(pdssystem,
                         "Update DataTables set FirstSampleDataID = 0 where ID in (" + ids + ")");
  }
  services_.ExecuteSQL(pdsmaindata, "Delete from SelectedRecords");
  if (failed.empty()) {
    MsgBox("Sample data deleted");
  } else {
    MsgBox("Sample data could not be deleted from : " + failed);
  }
}

bool SampleData::DeleteRows(ProjectDataSources location, const std::string& sql) {
  const std::shared_ptr<Connection> connection = services_.ConnectionFor(location);
  if (!connection || connection->State() != adStateOpen) {
    services_.ExecuteSQL(location, sql);  // says why it cannot run
    return false;
  }
  std::optional<Transaction> transaction;
  try {
    transaction.emplace(*connection);
  } catch (const std::exception&) {
    // Without a transaction the one statement is still all or nothing.
  }
  services_.ExecuteSQL(location, sql);  // reports its own failure
  const bool deleted = connection->Errors().empty();
  if (!transaction) return deleted;
  try {
    if (deleted) {
      transaction->Commit();
    } else {
      transaction->Rollback();
    }
    return deleted;
  } catch (const std::exception& e) {
    // A commit that fails is rolled back as the transaction goes.
    MsgBox("Error executing sql : " + sql + "\r\n" + e.what());
    return false;
  }
}

}  // namespace kelvary::records
