#include "ClauseCommand.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

#include "Session.h"

namespace kelvary::cli {

namespace {

CompareTypes ParseCompare(const std::string& text) {
  static const std::pair<const char*, CompareTypes> kNames[] = {
      {"equals", cmpEquals},     {"greater", cmpGreaterThan}, {"less", cmpLessThan},
      {"between", cmpBetween},   {"begins", cmpBeginsWith},   {"ends", cmpEndsWith},
      {"contains", cmpContains}, {"sounds", cmpSoundsLike}};
  for (const auto& [name, value] : kNames) {
    if (text == name) return value;
  }
  return static_cast<CompareTypes>(ParseInteger(text, "--compare", 1, 8));
}

Date ParseDateArgument(const std::string& text, std::string_view what) {
  const auto date = ParseDate(text);
  if (!date) throw UsageError(std::string(what) + " is not a date: " + text);
  return *date;
}

// A value as the builder receives it from a host: a date for a date field,
// a number for a numeric one, True/False for a yes/no field, else text.
Variant ValueFor(const std::optional<std::string>& text, FieldDataTypes type,
                 std::string_view what) {
  if (!text) return Variant();
  if (type == fdtDate || type == fdtDateTime || type == fdtTime) {
    return Variant(ParseDateArgument(*text, what));
  }
  if (type == fdtBoolean) {
    if (*text == "true" || *text == "True") return Variant(true);
    if (*text == "false" || *text == "False") return Variant(false);
    throw UsageError(std::string(what) + " is true or false for a yes/no field, not " + *text);
  }
  const bool numeric = (type >= 1 && type <= 2) || (type >= 5 && type <= 9) ||
                       (type >= 12 && type <= 17) || type == 21;
  if (numeric) {
    double number = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    if (text->empty() || error != std::errc() || end != text->data() + text->size()) {
      throw UsageError(std::string(what) + " is not a number: " + *text);
    }
    if (std::abs(number) < 9e15 && number == std::trunc(number)) {
      const int64_t whole = static_cast<int64_t>(number);
      if (whole >= std::numeric_limits<int32_t>::min() &&
          whole <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(whole));
      }
      return Variant(whole);
    }
    return Variant(number);
  }
  return Variant(*text);
}

std::string Field(const Arguments& args, const std::string& builder) {
  if (auto field = args.Get("--field")) return *field;
  throw UsageError("clause " + builder + " needs --field NAME");
}

}  // namespace

