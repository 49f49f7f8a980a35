// Criteria: the one reader of the criteria that Find and Filter take.
//
//   criteria   := alternative { OR alternative }
//   alternative:= factor { AND factor }
//   factor     := ( criteria ) | operand op operand | operand IS [NOT] NULL
//   op         := = <> < > <= >= LIKE
//   operand    := column | [column] | 'text' | #text# | #date# | number | Null | True | False
//
// AND binds before OR, and a parenthesised group holding an OR may not be
// joined to anything with AND: "(A OR B) AND C" is refused, as the classic
// cursor refuses it ("(A AND C) OR (B AND C)" says the same). So every
// criteria is a list of alternatives, each a list of comparisons, and both
// parsing and evaluation run through lists without recursing on their
// length. Parentheses may nest kMaxNesting deep.
//
// Text doubles its apostrophes ('O''Brien'), or stands between # marks when
// it does not read as a date (#WA#, #'1'#: a text with apostrophes); numbers
// may carry a sign, a decimal point, an exponent and a leading $; dates read
// as ParseDate reads them (#3/5/2024#, #2024-03-05#). "= Null" and "<> Null"
// test for Null; any other comparison with a Null value is false. Values
// compare with CompareValues (texts without regard to case).
//
// LIKE takes * or % as its wildcard, only at the end ('Smit*') or at both
// ends ('*mit*'); a wildcard anywhere else is refused. ? and _ are plain
// characters here (a table name such as patient_notes is looked up by LIKE
// and must match itself only).
//
// Errors: an unknown column raises Error 3265; anything else that cannot be
// read raises Error 3001. Both name the criteria.
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
  // The deepest nesting of parentheses Parse accepts.
  static constexpr int kMaxNesting = 100;

  // ResolveColumn: the ordinal of a column name, or -1 when there is none.
  using ResolveColumn = std::function<int32_t(std::string_view name)>;

  // Parse reads text; raises Error 3265 for an unknown column and Error 3001
  // for anything else it cannot read, naming the criteria.
  static Criteria Parse(std::string_view text, const ResolveColumn& resolve);

  // IsSingleComparison: one comparison, without AND or OR (what Find takes).
  bool IsSingleComparison() const { return comparisons_.size() == 1; }

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

  enum class Op : uint8_t { kEq, kNe, kLt, kGt, kLe, kGe, kLike, kIsNull, kIsNotNull };
  struct Operand {
    int32_t column = -1;  // -1: the literal
    Variant literal;
  };
  struct Comparison {
    Op op = Op::kEq;
    Operand left;
    Operand right;
  };

  static bool Compare(const Comparison& comparison, const Variant* row);

  std::string text_;
  std::vector<Comparison> comparisons_;
  // The alternatives: alternative i is comparisons_[ends_[i-1] .. ends_[i]).
  std::vector<uint32_t> ends_;
};

// LikeShape: how a LIKE pattern of Find and Filter matches: the whole text,
// its beginning, or anywhere in it; the pattern's text without its
// wildcards. Empty when the pattern places a wildcard where it may not be.
struct LikeShape {
  enum Kind : uint8_t { kWhole, kPrefix, kContains };
  Kind kind = kWhole;
  std::string_view text;
};
std::optional<LikeShape> ReadLikePattern(std::string_view pattern);

}  // namespace kelvary::internal
