// DemoPractice: the demo practice as real SQLite files in a temporary folder
// (data/ schema and demo rows, plus a test's own definition rows), and a
// service object connected to them and made the active one. One per test.
#pragma once

#include <memory>
#include <string>

#include "kelvary/service/InfoLink.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {

class DemoPractice {
 public:
  // Builds both databases; extra_system_sql runs on the system database after
  // its demo rows. Connects through data-source names that are the files'
  // paths, as a host configured for the embedded database does.
  explicit DemoPractice(const std::string& extra_system_sql = "");

  InfoLink& Link() { return *link_; }
  TestDatabase& System() { return system_; }
  TestDatabase& Main() { return main_; }

 private:
  TestDatabase system_;
  TestDatabase main_;
  std::unique_ptr<InfoLink> link_;
};

}  // namespace kelvary::testing
