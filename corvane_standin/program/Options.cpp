#include "corvane_standin/program/Options.h"

#include <CLI/CLI.hpp>
#include <string>

namespace corvane::standin {

namespace {

/// A variable that a shell does not know is a mistake, never a name that was left out.
CLI::Validator nameOf(const std::string& what) {
  return {[what](const std::string& value) {
            return value.empty() ? "expected the name of " + what + ", not ''" : std::string();
          },
          ""};
}

}  // namespace

void Options::addTo(CLI::App& program) {
  program.add_flag("--quit", quit,
                   "Ask the instance of this home to stop and wait until it is gone");
  program
      .add_option("--home", home,
                  "The home to work in, in the place of the user's; nothing outside it is touched")
      ->type_name("DIR")
      ->check(nameOf("a folder"));
  program
      .add_option("--scenario", scenario,
                  "A JSON file that says how requests turn out, how fast everything goes and what "
                  "there is at the start; read in the place of settings.json in the home")
      ->type_name("FILE")
      ->check(nameOf("a file"));
  program.add_flag("--scenario-schema", printSchema,
                   "Print the JSON Schema of such a file, for editors");
  program.add_option("--step-seconds", stepSeconds, "How long a test step takes");
  program.add_option("--build-seconds", buildSeconds, "How long a build takes");
  program.add_option("--heartbeat-seconds", heartbeatSeconds,
                     "The longest a result in hand goes without being refreshed");
  program.add_option("--cold-start-seconds", coldStartSeconds,
                     "From the start to the moment requests are taken up");
}

}  // namespace corvane::standin
