#include "kelvary/platform/internal/drivers/odbc/internal/OdbcResult.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Error.h"

namespace kelvary::odbc {
namespace {

// A block of bound rows takes about this much memory; more rows per block
// stop paying once the per-call cost is spread thin.
constexpr size_t kBlockBytes = 512 * 1024;
constexpr size_t kMaxBlockRows = 1024;
// Text declared longer than this (or of unknown length) is bound with a short
// slot and read again in full when a value does not fit.
constexpr size_t kMaxBoundTextUnits = 1024;
constexpr size_t kShortTextUnits = 128;
constexpr size_t kMaxBoundBinaryBytes = 1024;
constexpr size_t kShortBinaryBytes = 256;
constexpr size_t kNumericSlotBytes = 48;
// SQLGetData reads long values in pieces of this many bytes.
constexpr size_t kPieceBytes = 16 * 1024;

enum class Kind {
  kInt16,
  kInt32,
  kInt64,
  kUInt64,
  kFloat,
  kDouble,
  kNumericCurrency,
  kNumericDouble,
  kBit,
  kDate,
  kTime,
  kTimestamp,
  kText,
  kBinary,
};

struct ColumnPlan {
  Kind kind = Kind::kText;
  SQLSMALLINT c_type = SQL_C_WCHAR;  // also what SQLGetData reads
  size_t slot_bytes = 0;             // bytes per row in the bound array
  size_t text_units = 0;             // text: characters a bound slot holds
  // Text bound 8-bit (SQL_C_CHAR): only plain ASCII is taken from the slot.
  bool narrow = false;
  size_t rereads = 0;  // values of the current block read again
  std::vector<unsigned char> buffer;
  std::vector<SQLLEN> indicators;
};

size_t RoundUp8(size_t n) {
  return (n + 7) / 8 * 8;
}

int32_t SizeOf(SQLULEN size) {
  return size > static_cast<SQLULEN>(std::numeric_limits<int32_t>::max())
             ? std::numeric_limits<int32_t>::max()
             : static_cast<int32_t>(size);
}

ColumnPlan PlanColumn(SQLSMALLINT sql_type, SQLULEN size, SQLSMALLINT digits, bool is_unsigned,
                      ColumnInfo& info) {
  ColumnPlan plan;
  const auto fixed = [&](DataTypeEnum type, Kind kind, SQLSMALLINT c_type, size_t bytes,
                         int32_t defined_size) {
    info.type = type;
    info.defined_size = defined_size;
    plan.kind = kind;
    plan.c_type = c_type;
    // Column-wise arrays of a fixed-size type are spaced by the type's size
    // whatever buffer length is given.
    plan.slot_bytes = bytes;
  };
  const auto text = [&](DataTypeEnum type, bool long_data) {
    info.type = type;
    info.defined_size = SizeOf(size);
    plan.kind = Kind::kText;
    plan.c_type = SQL_C_WCHAR;
    plan.text_units = (!long_data && size > 0 && size <= kMaxBoundTextUnits)
                          ? static_cast<size_t>(size)
                          : kShortTextUnits;
    plan.slot_bytes = RoundUp8((plan.text_units + 1) * sizeof(SQLWCHAR));
  };
  const auto binary = [&](DataTypeEnum type, bool long_data) {
    info.type = type;
    info.defined_size = SizeOf(size);
    plan.kind = Kind::kBinary;
    plan.c_type = SQL_C_BINARY;
    const size_t bytes = (!long_data && size > 0 && size <= kMaxBoundBinaryBytes)
                             ? static_cast<size_t>(size)
                             : kShortBinaryBytes;
    plan.slot_bytes = RoundUp8(bytes);
  };

  switch (sql_type) {
    case SQL_TINYINT:
      fixed(is_unsigned ? adUnsignedTinyInt : adTinyInt, Kind::kInt16, SQL_C_SSHORT, 2, 1);
      break;
    case SQL_SMALLINT:
      if (is_unsigned) {
        fixed(adUnsignedSmallInt, Kind::kInt32, SQL_C_SLONG, 4, 2);
      } else {
        fixed(adSmallInt, Kind::kInt16, SQL_C_SSHORT, 2, 2);
      }
      break;
    case SQL_INTEGER:
      if (is_unsigned) {
        fixed(adUnsignedInt, Kind::kInt64, SQL_C_SBIGINT, 8, 4);
      } else {
        fixed(adInteger, Kind::kInt32, SQL_C_SLONG, 4, 4);
      }
      break;
    case SQL_BIGINT:
      if (is_unsigned) {
        fixed(adUnsignedBigInt, Kind::kUInt64, SQL_C_UBIGINT, 8, 8);
      } else {
        fixed(adBigInt, Kind::kInt64, SQL_C_SBIGINT, 8, 8);
      }
      break;
    case SQL_REAL:
      fixed(adSingle, Kind::kFloat, SQL_C_FLOAT, 4, 4);
      break;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      fixed(adDouble, Kind::kDouble, SQL_C_DOUBLE, 8, 8);
      break;
    case SQL_NUMERIC:
    case SQL_DECIMAL: {
      if (digits == 0 && size > 19 && info.base_table.empty()) {
        // A whole-number expression wider than any column: MariaDB's SUM of
        // integers, which other engines give as a big integer.
        fixed(adBigInt, Kind::kInt64, SQL_C_SBIGINT, 8, 8);
        break;
      }
      // Up to 19 digits: a server's money type is DECIMAL(19,4).
      const bool currency = digits >= 0 && digits <= 4 && size > 0 && size <= 19;
      fixed(adNumeric, currency ? Kind::kNumericCurrency : Kind::kNumericDouble, SQL_C_CHAR,
            kNumericSlotBytes, SizeOf(size));
      break;
    }
    case SQL_BIT:
      fixed(adBoolean, Kind::kBit, SQL_C_BIT, 1, 2);
      break;
    case SQL_TYPE_DATE:
    case SQL_DATE:
      fixed(adDate, Kind::kDate, SQL_C_TYPE_DATE, sizeof(SQL_DATE_STRUCT), 8);
      break;
    case SQL_TYPE_TIME:
    case SQL_TIME:
      fixed(adDBTime, Kind::kTime, SQL_C_TYPE_TIME, sizeof(SQL_TIME_STRUCT), 8);
      break;
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
      fixed(adDBTimeStamp, Kind::kTimestamp, SQL_C_TYPE_TIMESTAMP, sizeof(SQL_TIMESTAMP_STRUCT),
            16);
      break;
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
      text(adVarWChar, false);
      break;
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
      text(adLongVarWChar, true);
      break;
    case SQL_BINARY:
    case SQL_VARBINARY:
      binary(adVarBinary, false);
      break;
    case SQL_LONGVARBINARY:
      binary(adLongVarBinary, true);
      break;
    default:
      // GUIDs, intervals and the servers' own types read as the driver's text.
      text(adVarWChar, false);
      break;
  }
  return plan;
}

// A date outside the years the Date type holds reads as its text, so that one
// odd value does not make a whole table unreadable.
Variant DateValue(Kind kind, int year, int month, int day, int hour, int minute, int second,
                  SQLUINTEGER fraction_ns) {
  if (kind == Kind::kTime) return Variant(TimeSerial(hour, minute, second));
  if (year < 100 || year > 9999) {
    char buffer[40];
    if (kind == Kind::kDate) {
      std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", year, month, day);
    } else {
      std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", year, month, day, hour,
                    minute, second);
    }
    return Variant(std::string(buffer));
  }
  if (kind == Kind::kDate) return Variant(DateSerial(year, month, day));
  Date value = DateTimeOf(year, month, day, hour, minute, second);
  if (fraction_ns != 0) {
    const double fraction = static_cast<double>(fraction_ns) / 86400e9;
    value = Date(value.Serial() >= 0 ? value.Serial() + fraction : value.Serial() - fraction);
  }
  return Variant(value);
}

// Exact decimal text to Currency; nullopt when it has more than four
// decimals that matter or does not fit.
std::optional<Currency> ParseCurrency(std::string_view text) {
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  constexpr uint64_t kLimit = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
  uint64_t scaled = 0;
  bool any_digit = false;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    scaled = scaled * 10 + static_cast<uint64_t>(text[i] - '0');
    if (scaled > kLimit / 10000) return std::nullopt;
    any_digit = true;
  }
  uint64_t fraction = 0;
  int fraction_digits = 0;
  if (i < text.size() && text[i] == '.') {
    for (++i; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
      any_digit = true;
      if (fraction_digits < 4) {
        fraction = fraction * 10 + static_cast<uint64_t>(text[i] - '0');
        ++fraction_digits;
      } else if (text[i] != '0') {
        return std::nullopt;
      }
    }
  }
  if (!any_digit || i != text.size()) return std::nullopt;
  for (; fraction_digits < 4; ++fraction_digits)
    fraction *= 10;
  scaled = scaled * 10000 + fraction;
  if (scaled > kLimit) return std::nullopt;
  const auto value = static_cast<int64_t>(scaled);
  return Currency{negative ? -value : value};
}

