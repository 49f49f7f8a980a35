// The desktop dialect made to run on SQLite: the rewriter must leave any
// text without a '#' and without the word Isnull exactly as it was, never
// change what stands in quotes or comments, and what it writes must be
// read by SQLite's own parser no worse than the original (a rewrite may
// turn a statement SQLite refuses into one it takes, never the reverse).
// The Oracle date reader and the LIKE matcher get the same input split at
// its first line break into text and picture (or pattern).
#include <sqlite3.h>

#include <cctype>

#include "FuzzSupport.h"
#include "kelvary/platform/internal/LikePattern.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteDialect.h"

using namespace kelvary;
using kelvary::fuzz::Violation;

namespace {

bool MayBeRewritten(std::string_view sql) {
  if (sql.find('#') != std::string_view::npos) return true;
  std::string lower(sql);
  for (char& c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower.find("isnull") != std::string::npos;
}

sqlite3* Database() {
  static sqlite3* db = [] {
    sqlite3* handle = nullptr;
    sqlite3_open_v2(":memory:", &handle, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_exec(handle, "CREATE TABLE t (a INTEGER, b TEXT, c DATE)", nullptr, nullptr, nullptr);
    sqlite::RegisterDialectFunctions(handle);
    return handle;
  }();
  return db;
}

bool Prepares(const std::string& sql) {
  sqlite3_stmt* stmt = nullptr;
  const int rc = sqlite3_prepare_v2(Database(), sql.c_str(), -1, &stmt, nullptr);
  sqlite3_finalize(stmt);
  return rc == SQLITE_OK;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > fuzz::kMaxInput) return 0;
  const std::string_view input = fuzz::AsText(data, size);
  const std::string rewritten = sqlite::RewriteDialect(input);
  if (!MayBeRewritten(input) && rewritten != input) {
    Violation("rewritten as [" + rewritten + "] though nothing asked for it", input);
  }
  if (input.find('\0') == std::string_view::npos && Prepares(std::string(input)) &&
      !Prepares(rewritten)) {
    Violation("SQLite reads the statement but not its rewrite [" + rewritten + "]", input);
  }
  const size_t line = input.find('\n');
  if (line != std::string_view::npos) {
    sqlite::ParseOracleDate(input.substr(0, line), input.substr(line + 1));
    internal::LikeMatches(input.substr(line + 1), input.substr(0, line));
    internal::LikeMatches(input.substr(line + 1), input.substr(0, line), '\\');
  }
  return 0;
}
