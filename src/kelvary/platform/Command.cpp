#include "kelvary/platform/Command.h"

#include <algorithm>
#include <limits>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/CursorEngine.h"
#include "kelvary/platform/internal/Session.h"
#include "kelvary/platform/internal/drivers/Driver.h"
#include "kelvary/platform/internal/shape/ShapeProvider.h"

namespace kelvary {
namespace {

constexpr const char* kSource = "Command";

[[noreturn]] void ThrowInvalidArgument(const std::string& why) {
  throw InvalidArgumentError(why, kSource);
}

[[noreturn]] void ThrowNotFound() {
  throw ItemNotFoundError("", kSource);
}

}  // namespace

Parameter::Parameter(std::string name, DataTypeEnum type, ParameterDirectionEnum direction,
                     int32_t size, Variant value)
    : name_(std::move(name)),
      type_(type),
      direction_(direction),
      size_(size),
      value_(std::move(value)) {}

const std::shared_ptr<Parameter>& Parameters::Item(int32_t index) const {
  if (index < 0 || index >= Count()) ThrowNotFound();
  return items_[static_cast<size_t>(index)];
}

const std::shared_ptr<Parameter>& Parameters::Item(std::string_view name) const {
  return items_[IndexOf(name)];
}

size_t Parameters::IndexOf(std::string_view name) const {
  for (size_t i = 0; i < items_.size(); ++i) {
    if (EqualsNoCase(items_[i]->Name(), name)) return i;
  }
  ThrowNotFound();
}

void Parameters::Append(std::shared_ptr<Parameter> parameter) {
  if (!parameter) ThrowInvalidArgument("No parameter to append.");
  items_.push_back(std::move(parameter));
}

void Parameters::Delete(int32_t index) {
  if (index < 0 || index >= Count()) ThrowNotFound();
  items_.erase(items_.begin() + index);
}

void Parameters::Delete(std::string_view name) {
  items_.erase(items_.begin() + static_cast<ptrdiff_t>(IndexOf(name)));
}

void Command::CommandType(int32_t type) {
  if (type != adCmdText && type != adCmdTable && type != adCmdUnknown && type != adCmdUnspecified) {
    ThrowInvalidArgument("A command is a statement (adCmdText) or a table (adCmdTable).");
  }
  type_ = type;
}

std::shared_ptr<Parameter> Command::CreateParameter(std::string name, DataTypeEnum type,
                                                    ParameterDirectionEnum direction, int32_t size,
                                                    Variant value) {
  return std::make_shared<Parameter>(std::move(name), type, direction, size, std::move(value));
}

std::shared_ptr<Recordset> Command::Execute() {
  int32_t ignored = 0;
  return Execute(ignored);
}

std::shared_ptr<Recordset> Command::Execute(int32_t& records_affected,
                                            const std::vector<Variant>& values, int32_t options) {
  records_affected = -1;
  if (!connection_ || connection_->State() != adStateOpen) {
    throw Error(3709,
                "The connection cannot be used to perform this operation. It is either closed "
                "or invalid in this context.",
                kSource);
  }
  if (TrimSpace(text_).empty()) ThrowInvalidArgument("The command has no CommandText.");
  const int32_t type = options == adCmdTable ? adCmdTable : type_;
  const std::string sql = type == adCmdTable ? "SELECT * FROM " + text_ : text_;

  std::vector<Variant> params = values;
  if (params.empty()) {
    for (int32_t i = 0; i < parameters_.Count(); ++i) {
      const Parameter& p = *parameters_.Item(i);
      if (p.Direction() == adParamInput || p.Direction() == adParamInputOutput ||
          p.Direction() == adParamUnknown) {
        params.push_back(p.Value());
      }
    }
  }
  if (params.empty() && shape::IsShapeCommand(sql)) {
    return connection_->Execute(sql, records_affected, options);
  }
  const std::shared_ptr<internal::Session> session = internal::SessionOf(*connection_);
  StatementResult result = session->Run([&] { return session->Driver().Run(sql, params, 0); });
  auto recordset = std::make_shared<Recordset>();
  if (!result.has_rows) {
    constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
    records_affected = static_cast<int32_t>(std::min(result.records_affected, kMax));
    return recordset;
  }
  internal::LoadRecordset(
      *recordset, std::move(result.rows),
      internal::LoadOptions{text_, connection_, adLockReadOnly, internal::WriteMode::kReadOnly});
  return recordset;
}

}  // namespace kelvary
