#include "corvane_standin/program/Options.h"

#include <CLI/CLI.hpp>

namespace corvane::standin {

void Options::addTo(CLI::App& program) {
  program.add_flag("--quit", quit,
                   "Ask the instance of this home to stop and wait until it is gone");
  program.add_option("--step-seconds", stepSeconds, "How long a test step takes");
  program.add_option("--build-seconds", buildSeconds, "How long a build takes");
  program.add_option("--heartbeat-seconds", heartbeatSeconds,
                     "The longest a result in hand goes without being refreshed");
  program.add_option("--cold-start-seconds", coldStartSeconds,
                     "From the start to the moment requests are taken up");
}

}  // namespace corvane::standin