Variant NumericValue(Kind kind, std::string_view text) {
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  if (kind == Kind::kNumericCurrency) {
    if (const std::optional<Currency> value = ParseCurrency(text)) return Variant(*value);
  }
  double value = 0;
  std::string_view digits = text;
  if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (ec == std::errc() && end == digits.data() + digits.size()) return Variant(value);
  return Variant(std::string(text));  // NaN and the like, as the server wrote them
}

template <class T>
T Load(const unsigned char* slot) {
  T value;
  std::memcpy(&value, slot, sizeof value);
  return value;
}

// Converts a fixed-size value (everything but text, binary and numeric text)
// held at slot into its Variant.
Variant FixedValue(Kind kind, const unsigned char* slot) {
  switch (kind) {
    case Kind::kInt16:
      return Variant(static_cast<int16_t>(Load<SQLSMALLINT>(slot)));
    case Kind::kInt32:
      return Variant(static_cast<int32_t>(Load<SQLINTEGER>(slot)));
    case Kind::kInt64:
      return Variant(static_cast<int64_t>(Load<SQLBIGINT>(slot)));
    case Kind::kUInt64: {
      const auto value = Load<SQLUBIGINT>(slot);
      if (value <= static_cast<SQLUBIGINT>(std::numeric_limits<int64_t>::max())) {
        return Variant(static_cast<int64_t>(value));
      }
      return Variant(static_cast<double>(value));
    }
    case Kind::kFloat:
      return Variant(static_cast<float>(Load<SQLREAL>(slot)));
    case Kind::kDouble:
      return Variant(static_cast<double>(Load<SQLDOUBLE>(slot)));
    case Kind::kBit:
      return Variant(Load<unsigned char>(slot) != 0);
    case Kind::kDate: {
      const auto d = Load<SQL_DATE_STRUCT>(slot);
      return DateValue(kind, d.year, d.month, d.day, 0, 0, 0, 0);
    }
    case Kind::kTime: {
      const auto t = Load<SQL_TIME_STRUCT>(slot);
      return DateValue(kind, 0, 0, 0, t.hour, t.minute, t.second, 0);
    }
    case Kind::kTimestamp: {
      const auto ts = Load<SQL_TIMESTAMP_STRUCT>(slot);
      return DateValue(kind, ts.year, ts.month, ts.day, ts.hour, ts.minute, ts.second, ts.fraction);
    }
    default:
      return Variant::Null();  // not a fixed-size kind
  }
}

