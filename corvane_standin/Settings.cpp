#include "corvane_standin/Settings.h"

#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

std::optional<std::string> StandInSettings::problem() const {
  constexpr double longest = 1'000'000;
  for (const auto& [name, value] :
       {std::pair("stepSeconds", stepSeconds), std::pair("buildSeconds", buildSeconds),
        std::pair("heartbeatSeconds", heartbeatSeconds),
        std::pair("coldStartSeconds", coldStartSeconds)}) {
    // Written so that NaN is refused too.
    if (!(value >= 0 && value <= longest)) {
      return std::string(name) + ": expected seconds from 0 to 1000000";
    }
  }
  for (const auto& [test, outcome] : outcomes) {
    if (outcome.failedStep && *outcome.failedStep < 0) {
      return "outcomes." + test + ".failedStep: expected a step number from 0";
    }
  }
  return std::nullopt;
}

namespace {

/// Tells the members of `object` that the record has no field for.
template <DeclaredRecord Record>
void tellUnknown(const JsonObject& object, const std::string& place,
                 std::vector<std::string>& problems) {
  for (const auto& [key, value] : object) {
    const bool known = Record::fields().apply(
        [&key](const auto&... field) { return ((field.key == key) || ...); });
    if (!known) problems.push_back(escapeControls(place + key) + ": there is no such setting");
  }
}

/// Takes what `part` says, a setting or the outcome of a test, unless it cannot be used.
void take(JsonObject part, StandInSettings& settings, std::vector<std::string>& problems) {
  try {
    auto said = decodeValue<StandInSettings>(part);
    if (const auto unusable = said.problem()) throw DecodeError(*unusable);
    takeFieldsExcept<&StandInSettings::outcomes>(part, settings);
    settings.outcomes.merge(said.outcomes);
  } catch (const DecodeError& error) {
    problems.emplace_back(error.what());
  }
}

}  // namespace

StandInSettings StandInSettings::load(const std::filesystem::path& file,
                                      std::vector<std::string>& problems) {
  StandInSettings settings;
  if (!fileExists(file)) return settings;
  try {
    const auto all = decodeValue<JsonObject>(readJson(readFile(file)));
    tellUnknown<StandInSettings>(all, "", problems);
    for (const auto& [key, value] : all) {
      const auto* tests = key == keyOf<&StandInSettings::outcomes>()
                              ? std::get_if<JsonObject>(&value.value())
                              : nullptr;
      if (!tests) {
        take({{key, value}}, settings, problems);
        continue;
      }
      for (const auto& [test, outcome] : *tests) {
        take({{key, JsonObject{{test, outcome}}}}, settings, problems);
        if (const auto* members = std::get_if<JsonObject>(&outcome.value())) {
          const auto place = std::string(key).append(".").append(test).append(".");
          tellUnknown<TestOutcome>(*members, place, problems);
        }
      }
    }
  } catch (const FileError& error) {
    problems.emplace_back(error.what());
  } catch (const DecodeError& error) {
    problems.emplace_back(error.what());
  }
  return settings;
}

}  // namespace corvane::standin
