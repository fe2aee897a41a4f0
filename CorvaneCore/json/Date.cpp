#include "CorvaneCore/json/Date.h"

#include <array>
#include <cstdio>

namespace corvane {

namespace {

using namespace std::chrono;

/// Reads fixed-width fields off the front of a text.
class Fields {
 public:
  explicit Fields(std::string_view text) : rest(text) {}

  int digits(std::size_t count) {
    int value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const char c = take();
      if (c < '0' || c > '9') good = false;
      value = value * 10 + (c - '0');
    }
    return value;
  }

  void literal(char expected) {
    if (take() != expected) good = false;
  }

  char take() {
    if (rest.empty()) {
      good = false;
      return '0';
    }
    const char c = rest.front();
    rest.remove_prefix(1);
    return c;
  }

  [[nodiscard]] bool complete() const { return good && rest.empty(); }

 private:
  std::string_view rest;
  bool good = true;
};

}  // namespace

Date currentDate() {
  return floor<seconds>(system_clock::now());
}

std::string formatDate(Date date) {
  const auto day = floor<days>(date);
  const year_month_day ymd(day);
  const hh_mm_ss time(date - day);
  std::array<char, 40> text;
  const int length = std::snprintf(
      text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(ymd.year()),
      static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
      static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
      static_cast<int>(time.seconds().count()));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<Date> parseDate(std::string_view text) {
  Fields fields(text);
  const int year = fields.digits(4);
  fields.literal('-');
  const int month = fields.digits(2);
  fields.literal('-');
  const int day = fields.digits(2);
  fields.literal('T');
  const int hour = fields.digits(2);
  fields.literal(':');
  const int minute = fields.digits(2);
  fields.literal(':');
  const int second = fields.digits(2);
  minutes offset{0};
  const char zone = fields.take();
  if (zone == '+' || zone == '-') {
    const int offsetHours = fields.digits(2);
    fields.literal(':');
    const int offsetMinutes = fields.digits(2);
    if (offsetHours > 23 || offsetMinutes > 59) return std::nullopt;
    offset = hours(offsetHours) + minutes(offsetMinutes);
    if (zone == '-') offset = -offset;
  } else if (zone != 'Z') {
    return std::nullopt;
  }
  const year_month_day ymd(std::chrono::year(year),
                           std::chrono::month(static_cast<unsigned>(month)),
                           std::chrono::day(static_cast<unsigned>(day)));
  if (!fields.complete() || !ymd.ok() || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  const Date date = sys_days(ymd) + hours(hour) + minutes(minute) + seconds(second) - offset;
  // Beyond these four-digit years of UTC the date could not be written in its own form.
  constexpr Date earliest = sys_days(std::chrono::year(0) / 1 / 1);
  constexpr Date end = sys_days(std::chrono::year(10000) / 1 / 1);
  return date >= earliest && date < end ? std::optional(date) : std::nullopt;
}

}  // namespace corvane
