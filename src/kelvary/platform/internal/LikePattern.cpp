#include "kelvary/platform/internal/LikePattern.h"

#include <cstddef>

namespace kelvary::internal {
namespace {

inline char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// The index after the UTF-8 character that starts at i.
inline size_t NextChar(std::string_view text, size_t i) {
  ++i;
  while (i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80)
    ++i;
  return i;
}

}  // namespace

bool LikeMatches(std::string_view pattern, std::string_view text, int escape) {
  size_t p = 0;
  size_t t = 0;
  size_t star_p = std::string_view::npos;  // pattern index after the last run of stars
  size_t star_t = 0;                       // where that run's match currently ends
  while (t < text.size()) {
    if (p < pattern.size()) {
      const char c = pattern[p];
      if (escape >= 0 && static_cast<unsigned char>(c) == escape && p + 1 < pattern.size()) {
        if (Lower(pattern[p + 1]) == Lower(text[t])) {
          p += 2;
          ++t;
          continue;
        }
      } else if (c == '*' || c == '%') {
        star_p = ++p;
        star_t = t;
        continue;
      } else if (c == '?' || c == '_') {
        ++p;
        t = NextChar(text, t);
        continue;
      } else if (Lower(c) == Lower(text[t])) {
        ++p;
        ++t;
        continue;
      }
    }
    // Mismatch: let the last star swallow one more character, if there is one.
    if (star_p == std::string_view::npos) return false;
    p = star_p;
    star_t = NextChar(text, star_t);
    t = star_t;
  }
  while (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%'))
    ++p;
  return p == pattern.size();
}

}  // namespace kelvary::internal
