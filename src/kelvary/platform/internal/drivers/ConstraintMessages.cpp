#include "kelvary/platform/internal/drivers/ConstraintMessages.h"

namespace kelvary::internal {
namespace {

// AddList: "a, t.b" as bare names, each without the table before its dot.
void AddList(std::string_view list, std::vector<std::string>& names) {
  while (!list.empty()) {
    const size_t comma = list.find(',');
    std::string_view item = list.substr(0, comma);
    while (!item.empty() && item.front() == ' ')
      item.remove_prefix(1);
    while (!item.empty() && item.back() == ' ')
      item.remove_suffix(1);
    const size_t dot = item.rfind('.');
    if (dot != std::string_view::npos) item.remove_prefix(dot + 1);
    if (!item.empty()) names.emplace_back(item);
    if (comma == std::string_view::npos) break;
    list.remove_prefix(comma + 1);
  }
}

}  // namespace

std::vector<std::string> SqliteConstraintColumns(std::string_view message) {
  std::vector<std::string> names;
  const size_t at = message.find("constraint failed");
  if (at == std::string_view::npos) return names;
  const size_t colon = message.find(':', at);
  if (colon == std::string_view::npos) return names;
  const size_t end = message.find('\n', colon);
  AddList(message.substr(colon + 1,
                         end == std::string_view::npos ? std::string_view::npos : end - colon - 1),
          names);
  return names;
}

std::vector<std::string> ServerConstraintColumns(std::string_view message) {
  std::vector<std::string> names;
  for (size_t from = message.find("column \""); from != std::string_view::npos;
       from = message.find("column \"", from + 1)) {
    const size_t start = from + 8;
    const size_t close = message.find('"', start);
    if (close != std::string_view::npos) names.emplace_back(message.substr(start, close - start));
  }
  // MariaDB and MySQL: Column 'col' cannot be null, Field 'col' doesn't have
  // a default value.
  for (const std::string_view lead : {"Column '", "Field '"}) {
    const size_t from = message.find(lead);
    if (from == std::string_view::npos) continue;
    const size_t start = from + lead.size();
    const size_t close = message.find('\'', start);
    if (close != std::string_view::npos) names.emplace_back(message.substr(start, close - start));
  }
  const size_t key = message.find("Key (");
  if (key != std::string_view::npos) {
    const size_t close = message.find(")=", key);
    if (close != std::string_view::npos) AddList(message.substr(key + 5, close - key - 5), names);
  }
  return names;
}

}  // namespace kelvary::internal
