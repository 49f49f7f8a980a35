// PostgresValues: values between Variant and PostgreSQL's binary wire form.
//
// Columns, by the OID of their type (the same DataTypeEnum the ODBC driver
// gives the same column):
//   bool 11 Boolean; int2 2 Integer; int4 3 Long; int8 20 LongLong;
//   oid 20 (a LongLong, unsigned on the wire); float4 4 Single;
//   float8 5 Double; numeric 131: Currency when the declared scale is 0 to 4
//   and the precision at most 19 (a value beyond Currency's range reads as
//   Double), Double otherwise, NaN as its text; money 6 (Currency);
//   date 7, timestamp and timestamptz 135, time 134 (Date; microseconds
//   kept; a date outside the years 100 to 9999, or an infinity, reads as its
//   ISO text); varchar, char, name and the "char" type 202 (String), text,
//   json, jsonb and xml 203; bytea 205 (String holding the bytes); uuid 202
//   as its usual text; anything else 202 with the bytes as the server sent
//   them.
// Parameters, by their Variant: Boolean bool, Integer int2, Long int4,
// LongLong int8, Single float4, Double float8 (all binary), Currency numeric
// (exact decimal text), Date timestamp (binary), String and Null untyped
// text, so that the server reads them as it reads a literal in their place.
// Pure functions; thread-safe.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::postgres {

// Some type OIDs of the server's catalog (they never change).
enum TypeOid : uint32_t {
  kOidUntyped = 0,
  kOidBool = 16,
  kOidBytea = 17,
  kOidChar = 18,
  kOidName = 19,
  kOidInt8 = 20,
  kOidInt2 = 21,
  kOidInt4 = 23,
  kOidText = 25,
  kOidOid = 26,
  kOidJson = 114,
  kOidXml = 142,
  kOidFloat4 = 700,
  kOidFloat8 = 701,
  kOidUnknown = 705,
  kOidMoney = 790,
  kOidBpchar = 1042,
  kOidVarchar = 1043,
  kOidDate = 1082,
  kOidTime = 1083,
  kOidTimestamp = 1114,
  kOidTimestampTz = 1184,
  kOidNumeric = 1700,
  kOidUuid = 2950,
  kOidJsonb = 3802,
};

// ColumnType: how a column of a type reads.
struct ColumnType {
  DataTypeEnum type = adVarWChar;
  int32_t defined_size = 0;
  bool currency = false;  // numeric read as Currency
};

// TypeOfColumn: the column type for a type OID and its modifier (PQfmod).
ColumnType TypeOfColumn(uint32_t oid, int32_t modifier);

// ReadValue: the Variant of one binary value of a column of type oid.
Variant ReadValue(uint32_t oid, const ColumnType& column, const char* data, size_t length);

// The server counts days and microseconds from 2000-01-01: that day from
// 1970-01-01, and its Date serial (Dates count from 1899-12-30).
constexpr int64_t kServerEpoch = DaysFromCivil(2000, 1, 1);
constexpr int64_t kServerEpochSerial = kServerEpoch - DaysFromCivil(1899, 12, 30);
// Days from the server's epoch to the first and last day a Date holds.
constexpr int64_t kFirstDay = DaysFromCivil(100, 1, 1) - kServerEpoch;
constexpr int64_t kLastDay = DaysFromCivil(9999, 12, 31) - kServerEpoch;

// BigEndian: an integer as the wire holds it, most significant byte first.
template <class T>
T BigEndian(const char* data) {
  using U = std::make_unsigned_t<T>;
  U value = 0;
  for (size_t i = 0; i < sizeof(T); ++i)
    value = static_cast<U>((value << 8) | static_cast<unsigned char>(data[i]));
  return static_cast<T>(value);
}

// AppendValue: the same, built in place at the end of cells. The walk of a
// whole result goes through here, value by value: the usual types are read
// here, inline, the others by ReadValue.
inline void AppendValue(uint32_t oid, const ColumnType& column, const char* data, size_t length,
                        std::vector<Variant>& cells) {
  switch (oid) {
    case kOidInt4:
      if (length == 4) {
        cells.emplace_back(BigEndian<int32_t>(data));
        return;
      }
      break;
    case kOidText:
    case kOidVarchar:
    case kOidBpchar:
      cells.emplace_back(std::string_view(data, length));
      return;
    case kOidFloat8:
      if (length == 8) {
        cells.emplace_back(std::bit_cast<double>(BigEndian<uint64_t>(data)));
        return;
      }
      break;
    case kOidDate:
      if (length == 4) {
        const int32_t days = BigEndian<int32_t>(data);
        if (days >= kFirstDay && days <= kLastDay) {
          cells.emplace_back(Date(static_cast<double>(days + kServerEpochSerial)));
          return;
        }
      }
      break;
    default:
      break;
  }
  cells.push_back(ReadValue(oid, column, data, length));
}

// Parameter: one parameter as sent: its type OID (0: the server decides),
// its bytes and whether they are binary.
struct Parameter {
  uint32_t oid = kOidUntyped;
  std::string bytes;
  bool binary = false;
  bool null = false;
};

// WriteParameter: the parameter for value; false for a value no column can
// take (an object).
bool WriteParameter(const Variant& value, Parameter& out);

}  // namespace kelvary::postgres
