// The small layer over the ODBC C API that the ODBC driver is written on:
// owning handles, the translation of diagnostic records into Error, and the
// text conversions. Text crosses the API as UTF-16 (the wide functions and
// SQL_C_WCHAR), because that is the one encoding every driver and driver
// manager agree on; the rest of the library speaks UTF-8. The one exception
// is result text that is plain ASCII (IsPlainAscii), taken 8-bit as it is
// the same in every character set.
//
// Only the files of drivers/odbc include this header (it pulls in the ODBC
// headers). A handle is used by one thread at a time.
#pragma once

// The Windows ODBC headers use the platform's types without including them.
#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace kelvary::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the ODBC wide character must be UTF-16");

// Handle: one ODBC handle of a given type, freed when the object goes.
template <SQLSMALLINT kType>
class Handle {
 public:
  Handle() = default;
  explicit Handle(SQLHANDLE handle) : handle_(handle) {}
  ~Handle() { Reset(); }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, SQLHANDLE{})) {}
  Handle& operator=(Handle&& other) noexcept {
    if (this != &other) {
      Reset();
      handle_ = std::exchange(other.handle_, SQLHANDLE{});
    }
    return *this;
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  SQLHANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }
  void Reset() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kType, std::exchange(handle_, SQLHANDLE{}));
  }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

using EnvHandle = Handle<SQL_HANDLE_ENV>;
using DbcHandle = Handle<SQL_HANDLE_DBC>;
using StmtHandle = Handle<SQL_HANDLE_STMT>;

// AllocateStatement: a fresh statement handle on an open connection.
StmtHandle AllocateStatement(SQLHDBC dbc);

// ThrowDiagnostics raises the Error for a failed call: the driver's messages
// (every diagnostic record, in order), the first record's SQLSTATE and native
// code, and the statement text when there is one. what names the call, for
// the rare failure that leaves no record. For a failed statement the
// description ends with a line naming the SQLSTATE and, when the server was
// sent a translation of the statement (sent, not empty and not the
// statement), that translation: the message shown then holds both texts.
[[noreturn]] void ThrowDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle, std::string_view what,
                                   const std::string& statement = "", std::string_view sent = "");

// Check passes success (with or without information) and SQL_NO_DATA, and
// throws for anything else.
inline void Check(SQLRETURN rc, SQLSMALLINT handle_type, SQLHANDLE handle, std::string_view what,
                  const std::string& statement = "", std::string_view sent = "") {
  if (rc == SQL_SUCCESS || rc == SQL_SUCCESS_WITH_INFO || rc == SQL_NO_DATA) return;
  ThrowDiagnostics(handle_type, handle, what, statement, sent);
}

// Widen: UTF-8 to UTF-16; a byte sequence that is not UTF-8 becomes U+FFFD.
std::u16string Widen(std::string_view utf8);
// AppendNarrow: UTF-16 (units code units) to UTF-8, appended to out; an
// unpaired surrogate becomes U+FFFD.
void AppendNarrow(const SQLWCHAR* text, size_t units, std::string& out);
inline std::string Narrow(const SQLWCHAR* text, size_t units) {
  std::string out;
  AppendNarrow(text, units, out);
  return out;
}
// IsPlainAscii: whether 8-bit text from a driver is ASCII without a '?',
// the only text that reads the same in every character set a driver may
// have converted it to: a byte above 0x7F means something else in each, and
// drivers write '?' for a character the set lacks.
bool IsPlainAscii(std::string_view text);
inline SQLWCHAR* WidePtr(std::u16string& text) {
  return reinterpret_cast<SQLWCHAR*>(text.data());
}

// ColumnTextAttribute / InfoText: a text attribute of a result column or of
// the connection, as UTF-8 ("" when the driver has none).
std::string ColumnTextAttribute(SQLHSTMT stmt, SQLUSMALLINT column, SQLUSMALLINT field);
std::string InfoText(SQLHDBC dbc, SQLUSMALLINT info);

// ConnectionValue: a value for an ODBC connection string, in braces when it
// holds characters that would end or confuse the attribute.
std::string ConnectionValue(std::string_view value);

}  // namespace kelvary::odbc
