#include "bench/speed/Machine.h"

#include <sys/utsname.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <thread>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"

namespace corvane::testing {

namespace {

std::string processorModel() {
  std::ifstream information("/proc/cpuinfo");
  for (std::string line; std::getline(information, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(": ") + 2);
  }
  return "unknown processor";
}

std::string nodeVersion(const Setting& setting) {
  Contender node({{setting.node.string(), "--version"}, {}});
  return std::string(node.readLine());
}

/// The version of a package that is installed for the peers.
std::string packageVersion(const Setting& setting, const char* package) {
  const auto description =
      readJson(readFile(setting.peers / "node_modules" / package / "package.json"));
  return *description.findAs<std::string>("version");
}

}  // namespace

std::string describeMachine(const Setting& setting) {
  utsname system{};
  ::uname(&system);
  std::string text;
  text += "- Processor: " + processorModel() + ", " +
          std::to_string(std::thread::hardware_concurrency()) + " cores\n";
  text += std::string("- System: ") + system.sysname + " " + system.release + "\n";
  text += "- Compiler: " CORVANE_COMPILER "\n";
  text += "- Node.js " + nodeVersion(setting) + ", @modelcontextprotocol/sdk " +
          packageVersion(setting, "@modelcontextprotocol/sdk") + ", ajv " +
          packageVersion(setting, "ajv") + "\n";
  return text;
}

std::string loadAverages() {
  std::array<double, 3> loads{};
  if (::getloadavg(loads.data(), static_cast<int>(loads.size())) < 0) return "unknown";
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%.2f, %.2f, %.2f", loads[0], loads[1], loads[2]);
  return text.data();
}

}  // namespace corvane::testing
