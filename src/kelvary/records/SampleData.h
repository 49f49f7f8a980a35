// SampleData: the demonstration rows that a data table may hold (those from
// its DataTables.FirstSampleDataID on), found and removed. Each table's rows
// go in a Transaction of their own on the connection that holds the table,
// so a table whose delete fails keeps all its rows and its mark.
//
// Borrows the ServicePort, which must outlive it. One thread.
#pragma once

#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::records {

class SampleData {
 public:
  explicit SampleData(ServicePort& services) : services_(services) {}

  // DoesSampleDataExist: some data table is marked as holding demonstration
  // rows (DataTables.FirstSampleDataID above 0).
  bool DoesSampleDataExist();
  // DeleteSampleData removes the demonstration rows from every marked table,
  // asks whether to reset the marks, clears SelectedRecords and confirms.
  void DeleteSampleData();

 private:
  // DeleteRows: one table's delete in its own transaction; true when it
  // went through and was committed. Failures have been shown.
  bool DeleteRows(ProjectDataSources location, const std::string& sql);

  ServicePort& services_;
};

}  // namespace kelvary::records
