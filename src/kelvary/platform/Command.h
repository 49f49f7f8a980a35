// Command, Parameter and Parameters: a statement with its values kept apart
// from its text. A host writes "?" where a value goes and appends one
// Parameter per "?", in order; the driver binds the values, so no value is
// ever spliced into SQL (a name such as O'Brien needs no quoting, and text
// from a user cannot change the statement).
//
//   auto cmd = std::make_shared<Command>();
//   cmd->ActiveConnection(connection);
//   cmd->CommandText("SELECT * FROM patients WHERE LastName = ? AND ID > ?");
//   cmd->Parameters().Append(cmd->CreateParameter("name", adVarChar, adParamInput, 30, "Smith"));
//   cmd->Parameters().Append(cmd->CreateParameter("id", adInteger, adParamInput, 0, 10));
//   auto rs = cmd->Execute();
//
// Values may instead be passed to Execute, in "?" order; they then stand in
// for the appended parameters' values for that run. Only input parameters
// are bound: the drivers run plain statements, so output and return-value
// parameters keep their values. A statement that returns rows gives an
// open, read-only recordset, any other a closed one.
//
// Objects are shared by reference and used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Variant.h"

namespace kelvary {

class Connection;
class Recordset;

enum ParameterDirectionEnum : int32_t {
  adParamUnknown = 0,
  adParamInput = 1,
  adParamOutput = 2,
  adParamInputOutput = 3,
  adParamReturnValue = 4,
};

class Parameter : public Object {
 public:
  Parameter() = default;
  Parameter(std::string name, DataTypeEnum type, ParameterDirectionEnum direction, int32_t size,
            Variant value);

  const std::string& Name() const { return name_; }
  void Name(std::string name) { name_ = std::move(name); }
  DataTypeEnum Type() const { return type_; }
  void Type(DataTypeEnum type) { type_ = type; }
  ParameterDirectionEnum Direction() const { return direction_; }
  void Direction(ParameterDirectionEnum direction) { direction_ = direction; }
  int32_t Size() const { return size_; }
  void Size(int32_t size) { size_ = size; }
  const Variant& Value() const { return value_; }
  void Value(Variant value) { value_ = std::move(value); }

 private:
  std::string name_;
  DataTypeEnum type_ = adEmpty;
  ParameterDirectionEnum direction_ = adParamInput;
  int32_t size_ = 0;
  Variant value_;
};

// Parameters: the parameters of a command, in "?" order. Item by 0-based
// position or by name (without regard to case); an unknown one raises
// Error 3265.
class Parameters {
 public:
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  const std::shared_ptr<Parameter>& Item(int32_t index) const;
  const std::shared_ptr<Parameter>& Item(std::string_view name) const;
  // Append adds a parameter at the end; a null one raises Error 3001.
  void Append(std::shared_ptr<Parameter> parameter);
  void Delete(int32_t index);
  void Delete(std::string_view name);
  // Refresh: the parameters are the ones the host describes; nothing is
  // asked of the database, so this keeps them as they are.
  void Refresh() {}

 private:
  size_t IndexOf(std::string_view name) const;
  std::vector<std::shared_ptr<Parameter>> items_;
};

class Command : public Object, public std::enable_shared_from_this<Command> {
 public:
  std::shared_ptr<Connection> ActiveConnection() const { return connection_; }
  void ActiveConnection(std::shared_ptr<Connection> connection) {
    connection_ = std::move(connection);
  }
  const std::string& CommandText() const { return text_; }
  void CommandText(std::string text) { text_ = std::move(text); }
  // CommandType: adCmdText (a statement, the default) or adCmdTable (a
  // table name, read whole).
  int32_t CommandType() const { return type_; }
  void CommandType(int32_t type);
  int32_t CommandTimeout() const { return timeout_; }
  void CommandTimeout(int32_t seconds) { timeout_ = seconds; }
  // Prepared: recorded; every run is prepared by the driver anyway.
  bool Prepared() const { return prepared_; }
  void Prepared(bool prepared) { prepared_ = prepared; }

  kelvary::Parameters& Parameters() { return parameters_; }
  const kelvary::Parameters& Parameters() const { return parameters_; }
  static std::shared_ptr<Parameter> CreateParameter(std::string name = "",
                                                    DataTypeEnum type = adEmpty,
                                                    ParameterDirectionEnum direction = adParamInput,
                                                    int32_t size = 0, Variant value = Variant());

  // Execute runs the command on its connection. values, when not empty,
  // are the values of the "?" markers in order; otherwise the input
  // parameters' values are. records_affected receives the rows changed
  // (-1 for a statement that returns rows). Raises Error 3709 without an
  // open connection and Error 3001 without a command text; the driver's
  // errors pass through (and are in the connection's Errors).
  std::shared_ptr<Recordset> Execute(int32_t& records_affected,
                                     const std::vector<Variant>& values = {},
                                     int32_t options = adCmdUnspecified);
  std::shared_ptr<Recordset> Execute();

 private:
  std::shared_ptr<Connection> connection_;
  std::string text_;
  int32_t type_ = adCmdText;
  int32_t timeout_ = 30;
  bool prepared_ = false;
  kelvary::Parameters parameters_;
};

}  // namespace kelvary
