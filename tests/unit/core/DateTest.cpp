#include "CorvaneCore/json/Date.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>

namespace corvane::testing {
namespace {

using namespace std::chrono;

Date at(int y, unsigned m, unsigned d, int hour = 0, int minute = 0, int second = 0) {
  return sys_days(year(y) / month(m) / day(d)) + hours(hour) + minutes(minute) + seconds(second);
}

std::string reformatted(std::string_view text) {
  const auto date = parseDate(text);
  return date ? formatDate(*date) : "(no date)";
}

TEST(DateTest, FormatsWholeSecondsInUtc) {
  EXPECT_EQ(formatDate(Date()), "1970-01-01T00:00:00Z");
  EXPECT_EQ(formatDate(at(2026, 1, 31, 12)), "2026-01-31T12:00:00Z");
  EXPECT_EQ(formatDate(at(2024, 2, 29, 23, 59, 59)), "2024-02-29T23:59:59Z");
  EXPECT_EQ(formatDate(at(1969, 12, 31, 23, 59, 59)), "1969-12-31T23:59:59Z");
  EXPECT_EQ(formatDate(at(1, 1, 1)), "0001-01-01T00:00:00Z");
  EXPECT_EQ(formatDate(at(9999, 12, 31, 23, 59, 59)), "9999-12-31T23:59:59Z");
}

TEST(DateTest, ReadsDatesInUtc) {
  EXPECT_EQ(parseDate("1970-01-01T00:00:00Z"), Date());
  EXPECT_EQ(parseDate("2025-03-01T09:30:00Z"), at(2025, 3, 1, 9, 30));
  EXPECT_EQ(parseDate("0001-01-01T00:00:00Z"), at(1, 1, 1));
  EXPECT_EQ(parseDate("9999-12-31T23:59:59Z"), at(9999, 12, 31, 23, 59, 59));
}

TEST(DateTest, ReadsNumericOffsets) {
  EXPECT_EQ(reformatted("2026-01-31T12:00:00+00:00"), "2026-01-31T12:00:00Z");
  EXPECT_EQ(reformatted("2026-01-31T12:00:00-00:00"), "2026-01-31T12:00:00Z");
  EXPECT_EQ(reformatted("2026-01-31T12:00:00+01:00"), "2026-01-31T11:00:00Z");
  EXPECT_EQ(reformatted("2026-01-31T23:45:00-05:30"), "2026-02-01T05:15:00Z");
  EXPECT_EQ(reformatted("2024-03-01T00:10:00+00:20"), "2024-02-29T23:50:00Z");
  EXPECT_EQ(reformatted("2025-12-31T23:00:00-23:59"), "2026-01-01T22:59:00Z");
}

TEST(DateTest, KnowsLeapDays) {
  EXPECT_EQ(reformatted("2024-02-29T00:00:00Z"), "2024-02-29T00:00:00Z");
  EXPECT_EQ(reformatted("2000-02-29T00:00:00Z"), "2000-02-29T00:00:00Z");
  for (const char* text : {"2023-02-29T00:00:00Z", "2024-02-30T00:00:00Z", "1900-02-29T00:00:00Z",
                           "2100-02-29T00:00:00Z"}) {
    EXPECT_EQ(parseDate(text), std::nullopt) << text;
  }
}

TEST(DateTest, RefusesInstantsThatDoNotExist) {
  for (const char* text : {"2026-00-01T00:00:00Z", "2026-13-01T00:00:00Z", "2026-01-00T00:00:00Z",
                           "2026-01-32T00:00:00Z", "2026-04-31T00:00:00Z", "2026-01-31T24:00:00Z",
                           "2026-01-31T12:60:00Z", "2026-01-31T12:00:60Z",
                           "2026-01-31T12:00:00+24:00", "2026-01-31T12:00:00+01:60"}) {
    EXPECT_EQ(parseDate(text), std::nullopt) << text;
  }
}

TEST(DateTest, RefusesInstantsThatCannotBeWrittenBack) {
  EXPECT_EQ(parseDate("0000-01-01T00:00:00+00:01"), std::nullopt);
  EXPECT_EQ(parseDate("9999-12-31T23:59:00-00:01"), std::nullopt);
  EXPECT_EQ(reformatted("9999-12-31T23:58:59-00:01"), "9999-12-31T23:59:59Z");
  EXPECT_EQ(reformatted("0000-01-01T00:00:00Z"), "0000-01-01T00:00:00Z");
  EXPECT_EQ(reformatted("9999-12-31T23:59:59+00:01"), "9999-12-31T23:58:59Z");
  EXPECT_EQ(parseDate("0000-01-01T23:58:59+23:59"), std::nullopt);
  EXPECT_EQ(reformatted("0000-01-01T23:59:00+23:59"), "0000-01-01T00:00:00Z");
  EXPECT_EQ(parseDate("9999-12-31T00:01:00-23:59"), std::nullopt);
  EXPECT_EQ(reformatted("9999-12-31T00:00:59-23:59"), "9999-12-31T23:59:59Z");
}

TEST(DateTest, RefusesOtherForms) {
  for (const char* text : {"",
                           "Z",
                           "2025-03-01",
                           "2025-03-01T09:30:00",
                           "2025-03-01T09:30Z",
                           "2025-03-01T09:30:00.123Z",
                           "2025-03-01T09:30:00.0Z",
                           "2025-03-01T09:30:00,5Z",
                           "2025-03-01T09:30:00.Z",
                           "2025-03-01T09:30:00.123+01:00",
                           "2025-03-01 09:30:00Z",
                           "2025-03-01t09:30:00Z",
                           "2025-03-01T09:30:00z",
                           "2025-03-01T09:30:00ZZ",
                           " 2025-03-01T09:30:00Z",
                           "2025-03-01T09:30:00Z ",
                           "2025-03-01T09:30:00Z\n",
                           "2025-3-1T9:30:00Z",
                           "25-03-01T09:30:00Z",
                           "12025-03-01T09:30:00Z",
                           "+2025-03-01T09:30:00Z",
                           "-001-03-01T09:30:00Z",
                           "2025/03/01T09:30:00Z",
                           "20250301T093000Z",
                           "2025-03-01T09.30.00Z",
                           "2025-03-01T09:30:00+0100",
                           "2025-03-01T09:30:00+01",
                           "2025-03-01T09:30:00+1:00",
                           "2025-03-01T09:30:00+01:00Z",
                           "2025-03-01T09:30:00UTC",
                           "2025-03-01T09:30:00 Z",
                           "2025-W09-6T09:30:00Z",
                           "2025-060T09:30:00Z",
                           "1740821400",
                           "now",
                           "2025-03-01T-9:30:00Z",
                           "2025-03-01T09:30:0:Z",
                           "2025-0\xC2\xB2-01T09:30:00Z"}) {
    EXPECT_EQ(parseDate(text), std::nullopt) << text;
  }
  EXPECT_EQ(parseDate(std::string_view("2025-03-01T09:30:00Z\0", 21)), std::nullopt);
}

TEST(DateTest, EveryPrefixIsRefused) {
  const std::string text = "2025-03-01T09:30:00+01:00";
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(parseDate(text.substr(0, length)), std::nullopt) << text.substr(0, length);
  }
}

TEST(DateTest, AnyInstantReadsBackAsItself) {
  std::mt19937_64 random(42);
  std::uniform_int_distribution<std::int64_t> instants(
      at(0, 1, 1).time_since_epoch().count(), at(10000, 1, 1).time_since_epoch().count() - 1);
  for (int round = 0; round < 10'000; ++round) {
    const Date date{seconds(instants(random))};
    const std::string text = formatDate(date);
    EXPECT_EQ(text.size(), 20U);
    EXPECT_EQ(parseDate(text), date) << text;
  }
}

// Fails when the current date is rounded: it is asked for late in a second.
TEST(DateTest, TheCurrentDateIsTheSystemClockCutToSeconds) {
  while (true) {
    const auto before = system_clock::now();
    const Date current = currentDate();
    const Date second = floor<seconds>(system_clock::now());
    if (before - second > 600ms) {
      EXPECT_EQ(current, second);
      break;
    }
    std::this_thread::sleep_for(10ms);
  }
}

}  // namespace
}  // namespace corvane::testing
