#include "corvane_standin/scenario/ScenarioFile.h"

#include <algorithm>
#include <map>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonFault.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/text/NearestName.h"
#include "corvane_standin/scenario/JsonPlaces.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

/// A JSON file written by a person, who is told what is wrong with it.
class HandWrittenFile {
 public:
  /// Throws FileError, and DecodeError when the file is not JSON, in words for that person.
  HandWrittenFile(const fs::path& file, std::string shownName)
      : name(std::move(shownName)), text(readFile(file)) {
    try {
      value = readJson(text);
      places.emplace(text);
    } catch (const DecodeError& error) {
      throw DecodeError(tell(faultIn(text, error), error.what()));
    }
  }

  [[nodiscard]] const AnyCodable& contents() const { return value; }
  /// Notes what a decode error says.
  void note(const DecodeError& error) { note(places->ofError(error.what()), error.what()); }
  /// Notes something about the member of this name.
  void noteKey(const std::string& place, const std::string& what) {
    note(places->ofKey(place), place + ": " + what);
  }
  /// What has been noted since the last time, in the order of the file.
  [[nodiscard]] Names takeNotes() {
    Names lines;
    for (const auto& [offset, what] : std::exchange(noted, {})) lines.push_back(tell(offset, what));
    return lines;
  }

 private:
  void note(std::size_t offset, std::string what) { noted.emplace(offset, std::move(what)); }
  [[nodiscard]] std::string tell(std::size_t offset, const std::string& what) const {
    return name + ": " + describePlace(text, offset) + ": " + what;
  }

  std::string name;
  std::string text;
  AnyCodable value;
  std::optional<JsonPlaces> places;
  std::multimap<std::size_t, std::string> noted;
};

template <DeclaredRecord Record>
Names keysOf() {
  return Record::fields().apply(
      [](const auto&... field) { return Names{std::string(field.key)...}; });
}

std::string joined(const Names& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

/// Notes every member that a record has no field for, in `value` and in the records inside it.
template <class T>
struct UnknownKeys {
  static void note(const AnyCodable&, const DecodePath&, HandWrittenFile&) {}
};
template <class T>
struct UnknownKeys<std::optional<T>> : UnknownKeys<T> {};
template <class T>
struct UnknownKeys<Outcomes<T>> {
  static void note(const AnyCodable& value, const DecodePath& at, HandWrittenFile& file) {
    const auto* members = value.object();
    if (!members) return;
    for (const auto& [name, entry] : *members) {
      UnknownKeys<T>::note(entry, at.member(name), file);
    }
  }
};
template <DeclaredRecord Record>
struct UnknownKeys<Record> {
  static void note(const AnyCodable& value, const DecodePath& at, HandWrittenFile& file) {
    const auto* members = value.object();
    if (!members) return;
    for (const auto& [key, member] : *members) {
      const DecodePath place = at.member(key);
      const bool known = Record::fields().apply(
          [&](const auto&... field) { return (noteIn(field, key, member, place, file) || ...); });
      if (known) continue;
      const auto nearest = didYouMean(key, keysOf<Record>());
      file.noteKey(
          escapeControls(place.text()),
          "there is no such setting" +
              (nearest.empty() ? "; there are " + joined(keysOf<Record>()) : "." + nearest));
    }
  }

  template <class Member>
  static bool noteIn(const Field<Record, Member>& field, const std::string& key,
                     const AnyCodable& member, const DecodePath& at, HandWrittenFile& file) {
    if (field.key != key) return false;
    UnknownKeys<Member>::note(member, at, file);
    return true;
  }
};

/// Takes out of `object` the member that an error is about or, when that has members itself, the
/// one of those. False when the error is about none.
bool leaveOut(JsonObject& object, std::string_view description, const std::string& prefix = {}) {
  JsonObject::Member* faulty = nullptr;
  for (auto& member : object) {
    const bool longer = !faulty || member.key.size() > faulty->key.size();
    if (longer && isAbout(description, prefix + escapeControls(member.key))) faulty = &member;
  }
  if (!faulty) return false;
  const std::string place = prefix + escapeControls(faulty->key);
  auto* inner = std::get_if<JsonObject>(&faulty->value.value());
  if (prefix.empty() && inner && leaveOut(*inner, description, place + ".")) return true;
  JsonObject kept;
  for (auto& member : object) {
    if (&member != faulty) kept.set(member.key, std::move(member.value));
  }
  object = std::move(kept);
  return true;
}

/// The settings in `file`, without those that cannot be used.
StandInSettings usableSettings(HandWrittenFile& file) {
  AnyCodable rest = file.contents();
  while (true) {
    try {
      return decodeValue<StandInSettings>(rest);
    } catch (const DecodeError& error) {
      file.note(error);
      auto* object = std::get_if<JsonObject>(&rest.value());
      if (!object || !leaveOut(*object, error.what())) return {};
    }
  }
}

/// Notes the names of `outcomes` that are not among `known` but look like one of them.
template <class Outcome>
void hintAt(std::string_view setting, const Outcomes<Outcome>& outcomes, const Names& known,
            HandWrittenFile& file) {
  for (const auto& [name, outcome] : outcomes) {
    const bool isKnown = name == "*" || std::ranges::find(known, name) != known.end();
    const auto nearest = isKnown ? std::string() : didYouMean(name, known);
    if (nearest.empty()) continue;
    file.noteKey(std::string(setting) + "." + escapeControls(name),
                 "nothing in the workspace is called so." + nearest);
  }
}

void hintAtNames(const StandInSettings& settings, const AgentContext& workspace,
                 HandWrittenFile& file) {
  Names projects;
  Names tests;
  for (const auto& project : workspace.projects) {
    projects.push_back(project.name);
    for (const auto& test : project.tests) tests.push_back(test.name);
  }
  hintAt(keyOf<&StandInSettings::outcomes>(), settings.outcomes, tests, file);
  hintAt(keyOf<&StandInSettings::explorations>(), settings.explorations, projects, file);
}

}  // namespace

Scenario Scenario::read(const fs::path& file, const std::string& name) {
  Scenario scenario;
  try {
    HandWrittenFile written(file, name);
    UnknownKeys<StandInSettings>::note(written.contents(), DecodePath(), written);
    scenario.settings = usableSettings(written);
    auto& named = scenario.settings.workspace;
    if (named == "") {
      const std::string key(keyOf<&StandInSettings::workspace>());
      written.note(DecodeError(key + ": expected the name of a file"));
      named.reset();
    }
    scenario.problems = written.takeNotes();
    if (named) {
      HandWrittenFile workspace(file.parent_path() / *named, *named);
      try {
        scenario.workspace = decodeValue<AgentContext>(workspace.contents());
      } catch (const DecodeError& error) {
        workspace.note(error);
        std::ranges::move(workspace.takeNotes(), std::back_inserter(scenario.problems));
      }
    }
    hintAtNames(scenario.settings, scenario.workspace ? *scenario.workspace : firstWorkspace(),
                written);
    scenario.hints = written.takeNotes();
  } catch (const FileError& error) {
    scenario.problems.emplace_back(error.what());
  } catch (const DecodeError& error) {
    scenario.problems.emplace_back(error.what());
  }
  return scenario;
}

}  // namespace corvane::standin
