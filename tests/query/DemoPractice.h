// DemoPractice: the demo practice in two fresh databases of a backend (data/
// schema and demo rows, plus a test's own definition rows), and a service
// object set to the backend's dialect, connected to them and made the active
// one. One per test.
#pragma once

#include <memory>
#include <string>

#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"

namespace kelvary::testing {

class DemoPractice {
 public:
  // Builds both databases; extra_system_sql runs on the system database after
  // its demo rows. Connects through the databases' data-source names (the
  // files' paths for SQLite), as a host configured for them does.
  explicit DemoPractice(const Backend& backend, const std::string& extra_system_sql = "");

  InfoLink& Link() { return *link_; }
  BackendDatabase& System() { return system_; }
  BackendDatabase& Main() { return main_; }

 private:
  BackendDatabase system_;
  BackendDatabase main_;
  std::unique_ptr<InfoLink> link_;
};

}  // namespace kelvary::testing
