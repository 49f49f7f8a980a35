#include "support/TestDatabase.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "kelvary/platform/SqlScript.h"

namespace kelvary::testing {

TestDatabase::TestDatabase(const std::string& file_name) : path_(dir_.File(file_name)) {
  connection_ = std::make_shared<kelvary::Connection>();
  connection_->CursorLocation(adUseClient);
  connection_->Open(ConnectionString() + ";Mode=ReadWriteCreate");
}

void TestDatabase::Run(std::string_view sql) {
  ExecuteScript(*connection_, sql);
}

void TestDatabase::RunFile(const std::string& file) {
  std::ifstream in(file);
  if (!in) in.open(std::string(KELVARY_DATA_DIR) + "/" + file);
  if (!in) throw std::runtime_error("cannot read the SQL file " + file);
  std::stringstream text;
  text << in.rdbuf();
  Run(text.str());
}

std::shared_ptr<kelvary::Connection> TestDatabase::Connect() const {
  auto connection = std::make_shared<kelvary::Connection>();
  connection->CursorLocation(adUseClient);
  connection->Open(ConnectionString());
  return connection;
}

std::string TestDatabase::ConnectionString() const {
  return "Provider=SQLite;Data Source=" + path_;
}

std::string TestDatabase::ShapeConnectionString() const {
  return "Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + path_ +
         ";Data Provider=MSDASQL";
}

}  // namespace kelvary::testing
