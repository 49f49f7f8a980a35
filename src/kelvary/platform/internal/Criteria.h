// Criteria: the one reader of the criteria that Find and Filter take.
//
//   criteria   := alternative { OR alternative }
//   alternative:= factor { AND factor }
//   factor     := ( criteria ) | operand op operand | operand IS [NOT] NULL
//   op         := = <> < > <= >= LIKE
//   operand    := column | [column] | 'text' | #date# | number | Null | True | False
//
// Text doubles its apostrophes ('O''Brien'); numbers may carry a sign, a
// decimal point, an exponent and a leading $; dates read as ParseDate reads
// them (#3/5/2024#, #2024-03-05#). "= Null" and "<> Null" test for Null;
// any other comparison with a Null value is false. Values compare with
// CompareValues (texts without regard to case); LIKE uses LikeMatches.
//
// Parsing resolves column names to ordinals once; Matches then runs on a
// row's cells without allocating. A Criteria is immutable after Parse and
// may be shared between threads.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Variant.h"

namespace kelvary::internal {

class Criteria {
 public:
  // ResolveColumn: the ordinal of a column name, or -1 when there is none.
  using ResolveColumn = std::function<int32_t(std::string_view name)>;

  // Parse reads text. Raises Error 3002 (kErrBadCriteria), naming the
  // criteria, when it cannot be read or names an unknown column.
  static Criteria Parse(std::string_view text, const ResolveColumn& resolve);

  // IsSingleComparison: one comparison, without AND or OR (what Find takes).
  bool IsSingleComparison() const;

  // Matches: whether the row whose cells start at row satisfies the
  // criteria. REQUIRES: row holds every column the criteria names.
  bool Matches(const Variant* row) const;

  // ColumnEquals: for "column = literal", the column and the literal, so
  // that a caller can answer it from an index.
  struct Equality {
    int32_t column;
    const Variant* value;
  };
  std::optional<Equality> ColumnEquals() const;

  const std::string& Text() const { return text_; }

 private:
  friend class CriteriaParser;

  enum class Op : uint8_t { kEq, kNe, kLt, kGt, kLe, kGe, kLike, kIsNull, kIsNotNull, kAnd, kOr };
  struct Operand {
    int32_t column = -1;  // -1: the literal
    Variant literal;
  };
  struct Node {
    Op op;
    Operand left;
    Operand right;
    int32_t first = -1;  // AND / OR: the two sides, as node indexes
    int32_t second = -1;
  };

  bool Evaluate(int32_t node, const Variant* row) const;
  static bool Compare(const Node& node, const Variant* row);

  std::string text_;
  std::vector<Node> nodes_;
  int32_t root_ = -1;
};

}  // namespace kelvary::internal
