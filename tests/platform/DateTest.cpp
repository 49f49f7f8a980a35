#include "kelvary/platform/Date.h"

#include <gtest/gtest.h>

#include <limits>

#include "kelvary/platform/Error.h"

namespace kelvary {
namespace {

TEST(Date, SerialsCountDaysFromTheEpochAndPartsRoundTrip) {
  EXPECT_EQ(DateSerial(1899, 12, 30).Serial(), 0);
  EXPECT_EQ(DateSerial(2024, 3, 5).Serial(), 45356);
  EXPECT_EQ(DateSerial(1800, 1, 1).Serial(), -36522);
  struct Case {
    int y, m, d;
  };
  for (const Case c : {Case{2024, 2, 29}, Case{2000, 2, 29}, Case{1900, 2, 28}, Case{1899, 12, 29},
                       Case{1752, 9, 14}, Case{100, 1, 1}, Case{9999, 12, 31}}) {
    const Date date = DateSerial(c.y, c.m, c.d);
    EXPECT_EQ(Year(date) * 10000 + Month(date) * 100 + Day(date), c.y * 10000 + c.m * 100 + c.d);
  }
}

TEST(Date, TimeOfDayCountsForwardsEvenBeforeTheEpoch) {
  const Date d = DateTimeOf(1899, 12, 29, 6, 0, 0);
  EXPECT_DOUBLE_EQ(d.Serial(), -1.25);
  EXPECT_EQ(Day(d), 29);
  EXPECT_EQ(Hour(d), 6);
  EXPECT_EQ(DateOnly(d), DateSerial(1899, 12, 29));
  const Date t = DateTimeOf(2024, 3, 5, 23, 59, 59);
  EXPECT_EQ(Hour(t) * 10000 + Minute(t) * 100 + Second(t), 235959);
  EXPECT_TRUE(HasTime(t));
  EXPECT_EQ(DateOnly(t), DateSerial(2024, 3, 5));
}

TEST(Date, SerialAndAddDaysRollMonthsYearsAndLeapDays) {
  EXPECT_EQ(DateSerial(1900, 2, 29), DateSerial(1900, 3, 1));  // 1900 is not a leap year
  EXPECT_EQ(DateSerial(2024, 13, 1), DateSerial(2025, 1, 1));
  EXPECT_EQ(DateSerial(2024, 0, 1), DateSerial(2023, 12, 1));
  EXPECT_EQ(DateSerial(2024, 1, 0), DateSerial(2023, 12, 31));
  EXPECT_EQ(DateSerial(2024, 2, 30), DateSerial(2024, 3, 1));
  EXPECT_EQ(DateSerial(24, 1, 1), DateSerial(2024, 1, 1));
  EXPECT_EQ(DateSerial(45, 1, 1), DateSerial(1945, 1, 1));
  EXPECT_EQ(AddDays(DateSerial(2024, 12, 31), 1), DateSerial(2025, 1, 1));
  EXPECT_EQ(AddDays(DateSerial(2024, 2, 28), 1), DateSerial(2024, 2, 29));
  EXPECT_EQ(AddDays(DateSerial(1900, 1, 1), -3), DateSerial(1899, 12, 29));
  EXPECT_EQ(AddDays(DateTimeOf(2024, 3, 5, 18, 0, 0), 1), DateTimeOf(2024, 3, 6, 18, 0, 0));
  EXPECT_THROW(DateSerial(10000, 1, 1), Error);
  // The range ends on its first and last day, also when a day rolls over it.
  EXPECT_THROW(DateSerial(9999, 12, 32), Error);
  EXPECT_THROW(DateSerial(100, 1, 0), Error);
  EXPECT_EQ(DateSerial(9999, 11, 61), DateSerial(9999, 12, 31));
  EXPECT_EQ(DateSerial(100, 2, -30), DateSerial(100, 1, 1));
  EXPECT_EQ(Weekday(DateSerial(2024, 3, 5)), 3);  // a Tuesday
}

TEST(Date, FormatPictures) {
  const Date d = DateTimeOf(2024, 3, 5, 14, 7, 9);
  // mm after hh is minutes.
  std::string texts;
  for (const char* picture :
       {"mm/dd/yyyy", "DD-MMM-YYYY", "d mmmm yy", "dddd hh:mm:ss", "h:nn AM/PM"})
    texts += Format(d, picture) + "|";
  EXPECT_EQ(texts, "03/05/2024|05-Mar-2024|5 March 24|Tuesday 14:07:09|2:07 PM|");
  EXPECT_EQ(Format(DateSerial(987, 12, 1), "mm/dd/yyyy"), "12/01/0987");
  // Numbers: halves go away from zero.
  EXPECT_EQ(FormatNumber(3, "00") + " " + FormatNumber(2024, "00") + " " +
                FormatNumber(42, "0000") + " " + FormatNumber(2.5, "0") + " " +
                FormatNumber(-1.25, "0.0"),
            "03 2024 0042 3 -1.3");
}

TEST(Date, TwelveHourClockShowsMidnightAndNoonAsTwelve) {
  std::string texts;
  for (const Date d : {TimeSerial(0, 7, 0), TimeSerial(11, 59, 0), TimeSerial(12, 0, 0),
                       TimeSerial(12, 7, 0), TimeSerial(23, 59, 0)})
    texts += Format(d, "h:nn AM/PM") + "|" + Format(d, "hh:nn am/pm") + "|";
  EXPECT_EQ(texts,
            "12:07 AM|12:07 AM|11:59 AM|11:59 AM|12:00 PM|12:00 PM|12:07 PM|12:07 PM|11:59 PM|"
            "11:59 PM|");
  // Without AM/PM the clock runs to 23.
  EXPECT_EQ(Format(TimeSerial(0, 7, 0), "h:nn") + " " + Format(TimeSerial(12, 7, 0), "hh:nn"),
            "0:07 12:07");
}

TEST(Date, HugeNumbersAreWrittenWholeOrRefused) {
  EXPECT_EQ(FormatNumber(1e20, "00"), "100000000000000000000");
  EXPECT_EQ(FormatNumber(-4e30, "0"), "-4000000000000000000000000000000");
  EXPECT_EQ(FormatNumber(18446744073709551616.0, "0.00"), "18446744073709600000.00");
  EXPECT_EQ(FormatNumber(999999999999999.4, "0"), "999999999999999");
  EXPECT_EQ(FormatNumber(0.5, "0." + std::string(400, '0')).substr(0, 6), "0.5000");
  EXPECT_EQ(FormatNumber(2.25, "0.0000000000"), "2.2500000000");
  EXPECT_THROW(FormatNumber(std::numeric_limits<double>::infinity(), "0"), Error);
  // A serial far beyond any calendar is an overflow, not a year of ten digits.
  for (const double serial : {1e19, -1e19, std::numeric_limits<double>::quiet_NaN()}) {
    try {
      Format(Date(serial), "mm/dd/yyyy");
      ADD_FAILURE() << serial;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), kErrOverflow);
    }
  }
}

