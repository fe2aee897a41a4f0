#include "bench/speed/WholeCall.h"

#include "CorvaneCore/json/AgentWire.h"

namespace corvane::testing {

void WholeCall::addServerRound() {
  Contender contender(setting.serverIn(home));
  contender.initialize();
  askRepeatedly(contender, server);
}

void WholeCall::addNodeRound(const std::string& program, std::vector<std::string> arguments) {
  Contender contender(setting.nodeJob(program, std::move(arguments)));
  askRepeatedly(contender, node);
}

void WholeCall::addNodeJob(const std::string& program, std::vector<std::string> arguments) {
  arguments.push_back(std::to_string(uncounted));
  arguments.push_back(std::to_string(counted));
  Contender contender(setting.nodeJob(program, std::move(arguments)));
  for (const double milliseconds : AgentWire::decode<std::vector<double>>(contender.readLine())) {
    node.add(milliseconds);
  }
}

void WholeCall::askRepeatedly(Contender& contender, Samples& samples) const {
  for (int i = 0; i < uncounted + counted; ++i) {
    const auto start = std::chrono::steady_clock::now();
    contender.ask(request, expected);
    if (i >= uncounted) samples.add(millisecondsSince(start));
  }
}

void WholeCall::describe(Finding& finding) const {
  finding.ours = shortNumber(server.median()) + " ms";
  finding.others = shortNumber(node.median()) + " ms";
}

std::string megabytes(const std::filesystem::path& file) {
  return shortNumber(static_cast<double>(std::filesystem::file_size(file)) / 1e6) + " MB";
}

}  // namespace corvane::testing
