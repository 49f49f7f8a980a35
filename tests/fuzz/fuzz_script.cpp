// The script splitter against SQLite's own judgement (sqlite3_complete) of
// where a statement ends: every statement the splitter returns, with a ';'
// added, must be complete, and none may hold a ';' at which SQLite would
// already have ended it. (The last statement of a script that does not end
// in ';' may be incomplete: it is what the script left unfinished.)
#include <sqlite3.h>

#include "FuzzSupport.h"
#include "kelvary/platform/SqlScript.h"

using kelvary::fuzz::Violation;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kelvary::fuzz::kMaxInput) return 0;
  const std::string_view input = kelvary::fuzz::AsText(data, size);
  if (input.find('\0') != std::string_view::npos) return 0;  // SQLite reads C strings
  const std::vector<std::string> statements = kelvary::SplitSqlScript(input);
  for (size_t n = 0; n < statements.size(); ++n) {
    const std::string& statement = statements[n];
    if (statement.empty()) Violation("an empty statement", input);
    for (size_t i = statement.find(';'); i != std::string::npos; i = statement.find(';', i + 1)) {
      if (sqlite3_complete(statement.substr(0, i + 1).c_str())) {
        Violation("two statements run together: [" + statement + "]", input);
      }
    }
    const bool last = n + 1 == statements.size();
    if (!sqlite3_complete((statement + ";").c_str()) && !last) {
      Violation("a statement cut before its end: [" + statement + "]", input);
    }
  }
  return 0;
}