bool IsFixed(Kind kind) {
  return kind != Kind::kText && kind != Kind::kBinary && kind != Kind::kNumericCurrency &&
         kind != Kind::kNumericDouble;
}

// Reads a whole value of the current row with SQLGetData, in pieces when it
// is long.
Variant ReadWithGetData(SQLHSTMT stmt, SQLUSMALLINT column, const ColumnPlan& plan,
                        const std::string& statement) {
  if (IsFixed(plan.kind)) {
    alignas(8) unsigned char slot[sizeof(SQL_TIMESTAMP_STRUCT) + 8] = {};
    SQLLEN indicator = 0;
    const SQLRETURN rc = SQLGetData(stmt, column, plan.c_type, slot, sizeof slot, &indicator);
    Check(rc, SQL_HANDLE_STMT, stmt, "SQLGetData", statement);
    if (rc == SQL_NO_DATA || indicator == SQL_NULL_DATA) return Variant::Null();
    return FixedValue(plan.kind, slot);
  }

  // Text (wide or numeric) and bytes: the terminator each piece carries.
  const size_t terminator = plan.kind == Kind::kText     ? sizeof(SQLWCHAR)
                            : plan.kind == Kind::kBinary ? 0
                                                         : 1;
  std::vector<unsigned char> piece(kPieceBytes);
  std::vector<unsigned char> value;
  for (bool first = true;; first = false) {
    SQLLEN indicator = 0;
    const SQLRETURN rc = SQLGetData(stmt, column, plan.c_type, piece.data(),
                                    static_cast<SQLLEN>(piece.size()), &indicator);
    if (rc == SQL_NO_DATA) break;
    Check(rc, SQL_HANDLE_STMT, stmt, "SQLGetData", statement);
    if (indicator == SQL_NULL_DATA) {
      if (first) return Variant::Null();
      break;
    }
    const size_t room = piece.size() - terminator;
    size_t got = (indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > room)
                     ? room
                     : static_cast<size_t>(indicator);
    if (plan.kind == Kind::kText) {
      // What the driver wrote ends with a NUL. MariaDB's driver gives some
      // texts a length one character short (eight two-byte characters and
      // more after them), so what it wrote past that length is kept too.
      const auto* units = reinterpret_cast<const SQLWCHAR*>(piece.data());
      size_t written = got / sizeof(SQLWCHAR);
      while (written < room / sizeof(SQLWCHAR) && units[written] != 0)
        ++written;
      got = written * sizeof(SQLWCHAR);
    }
    value.insert(value.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(got));
    if (rc == SQL_SUCCESS) break;
  }
  if (plan.kind == Kind::kText) {
    std::string out;
    AppendNarrow(reinterpret_cast<const SQLWCHAR*>(value.data()), value.size() / sizeof(SQLWCHAR),
                 out);
    return Variant(std::move(out));
  }
  std::string bytes(value.begin(), value.end());
  if (plan.kind == Kind::kBinary) return Variant(std::move(bytes));
  return NumericValue(plan.kind, bytes);
}

