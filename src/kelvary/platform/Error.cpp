#include "kelvary/platform/Error.h"

#include <utility>

namespace kelvary {

Error::Error(int32_t number, std::string description, std::string source)
    : std::runtime_error(description),
      number_(number),
      description_(std::move(description)),
      source_(std::move(source)) {}

Error& Error::WithSqlState(std::string sql_state) {
  sql_state_ = std::move(sql_state);
  return *this;
}

Error& Error::WithNativeError(int32_t native_error) {
  native_error_ = native_error;
  return *this;
}

Error& Error::WithStatement(std::string statement) {
  statement_ = std::move(statement);
  return *this;
}

Error& Error::AddContext(const std::string& context) {
  description_ = context + ": " + description_;
  Refresh();
  return *this;
}

void Error::Refresh() {
  static_cast<std::runtime_error&>(*this) = std::runtime_error(description_);
}

namespace {
std::string WithDetail(const char* description, const std::string& detail) {
  return detail.empty() ? std::string(description) : description + (" (" + detail + ")");
}
}  // namespace

Error InvalidArgumentError(const std::string& detail, std::string source) {
  return Error(kErrInvalidArgument,
               WithDetail("Arguments are of the wrong type, are out of acceptable range, or are "
                          "in conflict with one another.",
                          detail),
               std::move(source));
}

Error ItemNotFoundError(const std::string& detail, std::string source) {
  return Error(kErrItemNotFound,
               WithDetail("Item cannot be found in the collection corresponding to the requested "
                          "name or ordinal.",
                          detail),
               std::move(source));
}

}  // namespace kelvary
