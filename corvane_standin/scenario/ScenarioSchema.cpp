#include "corvane_standin/scenario/ScenarioSchema.h"

#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "CorvaneCore/json/ArgumentTable.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/json/Record.h"
#include "corvane_standin/Settings.h"

namespace corvane {

using standin::LimitedNumber;
using standin::Outcomes;

namespace {

/// What editors show of a member. A key means the same in every record.
constexpr std::pair<std::string_view, std::string_view> descriptions[] = {
    {"$schema", "Where this schema is"},
    {"stepSeconds", "How long a step takes"},
    {"buildSeconds", "How long a build takes"},
    {"heartbeatSeconds", "The longest a result in hand goes without being refreshed"},
    {"coldStartSeconds", "From the start to the moment requests are taken up"},
    {"pickUpSeconds", "How long a request stays in its drop folder"},
    {"creditsPerExploredStep", "What a step of an exploration costs"},
    {"creditBalance", "The credits at the start"},
    {"captures", "Whether runs leave pictures"},
    {"clock", "The date that everything is dated with; time then stands still"},
    {"ids", "Where the ids of new tests and building blocks come from"},
    {"workspace", "A file like context.json, beside this one, with what a new home begins with"},
    {"outcomes", "By test name, how tests turn out; \"*\" stands for all others"},
    {"imports", "By test name, how imports turn out; \"*\" stands for all others"},
    {"explorations", "By project name, how explorations turn out; \"*\" stands for all others"},
    {"libraryRequests", "By tool, how library requests turn out"},
    {"outcome", "What happens"},
    {"times", "How often that happens before all goes well; always when left out"},
    {"failedStep", "The step at which it happens, from 0; the middle one when left out"},
    {"failureReason", "What is told of a failure, a warning or a healed step"},
    {"blockedCode", "The code that is told with \"blocked\""},
    {"blockedMessage", "The sentence that is told with \"blocked\""},
    {"tornResult", "The result file is cut in its middle"},
    {"wholeAfterSeconds", "How long it stays cut; for good when left out"},
    {"extract_udi", "How requests of this tool turn out"},
    {"delete_udi", "How requests of this tool turn out"},
    {"reset_world_map", "How requests of this tool turn out"},
};

/// Throws std::logic_error for a key without a description.
std::string_view descriptionOf(std::string_view key) {
  for (const auto& [described, text] : descriptions) {
    if (described == key) return text;
  }
  throw std::logic_error("no description of " + std::string(key));
}

}  // namespace

template <class Limits>
struct ArgumentType<LimitedNumber<Limits>> {
  static JsonObject schema() {
    auto schema = ArgumentType<typename Limits::Number>::schema();
    schema.set("minimum", Limits::least);
    if (Limits::most != std::numeric_limits<typename Limits::Number>::max()) {
      schema.set("maximum", Limits::most);
    }
    return schema;
  }
};

template <>
struct ArgumentType<Date> {
  static JsonObject schema() {
    return {{"type", "string"},
            {"pattern", R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(Z|[+-]\d\d:\d\d)$)"}};
  }
};

template <HasVocabulary E>
struct ArgumentType<E> {
  static JsonObject schema() {
    AnyCodable::Array words;
    for (const auto& row : vocabularyRows<E>()) words.emplace_back(row.rawValue);
    return {{"enum", std::move(words)}};
  }
};

template <class Value>
struct ArgumentType<std::optional<Value>> : ArgumentType<Value> {};

template <class Outcome>
struct ArgumentType<Outcomes<Outcome>> {
  static JsonObject schema() {
    return {{"type", "object"}, {"additionalProperties", ArgumentType<Outcome>::schema()}};
  }
};

template <DeclaredRecord Record>
struct ArgumentType<Record> {
  static JsonObject schema() {
    JsonObject properties;
    AnyCodable::Array required;
    const auto add = [&]<class Member>(const Field<Record, Member>& field) {
      auto property = ArgumentType<Member>::schema();
      property.set("description", descriptionOf(field.key));
      properties.set(field.key, std::move(property));
      if (!field.defaulted && !record_detail::IsOptional<Member>::value) {
        required.emplace_back(field.key);
      }
    };
    Record::fields().apply([&](const auto&... field) { (add(field), ...); });
    JsonObject schema{
        {"type", "object"}, {"properties", std::move(properties)}, {"additionalProperties", false}};
    if (!required.empty()) schema.set("required", std::move(required));
    return schema;
  }
};

}  // namespace corvane

namespace corvane::standin {

std::string scenarioSchema() {
  auto schema = ArgumentType<StandInSettings>::schema();
  schema.set("$schema", "http://json-schema.org/draft-07/schema#");
  schema.set("title", "A scenario for the stand-in for Corvane.app");
  return indentedJson(toJson(schema)) + "\n";
}

}  // namespace corvane::standin