// Appends the value of bound row `row` to cells; false (nothing appended)
// when the value must be read again: it did not fit its slot, or it is text
// bound 8-bit that is not plain ASCII. Wide texts are narrowed into text,
// one buffer for the whole fetch: the cell copies what it needs (short texts
// go inside it), so no string is made per cell.
bool AppendBoundValue(const ColumnPlan& plan, size_t row, std::vector<Variant>& cells,
                      std::string& text) {
  const SQLLEN indicator = plan.indicators[row];
  if (indicator == SQL_NULL_DATA) {
    cells.push_back(Variant::Null());
    return true;
  }
  const unsigned char* slot = plan.buffer.data() + row * plan.slot_bytes;
  switch (plan.kind) {
    case Kind::kText: {
      if (plan.narrow) {
        if (indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > plan.slot_bytes - 1) {
          return false;
        }
        const std::string_view value(reinterpret_cast<const char*>(slot),
                                     static_cast<size_t>(indicator));
        if (!IsPlainAscii(value)) return false;
        cells.emplace_back(value);
        return true;
      }
      if (indicator == SQL_NO_TOTAL ||
          static_cast<size_t>(indicator) > plan.slot_bytes - sizeof(SQLWCHAR)) {
        return false;
      }
      text.clear();
      AppendNarrow(reinterpret_cast<const SQLWCHAR*>(slot),
                   static_cast<size_t>(indicator) / sizeof(SQLWCHAR), text);
      cells.emplace_back(std::string_view(text));
      return true;
    }
    case Kind::kBinary:
      if (indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > plan.slot_bytes) {
        return false;
      }
      cells.emplace_back(
          std::string(reinterpret_cast<const char*>(slot), static_cast<size_t>(indicator)));
      return true;
    case Kind::kNumericCurrency:
    case Kind::kNumericDouble:
      if (indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > plan.slot_bytes - 1) {
        return false;
      }
      cells.push_back(NumericValue(plan.kind, std::string_view(reinterpret_cast<const char*>(slot),
                                                               static_cast<size_t>(indicator))));
      return true;
    default:
      cells.push_back(FixedValue(plan.kind, slot));
      return true;
  }
}

void SetAttribute(SQLHSTMT stmt, SQLINTEGER attribute, SQLPOINTER value,
                  const std::string& statement) {
  Check(SQLSetStmtAttr(stmt, attribute, value, 0), SQL_HANDLE_STMT, stmt, "SQLSetStmtAttr",
        statement);
}

void BindColumn(SQLHSTMT stmt, size_t column, ColumnPlan& plan, size_t block,
                const std::string& statement) {
  plan.buffer.assign(plan.slot_bytes * block, 0);
  plan.indicators.assign(block, 0);
  Check(SQLBindCol(stmt, static_cast<SQLUSMALLINT>(column + 1),
                   plan.narrow ? SQLSMALLINT{SQL_C_CHAR} : plan.c_type, plan.buffer.data(),
                   static_cast<SQLLEN>(plan.slot_bytes), plan.indicators.data()),
        SQL_HANDLE_STMT, stmt, "SQLBindCol", statement);
}

// A text column bound 8-bit goes back to wide binding for the rest of the
// result once more than one in kRereadShare of its values needed reading
// again, judged every kRereadWindow rows or more: text that is mostly not
// ASCII is read wide at once instead of positioning on each row of it.
constexpr size_t kRereadShare = 8;
constexpr size_t kRereadWindow = 256;

