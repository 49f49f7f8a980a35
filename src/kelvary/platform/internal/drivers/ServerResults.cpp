#include "kelvary/platform/internal/drivers/ServerResults.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "kelvary/platform/Text.h"

namespace kelvary::internal {

std::string FirstKeyword(std::string_view sql) {
  size_t i = 0;
  while (i < sql.size()) {
    if (std::isspace(static_cast<unsigned char>(sql[i])) || sql[i] == '(') {
      ++i;
    } else if (sql.compare(i, 2, "--") == 0) {
      i = sql.find('\n', i);
      if (i == std::string_view::npos) return "";
    } else if (sql.compare(i, 2, "/*") == 0) {
      i = sql.find("*/", i + 2);
      if (i == std::string_view::npos) return "";
      i += 2;
    } else {
      break;
    }
  }
  size_t end = i;
  while (end < sql.size() && std::isalpha(static_cast<unsigned char>(sql[end])))
    ++end;
  return UpperCase(sql.substr(i, end - i));
}

bool ChangesSchema(std::string_view sql) {
  const std::string keyword = FirstKeyword(sql);
  return keyword == "CREATE" || keyword == "ALTER" || keyword == "DROP" || keyword == "RENAME";
}

TableName ParseTableName(std::string_view text) {
  std::vector<std::string> parts(1);
  bool quoted = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const char close = c == '"' ? '"' : c == '[' ? ']' : c == '`' ? '`' : '\0';
    if (close != '\0') {
      quoted = true;
      size_t end = text.find(close, i + 1);
      if (end == std::string_view::npos) end = text.size();
      parts.back() += text.substr(i + 1, end - i - 1);
      i = end;
    } else if (c == '.') {
      parts.emplace_back();
    } else if (!std::isspace(static_cast<unsigned char>(c))) {
      parts.back() += c;
    }
  }
  TableName name;
  name.table = parts.back();
  if (parts.size() >= 2) name.schema = parts[parts.size() - 2];
  name.quoted = quoted;
  return name;
}

void NarrowWholeExpressions(RowSet& rows) {
  const size_t width = rows.columns.size();
  for (size_t c = 0; c < width; ++c) {
    ColumnInfo& column = rows.columns[c];
    if (column.type != adBigInt || !column.base_table.empty()) continue;
    bool fits = true;
    for (size_t i = c; fits && i < rows.cells.size(); i += width) {
      const int64_t* value = rows.cells[i].Get<int64_t>();
      fits = rows.cells[i].IsNull() ||
             (value != nullptr && *value >= INT32_MIN && *value <= INT32_MAX);
    }
    if (!fits) continue;
    column.type = adInteger;
    column.defined_size = 4;
    for (size_t i = c; i < rows.cells.size(); i += width) {
      if (const int64_t* value = rows.cells[i].Get<int64_t>()) {
        rows.cells[i] = Variant(static_cast<int32_t>(*value));
      }
    }
  }
}

std::string CurrencyText(Currency value) {
  const bool negative = value.scaled < 0;
  // The magnitude as unsigned so that the smallest value does not overflow.
  const uint64_t magnitude =
      negative ? 0 - static_cast<uint64_t>(value.scaled) : static_cast<uint64_t>(value.scaled);
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%s%llu.%04llu", negative ? "-" : "",
                static_cast<unsigned long long>(magnitude / 10000),
                static_cast<unsigned long long>(magnitude % 10000));
  return buffer;
}

}  // namespace kelvary::internal
