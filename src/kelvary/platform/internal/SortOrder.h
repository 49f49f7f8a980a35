// SortOrder: the reader of a recordset's Sort text and the ordering of rows
// by it.
//
//   sort := key { , key }      key := column | [column]  [ASC | DESC]
//
// Values order as CompareValues orders them (texts without regard to case);
// Null sorts before any value ascending and after every value descending.
// Rows with equal keys keep their order (the sort is stable), so a sort on
// one column leaves rows in the order the statement returned them within
// each value. Pure functions; any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "kelvary/platform/Variant.h"

namespace kelvary::internal {

struct SortKey {
  int32_t column;
  bool descending;
};

// ParseSort reads text into keys ("" gives none). An unknown column raises
// Error 3265, anything else unreadable Error 3001.
std::vector<SortKey> ParseSort(std::string_view text,
                               const std::function<int32_t(std::string_view)>& resolve);

// SortRows orders rows (row ids) by keys; row(id) gives a row's cells.
void SortRows(std::vector<uint32_t>& rows, const std::vector<SortKey>& keys,
              const std::function<const Variant*(uint32_t)>& row);

}  // namespace kelvary::internal