void FetchBound(SQLHSTMT stmt, std::vector<ColumnPlan>& plans, bool many_rows, size_t max_rows,
                const std::string& statement, std::vector<Variant>& cells) {
  // The block is sized for wide text, which a column may go back to.
  size_t row_bytes = 0;
  for (const ColumnPlan& plan : plans)
    row_bytes += plan.slot_bytes + sizeof(SQLLEN);
  size_t block = std::clamp<size_t>(kBlockBytes / row_bytes, 1, kMaxBlockRows);
  if (max_rows > 0) block = std::min(block, max_rows);
  if (!many_rows) block = 1;

  // Text is bound 8-bit first: the driver hands most text over as it came
  // (no conversion to UTF-16 and back), and a slot of one byte per character
  // holds any ASCII value the column can hold. Anything else is read again
  // wide, so that no character set between here and the server can change
  // a character.
  for (size_t c = 0; c < plans.size(); ++c) {
    ColumnPlan& plan = plans[c];
    if (plan.kind == Kind::kText) {
      plan.narrow = true;
      plan.slot_bytes = RoundUp8(plan.text_units + 1);
    }
    BindColumn(stmt, c, plan, block, statement);
  }
  SQLULEN fetched = 0;
  std::vector<SQLUSMALLINT> status(block);
  SetAttribute(stmt, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(SQL_BIND_BY_COLUMN),
               statement);
  SetAttribute(stmt, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(block), statement);
  SetAttribute(stmt, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, statement);
  SetAttribute(stmt, SQL_ATTR_ROW_STATUS_PTR, status.data(), statement);

  const size_t columns = plans.size();
  size_t total = 0;
  size_t window = 0;  // rows since the last look at the read-again counts
  std::string text;
  while (max_rows == 0 || total < max_rows) {
    fetched = 0;
    const SQLRETURN rc = SQLFetch(stmt);
    if (rc == SQL_NO_DATA) break;
    Check(rc, SQL_HANDLE_STMT, stmt, "SQLFetch", statement);
    for (size_t row = 0; row < fetched && (max_rows == 0 || total < max_rows); ++row) {
      if (status[row] == SQL_ROW_NOROW) continue;
      if (status[row] == SQL_ROW_ERROR)
        ThrowDiagnostics(SQL_HANDLE_STMT, stmt, "SQLFetch", statement);
      bool positioned = false;
      for (size_t c = 0; c < columns; ++c) {
        if (AppendBoundValue(plans[c], row, cells, text)) continue;
        ++plans[c].rereads;
        // One row per fetch is where SQLGetData reads already.
        if (block > 1 && !positioned) {
          Check(SQLSetPos(stmt, static_cast<SQLSETPOSIROW>(row + 1), SQL_POSITION,
                          SQL_LOCK_NO_CHANGE),
                SQL_HANDLE_STMT, stmt, "SQLSetPos", statement);
          positioned = true;
        }
        cells.push_back(
            ReadWithGetData(stmt, static_cast<SQLUSMALLINT>(c + 1), plans[c], statement));
      }
      ++total;
    }
    // With one row per fetch, reading a value again costs one call and no
    // positioning: text stays 8-bit there.
    window += fetched;
    if (block == 1 || window < kRereadWindow) continue;
    for (size_t c = 0; c < columns; ++c) {
      ColumnPlan& plan = plans[c];
      if (plan.narrow && plan.rereads * kRereadShare > window) {
        plan.narrow = false;
        plan.slot_bytes = RoundUp8((plan.text_units + 1) * sizeof(SQLWCHAR));
        BindColumn(stmt, c, plan, block, statement);
      }
      plan.rereads = 0;
    }
    window = 0;
  }
}

void FetchRows(SQLHSTMT stmt, const std::vector<ColumnPlan>& plans, size_t max_rows,
               const std::string& statement, std::vector<Variant>& cells) {
  for (size_t total = 0; max_rows == 0 || total < max_rows; ++total) {
    const SQLRETURN rc = SQLFetch(stmt);
    if (rc == SQL_NO_DATA) break;
    Check(rc, SQL_HANDLE_STMT, stmt, "SQLFetch", statement);
    for (size_t c = 0; c < plans.size(); ++c) {
      cells.push_back(ReadWithGetData(stmt, static_cast<SQLUSMALLINT>(c + 1), plans[c], statement));
    }
  }
}

}  // namespace

