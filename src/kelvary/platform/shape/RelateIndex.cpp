#include "kelvary/platform/shape/RelateIndex.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::shape {
namespace {

enum class Domain { kText, kNumber, kDate };

bool IsNumberKind(const Variant& v) {
  return v.IsNumber() || v.Type() == vbBoolean;
}

// DomainOf: the comparison one RELATE pair needs, from the kinds of the
// values on both sides (SQLite may hold any kind in any column, so the
// declared column types are not enough).
Domain DomainOf(const RowSet& parent, size_t parent_column, const RowSet& child,
                size_t child_column) {
  Domain domain = Domain::kText;
  auto scan = [&domain](const RowSet& rows, size_t column) {
    const size_t width = rows.columns.size();
    for (size_t i = column; i < rows.cells.size(); i += width) {
      const Variant& v = rows.cells[i];
      if (v.Type() == vbDate) {
        domain = Domain::kDate;
        return;
      }
      if (IsNumberKind(v)) domain = Domain::kNumber;
    }
  };
  scan(parent, parent_column);
  if (domain != Domain::kDate) scan(child, child_column);
  return domain;
}

// A number as a key: integral values as int64_t, so that 7, 7.0, '7' and
// True/-1 meet whatever kind carried them.
struct NumberKey {
  bool integral = true;
  int64_t whole = 0;
  double value = 0;
};

NumberKey MakeNumberKey(double d) {
  NumberKey key;
  if (d == std::trunc(d) && std::fabs(d) < 9.2e18) {
    key.whole = static_cast<int64_t>(d);
  } else {
    key.integral = false;
    key.value = d;
  }
  return key;
}

// NumberOf: the number a key value stands for in a number or date
// comparison; nothing for text that reads as neither (it then compares as
// text).
std::optional<NumberKey> NumberOf(const Variant& v, Domain domain) {
  switch (v.Type()) {
    case vbInteger:
      return NumberKey{true, *v.Get<int16_t>(), 0};
    case vbLong:
      return NumberKey{true, *v.Get<int32_t>(), 0};
    case vbLongLong:
      return NumberKey{true, *v.Get<int64_t>(), 0};
    case vbBoolean:
      return NumberKey{true, *v.Get<bool>() ? -1 : 0, 0};
    case vbDate:
      return MakeNumberKey(v.Get<Date>()->Serial());
    case vbString: {
      const std::string& text = *v.Get<std::string>();
      if (domain == Domain::kDate) {
        if (auto d = ParseDate(text)) return MakeNumberKey(d->Serial());
      }
      if (!IsNumeric(v)) return std::nullopt;
      return MakeNumberKey(CDbl(v));
    }
    default:
      return MakeNumberKey(CDbl(v));
  }
}

bool IsNothing(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

// The general key: each pair's value in a canonical byte form, one after
// the other ('i' whole number, 'd' other number, 't' text folded to lower
// case with its length in front, so that pairs never run into each other).
bool AppendKey(const Variant& v, Domain domain, std::string& key) {
  if (IsNothing(v)) return false;
  if (domain != Domain::kText) {
    if (auto n = NumberOf(v, domain)) {
      char bytes[8];
      if (n->integral) {
        std::memcpy(bytes, &n->whole, sizeof bytes);
        key += 'i';
      } else {
        std::memcpy(bytes, &n->value, sizeof bytes);
        key += 'd';
      }
      key.append(bytes, sizeof bytes);
      return true;
    }
  }
  std::string converted;
  const std::string& text = v.IsString() ? *v.Get<std::string>() : (converted = CStr(v));
  const auto length = static_cast<uint32_t>(text.size());
  char bytes[4];
  std::memcpy(bytes, &length, sizeof bytes);
  key += 't';
  key.append(bytes, sizeof bytes);
  for (char c : text) {
    key += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return true;
}

// Groups the rows with one key maker: make(row cells, key) is false for a
// row that relates to nothing. Returns nothing when make gives up (throws
// KeyUnfit), so that a faster key can fall back to the general one.
struct KeyUnfit {};

template <class Key, class MakeKey>
RelateGroups Group(const RowSet& parent, const RowSet& child, MakeKey make) {
  RelateGroups groups;
  const size_t parent_rows = parent.RowCount();
  const size_t parent_width = parent.columns.size();
  std::unordered_map<Key, int32_t> group_of;
  group_of.reserve(parent_rows);
  groups.parent_group.assign(parent_rows, RelateGroups::kNoGroup);
  Key key{};
  for (size_t r = 0; r < parent_rows; ++r) {
    if (!make(parent.cells.data() + r * parent_width, key, true)) continue;
    const auto next = static_cast<int32_t>(group_of.size());
    groups.parent_group[r] = group_of.try_emplace(key, next).first->second;
  }
  const size_t group_count = group_of.size();

  // One pass to find each child row's group, then a counting sort keeps the
  // child order within every group.
  const size_t child_rows = child.RowCount();
  const size_t child_width = child.columns.size();
  std::vector<int32_t> child_group(child_rows, RelateGroups::kNoGroup);
  std::vector<uint32_t> counts(group_count + 1, 0);
  for (size_t r = 0; r < child_rows; ++r) {
    if (!make(child.cells.data() + r * child_width, key, false)) continue;
    const auto found = group_of.find(key);
    if (found == group_of.end()) continue;
    child_group[r] = found->second;
    ++counts[static_cast<size_t>(found->second) + 1];
  }
  groups.group_start.resize(group_count + 1);
  uint32_t total = 0;
  for (size_t g = 0; g <= group_count; ++g) {
    total += counts[g];
    groups.group_start[g] = total;
  }
  groups.child_rows.resize(total);
  std::vector<uint32_t> fill(groups.group_start.begin(), groups.group_start.end() - 1);
  for (size_t r = 0; r < child_rows; ++r) {
    const int32_t g = child_group[r];
    if (g != RelateGroups::kNoGroup) {
      groups.child_rows[fill[static_cast<size_t>(g)]++] = static_cast<uint32_t>(r);
    }
  }
  return groups;
}

}  // namespace

RelateGroups Relate(const RowSet& parent, const std::vector<size_t>& parent_columns,
                    const RowSet& child, const std::vector<size_t>& child_columns) {
  std::vector<Domain> domains;
  domains.reserve(parent_columns.size());
  for (size_t i = 0; i < parent_columns.size(); ++i) {
    domains.push_back(DomainOf(parent, parent_columns[i], child, child_columns[i]));
  }

  // The usual relate: one column of whole numbers (IDs). Its keys are the
  // numbers themselves; any other value sends the work to the general key.
  if (domains.size() == 1 && domains[0] != Domain::kText) {
    const Domain domain = domains[0];
    const size_t pc = parent_columns[0];
    const size_t cc = child_columns[0];
    try {
      return Group<int64_t>(parent, child, [&](const Variant* row, int64_t& key, bool is_parent) {
        const Variant& v = row[is_parent ? pc : cc];
        if (const auto* i = v.Get<int32_t>()) {
          key = *i;
          return true;
        }
        if (const auto* i = v.Get<int64_t>()) {
          key = *i;
          return true;
        }
        if (IsNothing(v)) return false;
        const std::optional<NumberKey> n = NumberOf(v, domain);
        if (!n || !n->integral) throw KeyUnfit{};
        key = n->whole;
        return true;
      });
    } catch (const KeyUnfit&) {
    }
  }

  return Group<std::string>(
      parent, child, [&](const Variant* row, std::string& key, bool is_parent) {
        key.clear();
        const std::vector<size_t>& columns = is_parent ? parent_columns : child_columns;
        for (size_t i = 0; i < columns.size(); ++i) {
          if (!AppendKey(row[columns[i]], domains[i], key)) return false;
        }
        return true;
      });
}

}  // namespace kelvary::shape
