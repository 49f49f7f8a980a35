#include "kelvary/platform/internal/drivers/odbc/internal/OdbcParameters.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/drivers/ServerResults.h"

namespace kelvary::odbc {
namespace {

constexpr int64_t kMicrosPerDay = 86400LL * 1000000LL;

}  // namespace

SQL_TIMESTAMP_STRUCT TimestampOf(Date date) {
  const double serial = date.Serial();
  const double whole = std::trunc(serial);
  int64_t day = static_cast<int64_t>(whole);
  int64_t micros = std::llround(std::fabs(serial - whole) * static_cast<double>(kMicrosPerDay));
  if (micros >= kMicrosPerDay) {
    micros -= kMicrosPerDay;
    day += serial < 0 ? -1 : 1;
  }
  const Date calendar_day(static_cast<double>(day));
  SQL_TIMESTAMP_STRUCT ts{};
  ts.year = static_cast<SQLSMALLINT>(Year(calendar_day));
  ts.month = static_cast<SQLUSMALLINT>(Month(calendar_day));
  ts.day = static_cast<SQLUSMALLINT>(Day(calendar_day));
  const int64_t seconds = micros / 1000000;
  ts.hour = static_cast<SQLUSMALLINT>(seconds / 3600);
  ts.minute = static_cast<SQLUSMALLINT>(seconds / 60 % 60);
  ts.second = static_cast<SQLUSMALLINT>(seconds % 60);
  ts.fraction = static_cast<SQLUINTEGER>(micros % 1000000 * 1000);  // nanoseconds
  return ts;
}

ParameterBinder::ParameterBinder(SQLHSTMT stmt, const std::vector<Variant>& params,
                                 const std::string& statement)
    : slots_(params.size()) {
  for (size_t i = 0; i < params.size(); ++i) {
    Bind(stmt, static_cast<SQLUSMALLINT>(i + 1), params[i], slots_[i], statement);
  }
}

void ParameterBinder::Bind(SQLHSTMT stmt, SQLUSMALLINT number, const Variant& param, Slot& slot,
                           const std::string& statement) {
  SQLSMALLINT c_type = SQL_C_CHAR;
  SQLSMALLINT sql_type = SQL_VARCHAR;
  SQLULEN column_size = 0;
  SQLSMALLINT digits = 0;
  SQLPOINTER buffer = &slot.value;
  SQLLEN buffer_length = 0;
  slot.indicator = 0;

  switch (param.Type()) {
    case vbEmpty:
    case vbNull: {
      SQLSMALLINT described_type = 0;
      SQLULEN described_size = 0;
      SQLSMALLINT described_digits = 0;
      SQLSMALLINT nullable = 0;
      if (SQL_SUCCEEDED(SQLDescribeParam(stmt, number, &described_type, &described_size,
                                         &described_digits, &nullable)) &&
          described_type != SQL_UNKNOWN_TYPE) {
        sql_type = described_type;
        column_size = described_size;
        digits = described_digits;
      }
      if (column_size == 0) column_size = 1;
      slot.indicator = SQL_NULL_DATA;
      buffer = nullptr;
      break;
    }
    case vbBoolean:
      c_type = SQL_C_BIT;
      sql_type = SQL_BIT;
      column_size = 1;
      slot.value.bit = *param.Get<bool>() ? 1 : 0;
      break;
    case vbInteger:
      c_type = SQL_C_SSHORT;
      sql_type = SQL_SMALLINT;
      column_size = 5;
      slot.value.small = *param.Get<int16_t>();
      break;
    case vbLong:
      c_type = SQL_C_SLONG;
      sql_type = SQL_INTEGER;
      column_size = 10;
      slot.value.integer = *param.Get<int32_t>();
      break;
    case vbLongLong:
      c_type = SQL_C_SBIGINT;
      sql_type = SQL_BIGINT;
      column_size = 19;
      slot.value.big = *param.Get<int64_t>();
      break;
    case vbSingle:
      c_type = SQL_C_FLOAT;
      sql_type = SQL_REAL;
      column_size = 7;
      slot.value.real = *param.Get<float>();
      break;
    case vbDouble:
      c_type = SQL_C_DOUBLE;
      sql_type = SQL_DOUBLE;
      column_size = 15;
      slot.value.dbl = *param.Get<double>();
      break;
    case vbCurrency:
      // Exact decimal text: a double would lose the fourth decimal of large amounts.
      slot.narrow = internal::CurrencyText(*param.Get<Currency>());
      c_type = SQL_C_CHAR;
      sql_type = SQL_DECIMAL;
      column_size = 19;
      digits = 4;
      buffer = slot.narrow.data();
      buffer_length = static_cast<SQLLEN>(slot.narrow.size() + 1);
      slot.indicator = static_cast<SQLLEN>(slot.narrow.size());
      break;
    case vbDate: {
      slot.value.timestamp = TimestampOf(*param.Get<Date>());
      c_type = SQL_C_TYPE_TIMESTAMP;
      sql_type = SQL_TYPE_TIMESTAMP;
      const SQLUINTEGER fraction = slot.value.timestamp.fraction;
      // Servers with millisecond timestamps refuse a parameter that claims more.
      digits = fraction == 0 ? 0 : (fraction % 1000000 == 0 ? 3 : 6);
      column_size = digits == 0 ? 19 : 20 + static_cast<SQLULEN>(digits);
      buffer_length = sizeof(SQL_TIMESTAMP_STRUCT);
      break;
    }
    case vbString: {
      slot.wide = Widen(param.Text());
      c_type = SQL_C_WCHAR;
      const size_t units = slot.wide.size();
      sql_type = units > 4000 ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
      column_size = units == 0 ? 1 : units;
      buffer = WidePtr(slot.wide);
      buffer_length = static_cast<SQLLEN>((units + 1) * sizeof(SQLWCHAR));
      slot.indicator = static_cast<SQLLEN>(units * sizeof(SQLWCHAR));
      break;
    }
    case vbObject:
    default:
      throw Error(kErrTypeMismatch,
                  "Parameter " + std::to_string(number) + " is an object, not a value", "ODBC")
          .WithStatement(statement);
  }

  const SQLRETURN rc =
      SQLBindParameter(stmt, number, SQL_PARAM_INPUT, c_type, sql_type, column_size, digits, buffer,
                       buffer_length, &slot.indicator);
  Check(rc, SQL_HANDLE_STMT, stmt, "SQLBindParameter", statement);
}

}  // namespace kelvary::odbc
