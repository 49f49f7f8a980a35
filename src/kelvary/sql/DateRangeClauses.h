// Date-range clauses: a date field lying between a from-date and a to-date,
// either end open, both ends possibly on the same day, written as SQL in a
// dialect or as report-formula text.
//
// The range choice (DateRangeSpecs) matters only for "all dates" (1000, no
// restriction) and, for the control form, "no choice" (0); the clause
// otherwise depends only on which ends are present. The end dates themselves
// ("Last 7 Days" and the like) are worked out by the caller.
//
// Pure functions: the dialect is an argument, the controls are read and not
// kept. Safe on any thread that may read the controls.
#pragma once

#include <optional>
#include <string>

#include "kelvary/platform/HostControls.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/service/Enums.h"

namespace kelvary::sql {

// GetDateSqlFromValues: the clause restricting FieldName to the range
// DateFrom..DateTo. An end that is neither a date nor text reading as one is
// open. SQL dates go through FormatDateToDBStr in db_type's dialect; the
// upper end becomes the following day wherever it bounds with "<" or Between,
// so rows stamped during the last day are included. With bUseXtalFmla True,
// report-formula text with FieldName in braces. "" for drsAllDates or when
// both ends are open.
std::string GetDateSqlFromValues(StdDBTypes db_type, const std::string& FieldName,
                                 DateRangeSpecs CurrentSpecs, const Variant& DateFrom,
                                 const Variant& DateTo,
                                 std::optional<bool> bUseXtalFmla = std::nullopt);

// GetDateSqlFromControls: as GetDateSqlFromValues in SQL, with the ends read
// from the host's date controls (an end is open when its Value is not a
// date) and always written as #mm/dd/yyyy#, whatever the dialect. "" also
// for CurrentSpecs 0.
std::string GetDateSqlFromControls(const std::string& FieldName, DateRangeSpecs CurrentSpecs,
                                   const DateControl& DateFrom, const DateControl& DateTo);

}  // namespace kelvary::sql
