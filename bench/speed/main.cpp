// Measures the server against its peers and prints a table in Markdown. scripts/bench builds and
// installs what it needs and starts it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "bench/speed/Machine.h"
#include "bench/speed/rows/Rows.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

void print(const Finding& finding) {
  std::cout << "| " << finding.what << " | " << finding.required << " | " << finding.measured
            << " | " << (finding.reached ? "yes" : "**no**") << " | " << finding.ours << " | "
            << finding.others << " |\n"
            << std::flush;
}

std::vector<std::string> rowNames() {
  std::vector<std::string> names;
  for (const auto& row : Rows::all) names.emplace_back(row.name);
  return names;
}

void run(const Setting& setting, const std::vector<std::string>& wanted) {
  std::cout << describeMachine(setting) << "- " << setting.rounds
            << " rounds; load averages at the start " << loadAverages() << "\n\n"
            << "| what | required | measured | reached | this server | compared with |\n"
            << "|---|---|---|---|---|---|\n";
  for (const auto& row : Rows::all) {
    const bool selected =
        wanted.empty() || std::find(wanted.begin(), wanted.end(), row.name) != wanted.end();
    if (!selected) continue;
    std::cerr << "Measuring " << row.name << " (load " << loadAverages() << ")\n";
    for (const Finding& finding : row.measure(setting)) print(finding);
  }
  std::cout << "\nLoad averages at the end: " << loadAverages() << "\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
  Setting setting;
  std::vector<std::string> rows;
  CLI::App app("Measures corvane-mcp against its peers.", "speed_bench");
  app.add_option("rows", rows, "Rows to measure; all of them when none is named")
      ->check(CLI::IsMember(rowNames()));
  app.add_option("--server", setting.server, "The corvane-mcp program")->required();
  app.add_option("--floor", setting.floor, "The floor program")->required();
  app.add_option("--folders", setting.folders, "The folders program")->required();
  app.add_option("--plot", setting.plot, "An SVG file to write that shows how cost grows");
  app.add_option("--node", setting.node, "The node program")->required();
  app.add_option("--peers", setting.peers, "The folder of the programs for Node.js")->required();
  app.add_option("--rounds", setting.rounds, "How often each contender has its turn")
      ->capture_default_str();
  CLI11_PARSE(app, argumentCount, arguments);
  try {
    run(setting, rows);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "speed_bench: " << error.what() << "\n";
    return 1;
  }
}
