#include "kelvary/platform/internal/SortOrder.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::internal {
namespace {

[[noreturn]] void Fail(std::string_view text, const std::string& why) {
  throw InvalidArgumentError("Cannot sort by \"" + std::string(text) + "\": " + why + ".",
                             "Recordset");
}

bool IsNothing(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

}  // namespace

std::vector<SortKey> ParseSort(std::string_view text,
                               const std::function<int32_t(std::string_view)>& resolve) {
  std::vector<SortKey> keys;
  if (TrimSpace(text).empty()) return keys;
  size_t at = 0;
  while (at <= text.size()) {
    size_t end = at;
    bool bracket = false;
    while (end < text.size() && (bracket || text[end] != ',')) {
      if (text[end] == '[') bracket = true;
      if (text[end] == ']') bracket = false;
      ++end;
    }
    std::string_view part = TrimSpace(text.substr(at, end - at));
    if (part.empty()) Fail(text, "a column name is missing");
    SortKey key{-1, false};
    // A trailing ASC or DESC, after a blank or a closing bracket.
    const size_t blank = part.find_last_of(" \t]");
    if (blank != std::string_view::npos && blank + 1 < part.size()) {
      const std::string_view word = part.substr(blank + 1);
      if (EqualsNoCase(word, "DESC") || EqualsNoCase(word, "ASC")) {
        key.descending = EqualsNoCase(word, "DESC");
        part = TrimSpace(part.substr(0, blank + 1));
      }
    }
    if (part.size() >= 2 && part.front() == '[' && part.back() == ']') {
      part = part.substr(1, part.size() - 2);
    } else if (part.find_first_of(" \t") != std::string_view::npos) {
      Fail(text, "\"" + std::string(part) + "\" is no column name followed by ASC or DESC");
    }
    key.column = resolve(part);
    if (key.column < 0) {
      throw ItemNotFoundError("Cannot sort by \"" + std::string(text) + "\": there is no field \"" +
                                  std::string(part) + "\".",
                              "Recordset");
    }
    keys.push_back(key);
    at = end + 1;
  }
  return keys;
}

void SortRows(std::vector<uint32_t>& rows, const std::vector<SortKey>& keys,
              const std::function<const Variant*(uint32_t)>& row) {
  if (keys.empty()) return;
  std::stable_sort(rows.begin(), rows.end(), [&](uint32_t a, uint32_t b) {
    const Variant* x = row(a);
    const Variant* y = row(b);
    for (const SortKey& key : keys) {
      const Variant& u = x[key.column];
      const Variant& v = y[key.column];
      int order;
      if (IsNothing(u) || IsNothing(v)) {
        order = IsNothing(u) == IsNothing(v) ? 0 : (IsNothing(u) ? -1 : 1);
      } else {
        order = CompareValues(u, v);
      }
      if (order != 0) return key.descending ? order > 0 : order < 0;
    }
    return false;
  });
}

}  // namespace kelvary::internal