int ClauseCommand(const Arguments& args, Output& out) {
  if (args.Positional().empty()) {
    throw UsageError(
        "kelvary clause needs a BUILDER: comparison, boolean, equal, date-range, name, alpha or "
        "date");
  }
  const std::string builder = args.Positional()[0];
  using Build = std::function<std::string(InfoLink&, bool xtal)>;
  Build build;
  bool has_formula = true;

  if (builder == "comparison") {
    const std::string field = Field(args, builder);
    const auto type =
        static_cast<FieldDataTypes>(args.Integer("--type", 0, std::numeric_limits<int32_t>::max())
                                        .value_or(static_cast<int64_t>(fdtText)));
    const CompareTypes compare = ParseCompare(args.Get("--compare").value_or("equals"));
    const auto sub = static_cast<int32_t>(args.Integer("--sub", std::numeric_limits<int32_t>::min(),
                                                       std::numeric_limits<int32_t>::max())
                                              .value_or(drsUserSpecifiedDates));
    const Variant v1 = ValueFor(args.Get("--value"), type, "--value");
    const Variant v2 = ValueFor(args.Get("--value2"), type, "--value2");
    const bool reverse = args.Has("--reverse");
    build = [=](InfoLink& link, bool xtal) {
      // In formula syntax a field reference comes in its braces.
      const std::string name = xtal ? "{" + field + "}" : field;
      return link.GetComparisionClause(name, type, compare, sub, v1, v2, reverse, xtal);
    };
  } else if (builder == "boolean") {
    const std::string field = Field(args, builder);
    const CompareTypes compare = ParseCompare(args.Get("--compare").value_or("equals"));
    const Variant value = ValueFor(args.Get("--value").value_or("true"), fdtBoolean, "--value");
    build = [=](InfoLink& link, bool xtal) {
      return link.GetBooleanCompareClause(xtal ? "{" + field + "}" : field, compare, CBool(value),
                                          xtal);
    };
  } else if (builder == "equal") {
    const std::string field = Field(args, builder);
    const std::string kind = args.Get("--general").value_or("text");
    GeneralDataTypes general = gdtText;
    FieldDataTypes as = fdtText;
    if (kind == "number") {
      general = gdtNumber;
      as = fdtLong;
    } else if (kind == "date") {
      general = gdtDate;
      as = fdtDate;
    } else if (kind != "text") {
      throw UsageError("--general is text, number or date, not " + kind);
    }
    const Variant value = ValueFor(args.Required("--value"), as, "--value");
    has_formula = false;  // the builder takes bUseXtal and ignores it
    build = [=](InfoLink& link, bool) {
      return link.GetComparisionClauseForDefEqual(field, general, value, false, false);
    };
  } else if (builder == "date-range") {
    const std::string field = Field(args, builder);
    const auto range =
        static_cast<DateRangeSpecs>(args.Integer("--range", std::numeric_limits<int32_t>::min(),
                                                 std::numeric_limits<int32_t>::max())
                                        .value_or(drsUserSpecifiedDates));
    const auto from = args.Get("--from");
    const auto to = args.Get("--to");
    const Variant v1 = from ? Variant(ParseDateArgument(*from, "--from")) : Variant();
    const Variant v2 = to ? Variant(ParseDateArgument(*to, "--to")) : Variant();
    build = [=](InfoLink& link, bool xtal) {
      return link.GetDateSqlFromValues(field, range, v1, v2, xtal);
    };
  } else if (builder == "name") {
    const std::string table = args.Get("--table").value_or("");
    const std::string prefix = args.Get("--prefix").value_or("");
    const std::string alias = args.Required("--alias");
    has_formula = false;
    build = [=](InfoLink& link, bool) { return link.GetNameClause(table, prefix, alias); };
  } else if (builder == "alpha") {
    const std::string field = Field(args, builder);
    const auto tab = static_cast<int16_t>(args.Integer("--tab", 1, 27).value_or(27));
    has_formula = false;
    build = [=](InfoLink& link, bool) { return link.CreateAlphaClause(field, tab); };
  } else if (builder == "date") {
    const Date date = ParseDateArgument(args.Required("--value"), "--value");
    has_formula = false;
    build = [=](InfoLink& link, bool) { return link.FormatDateToDBStr(date); };
  } else {
    throw UsageError(
        "clause BUILDER is comparison, boolean, equal, date-range, name, alpha or "
        "date, not " +
        builder);
  }

  std::vector<StdDBTypes> dialects = {sdbAccess, sdbOracle, sdbSQLServer};
  if (auto dialect = args.Get("--dialect")) dialects = {ParseDialect(*dialect)};

  // The comparison builders quote through the active service object.
  InfoLink link;
  InfoLink* const previous = ActiveInfoLink();
  internal::SetActiveInfoLink(&link);
  struct Restore {
    InfoLink* previous;
    ~Restore() { internal::SetActiveInfoLink(previous); }
  } restore{previous};

  MessageCatcher catcher;
  Rows rows;
  rows.columns = {"Dialect", "Clause"};
  for (const StdDBTypes dialect : dialects) {
    link.MainDBType = dialect;
    rows.rows.push_back({Variant(DialectName(dialect)), Variant(build(link, false))});
  }
  if (has_formula) {
    link.MainDBType = dialects.front();
    rows.rows.push_back({Variant("formula"), Variant(build(link, true))});
  }
  catcher.ThrowIfAny();
  Document document;
  document.sections.push_back({"clauses", std::move(rows)});
  out.Print(document);
  return 0;
}

}  // namespace kelvary::cli
