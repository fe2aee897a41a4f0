#include <filesystem>
#include <fstream>
#include <map>

#include "CorvaneCore/paths/AgentPaths.h"
#include "bench/speed/GrowthPlot.h"
#include "bench/speed/Messages.h"
#include "bench/speed/WholeCall.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view unknownId = "00000000-0000-4000-8000-000000000000";
constexpr std::array<std::size_t, 5> sizes{1'000, 3'000, 10'000, 30'000, 100'000};
/// For each thousand files the development folder has a project of twenty folders.
constexpr std::size_t projectSize = 1000;
constexpr std::size_t foldersPerProject = 20;

void writeFile(const fs::path& file, std::string_view text) {
  std::ofstream(file) << text;
}

/// A home whose folders have the same number of entries each. No app is installed in it.
class CrowdedHome {
 public:
  void growTo(std::size_t entries) {
    for (; project < entries / projectSize; ++project) addProject();
    for (; files < entries; ++files) {
      const std::string name = std::to_string(files);
      writeFile(results / (name + ".json"),
                R"({"requestId":")" + name + R"(","status":"passed","terminal":true})");
      writeFile(payloads / (name + ".corvane.json"), payload);
    }
  }

  const TemporaryHome home;
  const fs::path developmentFolder =
      home.path() / "Library" / "Developer" / "Xcode" / "DerivedData";
  const fs::path results = made(home.paths().agentResultsDirectory());
  const fs::path payloads = made(home.paths().agentImportsDirectory());

 private:
  static fs::path made(fs::path folder) {
    fs::create_directories(folder);
    return folder;
  }

  void addProject() {
    const fs::path root = developmentFolder / ("Project-" + std::to_string(project));
    for (std::size_t i = 0; i < projectSize; ++i) {
      const fs::path folder = root / ("Module-" + std::to_string(i % foldersPerProject) + ".build");
      fs::create_directories(folder);
      writeFile(folder / ("Source-" + std::to_string(i) + ".o"), "");
    }
  }

  const std::string payload = R"({"tests":[{"name":")" + std::string(2000, 'x') + "\"}]}";
  std::size_t project = 0;
  std::size_t files = 0;
};

/// One of the calls that look through a folder, with what does the same.
struct Search {
  std::string_view tool;
  std::string arguments;
  std::string expected;
  std::vector<std::string> floor;
  /// A program and its argument; none where Node.js is not asked.
  std::vector<std::string> node;
};

std::vector<Search> searches(const CrowdedHome& in) {
  return {{"health",
           "{}",
           "healthy",
           {"find", in.developmentFolder},
           {"find_app.mjs", in.developmentFolder}},
          {"get_status",
           "{}",
           "recentRequests",
           {"newest", in.results},
           {"newest_results.mjs", in.results}},
          {"get_result",
           R"({"requestId":")" + std::string(unknownId) + "\"}",
           "unknown_request_id",
           {"search", in.payloads, std::string(unknownId)},
           {}}};
}

std::string requestFor(const Search& search) {
  return Messages::call(1, search.tool, search.arguments);
}

WholeCall measure(const Search& search, const CrowdedHome& in, const Setting& setting) {
  WholeCall call(setting, in.home.path(), requestFor(search), search.expected);
  for (int i = 0; i < setting.rounds; ++i) {
    call.addFloorRound(search.floor);
    call.addServerRound();
    if (!search.node.empty()) call.addNodeRound(search.node.front(), {search.node.back()});
  }
  return call;
}

double peakMebibytes(const CrowdedHome& in, const Setting& setting) {
  Contender contender(setting.serverIn(in.home.path()));
  contender.initialize();
  for (const auto& search : searches(in)) contender.ask(requestFor(search), search.expected);
  return static_cast<double>(contender.kilobytes("VmHWM")) / 1024;
}

using Calls = std::map<std::pair<std::string_view, std::size_t>, WholeCall>;

Finding growth(const Calls& calls, std::string_view tool) {
  const double small = calls.at({tool, 10'000}).milliseconds();
  const double large = calls.at({tool, 100'000}).milliseconds();
  return timesAtMost("`" + std::string(tool) + "`: 100,000 entries against 10,000", 12,
                     large / small)
      .with(shortNumber(large) + " ms", shortNumber(small) + " ms");
}

GrowthPlot plotOf(const Calls& calls, const std::vector<Search>& searches) {
  GrowthPlot plot;
  for (const auto& search : searches) {
    std::vector<GrowthPlot::Line> lines{{"this server", {}}, {"floor in C", {}}, {"Node.js", {}}};
    for (const std::size_t size : sizes) {
      const auto& call = calls.at({search.tool, size});
      const auto entries = static_cast<double>(size);
      lines[0].points.push_back({entries, call.milliseconds()});
      lines[1].points.push_back({entries, call.floorMilliseconds()});
      if (!search.node.empty()) lines[2].points.push_back({entries, call.nodeMilliseconds()});
    }
    plot.charts.push_back({std::string(search.tool), std::move(lines)});
  }
  return plot;
}

}  // namespace

Rows::Findings Rows::folders(const Setting& setting) {
  CrowdedHome home;
  const auto all = searches(home);
  Calls calls;
  for (const std::size_t size : sizes) {
    home.growTo(size);
    for (const auto& search : all) {
      calls.emplace(std::pair(search.tool, size), measure(search, home, setting));
    }
  }
  if (!setting.plot.empty()) plotOf(calls, all).write(setting.plot);

  const auto& health = calls.at({"health", 100'000});
  const auto& status = calls.at({"get_status", 100'000});
  const std::string ofHealth =
      "`health` with a development folder of 100,000 files in 2,100 folders and no app, against ";
  const std::string ofStatus = "`get_status` with 100,000 results, against ";
  Findings findings{
      health.timesTheFloor(ofHealth + "a walk in C", 1.4),
      health.fasterThanNode(ofHealth + "Node.js", 1.2),
      status.timesTheFloor(ofStatus + "a loop of `fstatat` in C", 1.4),
      status.fasterThanNode(ofStatus + "Node.js", 2),
      calls.at({"get_result", 10'000})
          .timesTheFloor("`get_result` of an unknown id with 10,000 waiting payloads of 2 KB, "
                         "against a loop in C that opens, reads and searches them",
                         1.5)};
  for (const auto& search : all) findings.push_back(growth(calls, search.tool));
  const double peak = peakMebibytes(home, setting);
  findings.push_back({"peak memory after all three with 100,000 entries each", "≤ 30 MiB",
                      shortNumber(peak) + " MiB", peak <= 30, shortNumber(peak) + " MiB", "—"});
  return findings;
}

}  // namespace corvane::testing