FetchCapabilities ProbeFetchCapabilities(SQLHDBC dbc) {
  FetchCapabilities capabilities;
  SQLUINTEGER getdata = 0;
  constexpr SQLUINTEGER kNeeded = SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER | SQL_GD_BOUND;
  if (!SQL_SUCCEEDED(SQLGetInfo(dbc, SQL_GETDATA_EXTENSIONS, &getdata, sizeof getdata, nullptr)) ||
      (getdata & kNeeded) != kNeeded) {
    return capabilities;
  }
  capabilities.bound = true;
  if ((getdata & SQL_GD_BLOCK) == 0) return capabilities;
  const auto can_position = [&](SQLUSMALLINT info) {
    SQLUINTEGER attributes = 0;
    return SQL_SUCCEEDED(SQLGetInfo(dbc, info, &attributes, sizeof attributes, nullptr)) &&
           (attributes & SQL_CA1_POS_POSITION) != 0;
  };
  if (can_position(SQL_FORWARD_ONLY_CURSOR_ATTRIBUTES1)) {
    capabilities.block = true;
  } else if (can_position(SQL_STATIC_CURSOR_ATTRIBUTES1)) {
    capabilities.block = true;
    capabilities.static_cursor = true;
  }
  return capabilities;
}

std::vector<std::string> ReadResult(SQLHSTMT stmt, const FetchCapabilities& capabilities,
                                    int32_t max_rows, const std::string& statement, RowSet& rows) {
  SQLSMALLINT count = 0;
  Check(SQLNumResultCols(stmt, &count), SQL_HANDLE_STMT, stmt, "SQLNumResultCols", statement);
  const auto columns = static_cast<size_t>(count);
  rows.columns.assign(columns, ColumnInfo{});
  std::vector<ColumnPlan> plans(columns);
  std::vector<std::string> schemas(columns);

  for (size_t c = 0; c < columns; ++c) {
    const auto number = static_cast<SQLUSMALLINT>(c + 1);
    SQLWCHAR name[256];
    SQLSMALLINT name_units = 0;
    SQLSMALLINT sql_type = 0;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
    Check(
        SQLDescribeColW(stmt, number, name, 256, &name_units, &sql_type, &size, &digits, &nullable),
        SQL_HANDLE_STMT, stmt, "SQLDescribeCol", statement);
    SQLLEN is_unsigned = SQL_FALSE;
    SQLLEN auto_unique = SQL_FALSE;
    SQLColAttributeW(stmt, number, SQL_DESC_UNSIGNED, nullptr, 0, nullptr, &is_unsigned);
    SQLColAttributeW(stmt, number, SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0, nullptr, &auto_unique);

    ColumnInfo& info = rows.columns[c];
    info.name = Narrow(
        name,
        std::clamp<size_t>(static_cast<size_t>(std::max<SQLSMALLINT>(name_units, 0)), 0, 255));
    info.nullable = nullable != SQL_NO_NULLS;
    info.auto_increment = auto_unique == SQL_TRUE;
    info.base_table = ColumnTextAttribute(stmt, number, SQL_DESC_BASE_TABLE_NAME);
    if (!info.base_table.empty()) {
      info.base_column = ColumnTextAttribute(stmt, number, SQL_DESC_BASE_COLUMN_NAME);
      schemas[c] = ColumnTextAttribute(stmt, number, SQL_DESC_SCHEMA_NAME);
    }
    if (info.base_column.empty()) info.base_table.clear();  // an expression
    plans[c] = PlanColumn(sql_type, size, digits, is_unsigned == SQL_TRUE, info);
  }
  if (columns == 0) return schemas;

  // Most drivers know the row count of a result they have read; use it to
  // size the cells once.
  SQLLEN expected = 0;
  if (SQL_SUCCEEDED(SQLRowCount(stmt, &expected)) && expected > 0) {
    size_t expected_rows = static_cast<size_t>(expected);
    if (max_rows > 0) expected_rows = std::min(expected_rows, static_cast<size_t>(max_rows));
    rows.cells = internal::CellStorage(std::min<size_t>(expected_rows, size_t{1} << 24) * columns);
  }
  const size_t limit = max_rows > 0 ? static_cast<size_t>(max_rows) : 0;
  if (capabilities.bound) {
    FetchBound(stmt, plans, capabilities.block, limit, statement, rows.cells);
  } else {
    FetchRows(stmt, plans, limit, statement, rows.cells);
  }
  return schemas;
}

}  // namespace kelvary::odbc
