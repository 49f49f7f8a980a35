// Connection: an open session with one database, with the semantics of the
// classic data-access connection. The connection string picks the driver:
//
//   Provider=MSDataShape.1;...;Data Source=X;Data Provider=MSDASQL
//       the shaping layer over data source X. When X names a SQLite file
//       (it contains a path separator or ends in .db, .sqlite or .sqlite3)
//       the built-in SQLite driver opens it; any other X is an ODBC data
//       source name.
//   Provider=SQLite;Data Source=path[;Mode=ReadOnly|ReadWrite|ReadWriteCreate]
//       the built-in SQLite driver directly.
//   Driver={...};...   an ODBC connection string, passed as it stands.
//
// A missing SQLite file is an error unless the string asks for creation
// (Mode=ReadWriteCreate). The shaping layer sits on every connection: a
// SHAPE statement is run by it over whichever driver is underneath; any
// other statement goes to the driver unchanged.
//
// Connections are shared by reference (std::shared_ptr); one thread uses a
// connection at a time. Closing a connection closes the recordsets opened on
// it (a pending change of theirs is dropped); a connection inside a
// transaction refuses to close (Error 3246): commit or roll back first.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Variant.h"

namespace kelvary {

class Recordset;
class DriverConnection;
class Connection;

// IsSqliteFileName: whether a data source names a SQLite database file
// rather than an ODBC data source, by the rule the shaping form above
// applies. Tools that take either from a user ask this rather than guess.
bool IsSqliteFileName(std::string_view data_source);
// QuoteConnectionValue: value as it may stand after "key=" in a connection
// string so that Open reads it back whole, whatever it holds (';', '=',
// braces, quotes, blanks at either end).
std::string QuoteConnectionValue(std::string_view value);

namespace internal {
class Session;  // the driver and the errors, shared with the recordsets read here
std::shared_ptr<Session> SessionOf(const Connection& connection);
}  // namespace internal

class Connection : public Object, public std::enable_shared_from_this<Connection> {
 public:
  Connection();
  ~Connection() override;  // closes an open connection; never throws
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // CursorLocation: recorded and read back; every recordset of this
  // library is a client-side cursor whatever is set.
  CursorLocationEnum CursorLocation() const { return cursor_location_; }
  void CursorLocation(CursorLocationEnum location) { cursor_location_ = location; }

  // Open connects with a connection string (see above). user_id and password,
  // when not empty, are passed to drivers that take them. Throws Error when
  // no driver fits the string or the database cannot be opened.
  // REQUIRES: State() == adStateClosed.
  void Open(const std::string& connection_string, const std::string& user_id = "",
            const std::string& password = "", int32_t options = adCmdUnspecified);
  // Open with no string uses ConnectionString (and Provider, when set).
  void Open() { Open(connection_string_); }
  void Close();
  ObjectStateEnum State() const;
  // ConnectionString: the string the connection was (or will be) opened
  // with; settable while closed (Error 3705 when open).
  const std::string& ConnectionString() const { return connection_string_; }
  void ConnectionString(const std::string& connection_string);
  // Provider: the provider named in the string ("MSDataShape.1", "SQLite",
  // "MSDASQL" for ODBC), "MSDASQL" before any is known; setting it while
  // closed supplies the Provider= that a string without one lacks.
  std::string Provider() const;
  void Provider(const std::string& provider);
  // Mode: the access asked for; adModeRead opens a SQLite file read-only.
  // Settable while closed (Error 3705 when open).
  ConnectModeEnum Mode() const { return mode_; }
  void Mode(ConnectModeEnum mode);
  // Version: the version of the data-access interface this library keeps.
  static std::string Version() { return "2.8"; }

  // Execute runs one statement. For a statement that returns rows the result
  // is an open, read-only recordset; otherwise a closed one. records_affected
  // receives the number of rows changed (-1 for a SELECT).
  std::shared_ptr<Recordset> Execute(const std::string& command_text, int32_t& records_affected,
                                     int32_t options = adCmdUnspecified);
  // As in the classic call, a variable in second place receives the count
  // (Execute(sql, count) takes the overload above) and a value is the
  // options (Execute(sql, -1), Execute(sql, adExecuteNoRecords)).
  std::shared_ptr<Recordset> Execute(const std::string& command_text,
                                     const int32_t& options = adCmdUnspecified);

  // Transactions; nesting is not supported (BeginTrans returns level 1).
  int32_t BeginTrans();
  void CommitTrans();
  void RollbackTrans();

  // Errors: the errors of the last operation that failed on this connection
  // (cleared when an operation starts).
  const std::vector<Error>& Errors() const;

  // CommandTimeout: seconds to wait on a busy database (another connection
  // or process writing) before an operation fails; applies at once to an
  // open connection.
  int32_t CommandTimeout() const { return command_timeout_; }
  void CommandTimeout(int32_t seconds);

  // Driver: the driver under this connection, for the cursor engine and the
  // shaping layer. REQUIRES: State() == adStateOpen (otherwise Error 3704).
  DriverConnection& Driver();

 private:
  friend std::shared_ptr<internal::Session> internal::SessionOf(const Connection&);
  friend class Recordset;  // registers itself while open on this connection
  void Attach(Recordset* recordset);
  void Detach(Recordset* recordset);
  void RequireClosedToSet() const;

  CursorLocationEnum cursor_location_ = adUseServer;
  std::string connection_string_;
  std::string provider_;
  ConnectModeEnum mode_ = adModeUnknown;
  std::vector<Recordset*> recordsets_;  // open on this connection
  int32_t command_timeout_ = 30;
  bool in_transaction_ = false;
  std::shared_ptr<internal::Session> session_;
};

}  // namespace kelvary
