#include "kelvary/platform/SqlScript.h"

#include <cctype>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/SqlLexing.h"

namespace kelvary {
namespace {

// Words: the upper-cased words of a statement, up to limit of them.
std::vector<std::string> LeadingWords(std::string_view statement, size_t limit) {
  std::vector<std::string> words;
  size_t i = 0;
  while (i < statement.size() && words.size() < limit) {
    while (i < statement.size() && !std::isalpha(static_cast<unsigned char>(statement[i])))
      ++i;
    std::string word;
    while (i < statement.size() &&
           (std::isalnum(static_cast<unsigned char>(statement[i])) || statement[i] == '_')) {
      word += static_cast<char>(std::toupper(static_cast<unsigned char>(statement[i++])));
    }
    if (!word.empty()) words.push_back(word);
  }
  return words;
}

bool IsTrigger(std::string_view statement) {
  const auto words = LeadingWords(statement, 3);
  return words.size() >= 2 && words[0] == "CREATE" &&
         (words[1] == "TRIGGER" ||
          (words.size() == 3 && (words[1] == "TEMP" || words[1] == "TEMPORARY") &&
           words[2] == "TRIGGER"));
}

// EndsWithEnd: the statement so far ends in the word END.
bool EndsWithEnd(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
    text.remove_suffix(1);
  if (text.size() < 3) return false;
  std::string last(text.substr(text.size() - 3));
  for (char& c : last)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const bool boundary =
      text.size() == 3 || !(std::isalnum(static_cast<unsigned char>(text[text.size() - 4])) ||
                            text[text.size() - 4] == '_');
  return last == "END" && boundary;
}

}  // namespace

std::vector<std::string> SplitSqlScript(std::string_view sql) {
  std::vector<std::string> statements;
  std::string current;
  size_t i = 0;
  auto finish = [&]() {
    std::string statement(TrimSpace(current));
    if (!statement.empty()) statements.push_back(std::move(statement));
    current.clear();
  };
  while (i < sql.size()) {
    const char c = sql[i];
    const size_t comment_end = internal::EndOfComment(sql, i);
    if (internal::OpensQuoted(c)) {
      const size_t j = internal::EndOfQuoted(sql, i);
      current.append(sql.substr(i, j - i));
      i = j;
    } else if (comment_end != i) {
      if (c == '/') current += ' ';  // a block comment separates like a blank
      i = comment_end;
    } else if (c == ';') {
      if (IsTrigger(current) && !EndsWithEnd(current)) {
        current += c;  // a ';' inside the trigger's body
      } else {
        finish();
      }
      ++i;
    } else {
      current += c;
      ++i;
    }
  }
  finish();
  return statements;
}

void ExecuteScript(Connection& connection, std::string_view sql) {
  const std::vector<std::string> statements = SplitSqlScript(sql);
  bool own_transaction = true;
  for (const std::string& statement : statements) {
    const auto words = LeadingWords(statement, 1);
    const std::string first = words.empty() ? "" : words[0];
    if (first == "BEGIN" || first == "COMMIT" || first == "ROLLBACK" || first == "END" ||
        first == "PRAGMA" || first == "VACUUM" || first == "ATTACH" || first == "DETACH" ||
        first == "SAVEPOINT" || first == "RELEASE") {
      own_transaction = false;
    }
  }
  if (own_transaction) connection.BeginTrans();
  for (size_t n = 0; n < statements.size(); ++n) {
    try {
      connection.Execute(statements[n], adExecuteNoRecords);
    } catch (Error& e) {
      if (own_transaction) {
        try {
          connection.RollbackTrans();
        } catch (const Error&) {
          // The statement's error is the one worth reporting.
        }
      }
      e.AddContext("Statement " + std::to_string(n + 1) + " of the script");
      if (e.Statement().empty()) e.WithStatement(statements[n]);
      throw;
    }
  }
  if (own_transaction) connection.CommitTrans();
}

}  // namespace kelvary
