// RelateIndex: groups the rows of a child level under the rows of its parent
// by the values of the RELATE columns, with one hash table over the parent
// keys and one pass over the child rows: time linear in the rows, whatever
// their number.
//
// Keys compare by value. For each RELATE pair the kind of comparison is
// chosen from the values on both sides: when either side holds a date, as
// dates (text that reads as a date counts as one); else when either side
// holds a number (booleans and currency included), as numbers (text that
// reads as a number counts as one, so 7 relates to '7' and 7.0); else as
// text, without regard to ASCII case, as the cursor's own comparisons do.
// A Null (or Empty) key on either side is never related: such a parent gets
// no child rows and such a child row belongs to no parent.
//
// Pure functions over rows in memory, any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::shape {

// RelateGroups: the child rows of each parent row. Parents with equal keys
// share one group; a group may be empty.
struct RelateGroups {
  static constexpr int32_t kNoGroup = -1;

  std::vector<int32_t> parent_group;  // per parent row: its group, or kNoGroup (a Null key)
  // per group: the numbers of its child rows, ascending
  std::vector<std::vector<uint32_t>> group_rows;
};

// Relate groups the rows of child under the rows of parent: parent column
// parent_columns[i] is compared with child column child_columns[i].
// REQUIRES: both lists of the same non-zero length, every index a column
// of its rows.
RelateGroups Relate(const RowSet& parent, const std::vector<size_t>& parent_columns,
                    const RowSet& child, const std::vector<size_t>& child_columns);

}  // namespace kelvary::shape
