#include "bench/speed/Documents.h"
#include "bench/speed/Messages.h"
#include "bench/speed/WholeCall.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

Rows::Findings Rows::describeProject(const Setting& setting) {
  const TemporaryHome home;
  Documents::writeContext(home.paths());
  const std::string file = home.paths().agentContextFile();
  WholeCall call(setting, home.path(), Messages::call(1, "describe_project", "{}"),
                 "Corvane workspace context");
  for (int i = 0; i < setting.rounds; ++i) {
    call.addServerRound();
    call.addNodeRound("describe_project.mjs", {file});
  }
  Finding finding = timesBetter("`describe_project` on a context of " + megabytes(file) +
                                    ", whole call, against the same in Node",
                                4, call.ratio());
  call.describe(finding);
  return {finding};
}

}  // namespace corvane::testing
