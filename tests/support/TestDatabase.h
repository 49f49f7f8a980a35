// TestDatabase: a real SQLite database file in its own temporary folder, for
// tests. It is created empty; Run and RunFile fill it with SQL text or a
// file of data/ (through ExecuteScript); Connect opens further connections
// to the same file. The folder and the file go with the object.
//
//   TestDatabase db;
//   db.Run("CREATE TABLE t (ID INTEGER PRIMARY KEY, Name TEXT)");
//   auto rs = std::make_shared<Recordset>();
//   rs->Open("SELECT * FROM t", db.Connection(), adOpenStatic, adLockOptimistic);
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kelvary/platform/Connection.h"
#include "support/TempDir.h"

namespace kelvary::testing {

class TestDatabase {
 public:
  // TestDatabase creates file_name (an empty database) in a new temporary
  // folder and opens a connection to it.
  explicit TestDatabase(const std::string& file_name = "test.db");

  // Run executes SQL text of one or more statements (ExecuteScript).
  void Run(std::string_view sql);
  // RunFile executes a SQL file: a path, or a name relative to data/.
  void RunFile(const std::string& file);

  // Connection: the connection the database was created with, open.
  const std::shared_ptr<kelvary::Connection>& Connection() const { return connection_; }
  // Connect: a new open connection to the same file (client-side cursor).
  std::shared_ptr<kelvary::Connection> Connect() const;

  // Path: the database file.
  const std::string& Path() const { return path_; }
  // ConnectionString: "Provider=SQLite;Data Source=<path>".
  std::string ConnectionString() const;
  // ShapeConnectionString: the string the service object builds for a data
  // source, naming this file.
  std::string ShapeConnectionString() const;
  const TempDir& Folder() const { return dir_; }

 private:
  TempDir dir_;
  std::string path_;
  std::shared_ptr<kelvary::Connection> connection_;
};

}  // namespace kelvary::testing
