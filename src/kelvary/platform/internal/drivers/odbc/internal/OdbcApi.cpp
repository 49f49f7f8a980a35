#include "kelvary/platform/internal/drivers/odbc/internal/OdbcApi.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kelvary/platform/Error.h"

namespace kelvary::odbc {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(char32_t c, std::string& out) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

// Decodes one UTF-8 sequence at text[i], advancing i; kReplacement for a
// malformed, overlong or surrogate sequence (one byte is consumed then).
char32_t DecodeUtf8(std::string_view text, size_t& i) {
  const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char lead = byte(i);
  size_t length;
  char32_t c;
  if (lead < 0x80) {
    ++i;
    return lead;
  } else if ((lead & 0xE0) == 0xC0) {
    length = 2;
    c = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3;
    c = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4;
    c = lead & 0x07;
  } else {
    ++i;
    return kReplacement;
  }
  if (i + length > text.size()) {
    ++i;
    return kReplacement;
  }
  for (size_t k = 1; k < length; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) {
      ++i;
      return kReplacement;
    }
    c = (c << 6) | (byte(i + k) & 0x3F);
  }
  static constexpr char32_t kMinimum[] = {0, 0, 0x80, 0x800, 0x10000};
  if (c < kMinimum[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
    ++i;
    return kReplacement;
  }
  i += length;
  return c;
}

struct DiagnosticRecord {
  std::string state;
  SQLINTEGER native = 0;
  std::string message;
};

std::vector<DiagnosticRecord> ReadDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle) {
  std::vector<DiagnosticRecord> records;
  if (handle == SQL_NULL_HANDLE) return records;
  for (SQLSMALLINT number = 1; number <= 20; ++number) {
    SQLWCHAR state[6] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    std::vector<SQLWCHAR> message(1024);
    SQLRETURN rc = SQLGetDiagRecW(handle_type, handle, number, state, &native, message.data(),
                                  static_cast<SQLSMALLINT>(message.size()), &length);
    if (rc == SQL_SUCCESS_WITH_INFO && static_cast<size_t>(length) >= message.size()) {
      message.resize(static_cast<size_t>(length) + 1);
      rc = SQLGetDiagRecW(handle_type, handle, number, state, &native, message.data(),
                          static_cast<SQLSMALLINT>(message.size()), &length);
    }
    if (!SQL_SUCCEEDED(rc)) break;
    size_t units = std::min(static_cast<size_t>(length < 0 ? 0 : length), message.size() - 1);
    std::string text = Narrow(message.data(), units);
    // Drivers end their messages with line breaks and stray separators.
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) {
      text.pop_back();
    }
    records.push_back({Narrow(state, 5), native, std::move(text)});
  }
  return records;
}

}  // namespace

StmtHandle AllocateStatement(SQLHDBC dbc) {
  SQLHANDLE stmt = SQL_NULL_HANDLE;
  const SQLRETURN rc = SQLAllocHandle(SQL_HANDLE_STMT, dbc, &stmt);
  if (!SQL_SUCCEEDED(rc)) ThrowDiagnostics(SQL_HANDLE_DBC, dbc, "SQLAllocHandle (statement)");
  return StmtHandle(stmt);
}

void ThrowDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle, std::string_view what,
                      const std::string& statement, std::string_view sent) {
  const std::vector<DiagnosticRecord> records = ReadDiagnostics(handle_type, handle);
  std::string description;
  for (const DiagnosticRecord& record : records) {
    if (record.message.empty()) continue;
    if (!description.empty()) description += "\n";
    description += record.message;
  }
  if (description.empty()) description = std::string(what) + " failed";
  if (!statement.empty() && !records.empty()) {
    description += "\nSQLSTATE " + records.front().state;
    if (!sent.empty() && sent != statement)
      description += "; sent to the server as: " + std::string(sent);
  }
  Error error(kErrProviderFailure, description, "ODBC");
  if (!records.empty())
    error.WithSqlState(records.front().state).WithNativeError(records.front().native);
  if (!statement.empty()) error.WithStatement(statement);
  throw error;
}

