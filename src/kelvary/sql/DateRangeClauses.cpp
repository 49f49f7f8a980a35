#include "kelvary/sql/DateRangeClauses.h"

#include "kelvary/platform/Date.h"
#include "kelvary/sql/DialectHelpers.h"

namespace kelvary::sql {

namespace {

std::optional<Date> DayOf(const Variant& value) {
  if (!IsDate(value)) return std::nullopt;
  return DateOnly(CDate(value));
}

std::string Y(Date d) {
  return std::to_string(Year(d));
}
std::string M(Date d) {
  return std::to_string(Month(d));
}
std::string D(Date d) {
  return std::to_string(Day(d));
}

std::string Hashed(Date d) {
  return "#" + Format(d, "mm/dd/yyyy") + "#";
}

}  // namespace

std::string GetDateSqlFromValues(StdDBTypes db_type, const std::string& FieldName,
                                 DateRangeSpecs CurrentSpecs, const Variant& DateFrom,
                                 const Variant& DateTo, std::optional<bool> bUseXtalFmla) {
  const bool xtal = bUseXtalFmla.value_or(false);
  if (CurrentSpecs == drsAllDates) return "";
  const std::string& f = FieldName;
  const auto from = DayOf(DateFrom);
  const auto to = DayOf(DateTo);
  auto fmt = [db_type](Date d) { return FormatDateToDBStr(db_type, d); };

  if (from && to) {
    const Date d1 = *from;
    const Date d2 = *to;
    if (xtal && d1 != d2) {
      // No next-day shift here: the formula's "to" range is inclusive.
      return " ( {" + f + "} in CDate(" + Y(d1) + " , " + M(d1) + " , " + D(d1) + ")  to CDate(" +
             Y(d2) + " , " + M(d2) + " , " + D(d2) + ") )";
    }
    if (xtal) {
      return "( ( Day({" + f + "}) = " + D(d1) + " ) and ( Month({" + f + "}) = " + M(d1) +
             " )  and ( Year({" + f + "}) = " + Y(d1) + " ))";
    }
    if (d1 != d2) {
      // Between the next day also takes in rows stamped exactly at its
      // midnight: deliberate, the range is meant to cover whole days.
      return " ( " + f + " Between " + fmt(d1) + "  And " + fmt(AddDays(d2, 1)) + " )";
    }
    return " ( (Month(" + f + ")  = " + M(d1) + ")  And (Day(" + f + ") =  " + D(d1) +
           " )  And (Year(" + f + ") =  " + Y(d1) + " )  )";
  }
  if (from) {
    // The formula form writes the SQL dialect's literal too, as the system does.
    if (xtal) return " ( {" + f + "} >= " + fmt(*from) + " )";
    return " ( " + f + " >= " + fmt(*from) + " )";
  }
  if (to) {
    const Date d2 = *to;
    if (xtal) {
      return " ( {" + f + "} <= CDate(" + Y(d2) + " , " + M(d2) + " , " + D(d2) + ") ) ";
    }
    return " ( " + f + " < " + fmt(AddDays(d2, 1)) + " ) ";
  }
  return "";
}

std::string GetDateSqlFromControls(const std::string& FieldName, DateRangeSpecs CurrentSpecs,
                                   const DateControl& DateFrom, const DateControl& DateTo) {
  if (CurrentSpecs == drsAllDates || CurrentSpecs == 0) return "";
  const std::string& f = FieldName;
  // Always #-delimited, whatever the dialect: kept as the system has it.
  const auto from = DayOf(DateFrom.Value());
  const auto to = DayOf(DateTo.Value());
  if (!from && !to) return "";
  if (!from) return " ( " + f + " < " + Hashed(AddDays(*to, 1)) + " ) ";
  if (!to) return " ( " + f + " >= " + Hashed(*from) + " )";
  const Date d1 = *from;
  if (d1 == *to) {
    return "( ( Day(" + f + ") = " + D(d1) + " ) and ( Month(" + f + ") = " + M(d1) +
           " )  and ( Year(" + f + ") = " + Y(d1) + " ))";
  }
  return " ( " + f + " Between " + Hashed(d1) + "  And " + Hashed(AddDays(*to, 1)) + " )";
}

}  // namespace kelvary::sql
