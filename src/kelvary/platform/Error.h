// Error: the one exception type of the platform and of automation-style
// failures. It carries a number and a description (the text shown to the
// user after a failure), the source that raised it, and, for database
// errors, what a person needs to act: SQLSTATE, the driver's native code and
// the statement text. Code higher up adds its context as the error passes.
//
// Expected problems of the system never throw; they show the system's message
// and return the empty value. Error is for real failures.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace kelvary {

// Error numbers of the automation runtime that the platform raises.
enum ErrorNumbers : int32_t {
  kErrInvalidProcedureCall = 5,  // invalid procedure call or argument
  kErrOverflow = 6,
  kErrSubscriptOutOfRange = 9,
  kErrTypeMismatch = 13,
  kErrObjectVariableNotSet = 91,
  kErrInvalidUseOfNull = 94,
  kErrObjectRequired = 424,
  kErrObjectDoesntSupportMember = 438,  // an object used where its value is needed
  kErrKeyAlreadyAssociated = 457,
  // Data-access errors (the classic cursor library's numbers).
  kErrProviderFailure = 3000,  // the provider or driver reported a failure
  kErrItemNotFound = 3265,     // no field with that name or ordinal
  kErrNoCurrentRecord = 3021,  // BOF or EOF, or the current row was deleted
  kErrOperationNotSupported = 3251,
  kErrObjectClosed = 3704,      // operation needs an open object
  kErrObjectOpen = 3705,        // operation needs a closed object
  kErrProviderNotFound = 3706,  // no driver for the connection string
  kErrRowChanged = 3640,        // the row to update or delete no longer matches
  kErrInvalidArgument = 3001,   // arguments of the wrong type or out of range; bad criteria
};

class Error : public std::runtime_error {
 public:
  Error(int32_t number, std::string description, std::string source = "");

  int32_t Number() const { return number_; }
  const std::string& Description() const { return description_; }
  const std::string& Source() const { return source_; }

  // Database details; empty or 0 when they do not apply.
  const std::string& SqlState() const { return sql_state_; }
  int32_t NativeError() const { return native_error_; }
  const std::string& Statement() const { return statement_; }

  Error& WithSqlState(std::string sql_state);
  Error& WithNativeError(int32_t native_error);
  Error& WithStatement(std::string statement);
  // AddContext prefixes the description with what the caller was doing:
  // "<context>: <description>".
  Error& AddContext(const std::string& context);

 private:
  void Refresh();

  int32_t number_;
  std::string description_;
  std::string source_;
  std::string sql_state_;
  int32_t native_error_ = 0;
  std::string statement_;
};

// The data-access errors of bad arguments (3001) and of a name or ordinal
// that names nothing (3265), with the descriptions hosts know them by;
// detail, when not empty, follows in parentheses: "... ordinal. (Field "X")".
Error InvalidArgumentError(const std::string& detail, std::string source);
Error ItemNotFoundError(const std::string& detail, std::string source);

}  // namespace kelvary
