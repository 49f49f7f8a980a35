// RepParam.GetSimpleText: the phrase a host shows after a parameter's title.
// Expected texts are written out in full, blanks and all, since hosts show
// them untrimmed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/platform/Date.h"
#include "kelvary/querymodel/RepParam.h"
#include "support/MessageRecorder.h"

namespace kelvary {
namespace {

using testing::MessageRecorder;

class ParameterText : public ::testing::Test {
 protected:
  ParameterText() {
    previous_clock_ = SetClock([] { return DateTimeOf(2024, 3, 5, 10, 30, 0); });
  }
  ~ParameterText() override { SetClock(previous_clock_); }

  static RepParam Param(int32_t format, int32_t op, bool reverse, Variant v1, Variant v2 = {}) {
    RepParam p;
    p.DataFormat = static_cast<FieldDataTypes>(format);
    p.Operator = static_cast<CompareTypes>(op);
    p.Reverse = reverse;
    p.Value1 = std::move(v1);
    p.Value2 = std::move(v2);
    return p;
  }
  static RepParam DateParam(int32_t sub_operator, bool reverse, Variant from, Variant to) {
    RepParam p = Param(fdtDate, 0, reverse, std::move(from), std::move(to));
    p.SUBOperator = sub_operator;
    return p;
  }

  MessageRecorder messages_;

