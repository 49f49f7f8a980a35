#include "DemoPractice.h"

#include <stdexcept>

namespace kelvary::testing {

DemoPractice::DemoPractice(const Backend& backend, const std::string& extra_system_sql)
    : system_(backend.NewDatabase("system.db")), main_(backend.NewDatabase("main.db")) {
  system_.RunFile("system_schema.sql");
  system_.RunFile("demo_system.sql");
  if (!extra_system_sql.empty()) system_.Run(extra_system_sql);
  main_.RunFile("main_schema.sql");
  main_.RunFile("demo_main.sql");
  link_ = std::make_unique<InfoLink>();
  link_->MainDBType = backend.Traits().main_db_type;
  std::shared_ptr<Connection> main_xion;
  std::shared_ptr<Connection> system_xion;
  if (!link_->ConnectDefault(main_xion, system_xion, main_.DataSource(), system_.DataSource())) {
    throw std::runtime_error("cannot connect to the demo practice");
  }
}

}  // namespace kelvary::testing
