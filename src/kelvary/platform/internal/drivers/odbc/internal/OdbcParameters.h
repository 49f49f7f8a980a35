// ParameterBinder: binds the positional parameters of one statement from
// Variant values with SQLBindParameter, and owns the buffers the driver reads
// at execution. Keep it alive until the statement has executed.
//
// Kinds map to SQL types as a database expects them: Boolean as BIT, the
// integer kinds as SMALLINT, INTEGER and BIGINT, Single as REAL, Double as
// DOUBLE, Currency as DECIMAL(19,4) written as exact text, Date as TIMESTAMP
// (with the fraction of a second only when it has one), String as wide
// VARCHAR (UTF-16). Empty and Null are NULL; the SQL type of a NULL is asked
// of the driver where it can tell (SQLDescribeParam), because a server that
// types its parameters refuses a NULL of the wrong type. An Object raises
// Error 13.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kelvary/platform/Variant.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcApi.h"

namespace kelvary::odbc {

class ParameterBinder {
 public:
  // Binds params to stmt (markers 1..n). statement is for error messages.
  ParameterBinder(SQLHSTMT stmt, const std::vector<Variant>& params, const std::string& statement);
  ParameterBinder(const ParameterBinder&) = delete;
  ParameterBinder& operator=(const ParameterBinder&) = delete;

 private:
  struct Slot {
    union {
      unsigned char bit;
      SQLSMALLINT small;
      SQLINTEGER integer;
      SQLBIGINT big;
      SQLREAL real;
      SQLDOUBLE dbl;
      SQL_TIMESTAMP_STRUCT timestamp;
    } value{};
    std::u16string wide;
    std::string narrow;
    SQLLEN indicator = 0;
  };

  void Bind(SQLHSTMT stmt, SQLUSMALLINT number, const Variant& param, Slot& slot,
            const std::string& statement);

  std::vector<Slot> slots_;
};

// TimestampOf: a Date as the ODBC timestamp structure (microseconds kept).
SQL_TIMESTAMP_STRUCT TimestampOf(Date date);

}  // namespace kelvary::odbc
