#include "kelvary/platform/SqlScript.h"

#include <cctype>
#include <optional>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/Transaction.h"
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
      word += AsciiUpper(statement[i++]);
    }
    if (!word.empty()) words.push_back(word);
  }
  return words;
}

// The splitter reads the script as SQLite's tokenizer does and ends a
// statement where SQLite would find it complete. Words are what SQLite takes
// for one: letters, digits, '_', '$' and any byte above 127.
bool IsWordChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return std::isalnum(u) || c == '_' || c == '$' || u >= 0x80;
}

// IsBlank: the white space SQLite's completeness test skips. A vertical tab
// is not among them, so it is kept in a statement, never trimmed off it.
bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

// TrimStatement: a statement without the blanks around it.
std::string_view TrimStatement(std::string_view s) {
  while (!s.empty() && IsBlank(s.front()))
    s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back()))
    s.remove_suffix(1);
  return s;
}

enum class Token { kSemi, kBlank, kOther, kExplain, kCreate, kTemp, kTrigger, kEnd };

Token WordToken(std::string_view word) {
  if (EqualsNoCase(word, "CREATE")) return Token::kCreate;
  if (EqualsNoCase(word, "TEMP") || EqualsNoCase(word, "TEMPORARY")) return Token::kTemp;
  if (EqualsNoCase(word, "TRIGGER")) return Token::kTrigger;
  if (EqualsNoCase(word, "END")) return Token::kEnd;
  if (EqualsNoCase(word, "EXPLAIN")) return Token::kExplain;
  return Token::kOther;
}

// Where a statement stands: a ';' completes it in kStart only. Inside a
// CREATE TRIGGER the body's own ';' are kept until "; END ;" closes it (an
// END elsewhere, as in CASE ... END, does not).
enum State { kInvalid, kStart, kNormal, kExplain, kCreate, kTrigger, kSemi, kEnd };

State Next(State state, Token token) {
  // Columns in the order of Token: Semi, Blank, Other, Explain, Create, Temp, Trigger, End.
  static constexpr State kMoves[8][8] = {
      /* kInvalid */ {kStart, kInvalid, kNormal, kExplain, kCreate, kNormal, kNormal, kNormal},
      /* kStart   */ {kStart, kStart, kNormal, kExplain, kCreate, kNormal, kNormal, kNormal},
      /* kNormal  */ {kStart, kNormal, kNormal, kNormal, kNormal, kNormal, kNormal, kNormal},
      /* kExplain */ {kStart, kExplain, kExplain, kNormal, kCreate, kNormal, kNormal, kNormal},
      /* kCreate  */ {kStart, kCreate, kNormal, kNormal, kNormal, kCreate, kTrigger, kNormal},
      /* kTrigger */ {kSemi, kTrigger, kTrigger, kTrigger, kTrigger, kTrigger, kTrigger, kTrigger},
      /* kSemi    */ {kSemi, kSemi, kTrigger, kTrigger, kTrigger, kTrigger, kTrigger, kEnd},
      /* kEnd     */ {kStart, kEnd, kTrigger, kTrigger, kTrigger, kTrigger, kTrigger, kTrigger},
  };
  return kMoves[state][static_cast<int>(token)];
}

}  // namespace

std::vector<std::string> SplitSqlScript(std::string_view sql) {
  std::vector<std::string> statements;
  std::string current;
  State state = kInvalid;
  size_t i = 0;
  auto finish = [&]() {
    std::string statement(TrimStatement(current));
    if (!TrimSpace(statement).empty()) statements.push_back(std::move(statement));
    current.clear();
    state = kInvalid;
  };
  while (i < sql.size()) {
    const char c = sql[i];
    const size_t comment_end = internal::EndOfComment(sql, i);
    if (comment_end != i) {
      if (c == '/') current += ' ';  // a block comment separates like a blank
      state = Next(state, Token::kBlank);
      i = comment_end;
    } else if (internal::OpensQuoted(c)) {
      const size_t j = internal::EndOfQuoted(sql, i);
      current.append(sql.substr(i, j - i));
      state = Next(state, Token::kOther);
      i = j;
    } else if (c == ';') {
      state = Next(state, Token::kSemi);
      if (state == kStart) {
        finish();
      } else {
        current += c;  // a ';' inside a trigger's body
      }
      ++i;
    } else if (IsWordChar(c)) {
      size_t j = i + 1;
      while (j < sql.size() && IsWordChar(sql[j]))
        ++j;
      const std::string_view word = sql.substr(i, j - i);
      current.append(word);
      state = Next(state, WordToken(word));
      i = j;
    } else {
      current += c;
      state = Next(state, IsBlank(c) ? Token::kBlank : Token::kOther);
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
  // The script's own transaction; a failing statement leaves it without a
  // commit, so it is rolled back, and the statement's error is reported.
  std::optional<Transaction> transaction;
  if (own_transaction) transaction.emplace(connection);
  for (size_t n = 0; n < statements.size(); ++n) {
    try {
      connection.Execute(statements[n], adExecuteNoRecords);
    } catch (Error& e) {
      e.AddContext("Statement " + std::to_string(n + 1) + " of the script");
      if (e.Statement().empty()) e.WithStatement(statements[n]);
      throw;
    }
  }
  if (transaction) transaction->Commit();
}

}  // namespace kelvary
