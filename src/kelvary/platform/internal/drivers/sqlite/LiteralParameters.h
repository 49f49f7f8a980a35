// LiteralParameters: the values the system writes into a SELECT's text
// ("... WHERE ID = 42", "... WHERE Code = 'AB'") taken out as parameters,
// so that statements that differ only in those values share one prepared
// statement. The SQLite driver prepares the parameterized text and binds the
// values; what the statement means does not change, since a literal and a
// bound value of the same type compare alike.
//
// Only a number or a quoted text that stands right after a comparison
// (=, ==, <>, !=, <, >, <=, >=) following the statement's WHERE is taken:
// the select list (whose text names result columns), LIMIT, ORDER BY, LIKE
// patterns and #date# literals are left as they stand. A text that already
// holds parameter markers, or is not a SELECT, is not changed.
// Pure functions; thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Variant.h"

namespace kelvary::sqlite {

struct ParameterizedText {
  std::string text;             // sql with each literal taken replaced by "?"
  std::vector<Variant> values;  // the literals taken, in order (Long, LongLong, Double or String)
};

// ParameterizeLiterals: sql with its comparison values as parameters;
// nullopt when there is nothing to take (or sql is left as it stands).
std::optional<ParameterizedText> ParameterizeLiterals(std::string_view sql);

}  // namespace kelvary::sqlite
