// Text helpers shared by the whole library: letter case in the way the
// system compares names (ASCII letters only, so that table, column and key
// names compare the same on every machine whatever its locale). Pure
// functions; thread-safe.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace kelvary {

// AsciiLower / AsciiUpper: one byte in the other case when it is an ASCII
// letter, unchanged otherwise. Unlike std::tolower they ignore the locale a
// host may have set, and never touch the bytes of a UTF-8 sequence.
constexpr char AsciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char AsciiUpper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

// EqualsNoCase: a and b are the same text but for the case of ASCII letters.
inline bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) {
      return false;
    }
  }
  return true;
}

// StartsWithNoCase: text begins with prefix but for the case of ASCII letters.
inline bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

// StartsWithNoCase: the same from position pos of text; false when pos lies
// beyond its end.
inline bool StartsWithNoCase(std::string_view text, size_t pos, std::string_view prefix) {
  return pos <= text.size() && StartsWithNoCase(text.substr(pos), prefix);
}

inline std::string LowerCase(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    c = AsciiLower(c);
  return out;
}

// TrimBlanks: the runtime's Trim, which takes off blanks only, not tabs or
// line breaks.
inline std::string TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

// TrimSpace: text without the white space (blanks, tabs, line breaks) at
// either end.
inline std::string_view TrimSpace(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
    s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
    s.remove_suffix(1);
  return s;
}

// UpperCase: the runtime's UCase for the letters the system's names use.
inline std::string UpperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    c = AsciiUpper(c);
  return out;
}

}  // namespace kelvary
