#include "DemoPractice.h"

#include <stdexcept>

namespace kelvary::testing {

DemoPractice::DemoPractice(const std::string& extra_system_sql)
    : system_("system.db"), main_("main.db") {
  system_.RunFile("system_schema.sql");
  system_.RunFile("demo_system.sql");
  if (!extra_system_sql.empty()) system_.Run(extra_system_sql);
  main_.RunFile("main_schema.sql");
  main_.RunFile("demo_main.sql");
  link_ = std::make_unique<InfoLink>();
  std::shared_ptr<Connection> main_xion;
  std::shared_ptr<Connection> system_xion;
  if (!link_->ConnectDefault(main_xion, system_xion, main_.Path(), system_.Path())) {
    throw std::runtime_error("cannot connect to the demo practice");
  }
}

}  // namespace kelvary::testing
