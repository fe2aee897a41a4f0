#include "bench/speed/WholeCall.h"

#include "CorvaneCore/json/AgentWire.h"

namespace corvane::testing {

void WholeCall::addServerRound() {
  Contender contender(setting->serverIn(home));
  contender.initialize();
  askRepeatedly(contender, expected, server);
}

void WholeCall::addFloorRound(std::vector<std::string> arguments) {
  Contender contender(setting->foldersProgram(std::move(arguments)));
  askRepeatedly(contender, "done", floor);
}

void WholeCall::addNodeRound(const std::string& program, std::vector<std::string> arguments) {
  Contender contender(setting->nodeJob(program, std::move(arguments)));
  askRepeatedly(contender, expected, node);
}

void WholeCall::addNodeJob(const std::string& program, std::vector<std::string> arguments) {
  arguments.push_back(std::to_string(uncounted));
  arguments.push_back(std::to_string(counted));
  Contender contender(setting->nodeJob(program, std::move(arguments)));
  for (const double milliseconds : AgentWire::decode<std::vector<double>>(contender.readLine())) {
    node.add(milliseconds);
  }
}

void WholeCall::askRepeatedly(Contender& contender, std::string_view answer,
                              Samples& samples) const {
  for (int i = 0; i < uncounted + counted; ++i) {
    const auto start = std::chrono::steady_clock::now();
    contender.ask(request, answer);
    if (i >= uncounted) samples.add(millisecondsSince(start));
  }
}

Finding WholeCall::fasterThanNode(std::string what, double required) const {
  return timesBetter(std::move(what), required, node.median() / server.median())
      .with(shortNumber(server.median()) + " ms", shortNumber(node.median()) + " ms");
}

Finding WholeCall::timesTheFloor(std::string what, double allowed) const {
  return timesAtMost(std::move(what), allowed, server.median() / floor.median())
      .with(shortNumber(server.median()) + " ms", shortNumber(floor.median()) + " ms");
}

std::string megabytes(const std::filesystem::path& file) {
  return shortNumber(static_cast<double>(std::filesystem::file_size(file)) / 1e6) + " MB";
}

}  // namespace corvane::testing
