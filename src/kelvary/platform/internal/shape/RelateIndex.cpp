#include "kelvary/platform/internal/shape/RelateIndex.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Text.h"
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
      const std::string_view text = v.Text();
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
  const std::string_view text = v.IsString() ? v.Text() : std::string_view(converted = CStr(v));
  const auto length = static_cast<uint32_t>(text.size());
  char bytes[4];
  std::memcpy(bytes, &length, sizeof bytes);
  key += 't';
  key.append(bytes, sizeof bytes);
  key += LowerCase(text);
  return true;
}

// WholeNumberMap: key to group for whole-number keys, the usual relate on
// IDs: open addressing with linear probing, one flat array to probe instead
// of a node per key.
class WholeNumberMap {
 public:
  explicit WholeNumberMap(size_t count) {
    size_t capacity = 16;
    while (capacity < count * 2)
      capacity *= 2;
    mask_ = capacity - 1;
    keys_.resize(capacity);
    groups_.assign(capacity, RelateGroups::kNoGroup);
  }
  size_t size() const { return size_; }
  int32_t Insert(int64_t key) {
    size_t i = Slot(key);
    while (groups_[i] != RelateGroups::kNoGroup) {
      if (keys_[i] == key) return groups_[i];
      i = (i + 1) & mask_;
    }
    keys_[i] = key;
    groups_[i] = static_cast<int32_t>(size_++);
    return groups_[i];
  }
  int32_t Find(int64_t key) const {
    for (size_t i = Slot(key); groups_[i] != RelateGroups::kNoGroup; i = (i + 1) & mask_) {
      if (keys_[i] == key) return groups_[i];
    }
    return RelateGroups::kNoGroup;
  }

 private:
  size_t Slot(int64_t key) const {
    return static_cast<size_t>((static_cast<uint64_t>(key) * 0x9E3779B97F4A7C15ull) >> 17) & mask_;
  }
  size_t mask_ = 0;
  size_t size_ = 0;
  std::vector<int64_t> keys_;
  std::vector<int32_t> groups_;
};

// TextKeyMap: key to group for the general keys.
class TextKeyMap {
 public:
  explicit TextKeyMap(size_t count) { map_.reserve(count); }
  size_t size() const { return map_.size(); }
  int32_t Insert(const std::string& key) {
    return map_.try_emplace(key, static_cast<int32_t>(map_.size())).first->second;
  }
  int32_t Find(const std::string& key) const {
    const auto found = map_.find(key);
    return found == map_.end() ? RelateGroups::kNoGroup : found->second;
  }

 private:
  std::unordered_map<std::string, int32_t> map_;
};

inline void Prefetch(const void* address) {
#if defined(__GNUC__) || defined(__clang__)
  __builtin_prefetch(address);
#else
  (void)address;
#endif
}

// Groups the rows with one key maker: make(row cells, key, is_parent) is
// false for a row that relates to nothing, and throws KeyUnfit when the
// key kind cannot hold a value, so that the general key takes over.
struct KeyUnfit {};

template <class Key, class Map, class MakeKey>
RelateGroups Group(const RowSet& parent, const RowSet& child, MakeKey make) {
  RelateGroups groups;
  const size_t parent_rows = parent.RowCount();
  const size_t parent_width = parent.columns.size();
  Map group_of(parent_rows);
  groups.parent_group.assign(parent_rows, RelateGroups::kNoGroup);
  Key key{};
  for (size_t r = 0; r < parent_rows; ++r) {
    if (make(parent.cells.data() + r * parent_width, key, true)) {
      groups.parent_group[r] = group_of.Insert(key);
    }
  }
  groups.group_rows.resize(group_of.size());
  const size_t child_rows = child.RowCount();
  const size_t child_width = child.columns.size();
  constexpr size_t kAhead = 8;  // rows read ahead: the child rows far outgrow the caches
  for (size_t r = 0; r < child_rows; ++r) {
    if (r + kAhead < child_rows) Prefetch(child.cells.data() + (r + kAhead) * child_width);
    if (!make(child.cells.data() + r * child_width, key, false)) continue;
    const int32_t g = group_of.Find(key);
    if (g != RelateGroups::kNoGroup) {
      groups.group_rows[static_cast<size_t>(g)].push_back(static_cast<uint32_t>(r));
    }
  }
  return groups;
}

}  // namespace

RelateGroups Relate(const RowSet& parent, const std::vector<size_t>& parent_columns,
                    const RowSet& child, const std::vector<size_t>& child_columns) {
  // The usual relate: one column of whole numbers (IDs) on both sides. Its
  // keys are the numbers themselves; text, or a number with a fraction,
  // sends the work to the general key.
  if (parent_columns.size() == 1) {
    const size_t pc = parent_columns[0];
    const size_t cc = child_columns[0];
    try {
      return Group<int64_t, WholeNumberMap>(
          parent, child, [pc, cc](const Variant* row, int64_t& key, bool is_parent) {
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
            if (v.IsString() || v.IsObject()) throw KeyUnfit{};
            const std::optional<NumberKey> n = NumberOf(v, Domain::kNumber);
            if (!n || !n->integral) throw KeyUnfit{};
            key = n->whole;
            return true;
          });
    } catch (const KeyUnfit&) {
    }
  }

  std::vector<Domain> domains;
  domains.reserve(parent_columns.size());
  for (size_t i = 0; i < parent_columns.size(); ++i) {
    domains.push_back(DomainOf(parent, parent_columns[i], child, child_columns[i]));
  }
  return Group<std::string, TextKeyMap>(
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