 private:
  Clock previous_clock_;
};

TEST_F(ParameterText, EachDataFormatGroupHasItsOwnPhraseOrMessage) {
  for (int32_t format = -2; format <= 45; ++format) {
    SCOPED_TRACE("DataFormat " + std::to_string(format));
    RepParam p = Param(format, cmpEquals, false, Variant("1"));
    p.Value1Description = "Dr Smith";
    p.SUBOperator = drsAllDates;
    messages_.Clear();

    std::string expected;
    std::vector<std::string> shown;
    if (format == 2 || format == 4 || format == 22) {
      expected = " Is  1";
    } else if ((format >= 1 && format <= 17) || format == 23) {
      expected = "Equals  1";
    } else if (format >= 18 && format <= 20) {
      expected = "All Dates";
    } else if (format == 21) {
      expected = " Is Dr Smith";
    } else if (format == 25) {
      expected = " Is Yes";
    } else if (format == 33) {
      expected = " is Female";
    } else if (format == 0 || format == 24 || (format >= 26 && format <= 32) || format == 34 ||
               format == 35 || (format >= 39 && format <= 42)) {
      shown = {"Unhandled"};
    } else {
      shown = {"unhandled"};
    }
    EXPECT_EQ(p.GetSimpleText(), expected);
    EXPECT_EQ(messages_.Texts(), shown);
  }
  for (const auto& m : messages_.Messages()) {
    EXPECT_EQ(m.buttons, vbOKOnly);
    EXPECT_EQ(m.title, "");
  }
}

TEST_F(ParameterText, CodedBooleanAndGenderValuesNeedAValue) {
  struct Case {
    int32_t format;
    bool reverse;
    Variant value;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {fdtCodedValue, false, Variant(), ""},  // the description is not looked at
      {fdtCodedValue, true, Variant::Null(), " Is  not Dr Smith"},  // Null is not empty
      {fdtBoolean, false, Variant(), ""},
      {fdtBoolean, true, Variant(true), " Is  not Yes"},
      {fdtBoolean, false, Variant(false), " Is No"},
      {fdtBoolean, false, Variant("maybe"), " Is No"},
      {fdtGender, false, Variant(), ""},
      {fdtGender, true, Variant("M"), " is  not Male"},
      {fdtGender, false, Variant("m"), " is Female"},  // the comparison is exact
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    RepParam p = Param(c.format, cmpEquals, c.reverse, c.value);
    p.Value1Description = "Dr Smith";
    EXPECT_EQ(p.GetSimpleText(), c.expected);
  }
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST_F(ParameterText, EachOperatorWithAndWithoutReverse) {
  struct Case {
    int32_t op;
    std::string plain;
    std::string reversed;
  };
  const std::vector<Case> cases = {
      {cmpEquals, "Equals  5", " Does not equal  5"},
      {cmpGreaterThan, "Is  greater than  5", "Is  not  greater than  5"},
      {cmpLessThan, " Is  less than  5", " Is  not  less than  5"},
      {cmpBetween, " Is  between range  5 and 9", " Is  not  between range  5 and 9"},
      {cmpBeginsWith, " Begins with  5", " Does not begin  with  5"},
      {cmpEndsWith, " Ends with  5", " Does not end  with  5"},
      {cmpContains, " Contains  5", " Does not contain  5"},
      {cmpSoundsLike, " Sounds  like  5", " Does not sound  like  5"},
      {0, " 5", " 5"},
      {9, " 5", " 5"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE("Operator " + std::to_string(c.op));
    EXPECT_EQ(Param(fdtText, c.op, false, Variant(5), Variant(9)).GetSimpleText(), c.plain);
    EXPECT_EQ(Param(fdtText, c.op, true, Variant(5), Variant(9)).GetSimpleText(), c.reversed);
  }
  // Equals reads "Is" for the formats 2, 4 and 22.
  EXPECT_EQ(Param(fdtInteger, cmpEquals, true, Variant(5)).GetSimpleText(), " Is  not  5");
}

TEST_F(ParameterText, ValuesAreWrittenRawAndNullSafe) {
  RepParam p = Param(fdtLong, cmpBetween, false, Variant(2.5), Variant::Null());
  p.Value1Description = "two and a half";
  EXPECT_EQ(p.GetSimpleText(), " Is  between range  2.5 and ");
  EXPECT_TRUE(p.Value2.IsNull());  // only date parameters are settled on today
  EXPECT_EQ(Param(fdtText, cmpEquals, false, Variant(DateSerial(2024, 3, 1))).GetSimpleText(),
            "Equals  03/01/2024");
}

TEST_F(ParameterText, EveryDateRangeReadsItsOwnText) {
  struct Row {
    int32_t sub_operator;
    std::string plain;
    std::string reversed;
  };
  const std::vector<Row> rows = {
      {1000, "All Dates", "All Dates"},
      {1001, "User Specified Dates", "User Specified Dates"},
      {1002, "Is   Today", "Is  not   Today"},
      {1003, "Is  Yesterday", "Is  not  Yesterday"},
      {1004, "Is  Tomorrow", "Is  not  Tomorrow"},
      {1005, "Is any date  in  Week To Date From Sunday",
       "Is any date  excluding  Week To Date From Sunday"},
      {1006, "Is any date  in  Month To Date ", "Is any date  excluding  Month To Date "},
      {1007, "Is any date  in  Year To Date", "Is any date  excluding  Year To Date"},
      {1008, "Is any date  in  Last 7 Days", "Is any date  excluding  Last 7 Days"},
      {1009, "Is any date  in  Last 4 Weeks To Sunday",
       "Is any date  excluding  Last 4 Weeks To Sunday"},
      {1010, "Is any date  in  Last Full Week", "Is any date  excluding  Last Full Week"},
      {1011, "Is any date  in  Last Full Month", "Is any date  excluding  Last Full Month"},
      {1012, "Is any date   To  Today", "Is any date   after   Today"},
      {1013, "Is any date   To  Yesterday", "Is any date   after   Yesterday"},
      {1014, "Is any date  after  Today", "Is any date  To   Today"},
      {1015, "Is any date  after  Tomorrow", "Is any date  To   Tomorrow"},
      {1016, "Is any date  Aged 0 To 30 Days", "Is any date  Not   Aged 0 To 30 Days"},
      {1017, "Is any date  Aged 31 To 60 Days", "Is any date  Not   Aged 31 To 60 Days"},
      {1018, "Is any date  Aged 61 To 90 Days", "Is any date  Not   Aged 61 To 90 Days"},
      {1019, "Is any date  Over 90 Days", "Is any date  Not   Over 90 Days"},
      {1020, "Is any date  in the next 30 Days", "Is any date  Not   in the next 30 Days"},
      {1021, "Is any date  in the next 31 To 60 Days",
       "Is any date  Not   in the next 31 To 60 Days"},
      {1022, "Is any date  in the next 61 To 90 Days",
       "Is any date  Not   in the next 61 To 90 Days"},
      {1023, "Is any date  in the next 91 To 365 Days",
       "Is any date  Not   in the next 91 To 365 Days"},
      {1024, "Is any date  in the First Quarter", "Is any date  Not   in the First Quarter"},
      {1025, "Is any date  in the Second Quarter", "Is any date  Not   in the Second Quarter"},
      {1026, "Is any date  in the Third Quarter", "Is any date  Not   in the Third Quarter"},
      {1027, "Is any date  in the Fourth Quarter", "Is any date  Not   in the Fourth Quarter"},
      {1028, "Is any date  First Half of Calendar", "Is any date  Not   First Half of Calendar"},
      {1029, "Is any date  Second Half of Calendar", "Is any date  Not   Second Half of Calendar"},
      {1030, "Last Year MTD", "Last Year MTD"},
      {1031, "Last Year YTD", "Last Year YTD"},
      {1032, "Financial YTD", "Financial YTD"},
      {1033, "Last Financial YTD", "Last Financial YTD"},
      {999, "", ""},
      {1034, "", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE("SUBOperator " + std::to_string(row.sub_operator));
    // Values that are not dates leave the dates part out.
    EXPECT_EQ(DateParam(row.sub_operator, false, Variant(), Variant("soon")).GetSimpleText(),
              row.plain);
    EXPECT_EQ(DateParam(row.sub_operator, true, Variant(), Variant("soon")).GetSimpleText(),
              row.reversed);
  }
}

TEST_F(ParameterText, TheDatesPartTakesFourForms) {
  const Variant d1(DateTimeOf(2024, 3, 1, 23, 59, 0));  // the time of day is dropped
  const Variant d2(DateSerial(2024, 3, 7));
  struct Case {
    int32_t sub_operator;
    Variant from;
    Variant to;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {1008, d1, d2, "Is any date  in  Last 7 Days (    Between 03/01/2024  And 03/07/2024  ) "},
      {1002, d1, d2, "Is   Today (   03/01/2024  ) "},  // a single-date range
      {1002, d1, Variant(), "Is   Today (    >= 03/01/2024 ) "},
      {1008, Variant(), d2, "Is any date  in  Last 7 Days (    <= 03/07/2024  ) "},
      {1008, Variant("x"), Variant(12), "Is any date  in  Last 7 Days"},
      {1001, Variant("2024-03-01"), Variant("3/7/2024"),
       "User Specified Dates (    Between 03/01/2024  And 03/07/2024  ) "},
      {999, d1, d2, " (    Between 03/01/2024  And 03/07/2024  ) "},
      {1000, d1, d2, "All Dates"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    for (int32_t format : {fdtDate, fdtDateTime, fdtTime}) {
      RepParam p = DateParam(c.sub_operator, false, c.from, c.to);
      p.DataFormat = static_cast<FieldDataTypes>(format);
      EXPECT_EQ(p.GetSimpleText(), c.expected);
    }
  }
}

TEST_F(ParameterText, NullDatesBecomeTodayInTheParameter) {
  RepParam p = DateParam(1001, false, Variant::Null(), Variant::Null());
  EXPECT_EQ(p.GetSimpleText(), "User Specified Dates (    Between 03/05/2024  And 03/05/2024  ) ");
  EXPECT_EQ(p.Value1, Variant(DateSerial(2024, 3, 5)));
  EXPECT_EQ(p.Value2, Variant(DateSerial(2024, 3, 5)));

  // Only Null is settled: an empty value stays empty, a set one stays as it is.
  RepParam q = DateParam(1008, true, Variant(), Variant::Null());
  EXPECT_EQ(q.GetSimpleText(), "Is any date  excluding  Last 7 Days (    <= 03/05/2024  ) ");
  EXPECT_TRUE(q.Value1.IsEmpty());
  EXPECT_EQ(q.Value2, Variant(DateSerial(2024, 3, 5)));

  // All Dates settles the values too, though it does not write them.
  RepParam r = DateParam(1000, false, Variant::Null(), Variant("2024-01-02"));
  EXPECT_EQ(r.GetSimpleText(), "All Dates");
  EXPECT_EQ(r.Value1, Variant(DateSerial(2024, 3, 5)));
  EXPECT_EQ(r.Value2, Variant("2024-01-02"));
}

}  // namespace
}  // namespace kelvary
