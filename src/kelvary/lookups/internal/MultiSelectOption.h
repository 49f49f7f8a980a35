// Multi-select option values: a search-link value below zero stands for a
// multi-select and one of its options, as minus (multi-select ID x 1000000
// + option value). The decoding rounds the multi-select ID halves to even
// rather than truncating it: stored values depend on it, so option values
// stay below 500000.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "kelvary/platform/Variant.h"

namespace kelvary::lookups {

constexpr int64_t kMultiSelectScale = 1000000;

// MultiSelectIdOf: the multi-select ID a link value names.
inline int32_t MultiSelectIdOf(int32_t link_value) {
  const double magnitude = static_cast<double>(std::llabs(int64_t{link_value}));
  return static_cast<int32_t>(RoundHalfEven(magnitude / static_cast<double>(kMultiSelectScale)));
}

// OptionValueOf: the option's own value within its multi-select.
inline int32_t OptionValueOf(int32_t link_value) {
  return static_cast<int32_t>(std::llabs(int64_t{link_value}) % kMultiSelectScale);
}

// MultiSelectOptionValue: the link value of an option (Error 6 when it does
// not fit a Long).
inline int32_t MultiSelectOptionValue(int32_t multi_select_id, int32_t option_value) {
  return CLng(Variant(-(int64_t{multi_select_id} * kMultiSelectScale + option_value)));
}

}  // namespace kelvary::lookups
