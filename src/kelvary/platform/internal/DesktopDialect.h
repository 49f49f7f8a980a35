// DesktopDialect: finding the desktop database's SQL in a statement, so that
// each driver can write it the way its engine reads it. The system writes
// that dialect on purpose (#03/05/2024# dates, Isnull(x) = true, Ucase$(x),
// Month(x), Like 'JS0*', & joining text) and some of the Oracle one
// (TO_Date('05-Mar-2024','DD-Mon-YYYY')), whatever the engine underneath.
//
// RewriteDesktopDialect walks the text once, stepping over quoted text and
// comments with the one SQL lexer (SqlLexing.h), and hands every piece it
// recognises to a DialectWriter, the per-engine half: the SQLite driver's
// writer keeps most pieces (its engine has the functions registered), the
// ODBC driver's writers turn them into the server's own forms or ODBC escape
// sequences. A piece a writer leaves alone is copied as written, blanks
// included, and its inside is still walked.
//
// Recognised pieces:
//   #m/d/yyyy#, #m/d/yyyy h:mm:ss# (any text ParseDate reads) -> DateLiteral
//   Isnull, Ucase$, Ucase, Lcase$, Lcase, Month, Day, Year (one argument),
//   Now(), Date() (none), TO_Date (one or two)          -> FunctionName / Call
//   LIKE followed by a quoted pattern                   -> LikeKeyword / LikeWildcards
//   a lone &                                            -> Ampersand
// A name right after a '.' is a column, never a function.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Date.h"

namespace kelvary::internal {

enum class DesktopFunction : uint8_t {
  kIsnull,
  kUcase,
  kLcase,
  kMonth,
  kDay,
  kYear,
  kNow,
  kDate,
  kToDate,
};

// DesktopCall: one call of a desktop function. arguments are already
// rewritten, each as written between the commas (blanks kept). literal_date
// is the date a TO_Date of quoted literals reads as (ParseDate for one
// argument, ParseOracleDate for two), when it reads as one.
struct DesktopCall {
  DesktopFunction function;
  std::vector<std::string> arguments;
  std::optional<Date> literal_date;
};

class DialectWriter {
 public:
  virtual ~DialectWriter() = default;
  // DateLiteral: the engine's text for a date (with its time when HasTime).
  virtual std::string DateLiteral(Date date) const = 0;
  // Call: the text replacing a whole call; nullopt keeps the call (then
  // FunctionName may still rename it).
  virtual std::optional<std::string> Call(const DesktopCall& call) const {
    (void)call;
    return std::nullopt;
  }
  // FunctionName: another name for the function, its arguments kept.
  virtual std::optional<std::string> FunctionName(DesktopFunction function) const {
    (void)function;
    return std::nullopt;
  }
  // LikeKeyword: the operator that replaces the word LIKE as written.
  virtual std::string LikeKeyword(std::string_view written) const { return std::string(written); }
  // LikeWildcards: whether * and ? in a LIKE pattern become % and _.
  virtual bool LikeWildcards() const { return false; }
  // Ampersand: the text of the desktop's & joining text; nullopt keeps it.
  virtual std::optional<std::string> Ampersand() const { return std::nullopt; }
};

// RewriteDesktopDialect: sql with every recognised piece written by writer.
std::string RewriteDesktopDialect(std::string_view sql, const DialectWriter& writer);

// ParseOracleDate: text read with an Oracle date picture (DD, MM, MON,
// MONTH, YY, YYYY, RR, RRRR, HH, HH12, HH24, MI, SS, AM, PM; other picture
// characters match any punctuation). nullopt when it does not fit.
std::optional<Date> ParseOracleDate(std::string_view text, std::string_view picture);

// IsoDateText: "yyyy-mm-dd", or "yyyy-mm-dd hh:mm:ss" when d has a time of
// day: the form SQLite stores dates in and ODBC's date escapes take.
std::string IsoDateText(Date d);

}  // namespace kelvary::internal
