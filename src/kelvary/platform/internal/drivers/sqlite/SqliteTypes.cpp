#include "kelvary/platform/internal/drivers/sqlite/SqliteTypes.h"

#include <cctype>
#include <cstdlib>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/DesktopDialect.h"

namespace kelvary::sqlite {

DeclaredType MapDeclaredType(std::string_view declared) {
  if (declared.empty()) return {adVarWChar, 0, ValueKind::kDynamic};
  const std::string upper = UpperCase(declared);
  int32_t size = 0;
  if (const size_t open = upper.find('('); open != std::string::npos) {
    size = std::atoi(upper.c_str() + open + 1);
  }
  auto has = [&upper](const char* word) { return upper.find(word) != std::string::npos; };
  // The order follows SQLite's own affinity rules where they overlap: any
  // type holding INT is a whole number.
  if (has("BIGINT") || has("INT8")) return {adBigInt, 8, ValueKind::kInt64};
  if (has("SMALLINT") || has("INT2")) return {adSmallInt, 2, ValueKind::kInt16};
  if (has("TINYINT")) return {adUnsignedTinyInt, 1, ValueKind::kInt16};
  if (has("BOOL") || has("BIT") || has("YESNO") || has("LOGICAL")) {
    return {adBoolean, 2, ValueKind::kBoolean};
  }
  if (has("INT")) return {adInteger, 4, ValueKind::kInt32};
  if (has("MONEY") || has("CURRENCY")) return {adCurrency, 8, ValueKind::kCurrency};
  if (has("NUMERIC") || has("DECIMAL") || has("NUMBER")) {
    return {adNumeric, 19, ValueKind::kDouble};
  }
  if (has("REAL") || has("DOUBLE") || has("FLOAT") || has("SINGLE")) {
    return {adDouble, 8, ValueKind::kDouble};
  }
  if (has("DATE") || has("TIME")) return {adDate, 8, ValueKind::kDate};
  if (has("MEMO") || has("CLOB") || has("LONGTEXT") || has("NTEXT") || has("LONGCHAR") ||
      has("MEDIUMTEXT")) {
    return {adLongVarWChar, size, ValueKind::kText};
  }
  if (has("VARCHAR") || has("VARYING") || has("TEXT") || has("STRING")) {
    return {adVarWChar, size, ValueKind::kText};
  }
  if (has("CHAR")) return {adWChar, size, ValueKind::kText};
  if (has("BLOB") || has("IMAGE") || has("LONGBINARY") || has("OLEOBJECT") || has("BYTEA")) {
    return {adLongVarBinary, size, ValueKind::kBlob};
  }
  if (has("BINARY")) return {adVarBinary, size, ValueKind::kBlob};
  return {adVarWChar, size, ValueKind::kDynamic};
}

std::string IsoDateText(Date d) {
  return internal::IsoDateText(d);
}

std::optional<Date> IsoDateValue(std::string_view text) {
  // yyyy-mm-dd, or yyyy-mm-dd hh:mm:ss
  static constexpr std::string_view kShape = "dddd-dd-dd dd:dd:dd";
  if (text.size() != 10 && text.size() != kShape.size()) return std::nullopt;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(text[i])) != 0;
    if ((kShape[i] == 'd') != digit || (!digit && text[i] != kShape[i])) return std::nullopt;
  }
  return ParseDate(text);
}

}  // namespace kelvary::sqlite
