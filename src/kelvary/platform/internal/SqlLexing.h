// The two lexical rules that every pass over statement text shares: where a
// quoted literal or name ends, and where a comment ends. The statement
// splitter and the desktop-dialect rewriter both step over these spans so
// that a ';', '#' or keyword inside them is left alone.
#pragma once

#include <string_view>

namespace kelvary::internal {

// OpensQuoted: c starts a literal ('...'), a quoted name ("..." or `...`)
// or a bracketed name ([...]).
constexpr bool OpensQuoted(char c) {
  return c == '\'' || c == '"' || c == '`' || c == '[';
}

// EndOfQuoted: the position just past the span that opens at sql[start]
// (OpensQuoted must hold). A doubled closing quote stays inside; brackets do
// not double. An unclosed span runs to the end of the text.
constexpr size_t EndOfQuoted(std::string_view sql, size_t start) {
  const char close = sql[start] == '[' ? ']' : sql[start];
  size_t j = start + 1;
  for (;;) {
    j = sql.find(close, j);
    if (j == std::string_view::npos) return sql.size();
    if (close != ']' && j + 1 < sql.size() && sql[j + 1] == close) {
      j += 2;
      continue;
    }
    return j + 1;
  }
}

// EndOfComment: when a comment opens at sql[start], the position where it
// ends: for "--" the line break that closes it (not part of the comment),
// for "/*" just past "*/"; an unclosed comment runs to the end. start when
// no comment opens there.
constexpr size_t EndOfComment(std::string_view sql, size_t start) {
  if (start + 1 >= sql.size()) return start;
  if (sql[start] == '-' && sql[start + 1] == '-') {
    const size_t end = sql.find('\n', start);
    return end == std::string_view::npos ? sql.size() : end;
  }
  if (sql[start] == '/' && sql[start + 1] == '*') {
    const size_t end = sql.find("*/", start + 2);
    return end == std::string_view::npos ? sql.size() : end + 2;
  }
  return start;
}

}  // namespace kelvary::internal
