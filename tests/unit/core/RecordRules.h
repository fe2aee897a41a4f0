#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {

/// How a record takes it that a member is missing or null.
enum class Presence {
  required,
  /// Missing and null mean the same, and the member is then not written.
  optional,
  /// Missing and null mean a default, which is written.
  defaulted,
  /// An element of an array or of a free map: null does not fit and missing has no meaning.
  entry,
};

/// What one place of a record holds. `kind` is worded as in error texts, e.g. "an integer";
/// "anything" for a free value, whose inside has no rules.
struct PlaceRule {
  std::string_view place;
  std::string_view kind;
  Presence presence;
};

namespace record_rules {

inline void collectPlaces(const AnyCodable& value, const std::string& place,
                          const std::vector<PlaceRule>& rules, std::vector<std::string>& places) {
  for (const auto& rule : rules) {
    if (rule.place == place && rule.kind == "anything") return;
  }
  const auto visit = [&](const AnyCodable& child, const std::string& childPlace) {
    places.push_back(childPlace);
    collectPlaces(child, childPlace, rules, places);
  };
  if (const auto* array = value.array()) {
    for (std::size_t i = 0; i < array->size(); ++i) {
      visit((*array)[i], place + "[" + std::to_string(i) + "]");
    }
  } else if (const auto* object = value.object()) {
    for (const auto& member : *object) {
      visit(member.value, place.empty() ? member.key : place + "." + member.key);
    }
  }
}

/// `document` with the value at `place` replaced, or taken away when there is no replacement.
inline AnyCodable edited(AnyCodable document, std::string_view place,
                         const AnyCodable* replacement) {
  AnyCodable* at = &document;
  while (true) {
    const bool element = place.starts_with('[');
    const std::size_t end = element ? place.find(']') + 1 : place.find_first_of(".[");
    const std::string_view step = place.substr(0, end);
    place.remove_prefix(std::min(end, place.size()));
    if (place.starts_with('.')) place.remove_prefix(1);
    if (element) {
      const auto index = static_cast<std::size_t>(std::stoul(std::string(step.substr(1))));
      at = &std::get<AnyCodable::Array>(at->value()).at(index);
    } else {
      auto& object = std::get<AnyCodable::Object>(at->value());
      if (place.empty() && !replacement) {
        std::vector<JsonObject::Member> kept;
        for (auto& member : object) {
          if (member.key != step) kept.push_back(std::move(member));
        }
        object = JsonObject(std::move(kept));
        return document;
      }
      at = object.find(step);
    }
    if (place.empty()) {
      *at = *replacement;
      return document;
    }
  }
}

inline bool fits(const AnyCodable& value, std::string_view kind) {
  if (kind == "a boolean") return value.boolean();
  if (kind == "an integer") return value.integer();
  if (kind == "a number") return value.integer() || value.number();
  if (kind == "a string" || kind == "a date") return value.string();
  if (kind == "an array") return value.array();
  if (kind == "an object") return value.object();
  return kind == "anything";
}

template <class Record>
std::string reencoded(const AnyCodable& document) {
  return AgentWire::encode(AgentWire::decode<Record>(toJson(document)));
}

template <class Record>
std::string decodeError(const AnyCodable& document) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<Record>(toJson(document)); });
}

template <class Record>
void expectRule(const AnyCodable& full, const PlaceRule& rule) {
  const std::string place(rule.place);
  const std::string misfit = place + ": expected " + std::string(rule.kind);
  for (const AnyCodable& wrong :
       {AnyCodable(true), AnyCodable(7), AnyCodable(0.5), AnyCodable("text"),
        AnyCodable(AnyCodable::Array()), AnyCodable(AnyCodable::Object())}) {
    if (fits(wrong, rule.kind)) continue;
    EXPECT_EQ(decodeError<Record>(edited(full, place, &wrong)), misfit) << toJson(wrong);
  }
  const AnyCodable null;
  const AnyCodable withNull = edited(full, place, &null);
  switch (rule.presence) {
    case Presence::required:
      EXPECT_EQ(decodeError<Record>(edited(full, place, nullptr)), place + ": required");
      EXPECT_EQ(decodeError<Record>(withNull), misfit);
      break;
    case Presence::optional: {
      const AnyCodable without = edited(full, place, nullptr);
      EXPECT_EQ(reencoded<Record>(without), toJson(without));
      EXPECT_EQ(reencoded<Record>(withNull), toJson(without));
      break;
    }
    case Presence::defaulted:
      EXPECT_EQ(reencoded<Record>(withNull), reencoded<Record>(edited(full, place, nullptr)));
      break;
    case Presence::entry:
      EXPECT_EQ(decodeError<Record>(withNull), misfit);
      break;
  }
}

}  // namespace record_rules

/// Checks how Record is read and written: `full`, a text that holds every member, comes out as it
/// went in; unknown members are dropped; and every place, of which `rules` must list each, takes
/// its own kind of value only and is missed or not as its rule says.
template <class Record>
void expectRecordRules(std::string_view full, const std::vector<PlaceRule>& rules) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Record>(full)), full);

  AnyCodable document = readJson(full);
  std::vector<std::string> places;
  record_rules::collectPlaces(document, "", rules, places);
  EXPECT_EQ(places.size(), rules.size());
  for (const auto& rule : rules) {
    SCOPED_TRACE(rule.place);
    const bool present = std::find(places.begin(), places.end(), rule.place) != places.end();
    EXPECT_TRUE(present);
    if (present) record_rules::expectRule<Record>(document, rule);
  }

  std::get<AnyCodable::Object>(document.value()).set("unknownMember", AnyCodable::Array{1});
  EXPECT_EQ(record_rules::reencoded<Record>(document), full);
  for (const char* other : {"null", "true", "7", "0.5", R"("text")", "[]"}) {
    EXPECT_EQ(errorText<DecodeError>([&] { (void)AgentWire::decode<Record>(other); }),
              "expected an object");
  }
}

}  // namespace corvane::testing
