#include "CorvaneCore/authoring/AgentTestSchema.h"

#include <algorithm>

#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

std::string millisecondsSince1970(FileTime time) {
  using std::chrono::milliseconds;
  return std::to_string(std::chrono::floor<milliseconds>(time).time_since_epoch().count());
}

}  // namespace

std::vector<const AgentInteraction*> AgentTestSchema::allInteractions() const {
  std::vector<const AgentInteraction*> all;
  for (const auto& test : tests) {
    for (const auto& interaction : test.interactions) {
      all.push_back(&interaction);
      if (!interaction.children) continue;
      for (const auto& child : *interaction.children) all.push_back(&child);
    }
  }
  return all;
}

std::string AgentTestSchema::fileName(FileTime now) const {
  const std::string project = fileNamePart(projectName);
  const std::string test = fileNamePart(tests.empty() ? "test" : tests.front().name);
  const std::string id = requestId.value_or(millisecondsSince1970(now));
  const std::string tail = ("-" + id).append(fileSuffix);

  // Either name may fill its half of the length and what the other one leaves of its own half.
  const std::size_t length = longestFileName - std::string_view("-").size() - tail.size();
  const std::size_t half = length / 2;
  const std::size_t projectLength = length - std::min(test.size(), half);
  const std::size_t testLength = length - std::min(project.size(), projectLength);
  std::string name(shortenedTo(project, projectLength));
  return name.append("-").append(shortenedTo(test, testLength)).append(tail);
}

}  // namespace corvane
