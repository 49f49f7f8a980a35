// DemoPractice: the demo practice in two fresh databases of a backend (data/
// schema and demo rows, plus a test's own definition rows run on the system
// database), and a service object set to the backend's dialect, connected to
// them by their data-source names (the files' paths for SQLite) and made the
// active one. One per test.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"

namespace kelvary::testing {

class DemoPractice {
 public:
  explicit DemoPractice(const Backend& backend, const std::string& extra_system_sql = "")
      : system_(backend.NewDatabase("system.db")), main_(backend.NewDatabase("main.db")) {
    system_.RunFile("system_schema.sql");
    system_.RunFile("demo_system.sql");
    if (!extra_system_sql.empty()) system_.Run(extra_system_sql);
    main_.RunFile("main_schema.sql");
    main_.RunFile("demo_main.sql");
    link_.MainDBType = backend.Traits().main_db_type;
    std::shared_ptr<Connection> main_xion, system_xion;
    if (!link_.ConnectDefault(main_xion, system_xion, main_.DataSource(), system_.DataSource()))
      throw std::runtime_error("cannot connect to the demo practice");
  }

 private:
  BackendDatabase system_, main_;
  InfoLink link_;
};

}  // namespace kelvary::testing
