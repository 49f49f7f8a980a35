// SqliteTypes: how the SQLite driver maps declared column types to the
// classic field types, and how it writes dates. SQLite stores any value in
// any column; the declared type decides what a value reads back as:
//
//   INTEGER, INT, MEDIUMINT ...   adInteger (3)   Long, LongLong when it does not fit
//   SMALLINT, INT2 / TINYINT      adSmallInt (2) / adUnsignedTinyInt (17)   Integer
//   BIGINT, INT8                  adBigInt (20)   LongLong
//   REAL, DOUBLE, FLOAT, SINGLE   adDouble (5)    Double
//   CURRENCY, MONEY               adCurrency (6)  Currency
//   NUMERIC, DECIMAL, NUMBER      adNumeric (131) Double
//   BOOLEAN, BIT, YESNO, LOGICAL  adBoolean (11)  Boolean (any non-zero is True)
//   DATE, DATETIME, TIMESTAMP     adDate (7)      Date (stored as ISO text)
//   TEXT, VARCHAR(n), STRING      adVarWChar (202), DefinedSize n
//   CHAR(n), NCHAR(n)             adWChar (130)
//   MEMO, CLOB, LONGTEXT, NTEXT   adLongVarWChar (203)
//   BLOB, IMAGE, OLEOBJECT        adLongVarBinary (205)  String holding the bytes
//   BINARY, VARBINARY             adVarBinary (204)
//
// A value whose storage does not fit its column's type (text in an INTEGER
// column) reads back as stored. Columns without a declared type (expressions,
// aggregates) take their type from the values: whole numbers adInteger (or
// adBigInt), any fraction adDouble, any text adVarWChar.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Date.h"

namespace kelvary::sqlite {

// ValueKind: how a column's values are read.
enum class ValueKind : uint8_t {
  kDynamic,  // by storage class (no declared type)
  kInt16,
  kInt32,
  kInt64,
  kDouble,
  kCurrency,
  kBoolean,
  kDate,
  kText,
  kBlob,
};

struct DeclaredType {
  DataTypeEnum type = adVarWChar;
  int32_t defined_size = 0;
  ValueKind kind = ValueKind::kDynamic;
};

// MapDeclaredType: the field type of a column declared as declared ("" for
// an expression).
DeclaredType MapDeclaredType(std::string_view declared);

// IsoDateText: a date as stored: "yyyy-mm-dd", or "yyyy-mm-dd hh:mm:ss"
// when it carries a time of day.
std::string IsoDateText(Date d);

// IsoDateValue: the date text holds in exactly the form IsoDateText writes;
// nullopt for any other text.
std::optional<Date> IsoDateValue(std::string_view text);

}  // namespace kelvary::sqlite