TEST(Date, ParseAcceptsEachFormAndRejectsInvalidDates) {
  EXPECT_EQ(ParseDate("2024-03-05"), DateSerial(2024, 3, 5));
  EXPECT_EQ(ParseDate(" 2024-03-05 10:30 "), DateTimeOf(2024, 3, 5, 10, 30, 0));
  EXPECT_EQ(ParseDate("2024-03-05T10:30:15"), DateTimeOf(2024, 3, 5, 10, 30, 15));
  EXPECT_EQ(ParseDate("3/5/2024"), DateSerial(2024, 3, 5));
  EXPECT_EQ(ParseDate("3/5/2024 2:07 PM"), DateTimeOf(2024, 3, 5, 14, 7, 0));
  EXPECT_EQ(ParseDate("12/31/99"), DateSerial(1999, 12, 31));
  EXPECT_EQ(ParseDate("5-Mar-2024"), DateSerial(2024, 3, 5));
  EXPECT_EQ(ParseDate("05-march-1850"), DateSerial(1850, 3, 5));
  EXPECT_EQ(ParseDate("10:30:00"), TimeSerial(10, 30, 0));
  for (const char* bad : {"", "2024-13-01", "2023-02-29", "2/30/2024", "5-Mrz-2024", "24:00",
                          "2024-03-05 25:00", "2024/03/05", "hello", "12345"}) {
    EXPECT_FALSE(ParseDate(bad).has_value()) << bad;
  }
}

}  // namespace
}  // namespace kelvary