std::u16string Widen(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  size_t i = 0;
  while (i < utf8.size()) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      out.push_back(static_cast<char16_t>(lead));
      ++i;
      continue;
    }
    const char32_t c = DecodeUtf8(utf8, i);
    if (c >= 0x10000) {
      out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(c));
    }
  }
  return out;
}

void AppendNarrow(const SQLWCHAR* text, size_t units, std::string& out) {
  // Most text is ASCII: copy it in one pass, then take the slow path from the
  // first other character on.
  const size_t start = out.size();
  size_t ascii = 0;
  while (ascii < units && text[ascii] < 0x80)
    ++ascii;
  out.resize(start + ascii);
  char* dest = out.data() + start;
  for (size_t i = 0; i < ascii; ++i)
    dest[i] = static_cast<char>(text[i]);
  if (ascii == units) return;
  out.reserve(out.size() + (units - ascii) * 3);
  for (size_t i = ascii; i < units; ++i) {
    const char32_t unit = text[i];
    if (unit < 0x80) {
      out.push_back(static_cast<char>(unit));
    } else if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units && text[i + 1] >= 0xDC00 &&
               text[i + 1] <= 0xDFFF) {
      AppendUtf8(0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00), out);
      ++i;
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      AppendUtf8(kReplacement, out);
    } else {
      AppendUtf8(unit, out);
    }
  }
}

bool IsPlainAscii(std::string_view text) {
  // Eight bytes at a time: most values pass.
  constexpr uint64_t kOnes = 0x0101010101010101ULL;
  constexpr uint64_t kHigh = kOnes * 0x80;
  constexpr uint64_t kQuestion = kOnes * '?';
  size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    uint64_t word;
    std::memcpy(&word, text.data() + i, 8);
    const uint64_t question = word ^ kQuestion;  // a zero byte where a '?' was
    if (((question - kOnes) & ~question & kHigh) != 0 || (word & kHigh) != 0) return false;
  }
  for (; i < text.size(); ++i) {
    if (static_cast<unsigned char>(text[i]) >= 0x80 || text[i] == '?') return false;
  }
  return true;
}

std::string ColumnTextAttribute(SQLHSTMT stmt, SQLUSMALLINT column, SQLUSMALLINT field) {
  SQLWCHAR buffer[256];
  SQLSMALLINT bytes = 0;
  const SQLRETURN rc =
      SQLColAttributeW(stmt, column, field, buffer, sizeof buffer, &bytes, nullptr);
  if (!SQL_SUCCEEDED(rc) || bytes <= 0) return "";
  const size_t units =
      std::min(static_cast<size_t>(bytes) / sizeof(SQLWCHAR), sizeof buffer / sizeof(SQLWCHAR) - 1);
  return Narrow(buffer, units);
}

std::string InfoText(SQLHDBC dbc, SQLUSMALLINT info) {
  SQLWCHAR buffer[256];
  SQLSMALLINT bytes = 0;
  const SQLRETURN rc = SQLGetInfoW(dbc, info, buffer, sizeof buffer, &bytes);
  if (!SQL_SUCCEEDED(rc) || bytes <= 0) return "";
  const size_t units =
      std::min(static_cast<size_t>(bytes) / sizeof(SQLWCHAR), sizeof buffer / sizeof(SQLWCHAR) - 1);
  return Narrow(buffer, units);
}

std::string ConnectionValue(std::string_view value) {
  const bool plain = !value.empty() && value.find_first_of(";{}=") == std::string_view::npos &&
                     value.front() != ' ' && value.back() != ' ';
  if (plain) return std::string(value);
  std::string out = "{";
  for (const char c : value) {
    out.push_back(c);
    if (c == '}') out.push_back('}');
  }
  out.push_back('}');
  return out;
}

}  // namespace kelvary::odbc
