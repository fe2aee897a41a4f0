#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/jobs/RequestRefused.h"

namespace corvane::standin {

[[nodiscard]] inline std::string inQuotes(const std::string& name) {
  return "'" + name + "'";
}

/// "Tests: 'A', 'B'.", so that whoever named another can see what there is.
template <class Named>
[[nodiscard]] std::string listing(const std::string& title, const std::vector<Named>& items) {
  std::string list;
  for (const auto& item : items) list += (list.empty() ? "" : ", ") + inQuotes(item.name);
  return title + ": " + (list.empty() ? "none" : list) + ".";
}

/// The first of `items` with that exact name, or nullptr.
template <class Items>
[[nodiscard]] auto* findByName(Items& items, const std::string& name) {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&name](const auto& item) { return item.name == name; });
  return found == items.end() ? nullptr : &*found;
}

/// The first of `items` with that id, or nullptr.
template <class Items>
[[nodiscard]] auto* findById(Items& items, const std::string& id) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&id](const auto& item) { return item.id == id; });
  return found == items.end() ? nullptr : &*found;
}

/// The project of that exact name. Throws RequestRefused, which lists those there are.
template <class Context>
[[nodiscard]] auto& requireProject(Context& workspace, const std::string& name) {
  if (auto* project = findByName(workspace.projects, name)) return *project;
  throw RequestRefused("There is no project named " + inQuotes(name) + ". " +
                       listing("Projects", workspace.projects));
}

/// The test of that exact name. Throws RequestRefused, which lists those there are.
template <class Project>
[[nodiscard]] auto& requireTest(Project& project, const std::string& name) {
  if (auto* test = findByName(project.tests, name)) return *test;
  throw RequestRefused("The project " + inQuotes(project.name) + " has no test named " +
                       inQuotes(name) + ". " + listing("Tests", project.tests));
}

}  // namespace corvane::standin
